#pragma once

#include "base/SerialWorker.h"
#include "base/Text.h"
#include "listing/FileItem.h"
#include "listing/KnownFolder.h"
#include "services/SettingValues.h"
#include "services/SettingsFile.h"
#include "services/WindowState.h"

#include <QJsonObject>
#include <QObject>

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ombrel {

/// The user's preferences: each change is published at once and written soon after.
///
/// Main thread only. The file is read once when the settings are made; from then on a worker reads and writes
/// it. Changes are written by what they change, so what another running program set meanwhile is taken over
/// and not lost.
class AppSettings final : public QObject {
    Q_OBJECT

public:
    /// What the dialog of folder options edits as one value.
    struct FolderOptions {
        bool showHiddenFiles = false;
        bool hideProtectedSystemFiles = true;
        bool hideKnownExtensions = false;
        bool showItemCheckBoxes = true;
        bool showStatusBar = true;
        bool showFullPathInTitle = false;

        friend bool operator==(const FolderOptions&, const FolderOptions&) = default;
    };

    static constexpr std::size_t mostRecentDestinations = 5;
    static constexpr std::size_t mostRecentFolderApps = 3;

    /// The member of the file that the programs of this package keep the interface language in.
    [[nodiscard]] static std::string standardLanguageDomain() { return "HalvaneOmbrel"; }

    /// Reads `file`, blocking. Without a `languageDomain` there is no setting for the language.
    explicit AppSettings(SettingsFile file = SettingsFile::standard(),
                         std::optional<std::string> languageDomain = standardLanguageDomain(),
                         QObject* parent = nullptr);

    [[nodiscard]] KeyPreset keyPreset() const noexcept { return values_.keyPreset; }
    [[nodiscard]] bool showHiddenFiles() const noexcept { return isOn(Setting::showHiddenFiles); }
    [[nodiscard]] bool confirmMoveToTrash() const noexcept { return isOn(Setting::confirmMoveToTrash); }
    [[nodiscard]] bool didCompleteOnboarding() const noexcept { return isOn(Setting::didCompleteOnboarding); }
    [[nodiscard]] bool showsDetailsPane() const noexcept { return isOn(Setting::showsDetailsPane); }
    [[nodiscard]] bool productNoticesDismissed() const noexcept {
        return isOn(Setting::productNoticesDismissed);
    }
    [[nodiscard]] bool compactView() const noexcept { return isOn(Setting::compactView); }
    [[nodiscard]] bool hideProtectedSystemFiles() const noexcept {
        return isOn(Setting::hideProtectedSystemFiles);
    }
    [[nodiscard]] bool hideKnownExtensions() const noexcept { return isOn(Setting::hideKnownExtensions); }
    [[nodiscard]] bool showItemCheckBoxes() const noexcept { return isOn(Setting::showItemCheckBoxes); }
    [[nodiscard]] bool showStatusBar() const noexcept { return isOn(Setting::showStatusBar); }
    [[nodiscard]] bool showFullPathInTitle() const noexcept { return isOn(Setting::showFullPathInTitle); }

    /// Whether new tabs begin as icons and not as details.
    [[nodiscard]] bool showsIcons() const noexcept { return isOn(Setting::showsIcons); }
    [[nodiscard]] IconSize iconSize() const noexcept { return values_.iconSize; }
    /// The columns of details, which all windows share; empty as long as nobody has changed them.
    [[nodiscard]] const std::vector<std::string>& detailsColumns() const noexcept {
        return values_.detailsColumns;
    }
    /// The sections of the home page whose entries are put away, by the names that the page gives them.
    [[nodiscard]] const std::vector<std::string>& foldedHomeSections() const noexcept {
        return values_.foldedHomeSections;
    }

    void setKeyPreset(KeyPreset preset);
    void setShowHiddenFiles(bool on) { set(Setting::showHiddenFiles, on); }
    void setConfirmMoveToTrash(bool on) { set(Setting::confirmMoveToTrash, on); }
    void setDidCompleteOnboarding(bool on) { set(Setting::didCompleteOnboarding, on); }
    void setShowsDetailsPane(bool on) { set(Setting::showsDetailsPane, on); }
    void setProductNoticesDismissed(bool on) { set(Setting::productNoticesDismissed, on); }
    void setCompactView(bool on) { set(Setting::compactView, on); }
    void setHideProtectedSystemFiles(bool on) { set(Setting::hideProtectedSystemFiles, on); }
    void setHideKnownExtensions(bool on) { set(Setting::hideKnownExtensions, on); }
    void setShowItemCheckBoxes(bool on) { set(Setting::showItemCheckBoxes, on); }
    void setShowStatusBar(bool on) { set(Setting::showStatusBar, on); }
    void setShowFullPathInTitle(bool on) { set(Setting::showFullPathInTitle, on); }

    void setShowsIcons(bool on) { set(Setting::showsIcons, on); }
    void setIconSize(IconSize size);
    void setDetailsColumns(std::vector<std::string> columns);
    void setFoldedHomeSections(std::vector<std::string> sections);

    /// By name; `setting` is one of the switches.
    [[nodiscard]] bool isOn(Setting setting) const noexcept {
        return values_.switches[std::to_underlying(setting)];
    }
    void set(Setting setting, bool on);

    [[nodiscard]] FolderOptions folderOptions() const noexcept;
    void setFolderOptions(const FolderOptions& options);

    [[nodiscard]] const std::vector<PinnedFolder>& pinnedFolders() const noexcept {
        return values_.pinnedFolders;
    }
    void setPinnedFolders(std::vector<PinnedFolder> folders);
    /// Where the known folders stand, which pins may refer to. By the table of names until it is set.
    [[nodiscard]] const KnownFolders& knownFolders() const noexcept { return knownFolders_; }
    void setKnownFolders(KnownFolders folders);
    [[nodiscard]] bool isPinned(const FileURL& url) const;
    /// Appends in the order given; what is pinned already keeps its place.
    void pin(std::span<const FileURL> urls);
    void unpin(std::span<const FileURL> urls);

    /// The latest first.
    [[nodiscard]] const std::vector<FileURL>& recentDestinations() const noexcept {
        return values_.recentDestinations;
    }
    [[nodiscard]] const std::vector<FileURL>& recentFolderApps() const noexcept {
        return values_.recentFolderApps;
    }
    /// Only while changes persist.
    void rememberDestination(const FileURL& url);
    void rememberFolderApp(const FileURL& url);

    /// How the last window was left; nothing before the first one was.
    [[nodiscard]] std::optional<WindowState> windowState() const;
    /// Is not told: nobody follows it.
    void setWindowState(const WindowState& state);

    /// The codes of the languages that the interface speaks, in the order of the menu.
    [[nodiscard]] static std::span<const std::string_view> supportedLanguages() noexcept;
    /// Counts from the next start on; nothing follows the desktop.
    [[nodiscard]] const std::optional<std::string>& interfaceLanguage() const noexcept {
        return values_.interfaceLanguage;
    }
    void setInterfaceLanguage(const std::optional<std::string>& code);
    [[nodiscard]] const std::optional<std::string>& launchInterfaceLanguage() const noexcept {
        return launchInterfaceLanguage_;
    }

    /// Whether an item is listed at all.
    [[nodiscard]] bool shows(FileItemView item) const noexcept;
    /// The item's name as it is shown: bytes, valid as long as the item is.
    [[nodiscard]] std::string_view displayName(FileItemView item) const;
    /// Device-independent pixels.
    [[nodiscard]] int detailsRowHeight() const noexcept { return compactView() ? 24 : 32; }

    /// While it is off, changes are published but not written. On at first.
    [[nodiscard]] bool persistsChanges() const noexcept { return persistsChanges_; }
    void setPersistsChanges(bool on) noexcept { persistsChanges_ = on; }

    /// Why the settings could not be read or saved the last time; cleared when that works again.
    [[nodiscard]] const std::optional<Text>& lastStoreError() const noexcept { return lastStoreError_; }
    /// Whether changes are on their way to the disk.
    [[nodiscard]] bool isWriting() const noexcept { return writesUnderWay_ > 0; }
    [[nodiscard]] const FileURL& fileURL() const noexcept { return file_.url(); }

    /// Takes over what the file holds now, when it has been read.
    void reload();

Q_SIGNALS:
    void changed(ombrel::Setting setting);
    void knownFoldersChanged();
    void lastStoreErrorChanged();
    /// `isWriting` has become false.
    void written();

private:
    struct Outbox;
    using Outcome = std::expected<QJsonObject, SettingsFile::Failure>;

    void apply(SettingsFile::Edit edit);
    void write();
    void acceptWritten(const Outcome& outcome, std::size_t count);
    void acceptRead(const Outcome& outcome);
    /// Publishes the stored values with the changes that are not among them.
    void publish();
    void setStoreError(std::optional<Text> message);

    SettingsFile file_;
    std::optional<std::string> languageDomain_;
    QJsonObject stored_; // as the file had it when it was last read or written
    std::deque<SettingsFile::Edit> unwritten_;
    std::vector<SettingsFile::Edit> unpersisted_; // made while changes did not persist
    SettingValues values_;
    std::optional<std::string> launchInterfaceLanguage_;
    KnownFolders knownFolders_;
    bool persistsChanges_ = true;
    std::optional<Text> lastStoreError_;
    std::shared_ptr<Outbox> outbox_;
    SerialWorker worker_;
    int writesUnderWay_ = 0;
};

} // namespace ombrel
