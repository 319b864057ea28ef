#include "services/ClipboardFormats.h"

#include "base/FileName.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace ombrel::ClipboardFormats {
namespace {

constexpr std::string_view uriList = "text/uri-list";
constexpr std::string_view gnomeFiles = "x-special/gnome-copied-files";
constexpr std::string_view mateFiles = "x-special/mate-copied-files";
constexpr std::string_view kdeCutMark = "application/x-kde-cutselection";
constexpr std::string_view plainText = "text/plain";
constexpr std::string_view utf8Text = "text/plain;charset=utf-8";
/// The first line of a text that stands for files: how Nautilus 3.30 to 40 wrote them.
constexpr std::string_view nautilusMark = "x-special/nautilus-clipboard";

/// Takes the next line off `text`, without its end.
std::string_view takeLine(std::string_view& text) {
    const auto end = std::min(text.find('\n'), text.size());
    auto line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    // Some programs end lines as the URI list does, or the whole as C does.
    while (line.ends_with('\r') || line.ends_with('\0'))
        line.remove_suffix(1);
    return line;
}

std::vector<FileURL> filesIn(std::string_view lines) {
    std::vector<FileURL> urls;
    while (!lines.empty())
        if (auto url = FileURL::fromURI(takeLine(lines))) urls.push_back(*std::move(url));
    return urls;
}

/// Below a first line that says "copy" or "cut".
std::vector<FileURL> markedFilesIn(std::string_view text) {
    const auto mark = takeLine(text);
    return mark == "copy" || mark == "cut" ? filesIn(text) : std::vector<FileURL>();
}

std::vector<FileURL> filesInText(std::string_view text) {
    return takeLine(text) == nautilusMark ? markedFilesIn(text) : std::vector<FileURL>();
}

/// One that holds nothing but files.
struct FileFormat {
    std::string_view name;
    std::vector<FileURL> (*parse)(std::string_view);
};
constexpr FileFormat fileFormats[] = {
    {gnomeFiles, markedFilesIn}, {mateFiles, markedFilesIn}, {uriList, filesIn}};

std::string uris(const std::vector<FileURL>& urls, std::string_view separator) {
    std::string text;
    for (const auto& url : urls) {
        if (&url != &urls.front()) text += separator;
        // Programs that split a URI at its last "/" find no name in one that ends in it.
        text += url.marked(FileURL::Mark::none).uri();
    }
    return text;
}

std::string paths(const std::vector<FileURL>& urls) {
    std::string text;
    for (const auto& url : urls) {
        if (&url != &urls.front()) text += '\n';
        text += url.path();
    }
    return text;
}

} // namespace

std::vector<Pasteboard::Entry> filesOf(const std::vector<FileURL>& urls, Marking marking,
                                       std::string tokenBytes) {
    const auto shared = std::make_shared<const std::vector<FileURL>>(urls);
    const bool isCut = marking == Marking::cut;
    std::vector<Pasteboard::Entry> entries = {
        {uriList, [shared] { return uris(*shared, "\r\n") + "\r\n"; }},
        // Nautilus takes the empty line behind a final line feed for a broken list.
        {gnomeFiles, [shared, isCut] { return (isCut ? "cut\n" : "copy\n") + uris(*shared, "\n"); }},
        {kdeCutMark, std::string(isCut ? "1" : "0")},
        {token, std::move(tokenBytes)},
    };
    for (const auto format : {utf8Text, plainText})
        entries.emplace_back(format, [shared] { return paths(*shared); });
    return entries;
}

std::vector<Pasteboard::Entry> textOf(const std::vector<std::string>& lines) {
    std::string text;
    for (const auto& line : lines) {
        if (&line != &lines.front()) text += '\n';
        text += line;
    }
    return {{utf8Text, text}, {plainText, std::move(text)}};
}

std::vector<FileURL> filesOn(const Pasteboard& pasteboard) {
    for (const auto& [format, parse] : fileFormats) {
        const auto bytes = pasteboard.has(format) ? pasteboard.read(format) : std::nullopt;
        if (!bytes) continue;
        if (auto urls = parse(*bytes); !urls.empty()) return urls;
    }
    // The same words in another format: there may be very many.
    const auto words = pasteboard.has(utf8Text) ? utf8Text : plainText;
    const auto text = pasteboard.has(words) ? pasteboard.read(words) : std::nullopt;
    return text ? filesInText(*text) : std::vector<FileURL>();
}

bool offersFiles(const Pasteboard& pasteboard) {
    return std::ranges::any_of(fileFormats,
                               [&](const FileFormat& format) { return pasteboard.has(format.name); });
}

} // namespace ombrel::ClipboardFormats
