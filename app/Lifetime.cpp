#include "app/Lifetime.h"

#include "browser/ThumbnailStore.h"
#include "operations/JobPlan.h"
#include "ui/BrowserWindow.h"
#include "ui/ConfirmationDialog.h"
#include "ui/LocalizedText.h"
#include "ui/ProgressWindow.h"

#include <QApplication>

#include <memory>
#include <utility>

namespace ombrel {
namespace {

BrowserWindow* windowWith(const QObject* tabs) {
    const auto windows = QApplication::topLevelWidgets();
    for (QWidget* widget : windows)
        if (auto* const window = qobject_cast<BrowserWindow*>(widget);
            window && window->isVisible() && (!tabs || &window->tabs() == tabs))
            return window;
    return nullptr;
}

} // namespace

Lifetime::Lifetime(const Theme& theme, AppServices& services, std::function<void(const FileURL&)> openWindow)
    : theme_(&theme), services_(&services), openWindow_(std::move(openWindow)) {
    QApplication::setQuitOnLastWindowClosed(false);
    services.makeProgressWindow = [this](OperationCenter& center) -> std::unique_ptr<OperationPresenting> {
        auto window = std::make_unique<ProgressWindow>(ProgressWindow::Setting{
            .theme = *theme_,
            .center = center,
            .openFolder = [this](const FileURL& folder) { openFolder(folder); },
            .thumbnails = &ThumbnailStore::of(*services_),
            .deletePermanently =
                [this, &center](const FileURL& item) {
                    center.run(JobPlan::deletePermanently(services_->operations(), {{item, std::nullopt}}));
                }});
        progress_ = window.get();
        connect(window.get(), &ProgressWindow::hidden, this, &Lifetime::askBeforeEnd);
        return window;
    };
    OperationCenter& center = services.center();
    center.onQuitWithJobs = [this](const std::function<void(bool)>& decide) { confirm(decide); };
    connect(qApp, &QGuiApplication::lastWindowClosed, this, [this] {
        // What goes on is to be seen.
        if (progress_ && !services_->center().jobs().empty()) progress_->comeBack();
        consider();
    });
    connect(&center, &OperationCenter::jobsChanged, this, &Lifetime::consider);
}

void Lifetime::openFolder(const FileURL& folder) {
    auto* window = windowWith(services_->activeWindowTabs());
    if (!window) window = windowWith(nullptr);
    if (!window) return openWindow_(folder);
    window->tabs().addTab(folder, BrowserTabsModel::Activation::activate);
    window->raise();
    window->activateWindow();
}

void Lifetime::consider() {
    if (windowWith(nullptr) || !services_->center().jobs().empty()) return;
    // Reports are still to be read.
    if (progress_ && progress_->window().isVisible()) return;
    QCoreApplication::exit(0);
}

/// The last window there is has been closed by the user.
void Lifetime::askBeforeEnd() {
    if (windowWith(nullptr)) return;
    services_->center().requestQuit([this](bool quits) {
        if (quits)
            QCoreApplication::exit(0);
        else if (progress_)
            progress_->comeBack();
    });
}

void Lifetime::confirm(const std::function<void(bool)>& decide) {
    if (progress_) progress_->comeBack();
    const auto jobs = static_cast<std::int64_t>(services_->center().jobs().size());
    QWidget* const over = QApplication::activeWindow();
    QWidget* const progress = progress_ ? &progress_->window() : nullptr;
    auto* const dialog = new ConfirmationDialog(
        *theme_,
        {.title = localized("confirm.quit.title", jobs),
         .accept = localized("confirm.quit.accept"),
         .decline = localized("confirm.quit.decline"),
         .isDanger = true},
        [decide](const BrowserAnswer& answer) { decide(answer.choice == BrowserAnswer::Choice::accept); },
        progress ? progress : over);
    dialog->open();
}

} // namespace ombrel
