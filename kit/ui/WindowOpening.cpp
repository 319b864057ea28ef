#include "ui/WindowOpening.h"

#include "browser/BrowserTabsModel.h"
#include "browser/OpenActions.h"
#include "browser/PaneTargets.h"
#include "services/AppServices.h"
#include "ui/ApplicationChooser.h"
#include "ui/ApplicationIcon.h"
#include "ui/LocalizedText.h"

#include <QAction>
#include <QCheckBox>
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
    const auto subject = PaneTargets::areFolders(pane, 1) ? Subject::folder : Subject::files;
    QAction* const line = menu.addSeparator();
    connect(menu.addAction(localized("ui.command.otherApplication")), &QAction::triggered, this,
            [this, items, subject, selected = QPointer(&pane)] {
                if (selected) choose(*selected, items, subject);
            });
    const auto offer = [this, items, subject, line, shown = QPointer(&menu),
                        selected = QPointer(&pane)](const std::vector<DesktopApplication>& applications) {
        if (!shown || !selected) return;
        for (const DesktopApplication& application : applications) {
            auto* const entry = new QAction(
                applicationIcon(setting_.theme, application),
                QString::fromStdString(application.name).replace(QLatin1Char('&'), QLatin1String("&&")),
                shown);
            shown->insertAction(line, entry);
            connect(entry, &QAction::triggered, this, [this, items, subject, selected, application] {
                if (selected) open(*selected, items, subject, application);
            });
        }
    };
    if (subject == Subject::folder)
        setting_.actions.recentFolderApplications(offer);
    else
        setting_.actions.applicationsFor(
            items, [offer](const ApplicationChoice& choice) { offer(choice.applications); });
}

void WindowOpening::chooseApplication(BrowserModel& pane, const std::vector<FileURL>& items) {
    choose(pane, items, Subject::files);
}

void WindowOpening::choose(BrowserModel& pane, const std::vector<FileURL>& items, Subject subject) {
    if (items.empty()) return;
    const auto done = [this, items, subject, selected = QPointer(&pane)](
                          const DesktopApplication& application, const std::vector<std::string>& types) {
        if (!types.empty()) openAlways(types, application);
        if (selected) open(*selected, items, subject, application);
    };
    auto* const chooser = new ApplicationChooser(setting_.theme, items, done, window_);
    // Folders open in place, whatever else can open them.
    if (subject == Subject::folder) chooser->always().hide();
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

void WindowOpening::open(BrowserModel& pane, const std::vector<FileURL>& items, Subject subject,
                         const DesktopApplication& application) {
    if (subject == Subject::folder)
        setting_.actions.openFolderWith(pane, items.front(), application);
    else
        setting_.actions.openWith(pane, application, items);
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
