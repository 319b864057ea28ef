#include "services/AppSettings.h"

#include "base/MainThread.h"
#include "base/PathInput.h"
#include "listing/FileVisibility.h"
#include "listing/SystemCall.h"
#include "services/InterfaceLanguage.h"

#include <QPointer>

#include <algorithm>
#include <iterator>
#include <mutex>

namespace ombrel {
namespace {

Text messageOf(SettingsFile::Fault fault) {
    switch (fault) {
    case SettingsFile::Fault::unreadable: return {"settings.storeUnreadable"};
    case SettingsFile::Fault::damaged: return {"settings.storeDamaged"};
    case SettingsFile::Fault::unwritable: return {"settings.storeFailed"};
    }
    return {};
}

/// The one file-system access on the main thread: the window cannot be made before the settings are known.
auto readAtStart(const SettingsFile& file) {
    const SystemCall::Allowed allowed;
    return file.read();
}

} // namespace

/// The edits that no worker has taken, in their order. A burst of changes is written by the first task that
/// comes, and the others find nothing to do.
struct AppSettings::Outbox {
    std::mutex mutex; // guards edits
    std::vector<SettingsFile::Edit> edits;

    void add(SettingsFile::Edit edit) {
        const std::scoped_lock lock(mutex);
        edits.push_back(std::move(edit));
    }
    std::vector<SettingsFile::Edit> take() {
        const std::scoped_lock lock(mutex);
        return std::exchange(edits, {});
    }
    void putBack(std::vector<SettingsFile::Edit> unwritten) {
        const std::scoped_lock lock(mutex);
        std::ranges::move(edits, std::back_inserter(unwritten));
        edits = std::move(unwritten);
    }
};

AppSettings::AppSettings(SettingsFile file, std::optional<std::string> languageDomain, QObject* parent)
    : QObject(parent), file_(std::move(file)), languageDomain_(std::move(languageDomain)),
      knownFolders_(PathInput::userHomeDirectory()), outbox_(std::make_shared<Outbox>()),
      worker_("settings") {
    const auto read = readAtStart(file_);
    if (read)
        stored_ = *read;
    else
        lastStoreError_ = messageOf(read.error().fault);
    values_ = SettingValues::of(stored_, languageDomain_);
    launchInterfaceLanguage_ = values_.interfaceLanguage;
}

void AppSettings::setKeyPreset(KeyPreset preset) {
    if (preset == values_.keyPreset) return;
    apply([preset](QJsonObject& values) { SettingEdits::setKeyPreset(values, preset); });
}

void AppSettings::set(Setting setting, bool on) {
    if (isOn(setting) == on) return;
    apply([setting, on](QJsonObject& values) { SettingEdits::setSwitch(values, setting, on); });
}

AppSettings::FolderOptions AppSettings::folderOptions() const noexcept {
    return {showHiddenFiles(), hideProtectedSystemFiles(), hideKnownExtensions(), showItemCheckBoxes(),
            showStatusBar(),   showFullPathInTitle()};
}

void AppSettings::setFolderOptions(const FolderOptions& options) {
    setShowHiddenFiles(options.showHiddenFiles);
    setHideProtectedSystemFiles(options.hideProtectedSystemFiles);
    setHideKnownExtensions(options.hideKnownExtensions);
    setShowItemCheckBoxes(options.showItemCheckBoxes);
    setShowStatusBar(options.showStatusBar);
    setShowFullPathInTitle(options.showFullPathInTitle);
}

void AppSettings::setIconSize(IconSize size) {
    if (size == iconSize()) return;
    apply([size](QJsonObject& values) { SettingEdits::setIconSize(values, size); });
}

void AppSettings::setDetailsColumns(std::vector<std::string> columns) {
    if (columns == values_.detailsColumns) return;
    apply([columns = std::move(columns)](QJsonObject& values) {
        SettingEdits::setDetailsColumns(values, columns);
    });
}

void AppSettings::setFoldedHomeSections(std::vector<std::string> sections) {
    if (sections == values_.foldedHomeSections) return;
    apply([sections = std::move(sections)](QJsonObject& values) {
        SettingEdits::setFoldedHomeSections(values, sections);
    });
}

void AppSettings::setPinnedFolders(std::vector<PinnedFolder> folders) {
    if (folders == values_.pinnedFolders) return;
    apply([folders = std::move(folders)](QJsonObject& values) {
        SettingEdits::setPinnedFolders(values, folders);
    });
}

void AppSettings::setKnownFolders(KnownFolders folders) {
    if (folders == knownFolders_) return;
    knownFolders_ = std::move(folders);
    Q_EMIT knownFoldersChanged();
}

bool AppSettings::isPinned(const FileURL& url) const {
    const auto target = url.standardized();
    return std::ranges::any_of(values_.pinnedFolders, [&](const PinnedFolder& folder) {
        return folder.url(knownFolders_).standardized() == target;
    });
}

void AppSettings::pin(std::span<const FileURL> urls) {
    std::vector<PinnedFolder> folders;
    for (const auto& url : urls) {
        if (isPinned(url)) continue;
        const auto known = std::ranges::find(allKnownFolders(), url.standardized(),
                                             [&](KnownFolder folder) { return knownFolders_.url(folder); });
        folders.push_back(known == allKnownFolders().end() ? PinnedFolder(url.standardized())
                                                           : PinnedFolder(*known));
    }
    if (folders.empty()) return;
    apply([folders = std::move(folders), known = knownFolders_](QJsonObject& values) {
        SettingEdits::pin(values, folders, known);
    });
}

void AppSettings::unpin(std::span<const FileURL> urls) {
    if (std::ranges::none_of(urls, [&](const FileURL& url) { return isPinned(url); })) return;
    apply([gone = std::vector(urls.begin(), urls.end()), known = knownFolders_](QJsonObject& values) {
        SettingEdits::unpin(values, gone, known);
    });
}

void AppSettings::rememberDestination(const FileURL& url) {
    if (!persistsChanges_) return;
    apply([entry = PathText::of(url.standardized())](QJsonObject& values) {
        SettingEdits::remember(values, Setting::recentDestinations, entry, mostRecentDestinations);
    });
}

void AppSettings::rememberFolderApp(const FileURL& url) {
    if (!persistsChanges_) return;
    apply([entry = PathText::of(url.standardized())](QJsonObject& values) {
        SettingEdits::remember(values, Setting::recentFolderApps, entry, mostRecentFolderApps);
    });
}

std::optional<WindowState> AppSettings::windowState() const {
    return values_.windowState;
}

void AppSettings::setWindowState(const WindowState& state) {
    if (state == values_.windowState) return;
    apply([state](QJsonObject& values) { SettingEdits::setWindowState(values, state); });
}

std::span<const std::string_view> AppSettings::supportedLanguages() noexcept {
    return InterfaceLanguage::supported();
}

void AppSettings::setInterfaceLanguage(const std::optional<std::string>& code) {
    if (!languageDomain_ || code == values_.interfaceLanguage) return;
    apply([domain = *languageDomain_, code](QJsonObject& values) {
        SettingEdits::setInterfaceLanguage(values, domain, code);
    });
}

bool AppSettings::shows(FileItemView item) const noexcept {
    if (hideProtectedSystemFiles() && item.isProtected()) return false;
    return showHiddenFiles() || !item.isHidden();
}

std::string_view AppSettings::displayName(FileItemView item) const {
    return hideKnownExtensions() ? FileVisibility::nameHidingKnownExtension(item) : item.name();
}

void AppSettings::apply(SettingsFile::Edit edit) {
    if (persistsChanges_) {
        unwritten_.push_back(edit);
        outbox_->add(std::move(edit));
        write();
    } else {
        unpersisted_.push_back(std::move(edit));
    }
    publish();
}

void AppSettings::write() {
    ++writesUnderWay_;
    worker_.run([self = QPointer(this), file = file_, outbox = outbox_] {
        auto edits = outbox->take();
        const auto count = edits.size();
        const auto outcome = count > 0 ? file.change(edits) : Outcome(QJsonObject());
        if (!outcome) outbox->putBack(std::move(edits));
        MainThread::post([self, outcome, count] {
            if (self) self->acceptWritten(outcome, count);
        });
    });
}

void AppSettings::acceptWritten(const Outcome& outcome, std::size_t count) {
    --writesUnderWay_;
    if (count > 0 && outcome) {
        unwritten_.erase(unwritten_.begin(), unwritten_.begin() + static_cast<std::ptrdiff_t>(count));
        stored_ = *outcome;
        publish();
    }
    if (!outcome)
        setStoreError(messageOf(outcome.error().fault));
    else if (count > 0)
        setStoreError(std::nullopt);
    if (!isWriting()) Q_EMIT written();
}

void AppSettings::reload() {
    worker_.run([self = QPointer(this), file = file_] {
        MainThread::post([self, outcome = file.read()] {
            if (self) self->acceptRead(outcome);
        });
    });
}

void AppSettings::acceptRead(const Outcome& outcome) {
    if (!outcome) {
        // Perhaps an editor is just writing it; what was read before holds until it can be read again.
        setStoreError(messageOf(outcome.error().fault));
        return;
    }
    stored_ = *outcome;
    if (unwritten_.empty()) setStoreError(std::nullopt);
    publish();
}

void AppSettings::publish() {
    auto values = stored_;
    for (const auto& edit : unwritten_)
        edit(values);
    for (const auto& edit : unpersisted_)
        edit(values);
    const auto before = std::exchange(values_, SettingValues::of(values, languageDomain_));
    for (const auto setting : SettingValues::differences(before, values_))
        Q_EMIT changed(setting);
}

void AppSettings::setStoreError(std::optional<Text> message) {
    if (message == lastStoreError_) return;
    lastStoreError_ = std::move(message);
    Q_EMIT lastStoreErrorChanged();
}

} // namespace ombrel
