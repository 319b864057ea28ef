#include "operations/ArchiveFailure.h"

#include <utility>

namespace ombrel {

ArchiveFailure::ArchiveFailure(FileOperationError error)
    : case_(error.which() == FileOperationError::Case::cancelled ? Case::cancelled : Case::operation),
      error_(std::move(error)) {}

ArchiveFailure ArchiveFailure::tool(std::string name, int status, std::string words,
                                    std::optional<ArchiveFault> fault) {
    ArchiveFailure failure(Case::tool);
    failure.status_ = status;
    failure.tool_ = std::move(name);
    failure.words_ = std::move(words);
    failure.fault_ = fault;
    return failure;
}

ArchiveFailure ArchiveFailure::missing(std::string name) {
    constexpr int notFound = 127;
    return tool(std::move(name), notFound, {}, ArchiveFault::missingTool);
}

ArchiveFailure ArchiveFailure::archive(ArchiveFault fault) {
    return tool({}, 0, {}, fault);
}

std::string ArchiveFailure::message() const {
    return "exit " + std::to_string(status_) + (words_.empty() ? "" : ": " + words_);
}

FileOperationError ArchiveFailure::operationError() const {
    if (case_ == Case::cancelled) return FileOperationError::Case::cancelled;
    if (case_ == Case::operation) return *error_;
    return FileOperationError::system("archive", status_);
}

ErrorFacts ArchiveFailure::facts(FileOperationKind kind) const {
    ErrorFacts facts;
    if (case_ != Case::tool && case_ != Case::unsupported) return facts;
    facts.toolWords = words_;
    const auto fault = case_ == Case::unsupported ? ArchiveFault::unsupported : fault_;
    facts.archive = ArchiveFacts{kind, fault, tool_};
    return facts;
}

ItemResult ArchiveFailure::resultOf(FileURL source, FileOperationKind kind) const {
    if (case_ == Case::cancelled) return {std::move(source), ItemOutcome::cancelled()};
    return {std::move(source), ItemOutcome::failed(operationError()), facts(kind)};
}

} // namespace ombrel
