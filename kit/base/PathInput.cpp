#include "base/PathInput.h"

#include "base/FileName.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <string>
#include <vector>

namespace ombrel::PathInput {
namespace {

/// The characters of Unicode's separator categories, and the control characters that move the line, in UTF-8.
constexpr std::array<std::string_view, 25> whiteSpace = {
    "\t",           "\n",           "\v",           "\f",           "\r",           " ",
    "\xC2\x85",     "\xC2\xA0",     "\xE1\x9A\x80", "\xE2\x80\x80", "\xE2\x80\x81", "\xE2\x80\x82",
    "\xE2\x80\x83", "\xE2\x80\x84", "\xE2\x80\x85", "\xE2\x80\x86", "\xE2\x80\x87", "\xE2\x80\x88",
    "\xE2\x80\x89", "\xE2\x80\x8A", "\xE2\x80\xA8", "\xE2\x80\xA9", "\xE2\x80\xAF", "\xE2\x81\x9F",
    "\xE3\x80\x80",
};

std::size_t spaceAtStart(std::string_view text) noexcept {
    for (const auto space : whiteSpace)
        if (text.starts_with(space)) return space.size();
    return 0;
}

std::size_t spaceAtEnd(std::string_view text) noexcept {
    for (const auto space : whiteSpace)
        if (text.ends_with(space)) return space.size();
    return 0;
}

std::string_view trimmed(std::string_view text) noexcept {
    while (const auto length = spaceAtStart(text))
        text.remove_prefix(length);
    while (const auto length = spaceAtEnd(text))
        text.remove_suffix(length);
    return text;
}

Result standardized(const std::expected<FileURL, FileURL::Fault>& url) {
    if (!url) return std::unexpected(Refusal::invalid);
    return url->standardized();
}

Result below(const FileURL& folder, std::string_view path) {
    return standardized(FileURL::fromPath(folder.path() + "/" + std::string(path)));
}

bool isLetter(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

std::string homeOfDatabase() {
    std::vector<char> buffer(1024);
    passwd entry{};
    passwd* found = nullptr;
    while (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) == ERANGE)
        buffer.resize(buffer.size() * 2);
    return found && found->pw_dir ? found->pw_dir : "";
}

FileURL askForHome() {
    if (const auto url = FileURL::fromPath(homeOfDatabase(), FileURL::Mark::directory)) return *url;
    const char* variable = std::getenv("HOME");
    const auto url = FileURL::fromPath(variable ? variable : "", FileURL::Mark::directory);
    return url.value_or(FileURL());
}

} // namespace

Result parse(std::string_view text, const std::optional<FileURL>& base, const FileURL& home) {
    text = trimmed(text);
    if (text.empty()) return std::unexpected(Refusal::empty);
    if (text.find('\0') != std::string_view::npos) return std::unexpected(Refusal::invalid);
    if (FileName::loweredASCII(text.substr(0, 5)) == "file:") return standardized(FileURL::fromURI(text));
    if (isWindowsPath(text)) return std::unexpected(Refusal::windowsPath);
    if (text == "~") return home;
    if (text.starts_with("~/")) return below(home, text.substr(2));
    if (text.front() == '/') return standardized(FileURL::fromPath(text));
    if (!base) return std::unexpected(Refusal::relativeWithoutBase);
    return below(*base, text);
}

bool isWindowsPath(std::string_view text) noexcept {
    if (text.size() >= 2 && isLetter(text[0]) && text[1] == ':')
        if (text.size() == 2 || text[2] == '/' || text[2] == '\\') return true;
    return text.starts_with("\\\\");
}

std::string_view messageKey(Refusal refusal) noexcept {
    switch (refusal) {
    case Refusal::empty: return {};
    case Refusal::windowsPath: return "path.windowsPath";
    case Refusal::relativeWithoutBase: return "path.relativeWithoutBase";
    case Refusal::invalid: return "path.invalid";
    }
    return {};
}

const FileURL& userHomeDirectory() {
    static const FileURL home = askForHome();
    return home;
}

} // namespace ombrel::PathInput
