#include "cli/ItemObject.h"

#include <cstdint>
#include <optional>
#include <string>

namespace ombrel::cli {
namespace {

std::string_view nameOf(FileKind::Case kind) {
    switch (kind) {
    case FileKind::Case::symlink: return "symlink";
    case FileKind::Case::file: return "file";
    case FileKind::Case::directory: return "directory";
    case FileKind::Case::package: return "package";
    case FileKind::Case::other: break;
    }
    return "other";
}

std::string_view nameOf(SymlinkTarget::Case target) {
    switch (target) {
    case SymlinkTarget::Case::inaccessible: return "inaccessible";
    case SymlinkTarget::Case::file: return "file";
    case SymlinkTarget::Case::directory: return "directory";
    case SymlinkTarget::Case::broken: return "broken";
    case SymlinkTarget::Case::loop: break;
    }
    return "loop";
}

std::optional<int> errorOf(FileItemView item) {
    if (const auto failure = item.readError()) return failure->number;
    const auto kind = item.kind();
    if (kind.which() != FileKind::Case::symlink || kind.target().errorNumber() == 0) return std::nullopt;
    return kind.target().errorNumber();
}

/// Seconds since 1970 in UTC, a number with all nine decimals that the system keeps.
std::string seconds(FileTime time) {
    // The nanoseconds count upwards from the second before, also before 1970.
    const bool isNegative = time.seconds < 0;
    auto whole = static_cast<std::uint64_t>(isNegative ? -(time.seconds + 1) : time.seconds);
    auto nanoseconds = isNegative ? 1'000'000'000 - time.nanoseconds : time.nanoseconds;
    if (nanoseconds == 1'000'000'000) {
        nanoseconds = 0;
        ++whole;
    }
    auto decimals = std::to_string(nanoseconds);
    decimals.insert(0, 9 - decimals.size(), '0');
    return (isNegative ? "-" : "") + std::to_string(whole) + '.' + decimals;
}

template <typename T>
std::optional<T> known(const Metadata<T>& metadata) {
    return metadata.hasValue() ? std::optional(metadata.value()) : std::nullopt;
}

} // namespace

void describe(JSONObject& object, FileItemView item) {
    const auto kind = item.kind();
    const auto identity = item.identity();
    const auto modified = known(item.modificationDate());
    object.addBytes("name", item.name());
    object.add("kind", nameOf(kind.which()));
    if (kind.which() == FileKind::Case::symlink)
        object.add("target", nameOf(kind.target().which()));
    else
        object.add("target", std::nullopt);
    object.add("size", known(item.size()));
    object.addLiteral("modified", modified ? seconds(*modified) : "null");
    object.add("type", known(item.typeIdentifier()));
    object.add("hidden", item.isHidden());
    object.add("device", identity ? std::optional(identity->device) : std::nullopt);
    object.add("inode", identity ? std::optional(identity->inode) : std::nullopt);
    object.addErrorName("error", errorOf(item));
}

} // namespace ombrel::cli
