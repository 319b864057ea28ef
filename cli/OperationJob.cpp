#include "cli/OperationJob.h"

#include "base/FileName.h"
#include "cli/JSONObject.h"
#include "cli/Location.h"
#include "cli/MainLoop.h"
#include "cli/Output.h"
#include "cli/ProgressLine.h"
#include "cli/Questions.h"
#include "operations/ReportTexts.h"
#include "services/OperationCenter.h"
#include "services/SleepInhibitor.h"

#include <QLocale>

#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace ombrel::cli {
namespace {

/// The value of an option as a choice; nothing for `ask`.
template <typename Choice>
std::expected<std::optional<Choice>, Text> choiceOf(const Arguments& arguments, const Option& option) {
    const auto value = arguments.value(option.name);
    const std::string spelled = "--" + std::string(option.name);
    if (value == "ask" && !Questions::canBeAsked())
        return std::unexpected(Text{"cli.error.noTerminal", {spelled}});
    if (value == "ask" || (!value && Questions::canBeAsked())) return std::nullopt;
    if (!value) return Choice::skip;
    if (const auto choice = fromRawValue<Choice>(*value)) return choice;
    std::string possible;
    for (const auto name : RawValues<Choice>::names)
        possible += std::string(name) + ", ";
    return std::unexpected(
        Text{"cli.error.unknownValue", {spelled, FileName::displayText(*value), possible + "ask"}});
}

/// Answers failures by the policy: a retry is tried three times for each item, then the item is skipped.
class ErrorAnswers {
public:
    ErrorAnswers(std::optional<ErrorChoice> choice, Questions& questions)
        : choice_(choice), questions_(questions) {}

    ErrorDecision operator()(const ErrorContext& context) {
        constexpr int mostTries = 3;
        if (!choice_) return questions_.ask(context);
        if (choice_ != ErrorChoice::retry) return {*choice_, true};
        if (context.source != last_) tries_ = 0;
        last_ = context.source;
        return {context.canRetry && tries_++ < mostTries ? ErrorChoice::retry : ErrorChoice::skip, false};
    }

private:
    std::optional<ErrorChoice> choice_;
    Questions& questions_;
    std::optional<FileURL> last_;
    int tries_ = 0;
};

std::string_view nameOf(int errorNumber) {
    const char* const name = ::strerrorname_np(errorNumber);
    return name ? name : "";
}

std::string jsonLine(const ItemResult& item, const Session& session) {
    const auto& outcome = item.outcome;
    JSONObject object;
    const auto addPath = [&](std::string_view key, const std::optional<FileURL>& url) {
        if (url)
            object.addBytes(key, url->path());
        else
            object.add(key, std::nullopt);
    };
    addPath("source", item.source);
    object.add("outcome", rawValue(outcome.which()));
    addPath("destination", outcome.destination());
    const auto& error = outcome.error();
    if (!error) {
        object.add("error", std::nullopt);
        return std::move(object).line();
    }
    object.add("error", rawValue(error->which()));
    if (error->errorNumber()) object.add("errno", nameOf(*error->errorNumber()));
    if (error->which() == FileOperationError::Case::invalidName)
        object.add("reason", rawValue(error->reason()));
    if (item.facts.trashReason) object.add("reason", rawValue(*item.facts.trashReason));
    if (item.facts.archive && item.facts.archive->fault)
        object.add("reason", rawValue(*item.facts.archive->fault));
    if (!item.facts.toolWords.empty()) object.addBytes("toolWords", item.facts.toolWords);
    if (item.facts.missingBytes) object.add("missingBytes", *item.facts.missingBytes);
    const auto words = [&](std::int64_t bytes) { return sizeWords(bytes, session); };
    object.add("message", textOf(item, words).localized());
    return std::move(object).line();
}

} // namespace

std::expected<AnswerPolicy, Text> AnswerPolicy::from(const Arguments& arguments) {
    const auto conflict = choiceOf<ConflictChoice>(arguments, conflictOption);
    if (!conflict) return std::unexpected(conflict.error());
    const auto error = choiceOf<ErrorChoice>(arguments, errorOption);
    if (!error) return std::unexpected(error.error());
    return AnswerPolicy{*conflict, *error};
}

std::expected<JobArguments, Text> JobArguments::from(const Arguments& arguments) {
    const auto policy = AnswerPolicy::from(arguments);
    if (!policy) return std::unexpected(policy.error());
    auto urls = locationsOf(arguments.operands());
    if (!urls) return std::unexpected(urls.error());
    return JobArguments{*policy, *std::move(urls)};
}

FileURL JobArguments::takeLast() {
    FileURL last = std::move(urls.back());
    urls.pop_back();
    return last;
}

std::vector<FileReference> JobArguments::references() const {
    std::vector<FileReference> items;
    for (const auto& url : urls)
        items.push_back({url, std::nullopt});
    return items;
}

OperationReport run(JobPlan plan, const AnswerPolicy& policy, const Session& session) {
    using Answer = OperationCenter::ScriptedAnswer;
    Questions questions(session);
    ErrorAnswers errors(policy.error, questions);
    ProgressLine line(session);
    OperationCenter center;
    const SleepInhibitor inhibitor(center);
    center.scriptedAnswers = [&](const OperationPrompt::Kind& kind) -> std::optional<Answer> {
        if (const auto* const error = std::get_if<ErrorContext>(&kind)) return errors(*error);
        const auto& context = std::get<OperationPrompt::Conflict>(kind).context;
        return policy.conflict ? ConflictDecision{*policy.conflict, true} : questions.ask(context);
    };
    plan.undo = nullptr; // nobody will
    std::optional<OperationReport> report;
    const auto job = center.run(std::move(plan), [&](const JobResult& result) { report = result.report; });
    if (session.output.isWatched())
        QObject::connect(job.get(), &OperationJob::progressChanged, [&] { line.show(job->progress()); });
    const auto hasEnded = [&] { return report.has_value(); };
    if (!runUntil(hasEnded, session.stop)) {
        job->cancel();
        (void)runUntil(hasEnded, {});
    }
    return *report;
}

ExitStatus print(const OperationReport& report, const Arguments& arguments, const Session& session) {
    using Overall = OperationReport::Overall;
    auto& output = session.output;
    const auto overall = report.overall();
    const bool wasInterrupted = session.stop.stop_requested();
    const auto words = [&](std::int64_t bytes) { return sizeWords(bytes, session); };
    for (const auto& item : report.items) {
        if (arguments.has("json")) output.write(jsonLine(item, session));
        const bool isTold = !item.outcome.isSuccess() && item.outcome.which() != ItemOutcome::Case::cancelled;
        if (isTold) output.failed(item.source ? item.source->path() : std::string(), textOf(item, words));
    }
    if (arguments.has("json")) {
        JSONObject object;
        object.add("overall", rawValue(overall));
        output.write(std::move(object).line());
    }
    if (overall == Overall::succeeded || overall == Overall::nothingToDo) return ExitStatus::success;
    if (report.items.size() > 1 || overall == Overall::cancelled) output.note(summaryOf(report).localized());
    return wasInterrupted ? ExitStatus::interrupted : ExitStatus::failure;
}

std::string sizeWords(std::int64_t bytes, const Session& session) {
    return session.locale.formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat).toStdString();
}

} // namespace ombrel::cli
