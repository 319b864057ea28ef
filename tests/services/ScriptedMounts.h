#pragma once

#include "listing/MountWatch.h"

#include <string>
#include <utility>

namespace ombrel::testing {

/// Tells the mount tables that a test makes up.
class ScriptedMounts final : public MountWatch {
public:
    void start(Changed changed) override {
        changed_ = std::move(changed);
        ++starts;
    }
    void stop() override { changed_ = nullptr; }
    void tell(const std::string& text) const {
        if (changed_) changed_(*MountTable::fromText(text));
    }
    [[nodiscard]] bool isStarted() const { return static_cast<bool>(changed_); }
    int starts = 0;

private:
    Changed changed_;
};

} // namespace ombrel::testing
