#include "listing/FileTypeNames.h"

#include "base/FileName.h"
#include "base/Text.h"
#include "base/TextMap.h"
#include "listing/TypeDatabase.h"

#include <unicode/ucasemap.h>

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <mutex>

namespace ombrel::FileTypeNames {
namespace {

struct KnownType {
    std::string_view extension;
    std::string_view key;
};

/// Extensions whose words are the interface's own, whatever the type database says of them.
constexpr auto knownTypes = std::to_array<KnownType>({
    {"xlsx", "type.excel"},  {"xls", "type.excel"},   {"csv", "type.csv"},         {"docx", "type.word"},
    {"doc", "type.word"},    {"rtf", "type.rtf"},     {"pptx", "type.powerpoint"}, {"ppt", "type.powerpoint"},
    {"pdf", "type.pdf"},     {"txt", "type.text"},    {"md", "type.text"},         {"log", "type.text"},
    {"zip", "type.zip"},     {"rar", "type.archive"}, {"7z", "type.archive"},      {"gz", "type.archive"},
    {"tar", "type.archive"}, {"exe", "type.exe"},     {"dll", "type.dll"},         {"msi", "type.msi"},
    {"app", "type.macApp"},  {"dmg", "type.dmg"},     {"html", "type.html"},       {"htm", "type.html"},
});

/// Answers that are kept; far more than there are extensions in use, and a bound for folders of numbered
/// endings.
constexpr std::size_t keptAnswers = 65536;

class Answers {
public:
    std::optional<std::string> find(std::string_view extension) {
        const std::scoped_lock lock(mutex_);
        const auto known = answers_.find(extension);
        return known != answers_.end() ? std::optional(known->second) : std::nullopt;
    }

    /// Keeps `answer` unless another thread was faster; gives back what is kept.
    std::string keep(std::string_view extension, std::string answer) {
        const std::scoped_lock lock(mutex_);
        if (answers_.size() >= keptAnswers) return answer;
        return answers_.try_emplace(std::string(extension), std::move(answer)).first->second;
    }

private:
    std::mutex mutex_; // guards answers_
    TextMap<std::string> answers_;
};

Answers& answers() {
    static auto& instance = *new Answers;
    return instance;
}

/// In capitals as every language writes endings: "ini" is "INI" in Turkish too.
std::string inCapitals(std::string_view extension) {
    const std::string text = FileName::displayText(extension);
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UCaseMap, decltype(&ucasemap_close)> map(ucasemap_open("", 0, &status),
                                                                   &ucasemap_close);
    std::string capitals(3 * text.size(), '\0'); // the most that a character's capitals grow by in UTF-8
    const auto length =
        ucasemap_utf8ToUpper(map.get(), capitals.data(), static_cast<std::int32_t>(capitals.size()),
                             text.data(), static_cast<std::int32_t>(text.size()), &status);
    if (U_FAILURE(status)) return text;
    capitals.resize(static_cast<std::size_t>(length));
    return capitals;
}

std::string made(std::string_view extension, std::optional<std::string_view> typeIdentifier) {
    const auto known = std::ranges::find(knownTypes, extension, &KnownType::extension);
    if (known != knownTypes.end()) return Texts::localized(known->key);
    if (typeIdentifier) {
        auto description = TypeDatabase::description(TypeDatabase::index(*typeIdentifier));
        if (!description.empty()) return description;
    }
    if (!extension.empty()) return Texts::localized("type.extFile", {inCapitals(extension)});
    return Texts::localized("type.file");
}

std::string nameOfLink(SymlinkTarget target) {
    switch (target.which()) {
    case SymlinkTarget::Case::directory: return Texts::localized("type.folder");
    case SymlinkTarget::Case::broken: return Texts::localized("kind.symlinkBroken");
    case SymlinkTarget::Case::loop: return Texts::localized("kind.symlinkLoop");
    case SymlinkTarget::Case::inaccessible: return Texts::localized("kind.symlinkInaccessible");
    case SymlinkTarget::Case::file: break;
    }
    return Texts::localized("kind.symlink");
}

/// Nothing for what has a type of its own.
std::optional<std::string> nameByKind(FileKind kind) {
    switch (kind.which()) {
    case FileKind::Case::directory: return Texts::localized("type.folder");
    case FileKind::Case::symlink: return nameOfLink(kind.target());
    case FileKind::Case::other: return Texts::localized("kind.other");
    case FileKind::Case::file:
    case FileKind::Case::package: break;
    }
    return std::nullopt;
}

} // namespace

std::optional<std::string> known(FileItemView item) {
    if (auto name = nameByKind(item.kind())) return name;
    return answers().find(item.pathExtension());
}

std::string name(FileItemView item) {
    if (auto name = nameByKind(item.kind())) return *std::move(name);
    const auto identifier = item.typeIdentifier();
    return name(item.pathExtension(),
                identifier.hasValue() ? std::optional(identifier.value()) : std::nullopt);
}

std::string name(std::string_view extension, std::optional<std::string_view> typeIdentifier) {
    if (auto known = answers().find(extension)) return *std::move(known);
    return answers().keep(extension, made(extension, typeIdentifier));
}

} // namespace ombrel::FileTypeNames
