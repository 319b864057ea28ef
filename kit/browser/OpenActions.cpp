#include "browser/OpenActions.h"

#include "base/FileName.h"
#include "browser/BrowserPrompter.h"
#include "browser/PaneTargets.h"
#include "operations/JobPlan.h"
#include "services/AppServices.h"

#include <QPointer>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <span>
#include <utility>

namespace ombrel {
namespace {

using Choice = BrowserAnswer::Choice;
using Problems = ApplicationLauncher::Problems;
using Guard = QPointer<BrowserModel>;
using RequestApplication = decltype(OpenActions::requestApplication);

/// As many as a question can show.
constexpr std::size_t mostNamed = 5;
/// Beyond, the applications that open all would take long to find.
constexpr std::size_t mostLookedAt = 50;

void ask(BrowserModel& pane, BrowserQuestion::Kind kind, const std::vector<FileURL>& urls,
         std::function<void(BrowserModel&, Choice)> then) {
    if (!pane.prompter()) return;
    BrowserQuestion question{.kind = kind, .count = static_cast<std::int64_t>(urls.size())};
    for (const auto& url : urls) {
        if (question.items.size() == mostNamed) break;
        question.items.push_back({url, std::nullopt});
    }
    pane.prompter()->ask(question,
                         [guard = Guard(&pane), then = std::move(then)](const BrowserAnswer& answer) {
                             if (guard && answer.choice != Choice::decline) then(*guard, answer.choice);
                         });
}

void tell(const Guard& pane, const Text& text) {
    if (pane && pane->prompter()) pane->prompter()->tell(text);
}

void tell(const Guard& pane, const Problems& problems) {
    if (problems.empty()) return;
    if (problems.size() == 1) return tell(pane, problems.front().text);
    tell(pane, Text{"open.error.several",
                    {problems.front().text.localized()},
                    static_cast<std::int64_t>(problems.size())});
}

/// Tells what could not be opened, and lets the user choose for what has no application.
ApplicationLauncher::Done telling(const Guard& pane, const RequestApplication& request) {
    return [pane, request](const Problems& problems) {
        Problems told;
        std::vector<FileURL> unset;
        for (const auto& problem : problems)
            if (problem.lacksApplication && pane && request)
                unset.push_back(problem.url);
            else
                told.push_back(problem);
        tell(pane, told);
        if (!unset.empty()) request(*pane, unset);
    };
}

using OpenTab = decltype(OpenActions::openTabBehind);

/// The first one in place, the others in tabs to its right.
void openFolders(BrowserModel& pane, const OpenTab& openBehind, const std::vector<FileURL>& urls) {
    if (urls.empty()) return;
    pane.navigate(urls.front());
    const std::span others(std::next(urls.begin()), urls.end());
    if (openBehind)
        std::for_each(others.rbegin(), others.rend(), openBehind); // each comes next to the active one
    else if (pane.requestNewTab)
        std::ranges::for_each(others, pane.requestNewTab);
}

/// What is to happen with files that have been looked at.
struct Sorted {
    std::vector<FileURL> folders, documents, texts, programs;
    Problems problems;

