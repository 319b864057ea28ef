#pragma once

#include "base/FileURL.h"
#include "base/Hash.h"
#include "operations/FileOperationError.h"
#include "operations/FileOperationKind.h"
#include "operations/OperationFacts.h"

#include <cstdint>
#include <optional>

namespace ombrel {

/// What to do about an item that failed.
enum class ErrorChoice : std::uint8_t { retry, skip, cancel };

template <>
struct RawValues<ErrorChoice> {
    static constexpr std::string_view names[] = {"retry", "skip", "cancel"};
};

/// The question: something went wrong with an item.
struct ErrorContext {
    FileOperationKind kind;
    std::optional<FileURL> source;
    std::optional<FileURL> destination;
    FileOperationError error;
    bool canRetry = true; ///< whether `retry` is to be offered
    ErrorFacts facts = {};

    [[nodiscard]] std::size_t hashValue() const {
        return hashOf(kind, source, destination, error, canRetry, facts);
    }
    friend bool operator==(const ErrorContext&, const ErrorContext&) = default;
};

struct ErrorDecision {
    ErrorChoice choice = ErrorChoice::skip;
    bool applyToAll = false; ///< the choice stands for every further error of the job

    [[nodiscard]] std::size_t hashValue() const { return hashOf(choice, applyToAll); }
    friend bool operator==(const ErrorDecision&, const ErrorDecision&) = default;
};

} // namespace ombrel
