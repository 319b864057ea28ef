#include "listing/SystemCall.h"

#include "base/MainThread.h"

#include <cstdio>
#include <cstdlib>

namespace ombrel::SystemCall {

namespace Detail {
std::atomic<bool> isGuarded = false;
} // namespace Detail

namespace {

std::atomic<Interceptor*> installed = nullptr;
std::atomic<bool> isForbidden = false;
thread_local int allowances = 0;

void refreshGuard() noexcept {
    Detail::isGuarded.store(installed.load() != nullptr || isForbidden.load());
}

} // namespace

void intercept(Interceptor* interceptor) noexcept {
    installed.store(interceptor);
    refreshGuard();
}

void forbidOnMainThread(bool forbidden) noexcept {
    isForbidden.store(forbidden);
    refreshGuard();
}

Allowed::Allowed() noexcept {
    ++allowances;
}

Allowed::~Allowed() {
    --allowances;
}

std::optional<Fault> Detail::pass(Kind kind) {
    if (isForbidden.load(std::memory_order_relaxed) && allowances == 0 && MainThread::isCurrent()) {
        std::fprintf(stderr, "ombrel: file-system call of kind %d on the main thread\n",
                     static_cast<int>(kind));
        std::abort();
    }
    if (auto* interceptor = installed.load()) return interceptor->before(kind);
    return std::nullopt;
}

} // namespace ombrel::SystemCall
