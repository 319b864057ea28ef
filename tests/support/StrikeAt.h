#pragma once

#include "listing/SystemCall.h"

#include <atomic>
#include <functional>
#include <optional>
#include <utility>

namespace ombrel::testing {

/// Does something right before the n-th file-system call (counted from 1, over all kinds or over one) that is
/// made while it lives: what another program might do at that moment. What it does passes no gate.
class StrikeAt final : public SystemCall::Interceptor {
public:
    StrikeAt(int nth, std::function<void()> action) : StrikeAt(std::nullopt, nth, std::move(action)) {}
    StrikeAt(std::optional<SystemCall::Kind> kind, int nth, std::function<void()> action)
        : kind_(kind), left_(nth), action_(std::move(action)) {
        SystemCall::intercept(this);
    }
    ~StrikeAt() override { SystemCall::intercept(nullptr); }

    std::optional<SystemCall::Fault> before(SystemCall::Kind kind) override {
        if ((!kind_ || kind == *kind_) && --left_ == 0) {
            struck_ = kind;
            hasStruck_ = true;
            action_();
        }
        return std::nullopt;
    }

    [[nodiscard]] bool hasStruck() const noexcept { return hasStruck_; }
    /// The kind of the call that came next; only once it has struck.
    [[nodiscard]] SystemCall::Kind struck() const noexcept { return struck_; }

private:
    const std::optional<SystemCall::Kind> kind_;
    std::atomic<int> left_;
    std::function<void()> action_;
    std::atomic<SystemCall::Kind> struck_ = SystemCall::Kind::open;
    std::atomic<bool> hasStruck_ = false;
};

} // namespace ombrel::testing
