#include "cli/Help.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace ombrel::cli {
namespace {

using Row = std::pair<std::string, std::string>;

/// Two columns; the left one holds nothing but ASCII.
std::string table(const std::vector<Row>& rows) {
    std::size_t width = 0;
    for (const auto& [left, right] : rows)
        width = std::max(width, left.size());
    std::string text;
    for (const auto& [left, right] : rows)
        text += "  " + left + std::string(width - left.size() + 2, ' ') + right + '\n';
    return text;
}

std::string spelled(const Option& option) {
    std::string text = (option.name.size() > 1 ? "--" : "-") + std::string(option.name);
    return option.valueName.empty() ? text : text + ' ' + std::string(option.valueName);
}

std::vector<Row> rowsOf(std::span<const Option> options) {
    std::vector<Row> rows;
    for (const auto& option : options)
        rows.emplace_back(spelled(option), Texts::localized(option.helpKey));
    return rows;
}

std::string section(std::string_view titleKey, const std::vector<Row>& rows) {
    return rows.empty() ? std::string() : '\n' + Texts::localized(titleKey) + '\n' + table(rows);
}

std::string usage(const std::string& words) {
    return Texts::localized("cli.help.usage", {words}) + '\n';
}

} // namespace

std::string programHelp() {
    std::vector<Row> rows;
    for (const auto* const command : commands())
        rows.emplace_back(command->name, Texts::localized(command->summaryKey));
    return usage("ombrelctl COMMAND [OPTION…] …") + section("cli.help.commands", rows) +
           section("cli.help.commonOptions", rowsOf(commonOptions()));
}

std::string commandHelp(const Command& command) {
    return usage("ombrelctl " + std::string(command.name) + " [OPTION…] " + std::string(command.operands)) +
           Texts::localized(command.summaryKey) + '\n' +
           section("cli.help.options", rowsOf(command.options)) +
           section("cli.help.commonOptions", rowsOf(commonOptions()));
}

} // namespace ombrel::cli
