#pragma once

#include "services/WorkspaceOpener.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ombrel {

/// Opens items with the desktop's applications, for the main thread, which never waits: each request has a
/// thread of its own, because an item may lie on a mount that does not answer. Answers come later, never
/// once the launcher has gone.
class ApplicationLauncher final : public QObject {
    Q_OBJECT

public:
    using Problems = WorkspaceOpener::Problems;
    using Done = std::function<void(const Problems&)>;
    using Examined = std::vector<std::pair<FileURL, std::expected<OpeningFacts, Text>>>;

    explicit ApplicationLauncher(std::shared_ptr<WorkspaceOpener> opener = WorkspaceOpener::system(),
                                 QObject* parent = nullptr);

    /// Another way to open; requests under way keep theirs.
    void setOpener(std::shared_ptr<WorkspaceOpener> opener) { opener_ = std::move(opener); }
    /// Asked at each start of a program. Without one there is nothing to add.
    std::function<StartupEnvironment()> startupEnvironment;

    /// What opening each would mean, in the order given.
    void examine(std::vector<FileURL> urls, std::function<void(const Examined&)> done);
    void applicationsFor(std::vector<FileURL> urls, std::function<void(const ApplicationChoice&)> done);
    void allApplications(std::function<void(const std::vector<DesktopApplication>&)> done);
    /// Those of the desktop files that still describe an application.
    void describe(std::vector<FileURL> desktopFiles,
                  std::function<void(const std::vector<DesktopApplication>&)> done);

    /// With the default application of each.
    void open(std::vector<FileURL> urls, Done done);
    void openWith(DesktopApplication application, std::vector<FileURL> urls, Done done);
    /// As plain text, whatever they are.
    void showText(std::vector<FileURL> urls, Done done);
    /// Programs, scripts and desktop files, which the user has agreed to.
    void run(std::vector<FileURL> urls, Done done);
    /// `done` gets a sentence for people when that could not be done.
    void openTerminal(FileURL folder, std::function<void(const std::optional<Text>&)> done);
    void setDefault(std::vector<std::string> types, DesktopApplication application,
                    std::function<void(const std::optional<Text>&)> done);

private:
    template <typename Work, typename Take>
    void ask(Work work, Take done);
    [[nodiscard]] StartupEnvironment environment() const {
        return startupEnvironment ? startupEnvironment() : StartupEnvironment{};
    }

    std::shared_ptr<WorkspaceOpener> opener_;
};

} // namespace ombrel
