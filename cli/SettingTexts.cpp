#include "cli/SettingTexts.h"

#include "base/FileName.h"
#include "base/RawValue.h"
#include "services/InterfaceLanguage.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QString>

#include <algorithm>
#include <utility>

namespace ombrel::cli::SettingTexts {
namespace {

bool isSwitch(Setting setting) {
    return std::to_underlying(setting) < SettingValues::switchCount;
}

std::vector<std::string> pathsOf(const std::vector<FileURL>& urls) {
    std::vector<std::string> words;
    for (const auto& url : urls)
        words.push_back(PathText::of(url));
    return words;
}

/// Such a value is not known; these are.
Text unknown(Setting setting, std::string_view word, std::string possible) {
    return {"cli.settings.unknownValue",
            {std::string(rawValue(setting)), FileName::displayText(word), std::move(possible)}};
}

std::optional<Text> setSwitch(AppSettings& settings, Setting setting, std::string_view word) {
    if (word != "true" && word != "false") return unknown(setting, word, "true, false");
    settings.set(setting, word == "true");
    return std::nullopt;
}

std::optional<Text> setPreset(AppSettings& settings, std::string_view word) {
    const auto preset = fromRawValue<KeyPreset>(word);
    if (!preset) return unknown(Setting::keyPreset, word, "windows, mac");
    settings.setKeyPreset(*preset);
    return std::nullopt;
}

std::optional<Text> setIconSize(AppSettings& settings, std::string_view word) {
    const auto size = fromRawValue<IconSize>(word);
    if (!size) return unknown(Setting::iconSize, word, "small, medium, large, extraLarge");
    settings.setIconSize(*size);
    return std::nullopt;
}

std::optional<Text> setPins(AppSettings& settings, std::span<const std::string_view> words) {
    std::vector<PinnedFolder> folders;
    for (const auto word : words) {
        auto folder = PinnedFolder::fromStored(word);
        if (!folder) return unknown(Setting::pinnedFolders, word, "/…, known:desktop, known:downloads, …");
        folders.push_back(*std::move(folder));
    }
    settings.setPinnedFolders(std::move(folders));
    return std::nullopt;
}

std::optional<Text> setLanguage(AppSettings& settings, std::span<const std::string_view> words) {
    if (words.empty()) {
        settings.setInterfaceLanguage(std::nullopt);
        return std::nullopt;
    }
    const auto codes = AppSettings::supportedLanguages();
    if (std::ranges::find(codes, words.front()) == codes.end()) {
        std::string possible;
        for (const auto code : codes)
            possible += (possible.empty() ? "" : ", ") + std::string(code);
        return unknown(Setting::interfaceLanguage, words.front(), std::move(possible));
    }
    settings.setInterfaceLanguage(std::string(words.front()));
    return std::nullopt;
}

} // namespace

std::vector<std::string> wordsOf(const AppSettings& settings, Setting setting) {
    if (isSwitch(setting)) return {settings.isOn(setting) ? "true" : "false"};
    std::vector<std::string> words;
    switch (setting) {
    case Setting::keyPreset: return {std::string(rawValue(settings.keyPreset()))};
    case Setting::pinnedFolders:
        for (const auto& folder : settings.pinnedFolders())
            words.push_back(folder.stored());
        return words;
    case Setting::iconSize: return {std::string(rawValue(settings.iconSize()))};
    case Setting::detailsColumns: return settings.detailsColumns();
    case Setting::foldedHomeSections: return settings.foldedHomeSections();
    case Setting::recentDestinations: return pathsOf(settings.recentDestinations());
    case Setting::recentFolderApps: return pathsOf(settings.recentFolderApps());
    case Setting::interfaceLanguage:
        if (settings.interfaceLanguage()) words.push_back(*settings.interfaceLanguage());
        return words;
    default: return words;
    }
}

std::string jsonOf(const AppSettings& settings, Setting setting) {
    const auto words = wordsOf(settings, setting);
    if (isSwitch(setting)) return words.front();
    QJsonArray array;
    for (const auto& word : words)
        array.append(QString::fromStdString(word));
    const bool isOne = setting == Setting::keyPreset || setting == Setting::iconSize ||
                       setting == Setting::interfaceLanguage;
    if (isOne && array.isEmpty()) return "null";
    const auto json = QJsonDocument(array).toJson(QJsonDocument::Compact).toStdString();
    return isOne ? json.substr(1, json.size() - 2) : json;
}

std::optional<Text> set(AppSettings& settings, Setting setting, std::span<const std::string_view> words) {
    if (setting == Setting::recentDestinations || setting == Setting::recentFolderApps ||
        setting == Setting::detailsColumns || setting == Setting::foldedHomeSections)
        return Text{"cli.settings.keptByItself", {std::string(rawValue(setting))}};
    if (setting == Setting::pinnedFolders) return setPins(settings, words);
    if (words.size() > 1) return Text{"cli.error.tooManyOperands", {FileName::displayText(words[1])}};
    if (setting == Setting::interfaceLanguage) return setLanguage(settings, words);
    if (words.empty()) return Text{"cli.error.missingOperand", {"VALUE"}};
    if (setting == Setting::iconSize) return setIconSize(settings, words.front());
    return isSwitch(setting) ? setSwitch(settings, setting, words.front())
                             : setPreset(settings, words.front());
}

} // namespace ombrel::cli::SettingTexts
