#include "app/PictureWorld.h"

#include "app/PictureTexts.h"
#include "base/Text.h"
#include "base/Worker.h"
#include "operations/JobPlan.h"
#include "services/OperationJob.h"
#include "services/TextTables.h"
#include "ui/ProgressWindow.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QLocale>
#include <QTimer>

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>

namespace ombrel {
namespace {

constexpr std::string_view backup = "media/ines/Backup/Backup 2025", archive = "srv/team/Team archive";

InterfaceLanguage languageOf(PictureWorld::Language language) {
    switch (language) {
    case PictureWorld::Language::german: return InterfaceLanguage::choose("de");
    case PictureWorld::Language::chinese: return InterfaceLanguage::choose("zh-Hant");
    default: return InterfaceLanguage::choose();
    }
}

/// English texts, made longer.
void connectStandIn(PictureWorld::Language language, const QLocale& locale) {
    const auto tables = std::make_shared<const TextTables>(InterfaceLanguage{"en", locale, {}});
    const bool isGerman = language == PictureWorld::Language::german;
    Texts::connect([tables, isGerman](std::string_view key, std::optional<std::int64_t> count) {
        const std::string text = tables->text(key, count);
        return isGerman ? PictureTexts::germanLike(text) : PictureTexts::chineseLike(text);
    });
}

std::string escaped(std::string path) {
    for (std::size_t at = path.find(' '); at != std::string::npos; at = path.find(' ', at))
        path.replace(at, 1, "\\040");
    return path;
}

/// Tells of three volumes, once.
class Mounts final : public MountWatch {
public:
    explicit Mounts(const PictureContent& content) {
        const auto line = [](const char* numbers, const std::string& point, const char* options,
                             const char* rest) {
            return std::string(numbers) + " / " + escaped(point) + ' ' + options + " - " + rest + '\n';
        };
        text_ = line("21 1 259:9", "/", "rw,x-gvfs-name=System", "ext4 /dev/picture1 rw") +
                line("22 21 259:10", content.at("media/ines/Survey drive").path(), "rw,x-gvfs-show",
                     "exfat /dev/picture2 rw") +
                line("23 21 0:99", content.at("media/ines/Station NAS").path(), "ro,x-gvfs-show",
                     "nfs4 station:/shared ro");
    }
    void start(Changed changed) override {
        if (auto table = MountTable::fromText(text_)) changed(*std::move(table));
    }
    void stop() override {}

private:
    std::string text_;
};

/// As if the volumes were three drives of different sizes.
void completeVolume(VolumeInfo& volume) {
    constexpr std::int64_t gigabyte = std::int64_t{1} << 30, terabyte = gigabyte << 10;
    const bool isStick = volume.url.name() == "Survey drive";
    volume.isRemovable = isStick;
    volume.isEjectable = !volume.isRootFileSystem;
    volume.isInternal = volume.isRootFileSystem;
    if (volume.isRootFileSystem)
        volume.setCapacity(POSIX::Capacity{486 * gigabyte, 204 * gigabyte});
    else if (isStick)
        volume.setCapacity(POSIX::Capacity{128 * gigabyte, 86 * gigabyte / 10});
    else
        volume.setCapacity(POSIX::Capacity{4 * terabyte, 25 * terabyte / 10});
}

} // namespace

/// Bookmarks are paths. Once folders have been found, two of them are lost.
class PictureWorld::Scopes final : public SecurityScopeSystem {
public:
    explicit Scopes(const PictureContent& content)
        : backup_(content.at(backup).path()), archive_(content.at(archive).path()) {}

