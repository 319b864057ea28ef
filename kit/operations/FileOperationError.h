#pragma once

#include "base/Hash.h"
#include "base/POSIXFailure.h"
#include "base/Text.h"
#include "operations/ItemNames.h"

#include <cstdint>
#include <optional>
#include <string>

namespace ombrel {

/// What can go wrong with one item of a file operation. Equality compares case and payload.
class FileOperationError {
public:
    enum class Case : std::uint8_t {
        invalidName,
        partialCopyLeftBehind,
        sourceRemovalFailed,
        posix,
        system,
        sourceMissing,
        sourceChanged,
        destinationExists,
        destinationMissing,
        destinationInsideSource,
        sameLocation,
        permissionDenied,
        readOnlyVolume,
        noSpace,
        trashUnavailable,
        verificationFailed,
        metadataNotPreserved,
        cancelled,
    };

    /// A case without payload, `sourceMissing` or a later one.
    FileOperationError(Case which) noexcept : case_(which) {}
    /// A new name breaks a rule.
    [[nodiscard]] static FileOperationError invalidName(InvalidNameReason reason);
    /// An incomplete item called `name` (bytes) could not be cleaned away.
    [[nodiscard]] static FileOperationError partialCopyLeftBehind(std::string name);
    /// A move copied the item and could not remove the source.
    [[nodiscard]] static FileOperationError sourceRemovalFailed(std::optional<std::int32_t> errorNumber);
    /// Any other failure of a system call.
    [[nodiscard]] static FileOperationError posix(std::int32_t errorNumber);
    /// A failure that something else than a system call reports, as its name and its number: an archive tool
    /// and its exit status.
    [[nodiscard]] static FileOperationError system(std::string domain, std::int64_t code);

    /// EPERM, EACCES `permissionDenied`; ENOENT `sourceMissing`; EEXIST, ENOTEMPTY `destinationExists`;
    /// ENOSPC, EDQUOT `noSpace`; EROFS `readOnlyVolume`; ENAMETOOLONG `invalidName(tooLong)`; ECANCELED
    /// `cancelled`; any other `posix`.
    [[nodiscard]] static FileOperationError from(int errorNumber);
    [[nodiscard]] static FileOperationError from(POSIXFailure failure) { return from(failure.number); }

    [[nodiscard]] Case which() const noexcept { return case_; }
    /// Only for `invalidName`.
    [[nodiscard]] InvalidNameReason reason() const { return *reason_; }
    /// Of `posix` and, where known, `sourceRemovalFailed`.
    [[nodiscard]] std::optional<std::int32_t> errorNumber() const noexcept { return errorNumber_; }
    /// The name of `partialCopyLeftBehind`, the domain of `system`; otherwise empty.
    [[nodiscard]] const std::string& name() const noexcept { return name_; }
    /// Of `system`, otherwise 0.
    [[nodiscard]] std::int64_t code() const noexcept { return code_; }

    /// One sentence for people.
    [[nodiscard]] Text text() const;
    [[nodiscard]] std::string localizedDescription() const { return text().localized(); }
    [[nodiscard]] std::size_t hashValue() const;

    friend bool operator==(const FileOperationError&, const FileOperationError&) = default;

private:
    Case case_;
    std::optional<InvalidNameReason> reason_;
    std::optional<std::int32_t> errorNumber_;
    std::int64_t code_ = 0;
    std::string name_;
};

template <>
struct RawValues<FileOperationError::Case> {
    static constexpr std::string_view names[] = {"invalidName",
                                                 "partialCopyLeftBehind",
                                                 "sourceRemovalFailed",
                                                 "posix",
                                                 "system",
                                                 "sourceMissing",
                                                 "sourceChanged",
                                                 "destinationExists",
                                                 "destinationMissing",
                                                 "destinationInsideSource",
                                                 "sameLocation",
                                                 "permissionDenied",
                                                 "readOnlyVolume",
                                                 "noSpace",
                                                 "trashUnavailable",
                                                 "verificationFailed",
                                                 "metadataNotPreserved",
                                                 "cancelled"};
};

} // namespace ombrel
