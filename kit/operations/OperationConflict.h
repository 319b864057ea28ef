#pragma once

#include "base/FileURL.h"
#include "base/Hash.h"
#include "operations/FileOperationKind.h"
#include "operations/OperationFacts.h"

#include <cstdint>
#include <optional>
#include <string>

namespace ombrel {

/// What to do about an item whose name is taken.
enum class ConflictChoice : std::uint8_t { skip, keepBoth, replace, cancel };

template <>
struct RawValues<ConflictChoice> {
    static constexpr std::string_view names[] = {"skip", "keepBoth", "replace", "cancel"};
};

/// The question: an item is to be brought in and something has its name.
struct ConflictContext {
    FileOperationKind kind;
    FileURL source;   ///< the item being brought in
    FileURL existing; ///< the item that has the name
    bool sourceIsDirectory = false;
    bool existingIsDirectory = false;
    ItemFacts sourceFacts = {};
    ItemFacts existingFacts = {};
    std::optional<std::string> keepBothName = std::nullopt; ///< the name (bytes) that `keepBoth` would give

    [[nodiscard]] std::size_t hashValue() const {
        return hashOf(kind, source, existing, sourceIsDirectory, existingIsDirectory, sourceFacts,
                      existingFacts, keepBothName);
    }
    friend bool operator==(const ConflictContext&, const ConflictContext&) = default;
};

struct ConflictDecision {
    ConflictChoice choice = ConflictChoice::skip;
    bool applyToAll = false; ///< the choice stands for every further conflict of the job

    [[nodiscard]] std::size_t hashValue() const { return hashOf(choice, applyToAll); }
    friend bool operator==(const ConflictDecision&, const ConflictDecision&) = default;
};

} // namespace ombrel
