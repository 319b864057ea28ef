#pragma once

#include "base/FileURL.h"
#include "base/Text.h"
#include "services/DesktopApplication.h"
#include "services/OpeningFacts.h"

#include <expected>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace ombrel {

/// Why an item could not be opened: a sentence for people that names it.
struct OpeningProblem {
    FileURL url;
    Text text;
    bool lacksApplication = false; ///< nothing is set for its type; the user may choose something

    friend bool operator==(const OpeningProblem&, const OpeningProblem&) = default;
};

/// Variables that a program is started with besides those of this one, such as the token that lets its window
/// take the focus.
using StartupEnvironment = std::map<std::string, std::string>;

/// How items are opened by the desktop's applications. Every function blocks and may be called on several
/// threads at once, never on the main one.
class WorkspaceOpener {
public:
    using Problems = std::vector<OpeningProblem>;

    virtual ~WorkspaceOpener() = default;

    [[nodiscard]] virtual std::expected<OpeningFacts, Text> examine(const FileURL& url) = 0;

    /// What all of `urls` can be opened with.
    [[nodiscard]] virtual ApplicationChoice applicationsFor(std::span<const FileURL> urls) = 0;
    /// Every application that menus show, by name.
    [[nodiscard]] virtual std::vector<DesktopApplication> allApplications() = 0;
    /// What a desktop file describes; nothing when it is gone or starts nothing.
    [[nodiscard]] virtual std::optional<DesktopApplication> describe(const FileURL& desktopFile) = 0;
    /// The application that shows plain text; nothing when there is none.
    [[nodiscard]] virtual std::optional<DesktopApplication> textApplication() = 0;

    /// Opens each with the default application of its type; those of one application in one start.
    [[nodiscard]] virtual Problems open(std::span<const FileURL> urls,
                                        const StartupEnvironment& environment) = 0;
    [[nodiscard]] virtual Problems openWith(const DesktopApplication& application,
                                            std::span<const FileURL> urls,
                                            const StartupEnvironment& environment) = 0;
    /// Starts a program, a script or what a desktop file describes. The caller has the user's consent.
    [[nodiscard]] virtual Problems run(const FileURL& url, const StartupEnvironment& environment) = 0;
    /// Opens a terminal in a folder.
    [[nodiscard]] virtual std::optional<Text> openTerminal(const FileURL& folder,
                                                           const StartupEnvironment& environment) = 0;

    /// From now on `application` opens the types unless another is chosen.
    [[nodiscard]] virtual std::optional<Text> setDefault(std::span<const std::string> types,
                                                         const DesktopApplication& application) = 0;

    /// The desktop's own, through GIO and by its rules for default applications.
    [[nodiscard]] static std::shared_ptr<WorkspaceOpener> system();
};

} // namespace ombrel
