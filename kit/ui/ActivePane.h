#pragma once

#include <QObject>

#include <functional>
#include <memory>

namespace ombrel {

class BrowserModel;
class BrowserTabsModel;

/// The pane of the active tab, for a part of the window that shows something of it. Main thread only.
class ActivePane {
public:
    /// Takes up a pane that has become the active one. Connections to it are made with `context`, which goes
    /// when another pane is active.
    using Follow = std::function<void(BrowserModel& pane, QObject& context)>;

    /// `tabs` must outlive it.
    explicit ActivePane(BrowserTabsModel& tabs) : tabs_(&tabs) {}
    ActivePane(const ActivePane&) = delete;
    ActivePane& operator=(const ActivePane&) = delete;

    /// Calls `take` now and for each pane to come, as long as this lives. Once.
    void follow(Follow take);

    [[nodiscard]] BrowserModel& operator*() const;
    [[nodiscard]] BrowserModel* operator->() const { return &**this; }

private:
    void takeActive();

    BrowserTabsModel* tabs_;
    Follow take_;
    QObject tabsContext_;
    std::unique_ptr<QObject> paneContext_;
};

} // namespace ombrel
