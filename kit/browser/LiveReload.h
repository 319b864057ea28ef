#pragma once

#include <QTimer>

#include <chrono>
#include <functional>
#include <optional>

namespace ombrel {

/// When a pane reads its folder again because it has changed: once for all changes so far, after the listing
/// that is under way, not under the user's hand, and after a listing that took long only after a rest in
/// proportion, so that a huge folder that never comes to rest costs a share of a thread and no more. Main
/// thread only.
class LiveReload {
public:
    /// The rest after a listing, in times of what the listing took.
    static constexpr int restPerListing = 4;

    /// `reload` begins a listing and says so. Called from the event loop or from within a call of this class.
    explicit LiveReload(std::function<void()> reload);

    /// Whatever listing begins covers the changes before it.
    void listingBegan();
    /// Well or not. Without effect when none is under way.
    void listingEnded();
    void noteChange();
    /// While it is held nothing is reloaded.
    void setHeld(bool held);
    /// There is nothing any more to be reloaded.
    void forget();

private:
    using Clock = std::chrono::steady_clock;
    void reloadWhenPossible();

    std::function<void()> reload_;
    std::optional<Clock::time_point> began_; ///< of the listing under way
    Clock::time_point restsUntil_;
    bool isOutdated_ = false;
    bool isHeld_ = false;
    QTimer alarm_; ///< the end of a rest
};

} // namespace ombrel
