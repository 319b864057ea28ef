#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace ombrel {

/// What extracts an archive.
///
/// Who plays which part here:
///
///     part           tool                                   standard input
///     zip            zip, or bsdtar where zip cannot be     the entries' names
///                    told a name (see ArchiveWriter)
///     ditto          bsdtar: writes zips, reads zips;       the entries' names; the archive
///                    zipinfo tells what is in one
///     libarchive     bsdtar                                 the archive
///     singleFile     gzip, bzip2, xz                        the archive
///     appleArchive   nobody: `unsupported`
struct ArchiveExtractor {
    /// One compressed file; the tool writes it to its standard output.
    struct SingleFile {
        std::string tool;
        std::vector<std::string> arguments;
        friend bool operator==(const SingleFile&, const SingleFile&) = default;
    };
    struct Ditto {
        friend bool operator==(const Ditto&, const Ditto&) = default;
    };
    struct Libarchive {
        friend bool operator==(const Libarchive&, const Libarchive&) = default;
    };
    struct AppleArchive {
        friend bool operator==(const AppleArchive&, const AppleArchive&) = default;
    };
    using Part = std::variant<SingleFile, Ditto, Libarchive, AppleArchive>;

    Part part;
    friend bool operator==(const ArchiveExtractor&, const ArchiveExtractor&) = default;
};

/// How the archive of one name is extracted.
struct ArchivePlan {
    ArchiveExtractor extractor;
    std::string baseName; ///< the archive's name (bytes) without the suffix that decided; may be empty

    friend bool operator==(const ArchivePlan&, const ArchivePlan&) = default;
};

/// By the name alone (bytes), upper and lower case alike; the first suffix of the table that fits decides.
/// Nothing for a name that fits none. A plan whose part nobody plays is a plan all the same.
[[nodiscard]] std::optional<ArchivePlan> extractionPlan(std::string_view name);

} // namespace ombrel
