#include "base/FileName.h"
#include "base/Worker.h"
#include "cli/Command.h"
#include "cli/CommandLine.h"
#include "cli/Help.h"
#include "cli/Interrupt.h"
#include "cli/Output.h"
#include "services/InterfaceLanguage.h"
#include "services/QtConnections.h"

#include <QCoreApplication>

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <optional>
#include <utility>
#include <vector>

namespace ombrel::cli {
namespace {

/// How long an ending program waits for threads that may hang in a dead mount.
constexpr std::chrono::seconds patience(2);

std::string listed(std::span<const std::string_view> words) {
    std::string text;
    for (const auto word : words)
        text += (text.empty() ? "" : ", ") + std::string(word);
    return text;
}

ExitStatus run(std::span<const std::string_view> words, const Session& session) {
    auto& output = session.output;
    if (const auto code = askedLanguage(words)) {
        const auto name = QString::fromUtf8(code->data(), static_cast<qsizetype>(code->size()));
        if (!InterfaceLanguage::match(name)) {
            const auto possible = listed(InterfaceLanguage::supported());
            return output.wrongUsage(
                {"cli.error.unknownValue", {"--lang", FileName::displayText(*code), possible}});
        }
    }
    const auto line = parse(words);
    if (!line) return output.wrongUsage(line.error().reason, line.error().command);
    if (line->arguments.has("help")) {
        output.write(line->command ? commandHelp(*line->command) : programHelp());
        return ExitStatus::success;
    }
    if (!line->command) return output.wrongUsage({"cli.error.noCommand"});
    return line->command->run(line->arguments, session);
}

} // namespace
} // namespace ombrel::cli

int main(int argumentCount, char** argumentValues) {
    using namespace ombrel;
    // Words are bytes; the application object would make text of them.
    const std::vector<std::string_view> words(argumentValues + (argumentCount > 0 ? 1 : 0),
                                              argumentValues + argumentCount);
    // A reader that goes away is told by write().
    std::signal(SIGPIPE, SIG_IGN);
    // Before anything that takes time: from here on Ctrl+C cancels, it does not kill.
    std::optional<cli::Interrupt> interrupt(std::in_place);
    int applicationArguments = std::min(argumentCount, 1);
    const QCoreApplication application(applicationArguments, argumentValues);

    auto status = cli::ExitStatus::success;
    {
        // Each failure is one sentence of ours on standard error; the log is there for who asks for it.
        const QtConnections connections(InterfaceLanguage::choose(cli::askedLanguage(words)),
                                        QtConnections::Logging::silent);
        cli::Output output(interrupt->token());
        status = output.finish(cli::run(words, {output, interrupt->token(), connections.language().locale}));
    }
    interrupt.reset();
    const int code = std::to_underlying(status);
    // A worker that still hangs would meet globals that are gone.
    if (!Worker::waitUntilNoneRuns(cli::patience)) ::_exit(code);
    return code;
}
