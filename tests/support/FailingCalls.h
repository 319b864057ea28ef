#pragma once

#include "listing/SystemCall.h"

#include <atomic>
#include <functional>
#include <optional>

namespace ombrel::testing {

/// Makes the calls of one kind fail with an errno, from the `first` one on (counted from 1), `count` of them,
/// while it lives. Counts them all.
class FailingCalls final : public SystemCall::Interceptor {
public:
    FailingCalls(SystemCall::Kind kind, int errorNumber, int first = 1, int count = 1 << 30)
        : kind_(kind), errorNumber_(errorNumber), first_(first), count_(count) {
        SystemCall::intercept(this);
    }
    ~FailingCalls() override { SystemCall::intercept(nullptr); }

    std::optional<SystemCall::Fault> before(SystemCall::Kind kind) override {
        if (kind != kind_) return std::nullopt;
        const int number = ++seen_;
        if (number < first_ || number - first_ >= count_) return std::nullopt;
        return SystemCall::Fault{.errorNumber = errorNumber_};
    }

    [[nodiscard]] int seen() const noexcept { return seen_; }

private:
    const SystemCall::Kind kind_;
    const int errorNumber_, first_, count_;
    std::atomic<int> seen_ = 0;
};

} // namespace ombrel::testing
