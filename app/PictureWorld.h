#pragma once

#include "app/Lifetime.h"
#include "app/PictureContent.h"
#include "services/AppServices.h"
#include "services/InterfaceLanguage.h"
#include "services/QtConnections.h"
#include "ui/SystemPasteboard.h"
#include "ui/Theme.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace ombrel {

class OperationJob;
class ProgressWindow;

/// What the windows of the series of pictures stand on: the program's own services, over the scratch folder,
/// over granted folders of which one lacks permission and one is not there, over a table of mounts that names
/// places in the scratch folder, and speaking one language. Main thread only; one at a time.
class PictureWorld {
public:
    enum class Language : std::uint8_t { english, german, chinese };

    /// Both must outlive it. The other languages are stand-ins (see PictureTexts), with dates and numbers as
    /// they are written there.
    PictureWorld(const PictureContent& content, const Theme& theme, Language language);
    ~PictureWorld();
    PictureWorld(const PictureWorld&) = delete;
    PictureWorld& operator=(const PictureWorld&) = delete;

    [[nodiscard]] AppServices& services() noexcept { return *services_; }
    [[nodiscard]] ProgressWindow& progress();

    /// Runs the event loop until something is so, and answers whether it is. Gives up when nothing has
    /// happened for thousands of looks: twenty seconds of a machine that does nothing else, more of a busy
    /// one.
    [[nodiscard]] static bool runUntil(const std::function<bool()>& done);
    /// Whether volumes and granted folders are known.
    [[nodiscard]] bool isReady() const;
    /// Finds the granted folders again, and loses two of them. False when they do not answer.
    [[nodiscard]] bool restoreGrants(bool withDownloads);

    // ---- Jobs
    /// A real transfer of what is on the camera card.
    std::shared_ptr<OperationJob> copyPhotographs(const FileURL& to);
    /// A job that stays where it is until the jobs are ended.
    std::shared_ptr<OperationJob> standingJob(FileOperationKind kind, const FileURL& from, int count,
                                              const FileURL& to);
    void endJobs();

private:
    class Scopes;
    class Store;

    const PictureContent* content_;
    std::shared_ptr<Scopes> scopes_;
    std::shared_ptr<Store> store_;
    QtConnections connections_;
    SystemPasteboard pasteboard_;
    std::unique_ptr<AppServices> services_;
    Lifetime lifetime_;
};

} // namespace ombrel