    void lose(bool isLost) noexcept { isLost_ = isLost; }
    bool startAccessing(const FileURL&) override { return true; }
    void stopAccessing(const FileURL&) override {}
    std::expected<std::string, Failure> makeBookmark(const FileURL& url) override { return url.path(); }
    std::expected<Resolved, Failure> resolveBookmark(const std::string& bookmark) override {
        if (isLost_ && (bookmark == backup_ || bookmark == archive_))
            return std::unexpected(
                Failure{.isNotThere = bookmark == backup_, .domain = "posix", .code = ENOENT});
        return Resolved{.url = FileURL::fromPath(bookmark).value_or(FileURL())};
    }
    bool isReadableDirectory(const FileURL&) override { return true; }

private:
    const std::string backup_, archive_;
    std::atomic<bool> isLost_ = false;
};

/// Keeps the records in memory.
class PictureWorld::Store final : public BookmarkStore {
public:
    void set(std::vector<BookmarkRecord> records) {
        const std::scoped_lock lock(mutex_);
        records_ = std::move(records);
    }
    std::expected<std::vector<BookmarkRecord>, Failure> load() override {
        const std::scoped_lock lock(mutex_);
        return records_;
    }
    std::expected<void, Failure> save(const std::vector<BookmarkRecord>& records) override {
        set(records);
        return {};
    }

private:
    std::mutex mutex_; // guards records_
    std::vector<BookmarkRecord> records_;
};

PictureWorld::PictureWorld(const PictureContent& content, const Theme& theme, Language language)
    : content_(&content), scopes_(std::make_shared<Scopes>(content)), store_(std::make_shared<Store>()),
      connections_(languageOf(language), QtConnections::Logging::silent),
      services_(std::make_unique<AppServices>(
          std::make_unique<AppSettings>(), std::make_unique<AccessManager>(scopes_, store_),
          std::make_unique<VolumeMonitor>(std::make_unique<Mounts>(content)),
          std::make_unique<ClipboardService>(pasteboard_), FileOperationService(),
          std::make_unique<OperationCenter>())),
      lifetime_(theme, *services_, [](const FileURL&) {}) {
    QLocale::setDefault(connections_.language().locale);
    if (language != Language::english) connectStandIn(language, connections_.language().locale);
    AppSettings& settings = services_->settings();
    settings.setPersistsChanges(false);
    settings.setDidCompleteOnboarding(true);
    KnownFolders known(content.home());
    known.set(KnownFolder::videos, content.home().appending("Videos"));
    settings.setKnownFolders(known);
    settings.setPinnedFolders(PinnedFolder::defaults());
    services_->center().setSlowDrives([](const FileStatus&) { return std::vector<DriveQueue::Drive>(); });
    services_->center().setWindowDelay(std::chrono::milliseconds(0));
    services_->volumes().completesVolume = completeVolume;
    services_->start();
}

PictureWorld::~PictureWorld() {
    endJobs();
    services_->stop();
    services_.reset();
    // The next one speaks another language.
    static_cast<void>(runUntil([] { return Worker::running() == 0; }));
}

ProgressWindow& PictureWorld::progress() {
    return *qobject_cast<ProgressWindow*>(services_->progressWindow());
}

bool PictureWorld::runUntil(const std::function<bool()>& done) {
    constexpr int mostLooks = 4000;
    constexpr std::chrono::milliseconds beat(5);
    QTimer heartbeat; // what is waited for need not come with an event
    int looks = 0;
    QObject::connect(&heartbeat, &QTimer::timeout, &heartbeat, [&looks] { ++looks; });
    heartbeat.start(beat);
    auto busy = Worker::running();
    while (!done()) {
        // Work that begins or ends shows that something goes on, however slowly.
        if (std::exchange(busy, Worker::running()) != busy) looks = 0;
        if (looks > mostLooks) return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

bool PictureWorld::isReady() const {
    return services_->volumes().isSettled() && !services_->access().isBusy();
}

bool PictureWorld::restoreGrants(bool withDownloads) {
    using namespace std::chrono;
    const auto record = [this](std::string_view path, const char* name, year_month_day added) {
        return BookmarkRecord{.id = QUuid::createUuid(),
                              .bookmark = content_->at(path).path(),
                              .displayName = name,
                              .addedAt = sys_days(added) + hours(12)};
    };
    std::vector records = {record("home/ines/Projects", "Projects", 2026y / January / 4),
                           record(archive, "Team archive", 2026y / January / 19),
                           record(backup, "Backup 2025", 2026y / February / 2)};
    if (withDownloads) records.push_back(record("home/ines/Downloads", "Downloads", 2026y / March / 11));
    AccessManager& access = services_->access();
    const auto isFound = [&access] { return !access.isBusy(); };
    if (!runUntil(isFound)) return false;
    store_->set(std::move(records));
    scopes_->lose(false);
    access.restore();
    if (!runUntil(isFound)) return false;
    scopes_->lose(true);
    const auto grants = access.grants();
    for (const auto& grant : grants)
        access.activate(grant);
    return runUntil(isFound);
}

std::shared_ptr<OperationJob> PictureWorld::copyPhotographs(const FileURL& to) {
    std::vector<TransferItem> items;
    for (const auto& name : PictureContent::pictureNames())
        items.emplace_back(FileReference{content_->cameraCard().appending(name), std::nullopt});
    return services_->center().run(
        JobPlan::transfer(services_->operations(), FileOperationKind::copy, std::move(items), to));
}

std::shared_ptr<OperationJob> PictureWorld::standingJob(FileOperationKind kind, const FileURL& from,
                                                        int count, const FileURL& to) {
    JobPlan plan{.kind = kind, .destination = to};
    for (int i = 0; i < count; ++i)
        plan.sources.push_back(from.appending("item " + std::to_string(i)));
    plan.leavesReport = false;
    plan.work = [kind](const OperationHooks&, const std::stop_token& stop) {
        std::mutex mutex;
        std::unique_lock lock(mutex);
        std::condition_variable_any stopped;
        stopped.wait(lock, stop, [] { return false; });
        return OperationReport{.kind = kind, .items = {}};
    };
    return services_->center().run(std::move(plan));
}

void PictureWorld::endJobs() {
    OperationCenter& center = services_->center();
    center.cancelAll();
    static_cast<void>(runUntil([this, &center] {
        for (const auto& report : std::vector(center.leftReports()))
            center.dismissReport(report.id);
        return center.jobs().empty() && progress().isEmpty() && Worker::running() == 0;
    }));
    content_->tidy();
}

} // namespace ombrel
