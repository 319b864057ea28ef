#include "services/SettingValues.h"

#include <QJsonArray>
#include <QString>

#include <algorithm>
#include <utility>

namespace ombrel {
namespace {

constexpr std::array<bool, SettingValues::switchCount> defaults = {
    false, // showHiddenFiles
    true,  // confirmMoveToTrash
    true,  // showsDetailsPane
    false, // didCompleteOnboarding
    false, // productNoticesDismissed
    false, // compactView
    true,  // hideProtectedSystemFiles
    false, // hideKnownExtensions
    true,  // showItemCheckBoxes
    true,  // showStatusBar
    false, // showFullPathInTitle
    false, // showsIcons
};

QString textOf(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString key(Setting setting) {
    return textOf(rawValue(setting));
}

const QString windowStateKey = QStringLiteral("windowState");
const QString languagesKey = QStringLiteral("AppleLanguages");

/// The strings of an array; nothing when the member is no array.
std::optional<std::vector<std::string>> texts(const QJsonValue& value) {
    if (!value.isArray()) return std::nullopt;
    std::vector<std::string> found;
    for (const auto& entry : value.toArray())
        if (entry.isString()) found.push_back(entry.toString().toStdString());
    return found;
}

QJsonArray arrayOf(const std::vector<std::string>& entries) {
    QJsonArray array;
    for (const auto& entry : entries)
        array.append(textOf(entry));
    return array;
}

std::vector<FileURL> locations(const QJsonValue& value) {
    std::vector<FileURL> found;
    for (const auto& text : texts(value).value_or(std::vector<std::string>()))
        if (auto url = PathText::parse(text)) found.push_back(std::move(*url));
    return found;
}

std::vector<PinnedFolder> pins(const QJsonObject& values) {
    const auto stored = texts(values.value(key(Setting::pinnedFolders)));
    if (!stored) return PinnedFolder::defaults();
    std::vector<PinnedFolder> found;
    for (const auto& text : *stored)
        if (auto folder = PinnedFolder::fromStored(text)) found.push_back(std::move(*folder));
    return found;
}

bool standsAt(const PinnedFolder& folder, const FileURL& url, const KnownFolders& known) {
    return folder.url(known).standardized() == url.standardized();
}

} // namespace

SettingValues SettingValues::of(const QJsonObject& values, const std::optional<std::string>& languageDomain) {
    SettingValues typed;
    for (std::size_t i = 0; i < switchCount; ++i)
        typed.switches[i] = values.value(key(static_cast<Setting>(i))).toBool(defaults[i]);
    const auto preset =
        fromRawValue<KeyPreset>(values.value(key(Setting::keyPreset)).toString().toStdString());
    typed.keyPreset = preset.value_or(KeyPreset::windows);
    typed.pinnedFolders = pins(values);
    typed.recentDestinations = locations(values.value(key(Setting::recentDestinations)));
    typed.recentFolderApps = locations(values.value(key(Setting::recentFolderApps)));
    typed.windowState = WindowState::fromStored(values.value(windowStateKey).toObject());
    const auto icons = fromRawValue<IconSize>(values.value(key(Setting::iconSize)).toString().toStdString());
    typed.iconSize = icons.value_or(IconSize::large);
    typed.detailsColumns =
        texts(values.value(key(Setting::detailsColumns))).value_or(std::vector<std::string>());
    typed.foldedHomeSections =
        texts(values.value(key(Setting::foldedHomeSections))).value_or(std::vector<std::string>());
    if (languageDomain) {
        const auto domain = values.value(textOf(*languageDomain)).toObject();
        const auto first = domain.value(languagesKey).toArray().at(0);
        if (first.isString()) typed.interfaceLanguage = first.toString().toStdString();
    }
    return typed;
}

std::vector<Setting> SettingValues::differences(const SettingValues& a, const SettingValues& b) {
    std::vector<Setting> found;
    for (std::size_t i = 0; i < switchCount; ++i)
        if (a.switches[i] != b.switches[i]) found.push_back(static_cast<Setting>(i));
    if (a.keyPreset != b.keyPreset) found.push_back(Setting::keyPreset);
    if (a.pinnedFolders != b.pinnedFolders) found.push_back(Setting::pinnedFolders);
    if (a.recentDestinations != b.recentDestinations) found.push_back(Setting::recentDestinations);
    if (a.recentFolderApps != b.recentFolderApps) found.push_back(Setting::recentFolderApps);
    if (a.iconSize != b.iconSize) found.push_back(Setting::iconSize);
    if (a.detailsColumns != b.detailsColumns) found.push_back(Setting::detailsColumns);
    if (a.foldedHomeSections != b.foldedHomeSections) found.push_back(Setting::foldedHomeSections);
    if (a.interfaceLanguage != b.interfaceLanguage) found.push_back(Setting::interfaceLanguage);
    return found;
}

namespace SettingEdits {

void setSwitch(QJsonObject& values, Setting setting, bool on) {
    values.insert(key(setting), on);
}

void setKeyPreset(QJsonObject& values, KeyPreset preset) {
    values.insert(key(Setting::keyPreset), textOf(rawValue(preset)));
}

void setIconSize(QJsonObject& values, IconSize size) {
    values.insert(key(Setting::iconSize), textOf(rawValue(size)));
}

void setDetailsColumns(QJsonObject& values, const std::vector<std::string>& columns) {
    values.insert(key(Setting::detailsColumns), arrayOf(columns));
}

void setFoldedHomeSections(QJsonObject& values, const std::vector<std::string>& sections) {
    values.insert(key(Setting::foldedHomeSections), arrayOf(sections));
}

void setPinnedFolders(QJsonObject& values, const std::vector<PinnedFolder>& folders) {
    QJsonArray array;
    for (const auto& folder : folders)
        array.append(textOf(folder.stored()));
    for (const auto& entry : values.value(key(Setting::pinnedFolders)).toArray())
        if (!entry.isString() || !PinnedFolder::fromStored(entry.toString().toStdString()))
            array.append(entry);
    values.insert(key(Setting::pinnedFolders), array);
}

void pin(QJsonObject& values, const std::vector<PinnedFolder>& folders, const KnownFolders& known) {
    auto pinned = pins(values);
    for (const auto& folder : folders) {
        const auto& url = folder.url(known);
        if (std::ranges::none_of(pinned, [&](const auto& each) { return standsAt(each, url, known); }))
            pinned.push_back(folder);
    }
    setPinnedFolders(values, pinned);
}

void unpin(QJsonObject& values, const std::vector<FileURL>& urls, const KnownFolders& known) {
    auto pinned = pins(values);
    for (const auto& url : urls)
        std::erase_if(pinned, [&](const auto& each) { return standsAt(each, url, known); });
    setPinnedFolders(values, pinned);
}

void remember(QJsonObject& values, Setting list, const std::string& entry, std::size_t limit) {
    auto entries = texts(values.value(key(list))).value_or(std::vector<std::string>());
    std::erase(entries, entry);
    entries.insert(entries.begin(), entry);
    if (entries.size() > limit) entries.resize(limit);
    values.insert(key(list), arrayOf(entries));
}

void setWindowState(QJsonObject& values, const WindowState& state) {
    values.insert(windowStateKey, state.stored());
}

void setInterfaceLanguage(QJsonObject& values, const std::string& domain,
                          const std::optional<std::string>& code) {
    auto members = values.value(textOf(domain)).toObject();
    if (code)
        members.insert(languagesKey, QJsonArray{textOf(*code)});
    else
        members.remove(languagesKey);
    if (members.isEmpty())
        values.remove(textOf(domain));
    else
        values.insert(textOf(domain), members);
}

} // namespace SettingEdits
} // namespace ombrel