    explicit Sorted(const ApplicationLauncher::Examined& examined) {
        for (const auto& [url, facts] : examined) {
            if (facts)
                add(url, *facts);
            else
                problems.push_back({url, facts.error()});
        }
    }

private:
    void add(const FileURL& url, const OpeningFacts& facts) {
        switch (facts.kind) {
        case OpeningFacts::Kind::folder: folders.push_back(url); break;
        case OpeningFacts::Kind::document: documents.push_back(url); break;
        case OpeningFacts::Kind::script: (facts.mayRun ? programs : documents).push_back(url); break;
        case OpeningFacts::Kind::launcher: (facts.mayRun ? programs : texts).push_back(url); break;
        case OpeningFacts::Kind::program:
            if (facts.mayRun)
                programs.push_back(url);
            else
                problems.push_back({url, {"open.error.notExecutable", {FileName::displayText(url.name())}}});
            break;
        }
    }
};

/// The launcher outlives its answers; the pane may not.
void openFiles(ApplicationLauncher& launcher, const Guard& pane, const RequestApplication& request,
               const OpenTab& openBehind, std::vector<FileURL> urls) {
    if (urls.empty()) return;
    launcher.examine(std::move(urls),
                     [&launcher, pane, request, openBehind](const ApplicationLauncher::Examined& examined) {
                         const Sorted sorted(examined);
                         const auto done = telling(pane, request);
                         if (!sorted.documents.empty()) launcher.open(sorted.documents, done);
                         if (!sorted.texts.empty()) launcher.showText(sorted.texts, done);
                         tell(pane, sorted.problems);
                         if (!pane) return;
                         if (!sorted.programs.empty())
                             ask(*pane, BrowserQuestion::Kind::runProgram, sorted.programs,
                                 [&launcher, done, programs = sorted.programs](BrowserModel&, Choice choice) {
                                     if (choice == Choice::accept)
                                         launcher.run(programs, done);
                                     else
                                         launcher.showText(programs, done);
                                 });
                         openFolders(*pane, openBehind, sorted.folders);
                     });
}

} // namespace

OpenActions::OpenActions(AppServices& services, QObject* parent) : QObject(parent), services_(&services) {}

void OpenActions::bindTo(CommandDispatcher& commands) {
    using Pane = const BrowserModel&;
    const auto holdsFolders = [](Pane pane) { return PaneTargets::areFolders(pane, mostTogether); };
    commands.bind(FileCommand::open, {.perform = [this](BrowserModel& pane) { open(pane); }});
    commands.bind(FileCommand::openInNewTab,
                  {.perform = [this](BrowserModel& pane) { openInTabs(pane); },
                   .isEnabled = [=](Pane pane) { return pane.requestNewTab && holdsFolders(pane); }});
    commands.bind(
        FileCommand::openInNewWindow,
        {.perform = [this](BrowserModel& pane) { openInWindows(pane); },
         .isEnabled = [=, this](Pane pane) { return services_->openWindowAt && holdsFolders(pane); }});
    commands.bind(FileCommand::openContainingFolder,
                  {.perform = [this](BrowserModel& pane) { openContainingFolders(pane); },
                   .isEnabled = &BrowserModel::showsSearch});
    commands.bind(FileCommand::openInTerminal,
                  {.perform = [this](BrowserModel& pane) { openTerminal(pane, *PaneTargets::folder(pane)); },
                   .isEnabled = [](Pane pane) { return PaneTargets::folder(pane).has_value(); }});
    commands.bind(FileCommand::createShortcut,
                  {.perform = [this](BrowserModel& pane) { createShortcuts(pane); },
                   .isEnabled = [this](Pane) { return !services_->center().isRefusing(); }});
    // What of the targets is pinned makes either of the two.
    const auto arePinned = [this](Pane pane, bool pinned) {
        const auto targets = PaneTargets::folders(pane, mostTogether);
        return !targets.empty() && std::ranges::all_of(targets, [&](const FileURL& url) {
                                       return services_->settings().isPinned(url);
                                   }) == pinned;
    };
    commands.bind(FileCommand::pin,
                  {.perform =
                       [this](BrowserModel& pane) {
                           services_->settings().pin(PaneTargets::folders(pane, mostTogether));
                       },
                   .isEnabled = [=](Pane pane) { return arePinned(pane, false); }});
    commands.bind(FileCommand::unpin,
                  {.perform =
                       [this](BrowserModel& pane) {
                           services_->settings().unpin(PaneTargets::folders(pane, mostTogether));
                       },
                   .isEnabled = [=](Pane pane) { return arePinned(pane, true); }});
}

// ---- In place, and with applications

void OpenActions::open(BrowserModel& pane) {
    const auto openNow = [this](BrowserModel& thePane, const std::vector<FileItem>& items) {
        std::vector<FileURL> folders, files;
        for (const auto& item : items)
            (PaneTargets::isFolder(item) ? folders : files).push_back(item.url());
        openFiles(services_->launcher(), &thePane, requestApplication, openTabBehind, std::move(files));
        openFolders(thePane, openTabBehind, folders);
    };
    auto items = pane.selection().items();
    if (items.size() <= mostUnasked) return openNow(pane, items);
    std::vector<FileURL> urls;
    std::ranges::transform(items, std::back_inserter(urls), &FileItem::url);
    ask(pane, BrowserQuestion::Kind::openMany, urls,
        [openNow, self = QPointer(this), items = std::move(items)](BrowserModel& asked, Choice) {
            if (self) openNow(asked, items);
        });
}

void OpenActions::openRow(BrowserModel& pane, std::size_t row) {
    const FileURL url = pane.items()[row].url();
    if (PaneTargets::isFolder(pane.items()[row])) return pane.navigate(url);
    openFiles(services_->launcher(), &pane, requestApplication, openTabBehind, {url});
}

void OpenActions::openRowBehind(const BrowserModel& pane, std::size_t row) const {
    const FileItemView item = pane.items()[row];
    if (PaneTargets::isFolder(item) && openTabBehind) openTabBehind(item.url());
}

void OpenActions::openWith(BrowserModel& pane, const DesktopApplication& application) {
    if (PaneTargets::areFolders(pane, mostTogether))
        services_->settings().rememberFolderApp(application.file);
    openWith(pane, application, PaneTargets::selected(pane));
}

void OpenActions::openWith(BrowserModel& pane, const DesktopApplication& application,
                           const std::vector<FileURL>& urls) {
    services_->launcher().openWith(application, urls, telling(&pane, {}));
}

void OpenActions::openFolderWith(BrowserModel& pane, const FileURL& folder,
                                 const DesktopApplication& application) {
    services_->settings().rememberFolderApp(application.file);
    openWith(pane, application, {folder});
}

void OpenActions::applicationsFor(std::vector<FileURL> urls,
                                  std::function<void(const ApplicationChoice&)> done) {
    if (urls.size() > mostLookedAt)
        urls.erase(urls.begin() + static_cast<std::ptrdiff_t>(mostLookedAt), urls.end());
    services_->launcher().applicationsFor(std::move(urls), std::move(done));
}

void OpenActions::recentFolderApplications(std::function<void(const std::vector<DesktopApplication>&)> done) {
    services_->launcher().describe(services_->settings().recentFolderApps(), std::move(done));
}

// ---- Elsewhere

void OpenActions::openInTabs(BrowserModel& pane) {
    const auto urls = PaneTargets::selected(pane);
    const auto openNow = [urls](BrowserModel& thePane) {
        for (const auto& url : urls)
            if (thePane.requestNewTab) thePane.requestNewTab(url);
    };
    if (urls.size() <= mostUnasked) return openNow(pane);
    ask(pane, BrowserQuestion::Kind::openMany, urls,
        [openNow](BrowserModel& asked, Choice) { openNow(asked); });
}

void OpenActions::openInWindows(BrowserModel& pane) {
    const auto urls = PaneTargets::selected(pane);
    const auto openNow = [urls, services = services_] {
        for (const auto& url : urls)
            if (services->openWindowAt) services->openWindowAt(url);
    };
    if (urls.size() <= mostUnasked) return openNow();
    ask(pane, BrowserQuestion::Kind::openMany, urls, [openNow](BrowserModel&, Choice) { openNow(); });
}

void OpenActions::openContainingFolders(BrowserModel& pane) {
    std::vector<FileURL> folders;
    std::vector<FileURL> first; // what is selected there
    for (const auto& url : PaneTargets::selected(pane)) {
        auto folder = url.parent();
        if (folders.empty() || folder == folders.front()) first.push_back(url);
        if (std::ranges::find(folders, folder) == folders.end()) folders.push_back(std::move(folder));
        if (folders.size() > mostTogether) break;
    }
    const auto openNow = [folders, first, openBehind = openTabBehind](BrowserModel& thePane) {
        openFolders(thePane, openBehind, folders);
        thePane.selectWhenListed(first);
    };
    if (folders.size() <= mostUnasked) return openNow(pane);
    ask(pane, BrowserQuestion::Kind::openMany, folders,
        [openNow](BrowserModel& asked, Choice) { openNow(asked); });
}

void OpenActions::openTerminal(BrowserModel& pane, const FileURL& folder) {
    services_->launcher().openTerminal(folder, [guard = Guard(&pane)](const std::optional<Text>& problem) {
        if (problem) tell(guard, *problem);
    });
}

// ---- Within reach, and out of it

void OpenActions::createShortcuts(BrowserModel& pane) {
    const FileURL& desktop = services_->settings().knownFolders().url(KnownFolder::desktop);
    services_->center().run(JobPlan::createLinks(PaneTargets::selected(pane), desktop),
                            [services = QPointer(services_), guard = Guard(&pane)](const JobResult& result) {
                                if (services) services->undo().record(result.undo);
                                std::vector<FileURL> made;
                                for (const auto& item : result.report.succeeded())
                                    made.push_back(*item.outcome.destination());
                                // Where the desktop's folder is what is shown.
                                if (guard) guard->selectWhenListed(made);
                            });
}

void OpenActions::eject(BrowserModel& pane, const FileURL& volume) {
    services_->ejector().eject(volume, [guard = Guard(&pane)](const std::expected<void, Text>& outcome) {
        if (!outcome) tell(guard, outcome.error());
    });
}

} // namespace ombrel
