#pragma once

#include "base/FileURL.h"
#include "listing/PinnedFolder.h"
#include "services/IconSize.h"
#include "services/KeyPreset.h"
#include "services/WindowState.h"

#include <QJsonObject>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ombrel {

/// What can be set. The first twelve are switches; the raw values are the keys under which they are stored,
/// but that of `interfaceLanguage`, which lies elsewhere (see `SettingValues`).
enum class Setting : std::uint8_t {
    showHiddenFiles,
    confirmMoveToTrash,
    showsDetailsPane,
    didCompleteOnboarding,
    productNoticesDismissed,
    compactView,
    hideProtectedSystemFiles,
    hideKnownExtensions,
    showItemCheckBoxes,
    showStatusBar,
    showFullPathInTitle,
    showsIcons,
    keyPreset,
    pinnedFolders,
    recentDestinations,
    recentFolderApps,
    iconSize,
    detailsColumns,
    foldedHomeSections,
    interfaceLanguage,
};

template <>
struct RawValues<Setting> {
    static constexpr std::string_view names[] = {"showHiddenFiles",
                                                 "confirmMoveToTrash",
                                                 "showsDetailsPane",
                                                 "didCompleteOnboarding",
                                                 "productNoticesDismissed",
                                                 "compactView",
                                                 "hideProtectedSystemFiles",
                                                 "hideKnownExtensions",
                                                 "showItemCheckBoxes",
                                                 "showStatusBar",
                                                 "showFullPathInTitle",
                                                 "showsIcons",
                                                 "keyPreset",
                                                 "pinnedFolders",
                                                 "recentDestinations",
                                                 "recentFolderApps",
                                                 "iconSize",
                                                 "detailsColumns",
                                                 "foldedHomeSections",
                                                 "interfaceLanguage"};
};

/// The settings as the file has them, each of its type. What is absent, or of another type, has its default;
/// what no setting is named after is not looked at. A plain value.
struct SettingValues {
    static constexpr std::size_t switchCount = 12;

    std::array<bool, switchCount> switches{};
    KeyPreset keyPreset = KeyPreset::windows;
    std::vector<PinnedFolder> pinnedFolders; ///< entries of no known form are left out
    std::vector<FileURL> recentDestinations; ///< the latest first
    std::vector<FileURL> recentFolderApps;   ///< the latest first
    IconSize iconSize = IconSize::large;
    std::vector<std::string> detailsColumns; ///< in their order, each as the details view writes it
    std::vector<std::string> foldedHomeSections;
    std::optional<std::string> interfaceLanguage;
    std::optional<WindowState> windowState; ///< how the last window was left

    /// `languageDomain` names the member whose "AppleLanguages" begins with the interface language; without
    /// one there is no such setting.
    [[nodiscard]] static SettingValues of(const QJsonObject& values,
                                          const std::optional<std::string>& languageDomain);

    /// The settings in which the two differ.
    [[nodiscard]] static std::vector<Setting> differences(const SettingValues& a, const SettingValues& b);
};

/// How each setting is written. Functions that change one member of the file's object and keep what else it
/// holds.
namespace SettingEdits {

void setSwitch(QJsonObject& values, Setting setting, bool on);
void setKeyPreset(QJsonObject& values, KeyPreset preset);
void setIconSize(QJsonObject& values, IconSize size);
void setDetailsColumns(QJsonObject& values, const std::vector<std::string>& columns);
void setFoldedHomeSections(QJsonObject& values, const std::vector<std::string>& sections);
/// Entries of forms that only a later version knows stay, behind the others.
void setPinnedFolders(QJsonObject& values, const std::vector<PinnedFolder>& folders);
/// Appends those that the file's list does not have.
void pin(QJsonObject& values, const std::vector<PinnedFolder>& folders, const KnownFolders& known);
void unpin(QJsonObject& values, const std::vector<FileURL>& urls, const KnownFolders& known);
/// Puts `entry` in front of a list of texts and cuts it to `limit`.
void remember(QJsonObject& values, Setting list, const std::string& entry, std::size_t limit);
void setWindowState(QJsonObject& values, const WindowState& state);
/// Nothing follows the desktop.
void setInterfaceLanguage(QJsonObject& values, const std::string& domain,
                          const std::optional<std::string>& code);

} // namespace SettingEdits
} // namespace ombrel
