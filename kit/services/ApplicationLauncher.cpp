#include "services/ApplicationLauncher.h"

#include "base/FileName.h"
#include "base/Log.h"
#include "base/MainThread.h"
#include "base/Worker.h"

#include <QPointer>

#include <system_error>

namespace ombrel {

ApplicationLauncher::ApplicationLauncher(std::shared_ptr<WorkspaceOpener> opener, QObject* parent)
    : QObject(parent), opener_(std::move(opener)) {}

/// `work` runs on a thread; `done` is called with its answer, here.
template <typename Work, typename Take>
void ApplicationLauncher::ask(Work work, Take done) {
    try {
        Worker("ombrel-open", [self = QPointer(this), opener = opener_, work = std::move(work),
                               done = std::move(done)](const std::stop_token&) mutable {
            MainThread::post([self, answer = work(*opener), done = std::move(done)] {
                if (self && done) done(answer);
            });
        }).detach();
    } catch (const std::system_error&) {
        Log::error(Log::Category::operations, "no thread left to open something");
    }
}

void ApplicationLauncher::examine(std::vector<FileURL> urls, std::function<void(const Examined&)> done) {
    ask(
        [urls = std::move(urls)](WorkspaceOpener& opener) {
            Examined examined;
            for (const auto& url : urls)
                examined.emplace_back(url, opener.examine(url));
            return examined;
        },
        std::move(done));
}

void ApplicationLauncher::applicationsFor(std::vector<FileURL> urls,
                                          std::function<void(const ApplicationChoice&)> done) {
    ask([urls = std::move(urls)](WorkspaceOpener& opener) { return opener.applicationsFor(urls); },
        std::move(done));
}

void ApplicationLauncher::allApplications(std::function<void(const std::vector<DesktopApplication>&)> done) {
    ask([](WorkspaceOpener& opener) { return opener.allApplications(); }, std::move(done));
}

void ApplicationLauncher::describe(std::vector<FileURL> desktopFiles,
                                   std::function<void(const std::vector<DesktopApplication>&)> done) {
    ask(
        [files = std::move(desktopFiles)](WorkspaceOpener& opener) {
            std::vector<DesktopApplication> applications;
            for (const auto& file : files)
                if (auto application = opener.describe(file)) applications.push_back(*std::move(application));
            return applications;
        },
        std::move(done));
}

void ApplicationLauncher::open(std::vector<FileURL> urls, Done done) {
    ask([urls = std::move(urls),
         environment = environment()](WorkspaceOpener& opener) { return opener.open(urls, environment); },
        std::move(done));
}

void ApplicationLauncher::openWith(DesktopApplication application, std::vector<FileURL> urls, Done done) {
    ask([application = std::move(application), urls = std::move(urls), environment = environment()](
            WorkspaceOpener& opener) { return opener.openWith(application, urls, environment); },
        std::move(done));
}

void ApplicationLauncher::showText(std::vector<FileURL> urls, Done done) {
    ask(
        [urls = std::move(urls), environment = environment()](WorkspaceOpener& opener) {
            if (const auto application = opener.textApplication())
                return opener.openWith(*application, urls, environment);
            Problems problems;
            for (const auto& url : urls)
                problems.push_back(
                    {url, {"open.error.noApplication", {FileName::displayText(url.name())}}, true});
            return problems;
        },
        std::move(done));
}

void ApplicationLauncher::run(std::vector<FileURL> urls, Done done) {
    ask(
        [urls = std::move(urls), environment = environment()](WorkspaceOpener& opener) {
            Problems problems;
            for (const auto& url : urls)
                for (auto& problem : opener.run(url, environment))
                    problems.push_back(std::move(problem));
            return problems;
        },
        std::move(done));
}

void ApplicationLauncher::openTerminal(FileURL folder, std::function<void(const std::optional<Text>&)> done) {
    ask([folder = std::move(folder), environment = environment()](
            WorkspaceOpener& opener) { return opener.openTerminal(folder, environment); },
        std::move(done));
}

void ApplicationLauncher::setDefault(std::vector<std::string> types, DesktopApplication application,
                                     std::function<void(const std::optional<Text>&)> done) {
    ask([types = std::move(types), application = std::move(application)](
            WorkspaceOpener& opener) { return opener.setDefault(types, application); },
        std::move(done));
}

} // namespace ombrel
