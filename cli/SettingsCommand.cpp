#include "base/FileName.h"
#include "base/RawValue.h"
#include "cli/Commands.h"
#include "cli/JSONObject.h"
#include "cli/MainLoop.h"
#include "cli/Output.h"
#include "cli/SettingTexts.h"
#include "services/AppSettings.h"
#include "services/KnownFolderLocator.h"

#include <limits>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace ombrel::cli {
namespace {

constexpr std::size_t settingCount = std::size(RawValues<Setting>::names);

/// `words` without the setting's name.
void printWords(const std::vector<std::string>& words, char end, Output& output) {
    for (const auto& word : words) {
        output.write(word);
        output.write({&end, 1});
    }
}

std::string jsonLine(const AppSettings& settings, Setting setting) {
    JSONObject object;
    object.add("key", rawValue(setting));
    object.addLiteral("value", SettingTexts::jsonOf(settings, setting));
    return std::move(object).line();
}

/// What is stored and cannot be used, or could not be stored.
void tellStoreError(const AppSettings& settings, Output& output) {
    if (const auto& error = settings.lastStoreError()) output.failed(settings.fileURL().path(), *error);
}

void list(const AppSettings& settings, const Arguments& arguments, Output& output) {
    for (std::size_t i = 0; i < settingCount; ++i) {
        const auto setting = static_cast<Setting>(i);
        if (arguments.has("json")) {
            output.write(jsonLine(settings, setting));
            continue;
        }
        std::string line(rawValue(setting));
        for (const auto& word : SettingTexts::wordsOf(settings, setting))
            line += '\t' + word;
        printWords({line}, arguments.has("0") ? '\0' : '\n', output);
    }
}

void get(const AppSettings& settings, Setting setting, const Arguments& arguments, Output& output) {
    if (arguments.has("json"))
        output.write(jsonLine(settings, setting));
    else
        printWords(SettingTexts::wordsOf(settings, setting), arguments.has("0") ? '\0' : '\n', output);
}

ExitStatus set(AppSettings& settings, Setting setting, std::span<const std::string_view> words,
               Output& output) {
    const auto before = settings.lastStoreError();
    if (const auto fault = SettingTexts::set(settings, setting, words))
        return output.wrongUsage(*fault, &settingsCommand);
    if (before) output.failed(settings.fileURL().path(), *before);
    // Not ended by Ctrl+C: a change that was begun reaches the disk.
    (void)runUntil([&] { return !settings.isWriting(); }, {});
    if (settings.lastStoreError() != before) tellStoreError(settings, output);
    return ExitStatus::success;
}

/// Where the known folders stand.
ExitStatus listFolders(const Arguments& arguments, const Session& session) {
    KnownFolderLocator locator;
    locator.refresh();
    if (!runUntil([&] { return !locator.isBusy(); }, session.stop)) return ExitStatus::interrupted;
    for (const auto folder : allKnownFolders()) {
        const auto& path = locator.folders().url(folder).path();
        if (arguments.has("json")) {
            JSONObject object;
            object.add("folder", rawValue(folder));
            object.add("title", Texts::localized(titleKey(folder)));
            object.addBytes("path", path);
            session.output.write(std::move(object).line());
        } else {
            printWords({std::string(rawValue(folder)) + '\t' + path}, arguments.has("0") ? '\0' : '\n',
                       session.output);
        }
    }
    return ExitStatus::success;
}

/// What is wrong with the number of operands.
std::optional<Text> countFault(std::span<const std::string_view> operands) {
    const auto verb = operands.front();
    const bool isAboutAll = verb == "list" || verb == "folders";
    if (!isAboutAll && verb != "get" && verb != "set")
        return Text{"cli.error.unknownVerb", {FileName::displayText(verb), "list, folders, get, set"}};
    const std::size_t least = isAboutAll ? 1 : 2, most = verb == "set" ? operands.size() : least;
    if (operands.size() < least) return Text{"cli.error.missingOperand", {"KEY"}};
    if (operands.size() > most)
        return Text{"cli.error.tooManyOperands", {FileName::displayText(operands[most])}};
    return std::nullopt;
}

ExitStatus runSettings(const Arguments& arguments, const Session& session) {
    auto& output = session.output;
    const auto& operands = arguments.operands();
    if (const auto fault = countFault(operands)) return output.wrongUsage(*fault, &settingsCommand);
    if (operands.front() == "folders") return listFolders(arguments, session);
    AppSettings settings;
    if (operands.front() == "list") {
        tellStoreError(settings, output);
        list(settings, arguments, output);
        return ExitStatus::success;
    }
    const auto setting = fromRawValue<Setting>(operands[1]);
    if (!setting)
        return output.wrongUsage({"cli.settings.unknownKey", {FileName::displayText(operands[1])}},
                                 &settingsCommand);
    if (operands.front() == "set") return set(settings, *setting, std::span(operands).subspan(2), output);
    tellStoreError(settings, output);
    get(settings, *setting, arguments, output);
    return ExitStatus::success;
}

} // namespace

const Command settingsCommand = {
    .name = "settings",
    .summaryKey = "cli.settings.summary",
    .operands = "list | folders | get KEY | set KEY [VALUE…]",
    .fewestOperands = 1,
    .mostOperands = std::numeric_limits<std::size_t>::max(),
    .options = {},
    .run = runSettings,
};

} // namespace ombrel::cli
