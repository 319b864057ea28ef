#include "cli/Questions.h"

#include "base/FileName.h"
#include "cli/OperationJob.h"
#include "cli/Output.h"
#include "operations/ReportTexts.h"

#include <QDateTime>
#include <QLocale>

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>

namespace ombrel::cli {

bool Questions::canBeAsked() {
    return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1;
}

ConflictDecision Questions::ask(const ConflictContext& context) {
    const auto name = FileName::displayText(context.existing.name());
    session_.output.note(Texts::localized("conflict.single.title", {name}));
    session_.output.note("  " + Texts::localized("conflict.single.new") + ": " + facts(context.sourceFacts));
    session_.output.note("  " + Texts::localized("conflict.single.existing") + ": " +
                         facts(context.existingFacts));
    std::string keepBoth = Texts::localized("conflict.keepBoth");
    if (context.keepBothName) keepBoth += " (" + FileName::displayText(*context.keepBothName) + ")";
    constexpr std::array order = {ConflictChoice::replace, ConflictChoice::skip, ConflictChoice::keepBoth,
                                  ConflictChoice::cancel};
    const auto answer =
        choose(std::array{Texts::localized("conflict.replaceOne"), Texts::localized("conflict.skipOne"),
                          keepBoth, Texts::localized("cli.ask.cancel")});
    if (!answer) return {ConflictChoice::cancel, true};
    return {order[answer->number], answer->isForAll};
}

ErrorDecision Questions::ask(const ErrorContext& context) {
    const auto words = [&](std::int64_t bytes) { return sizeWords(bytes, session_); };
    const auto& item = context.source ? context.source : context.destination;
    session_.output.note(
        Texts::localized("cli.error.item", {item ? FileName::displayText(item->path()) : "",
                                            textOf(context.error, context.facts, words).localized()}));
    std::vector order = {ErrorChoice::skip, ErrorChoice::cancel};
    std::vector choices = {Texts::localized("progress.error.skip"), Texts::localized("cli.ask.cancel")};
    if (context.canRetry) {
        order.insert(order.begin(), ErrorChoice::retry);
        choices.insert(choices.begin(), Texts::localized("progress.error.retry"));
    }
    const auto answer = choose(choices);
    if (!answer) return {ErrorChoice::cancel, true};
    return {order[answer->number], answer->isForAll};
}

/// Asks until one of the choices is typed.
std::optional<Questions::Answer> Questions::choose(std::span<const std::string> choices) {
    std::string shown;
    for (std::size_t i = 0; i < choices.size(); ++i)
        shown += "  " + std::to_string(i + 1) + " " + choices[i];
    for (;;) {
        session_.output.note(shown);
        session_.output.prompt(Texts::localized("cli.ask.prompt") + " ");
        auto line = readLine();
        if (!line) return std::nullopt;
        std::erase(*line, ' ');
        const bool isForAll = line->ends_with('*');
        if (isForAll) line->pop_back();
        std::size_t number = 0;
        const auto [end, error] = std::from_chars(line->data(), line->data() + line->size(), number);
        const bool isWhole = error == std::errc() && end == line->data() + line->size();
        if (isWhole && number >= 1 && number <= choices.size()) return Answer{number - 1, isForAll};
    }
}

std::optional<std::string> Questions::readLine() {
    constexpr int waitMilliseconds = 50;
    for (;;) {
        if (const auto end = unread_.find('\n'); end != std::string::npos) {
            auto line = unread_.substr(0, end);
            unread_.erase(0, end + 1);
            return line;
        }
        if (session_.stop.stop_requested()) return std::nullopt;
        pollfd waiting{STDIN_FILENO, POLLIN, 0};
        if (::poll(&waiting, 1, waitMilliseconds) <= 0) continue;
        std::array<char, 256> bytes{};
        const auto count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return std::nullopt;
        unread_.append(bytes.data(), static_cast<std::size_t>(count));
    }
}

std::string Questions::facts(const ItemFacts& facts) const {
    std::string text;
    if (facts.size) text += sizeWords(*facts.size, session_);
    if (facts.modified) {
        const auto date = QDateTime::fromSecsSinceEpoch(facts.modified->seconds);
        text +=
            (text.empty() ? "" : ", ") + session_.locale.toString(date, QLocale::ShortFormat).toStdString();
    }
    return text;
}

} // namespace ombrel::cli
