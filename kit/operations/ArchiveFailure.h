#pragma once

#include "base/FileURL.h"
#include "operations/ArchiveFacts.h"
#include "operations/FileOperationError.h"
#include "operations/OperationReport.h"

#include <cstdint>
#include <optional>
#include <string>

namespace ombrel {

/// Why an archive could not be made or extracted.
class ArchiveFailure {
public:
    enum class Case : std::uint8_t {
        tool,            ///< the tool failed, or is not there
        nothingSelected, ///< there is nothing to compress
        cancelled,
        unsupported, ///< no tool extracts files of this name
        operation,   ///< an error of the file system, told apart by `error`
    };

    /// A case without payload: `nothingSelected`, `cancelled` or `unsupported`.
    ArchiveFailure(Case which) noexcept : case_(which) {}
    ArchiveFailure(FileOperationError error);
    /// `words` is what the tool wrote of its failure (bytes), `status` what it exited with.
    [[nodiscard]] static ArchiveFailure tool(std::string name, int status, std::string words,
                                             std::optional<ArchiveFault> fault = std::nullopt);
    /// As shells tell it, with the status 127.
    [[nodiscard]] static ArchiveFailure missing(std::string name);
    /// The archive itself is no good, which needs no tool to see.
    [[nodiscard]] static ArchiveFailure archive(ArchiveFault fault);

    [[nodiscard]] Case which() const noexcept { return case_; }
    [[nodiscard]] const std::optional<ArchiveFault>& fault() const noexcept { return fault_; }
    /// Of `operation`.
    [[nodiscard]] const std::optional<FileOperationError>& error() const noexcept { return error_; }
    /// Of `tool`: "exit ", the status, and what the tool said last.
    [[nodiscard]] std::string message() const;
    [[nodiscard]] const std::string& words() const noexcept { return words_; }

    /// For a report, and what goes with it.
    [[nodiscard]] FileOperationError operationError() const;
    [[nodiscard]] ErrorFacts facts(FileOperationKind kind) const;
    [[nodiscard]] ItemResult resultOf(FileURL source, FileOperationKind kind) const;

private:
    Case case_;
    int status_ = 0;
    std::string tool_;
    std::string words_;
    std::optional<ArchiveFault> fault_;
    std::optional<FileOperationError> error_;
};

} // namespace ombrel
