#include "ui/FileClass.h"

#include "base/FileName.h"
#include "listing/TypeDatabase.h"

#include <optional>
#include <utility>

namespace ombrel {
namespace {

using enum FileClass;

/// By the whole type or, where the pattern ends in "*", by its beginning. The first that fits decides.
constexpr std::pair<std::string_view, FileClass> patterns[] = {
    {"inode/directory", folder},
    {"image/svg*", vectorImage},
    {"image/x-eps", vectorImage},
    {"image/wmf", vectorImage},
    {"image/emf", vectorImage},
    {"image/*", image},
    {"audio/*", audio},
    {"video/*", video},
    {"application/ogg", video},
    {"application/pdf", pdf},
    {"application/postscript", pdf},
    {"application/illustrator", vectorImage},
    {"application/vnd.oasis.opendocument.graphics*", vectorImage},
    {"application/vnd.oasis.opendocument.spreadsheet*", spreadsheet},
    {"application/vnd.openxmlformats-officedocument.spreadsheetml*", spreadsheet},
    {"application/vnd.ms-excel*", spreadsheet},
    {"application/x-gnumeric", spreadsheet},
    {"application/vnd.oasis.opendocument.presentation*", presentation},
    {"application/vnd.openxmlformats-officedocument.presentationml*", presentation},
    {"application/vnd.ms-powerpoint*", presentation},
    {"application/vnd.oasis.opendocument.text*", document},
    {"application/vnd.openxmlformats-officedocument.wordprocessingml*", document},
    {"application/msword*", document},
    {"application/vnd.ms-word*", document},
    {"application/rtf", document},
    {"text/rtf", document},
    {"application/epub+zip", document},
    {"application/x-abiword", document},
    {"application/gpx+xml", mapData},
    {"application/geo+json", mapData},
    {"application/vnd.google-earth*", mapData},
    {"application/x-esri-shape*", mapData},
    {"text/csv*", tableData},
    {"text/tab-separated-values", tableData},
    {"application/vnd.sqlite3", tableData},
    {"application/x-sqlite3", tableData},
    {"application/vnd.apache.parquet", tableData},
    {"application/vnd.ms-access", tableData},
    {"text/markdown", markup},
    {"text/x-rst", markup},
    {"application/zip", archive},
    {"application/gzip", archive},
    {"application/zstd", archive},
    {"application/vnd.rar", archive},
    {"application/vnd.debian.binary-package", archive},
    {"application/x-tar", archive},
    {"application/x-7z-compressed", archive},
    {"application/x-xz*", archive},
    {"application/x-bzip*", archive},
    {"application/x-compressed*", archive},
    {"application/x-cpio*", archive},
    {"application/x-lz*", archive},
    {"application/x-rpm", archive},
    {"application/x-java-archive", archive},
    {"application/java-archive", archive},
    {"application/json*", code},
    {"application/javascript", code},
    {"application/xml*", code},
    {"application/x-shellscript", code},
    {"application/x-perl", code},
    {"application/x-php", code},
    {"application/x-python*", code},
    {"application/x-ruby", code},
    {"application/x-yaml", code},
    {"application/yaml", code},
    {"application/toml", code},
    {"application/sql", code},
    {"text/css", code},
    {"text/html", code},
    {"text/javascript", code},
    {"text/rust", code},
    {"text/vnd.*", code},
    {"text/x-log", text},
    {"text/x-readme", text},
    {"text/x-copying", text},
    {"text/x-authors", text},
    {"text/x-*", code},
    {"text/*", text},
};

bool fits(std::string_view identifier, std::string_view pattern) {
    if (!pattern.ends_with('*')) return identifier == pattern;
    return identifier.starts_with(pattern.substr(0, pattern.size() - 1));
}

FileClass classOf(TypeIndex type) {
    return type == 0 ? other : FileClasses::ofType(TypeDatabase::identifier(type));
}

} // namespace

FileClass FileClasses::ofType(std::string_view identifier) {
    for (const auto& [pattern, fileClass] : patterns)
        if (fits(identifier, pattern)) return fileClass;
    // Most of what ends so is a zip or a text in disguise, but of a kind that nothing above knows.
    if (identifier.ends_with("+xml") || identifier.ends_with("+json")) return code;
    return other;
}

std::optional<FileClass> FileClasses::known(FileItemView item) {
    if (item.isDirectoryLike()) return folder;
    if (item.kind().which() != FileKind::Case::symlink) return classOf(item.type());
    if (!item.kind().isSymlinkTo(SymlinkTarget::Case::file)) return other;
    const auto type = TypeDatabase::knownFileType(FileName::extension(item.name()));
    return type ? std::optional(classOf(*type)) : std::nullopt;
}

} // namespace ombrel
