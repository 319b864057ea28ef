#include "cli/CommandLine.h"

#include "base/FileName.h"

#include <algorithm>
#include <ranges>
#include <string>

namespace ombrel::cli {
namespace {

std::string shown(std::string_view word) {
    return FileName::displayText(word);
}

/// Goes through the words once, filling in what it meets.
class Parser {
public:
    explicit Parser(std::span<const std::string_view> words) : words_(words) {}

    std::expected<CommandLine, UsageFault> run() {
        bool onlyOperands = false;
        while (at_ < words_.size()) {
            const auto word = words_[at_++];
            const bool isOption = !onlyOperands && word.size() > 1 && word.front() == '-';
            if (isOption && word == "--") {
                onlyOperands = true;
                continue;
            }
            auto fault = isOption ? takeOption(word) : takeOperand(word);
            if (fault) return std::unexpected(UsageFault{*std::move(fault), command_});
        }
        if (auto fault = countOperands()) return std::unexpected(UsageFault{*std::move(fault), command_});
        return CommandLine{command_, Arguments(std::move(options_), std::move(operands_))};
    }

private:
    using Fault = std::optional<Text>;

    Fault takeOption(std::string_view word) {
        const bool isLong = word.starts_with("--");
        const auto body = word.substr(isLong ? 2 : 1);
        const auto equals = isLong ? body.find('=') : std::string_view::npos;
        const auto name = body.substr(0, equals);
        const auto* const option = (name.size() > 1) == isLong ? find(name) : nullptr;
        const auto spelled = word.substr(0, word.size() - body.size() + name.size());
        if (!option) return Text{"cli.error.unknownOption", {shown(spelled)}};
        std::string_view value;
        if (equals != std::string_view::npos) {
            if (option->valueName.empty()) return Text{"cli.error.unexpectedValue", {shown(spelled)}};
            value = body.substr(equals + 1);
        } else if (!option->valueName.empty()) {
            if (at_ == words_.size()) return Text{"cli.error.missingValue", {shown(spelled)}};
            value = words_[at_++];
        }
        options_.push_back({option->name, value});
        return std::nullopt;
    }

    Fault takeOperand(std::string_view word) {
        if (command_) {
            if (operands_.size() == command_->mostOperands)
                return Text{"cli.error.tooManyOperands", {shown(word)}};
            operands_.push_back(word);
            return std::nullopt;
        }
        const auto found = std::ranges::find(commands(), word, &Command::name);
        if (found == commands().end()) return Text{"cli.error.unknownCommand", {shown(word)}};
        command_ = *found;
        return std::nullopt;
    }

    [[nodiscard]] const Option* find(std::string_view name) const {
        for (const auto table : {commonOptions(), command_ ? command_->options : std::span<const Option>()}) {
            const auto found = std::ranges::find(table, name, &Option::name);
            if (found != table.end()) return &*found;
        }
        return nullptr;
    }

    [[nodiscard]] Fault countOperands() const {
        const bool wantsHelp =
            std::ranges::find(options_, "help", &Arguments::Given::option) != options_.end();
        if (wantsHelp || !command_ || operands_.size() >= command_->fewestOperands) return std::nullopt;
        return Text{"cli.error.missingOperand", {std::string(command_->operands)}};
    }

    std::span<const std::string_view> words_;
    std::size_t at_ = 0;
    const Command* command_ = nullptr;
    std::vector<Arguments::Given> options_;
    std::vector<std::string_view> operands_;
};

} // namespace

std::optional<std::string_view> Arguments::value(std::string_view option) const noexcept {
    const auto found = std::ranges::find(options_ | std::views::reverse, option, &Given::option);
    return found == std::ranges::rend(options_) ? std::nullopt : std::optional(found->value);
}

std::expected<CommandLine, UsageFault> parse(std::span<const std::string_view> words) {
    return Parser(words).run();
}

std::optional<std::string_view> askedLanguage(std::span<const std::string_view> words) {
    constexpr std::string_view option = "--lang", withValue = "--lang=";
    std::optional<std::string_view> asked;
    for (std::size_t at = 0; at < words.size() && words[at] != "--"; ++at) {
        if (words[at] == option && at + 1 < words.size())
            asked = words[++at];
        else if (words[at].starts_with(withValue))
            asked = words[at].substr(withValue.size());
    }
    return asked;
}

} // namespace ombrel::cli
