#include "support/Unprivileged.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <thread>

namespace ombrel::testing {
namespace {

constexpr unsigned nobody = 65534;

/// Only the calling thread changes: the kernel keeps credentials per thread, and the raw calls leave the
/// others alone.
bool becomeNobody() {
    if (::geteuid() != 0) return true;
    return ::syscall(SYS_setgroups, 0, nullptr) == 0 &&
           ::syscall(SYS_setresgid, nobody, nobody, nobody) == 0 &&
           ::syscall(SYS_setresuid, nobody, nobody, nobody) == 0;
}

} // namespace

bool asNobody(const std::function<bool()>& body) {
    bool answer = false;
    std::thread([&] { answer = becomeNobody() && body(); }).join();
    return answer;
}

} // namespace ombrel::testing
