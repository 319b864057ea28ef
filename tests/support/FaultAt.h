#pragma once

#include "listing/SystemCall.h"

#include <atomic>
#include <optional>

namespace ombrel::testing {

/// Does something to the n-th file-system call that is made while it lives, counted from 1 over all kinds, or
/// to none (0), and counts them. For sweeps: run once with 0 to learn the count, then once for each call.
class FaultAt final : public SystemCall::Interceptor {
public:
    FaultAt(int nth, SystemCall::Fault fault) : nth_(nth), fault_(fault) { SystemCall::intercept(this); }
    ~FaultAt() override { SystemCall::intercept(nullptr); }

    std::optional<SystemCall::Fault> before(SystemCall::Kind kind) override {
        if (++seen_ != nth_) return std::nullopt;
        hit_ = kind;
        return fault_;
    }

    [[nodiscard]] int seen() const noexcept { return seen_; }
    /// The kind of the call that was hit.
    [[nodiscard]] std::optional<SystemCall::Kind> hit() const noexcept { return hit_; }

private:
    const int nth_;
    const SystemCall::Fault fault_;
    std::atomic<int> seen_ = 0;
    std::optional<SystemCall::Kind> hit_;
};

} // namespace ombrel::testing
