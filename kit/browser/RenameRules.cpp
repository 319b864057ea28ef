#include "browser/RenameRules.h"

#include "base/FileName.h"
#include "operations/FileOperationError.h"
#include "operations/ItemNames.h"
#include "services/AppSettings.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace ombrel {
namespace {

std::size_t lengthOfCharacter(std::string_view text) {
    std::size_t length = 1;
    while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U)
        ++length;
    return length;
}

std::vector<std::string_view> charactersOf(std::string_view text) {
    std::vector<std::string_view> characters;
    while (!text.empty()) {
        const auto length = lengthOfCharacter(text);
        characters.push_back(text.substr(0, length));
        text.remove_prefix(length);
    }
    return characters;
}

/// The bytes of `name` that each character of its display text stands for.
std::vector<std::string> bytesByCharacter(std::string_view name) {
    std::vector<std::string> units;
    while (!name.empty()) {
        std::size_t length = lengthOfCharacter(name);
        if (!FileName::isValidUTF8(name.substr(0, length))) length = 1;
        units.emplace_back(name.substr(0, length));
        name.remove_prefix(length);
    }
    return units;
}

/// The part of a name before its ending.
std::string_view stemOf(std::string_view name) {
    constexpr std::array<std::string_view, 2> containers = {"tar", "cpio"};
    constexpr std::size_t longestCompression = 4; // "lzma"
    const auto stem = FileName::stem(name);
    if (name.size() - stem.size() > longestCompression + 1) return stem;
    const auto inner = FileName::loweredASCII(FileName::extension(stem));
    return std::ranges::find(containers, inner) == containers.end() ? stem : FileName::stem(stem);
}

/// Names that Windows keeps for its devices, whatever ending follows.
bool isDeviceOnWindows(std::string_view name) {
    const auto base = FileName::loweredASCII(name.substr(0, name.find('.')));
    if (base == "con" || base == "prn" || base == "aux" || base == "nul") return true;
    return base.size() == 4 && (base.starts_with("com") || base.starts_with("lpt")) && base[3] >= '1' &&
           base[3] <= '9';
}

bool isBlank(std::string_view text) {
    return text.find_first_not_of(" \t\n\r\v\f") == std::string_view::npos;
}

} // namespace

RenameRules::RenameRules(std::string_view name, std::string_view shown, Shape shape)
    : name_(name), ending_(name.substr(shown.size())), shape_(shape), text_(FileName::displayText(shown)) {}

RenameRules RenameRules::of(FileItemView item, const AppSettings& settings) {
    const bool isFolder = item.isDirectoryLike() || item.isPackage();
    return {item.name(), settings.displayName(item), isFolder ? Shape::folder : Shape::file};
}

std::size_t RenameRules::stemLength(std::string_view text) const {
    if (shape_ == Shape::folder) return text.size();
    const auto name = std::string(text) + ending_;
    const auto stem = stemOf(name);
    return stem.empty() ? text.size() : std::min(stem.size(), text.size());
}

bool RenameRules::accepts(std::string_view typed) noexcept {
    return typed.find('/') == std::string_view::npos && typed.find('\0') == std::string_view::npos;
}

RenameRules::Verdict RenameRules::judge(std::string_view text) const {
    if (isBlank(text)) return {};
    auto name = nameOf(text);
    if (name == name_) return {};
    if (const auto reason = ItemNames::validate(name, WindowsRules::off))
        return {Verdict::Case::refused, {}, FileOperationError::invalidName(*reason).text()};
    return {Verdict::Case::rename, std::move(name)};
}

std::optional<Text> RenameRules::hint(std::string_view text) const {
    if (isBlank(text)) return std::nullopt;
    const auto name = nameOf(text);
    if (ItemNames::validate(name, WindowsRules::on) == InvalidNameReason::windowsCharacters)
        return FileOperationError::invalidName(InvalidNameReason::windowsCharacters).text();
    const bool hasControls =
        std::ranges::any_of(name, [](char byte) { return static_cast<unsigned char>(byte) < ' '; });
    if (name.ends_with('.') || name.ends_with(' ') || hasControls || isDeviceOnWindows(name))
        return Text{"ui.rename.notOnWindows"};
    return std::nullopt;
}

/// What stands unchanged at the beginning and at the end of the text is taken from the name itself.
std::string RenameRules::nameOf(std::string_view text) const {
    const auto before = charactersOf(text_);
    const auto after = charactersOf(text);
    const auto bytes = bytesByCharacter(std::string_view(name_).substr(0, name_.size() - ending_.size()));
    if (bytes.size() != before.size()) return std::string(text) + ending_;
    const auto head = static_cast<std::size_t>(std::ranges::mismatch(before, after).in1 - before.begin());
    std::size_t tail = 0;
    while (tail < std::min(before.size(), after.size()) - head &&
           before[before.size() - 1 - tail] == after[after.size() - 1 - tail])
        ++tail;
    std::string name;
    for (std::size_t i = 0; i < after.size(); ++i) {
        if (i < head)
            name += bytes[i];
        else if (i >= after.size() - tail)
            name += bytes[bytes.size() - (after.size() - i)];
        else
            name += after[i];
    }
    return name + ending_;
}

} // namespace ombrel
