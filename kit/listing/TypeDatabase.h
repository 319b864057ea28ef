#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ombrel {

/// A type of the type database by a small number: cheap to keep in an item, the same for the whole process.
/// 0 is "no type".
using TypeIndex = std::uint32_t;

/// What is known of file types: the shared MIME database of the desktop (read through GIO) plus named tables
/// of our own for package extensions and for executable, script and application types.
///
/// A type's identifier is its MIME type: "inode/directory" for folders, "application/octet-stream" for data,
/// "inode/symlink" for links. An extension is looked up once per process, then answered from memory; a type
/// that the database only guesses counts as dynamic. Any thread.
namespace TypeDatabase {

/// Chooses the language of descriptions, by a locale's name in POSIX form ("de_AT"). Called once, before a
/// program starts threads: GIO takes the language from the environment, so this sets LANGUAGE there.
void setLanguage(const std::string& locale);

/// The fixed types.
[[nodiscard]] TypeIndex folder();
[[nodiscard]] TypeIndex data();
[[nodiscard]] TypeIndex symbolicLink();

/// The identifier, for as long as the process runs; empty for 0.
[[nodiscard]] std::string_view identifier(TypeIndex type);
/// The number of an identifier that some caller holds as text; registers it when it is new.
[[nodiscard]] TypeIndex index(std::string_view identifier);

/// The type of regular files whose name has this extension; 0 when the database knows none. Letter case of
/// ASCII letters does not count.
[[nodiscard]] TypeIndex fileType(std::string_view extension);
/// The same for an extension that somebody has asked about before; nothing otherwise. Never reads the
/// database, so the main thread may ask.
[[nodiscard]] std::optional<TypeIndex> knownFileType(std::string_view extension);
/// The type of folders whose name has this extension, from the table of package extensions; 0 when it is not
/// there.
[[nodiscard]] TypeIndex packageType(std::string_view extension);

/// Whether `type` is `base` or a descendant of it in the database's subclass tree.
[[nodiscard]] bool conforms(TypeIndex type, std::string_view base);
[[nodiscard]] bool isExecutable(TypeIndex type);
[[nodiscard]] bool isScript(TypeIndex type);
[[nodiscard]] bool isApplication(TypeIndex type);

/// The database's description in the interface language; empty when it has none.
[[nodiscard]] std::string description(TypeIndex type);

} // namespace TypeDatabase
} // namespace ombrel
