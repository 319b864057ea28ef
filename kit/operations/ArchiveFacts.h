#pragma once

#include "base/Hash.h"
#include "base/RawValue.h"
#include "base/Text.h"
#include "operations/FileOperationKind.h"

#include <cstdint>
#include <optional>
#include <string>

namespace ombrel {

/// What is wrong with an archive or its tool, where that is known.
enum class ArchiveFault : std::uint8_t {
    encrypted,   ///< it asks for a password
    unsafe,      ///< it would write outside the folder it is extracted to, or take files from there
    damaged,     ///< cut short, altered, empty, or not what its name says
    unsupported, ///< there is no tool for files of this name
    missingTool, ///< the tool is not installed
};

template <>
struct RawValues<ArchiveFault> {
    static constexpr std::string_view names[] = {"encrypted", "unsafe", "damaged", "unsupported",
                                                 "missingTool"};
};

/// What is known of an archive job that failed.
struct ArchiveFacts {
    FileOperationKind kind = FileOperationKind::extract; ///< `compress` or `extract`
    std::optional<ArchiveFault> fault;
    std::string tool; ///< the program's name; empty when none had a part in it

    [[nodiscard]] std::size_t hashValue() const { return hashOf(kind, fault, tool); }
    friend bool operator==(const ArchiveFacts&, const ArchiveFacts&) = default;
};

/// The failure in one sentence. `words` is what the tool said (UTF-8), `status` what it exited with.
[[nodiscard]] Text textOf(const ArchiveFacts& facts, const std::string& words, std::int64_t status);

} // namespace ombrel
