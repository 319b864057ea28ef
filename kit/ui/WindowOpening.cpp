#include "ui/WindowOpening.h"

#include "browser/BrowserTabsModel.h"
#include "browser/OpenActions.h"
#include "browser/PaneTargets.h"
#include "services/AppServices.h"
#include "ui/ApplicationChooser.h"
#include "ui/ApplicationIcon.h"
#include "ui/LocalizedText.h"

#include <QAction>
#include <QMenu>
#include <QPointer>
#include <QWidget>

namespace ombrel {

WindowOpening::WindowOpening(QWidget& window, const Setting& setting)
    : QObject(&window), setting_(setting), window_(&window) {
    setting.actions.openTabBehind = [this](const FileURL& folder) {
        setting_.tabs.addTab(folder, BrowserTabsModel::Activation::stayBehind);
    };
    setting.actions.requestApplication = [this](BrowserModel& pane, const std::vector<FileURL>& items) {
        chooseApplication(pane, items);
    };
}

void WindowOpening::fillOpenWith(QMenu& menu, BrowserModel& pane) {
    const auto items = PaneTargets::selected(pane);
    QAction* const line = menu.addSeparator();
    connect(menu.addAction(localized("ui.command.otherApplication")), &QAction::triggered, this,
            [this, items, selected = QPointer(&pane)] {
                if (selected) chooseApplication(*selected, items);
            });
    setting_.actions.applicationsFor(items, [this, items, line, shown = QPointer(&menu),
                                             selected = QPointer(&pane)](const ApplicationChoice& choice) {
        if (!shown || !selected) return;
        for (const DesktopApplication& application : choice.applications) {
            auto* const entry = new QAction(
                applicationIcon(setting_.theme, application),
                QString::fromStdString(application.name).replace(QLatin1Char('&'), QLatin1String("&&")),
                shown);
            shown->insertAction(line, entry);
            connect(entry, &QAction::triggered, this, [this, items, selected, application] {
                if (selected) setting_.actions.openWith(*selected, application, items);
            });
        }
    });
}

void WindowOpening::chooseApplication(BrowserModel& pane, const std::vector<FileURL>& items) {
    if (items.empty()) return;
    const auto done = [this, items, selected = QPointer(&pane)](const DesktopApplication& application,
                                                                const std::vector<std::string>& types) {
        if (!types.empty()) openAlways(types, application);
        if (selected) setting_.actions.openWith(*selected, application, items);
    };
    auto* const chooser = new ApplicationChooser(setting_.theme, items, done, window_);
    setting_.actions.applicationsFor(items,
                                     [this, shown = QPointer(chooser)](const ApplicationChoice& choice) {
                                         if (!shown) return;
                                         setting_.services.launcher().allApplications(
                                             [shown, choice](const std::vector<DesktopApplication>& all) {
                                                 if (shown) shown->offer(choice, all);
                                             });
                                     });
    chooser->open();
}

void WindowOpening::openAlways(const std::vector<std::string>& types, const DesktopApplication& application) {
    setting_.services.launcher().setDefault(
        types, application, [self = QPointer(this)](const std::optional<Text>& problem) {
            if (!problem || !self) return;
            auto* const prompter = self->setting_.tabs.activeTab().prompter();
            if (prompter) prompter->tell(*problem);
        });
}

void WindowOpening::openInNewWindow(const FileURL& folder) {
    if (setting_.services.openWindowAt) setting_.services.openWindowAt(folder);
}

} // namespace ombrel
