#include "browser/NamePrefix.h"

#include <algorithm>

namespace ombrel {
namespace {

QString folded(const QString& text) {
    QString result;
    for (const QChar c : text.normalized(QString::NormalizationForm_KD))
        if (!c.isMark()) result += c;
    return result.toCaseFolded();
}

bool isASCII(std::string_view bytes) {
    return std::ranges::all_of(bytes, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

char lowered(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

} // namespace

NamePrefix::NamePrefix(const QString& typed) : folded_(folded(typed)) {
    const QByteArray bytes = folded_.toUtf8();
    if (isASCII({bytes.data(), static_cast<std::size_t>(bytes.size())})) ascii_ = bytes.toStdString();
}

bool NamePrefix::begins(std::string_view name) const {
    // Nearly all names are decided by their first bytes without becoming text.
    if (!ascii_.empty()) {
        const auto head = name.substr(0, ascii_.size());
        const auto [at, wanted] = std::ranges::mismatch(head, ascii_, {}, lowered);
        if (wanted == ascii_.end()) return true;
        if (at == head.end() || static_cast<unsigned char>(*at) < 0x80) return false;
    }
    // A character takes at most four bytes, and folding drops marks: a few more than are wanted will do.
    constexpr std::size_t bytesPerCharacter = 4, spare = 32;
    const auto head = name.substr(0, static_cast<std::size_t>(folded_.size()) * bytesPerCharacter + spare);
    return folded(QString::fromUtf8(head.data(), static_cast<qsizetype>(head.size()))).startsWith(folded_);
}

std::optional<std::size_t> NamePrefix::find(const FileItemList& items, std::size_t start,
                                            const std::stop_token& stop) const {
    if (folded_.isEmpty()) return std::nullopt;
    constexpr std::size_t rowsBetweenLooks = 4096;
    for (std::size_t step = 0; step < items.size(); ++step) {
        if (step % rowsBetweenLooks == 0 && stop.stop_requested()) return std::nullopt;
        const std::size_t row = (start + step) % items.size();
        if (begins(items[row].name())) return row;
    }
    return std::nullopt;
}

} // namespace ombrel
