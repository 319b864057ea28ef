#pragma once

#include "listing/SystemCall.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace ombrel::testing {

/// Which calls share the fate of the n-th one.
enum class Lasting : std::uint8_t {
    once,
    sameKind,   ///< those of its kind that follow: an ability that is lost
    everything, ///< all that follow: a medium that died
    everyOther, ///< every second one that follows
};

/// Does something to the n-th file-system call that is made while it lives, counted from 1 over all kinds, or
/// to none (0), and counts them. For sweeps: run once with 0 to learn the count, then once for each call.
class FaultAt final : public SystemCall::Interceptor {
public:
    FaultAt(int nth, SystemCall::Fault fault, Lasting lasting = Lasting::once)
        : nth_(nth), fault_(fault), lasting_(lasting) {
        SystemCall::intercept(this);
    }
    ~FaultAt() override { SystemCall::intercept(nullptr); }

    std::optional<SystemCall::Fault> before(SystemCall::Kind kind) override {
        const int number = ++seen_;
        if (number == nth_) {
            hit_ = kind;
            hasHit_ = true;
            return fault_;
        }
        if (lasting_ == Lasting::once || !hasHit_) return std::nullopt;
        if (lasting_ == Lasting::everyOther && (number - nth_) % 2 != 0) return std::nullopt;
        if (lasting_ == Lasting::sameKind && kind != *hit_) return std::nullopt;
        return fault_;
    }

    [[nodiscard]] int seen() const noexcept { return seen_; }
    /// The kind of the call that was hit.
    [[nodiscard]] std::optional<SystemCall::Kind> hit() const noexcept { return hit_; }

private:
    const int nth_;
    const SystemCall::Fault fault_;
    const Lasting lasting_;
    std::atomic<int> seen_ = 0;
    std::optional<SystemCall::Kind> hit_; // written before `hasHit_`, once
    std::atomic<bool> hasHit_ = false;
};

/// The kind of a call in words, for messages.
[[nodiscard]] inline std::string nameOf(SystemCall::Kind kind) {
    constexpr const char* names[] = {
        "open",        "close",         "openDirectory",  "readDirectory",   "status",
        "read",        "write",         "seek",           "allocate",        "truncate",
        "rename",      "link",          "unlink",         "removeDirectory", "makeDirectory",
        "makeSymlink", "makeNode",      "readLink",       "changeMode",      "changeOwner",
        "changeTimes", "readAttribute", "writeAttribute", "flush",           "fileSystem",
        "lock",        "watch"};
    return names[static_cast<std::size_t>(kind)];
}

} // namespace ombrel::testing
