#pragma once

#include "base/FileURL.h"
#include "services/Pasteboard.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The forms in which desktop programs hand files to each other, and the marks by which file managers know a
/// cut from a copy. Locations are percent-encoded bytes in all of them, so names that are not UTF-8 come
/// through.
namespace ombrel::ClipboardFormats {

enum class Marking : std::uint8_t { copied, cut };

/// Our own format: says which write of which running program the contents come from.
inline constexpr std::string_view token = "application/x-halvaneombrel-token";

/// `urls` for every program that takes files: URIs for everyone, the marks of the GNOME and KDE families,
/// paths as text. `tokenBytes` goes into `token`.
[[nodiscard]] std::vector<Pasteboard::Entry> filesOf(const std::vector<FileURL>& urls, Marking marking,
                                                     std::string tokenBytes);

/// `lines` as plain text, joined by line feeds.
[[nodiscard]] std::vector<Pasteboard::Entry> textOf(const std::vector<std::string>& lines);

/// The files on the pasteboard, in its order: of the first format that names any. URIs of other schemes, of
/// other machines, and what is no URI are left out.
[[nodiscard]] std::vector<FileURL> filesOn(const Pasteboard& pasteboard);
/// Whether there is a format that holds nothing but files. Reads none of them.
[[nodiscard]] bool offersFiles(const Pasteboard& pasteboard);

} // namespace ombrel::ClipboardFormats
