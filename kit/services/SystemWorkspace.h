#pragma once

#include "services/WorkspaceOpener.h"

namespace ombrel {

/// The desktop's applications through GIO: types by the shared database, applications by their desktop files,
/// defaults by the association files. Blocking; any thread but the main one.
class SystemWorkspace final : public WorkspaceOpener {
public:
    [[nodiscard]] std::expected<OpeningFacts, Text> examine(const FileURL& url) override;
    [[nodiscard]] ApplicationChoice applicationsFor(std::span<const FileURL> urls) override;
    [[nodiscard]] std::vector<DesktopApplication> allApplications() override;
    [[nodiscard]] std::optional<DesktopApplication> describe(const FileURL& desktopFile) override;
    [[nodiscard]] std::optional<DesktopApplication> textApplication() override;
    [[nodiscard]] Problems open(std::span<const FileURL> urls,
                                const StartupEnvironment& environment) override;
    [[nodiscard]] Problems openWith(const DesktopApplication& application, std::span<const FileURL> urls,
                                    const StartupEnvironment& environment) override;
    [[nodiscard]] Problems run(const FileURL& url, const StartupEnvironment& environment) override;
    [[nodiscard]] std::optional<Text> openTerminal(const FileURL& folder,
                                                   const StartupEnvironment& environment) override;
    [[nodiscard]] std::optional<Text> setDefault(std::span<const std::string> types,
                                                 const DesktopApplication& application) override;
};

} // namespace ombrel
