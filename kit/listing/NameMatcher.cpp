#include "listing/NameMatcher.h"

#include "base/FileName.h"
#include "listing/TextSearch.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace ombrel {
namespace {

constexpr std::size_t word = sizeof(std::uint64_t);
constexpr std::uint64_t eachByte = 0x0101010101010101;

/// Lowers the ASCII letters of eight bytes at once and leaves every other byte.
std::uint64_t lowered(std::uint64_t bytes) noexcept {
    const std::uint64_t low = bytes & (eachByte * 0x7F);
    const std::uint64_t atLeastA = low + eachByte * (0x80 - 'A');
    const std::uint64_t aboveZ = low + eachByte * (0x7F - 'Z');
    const std::uint64_t isUpper = atLeastA & ~aboveZ & ~bytes & (eachByte * 0x80);
    return bytes | isUpper >> 2;
}

/// Copies `name` with ASCII letters lowered; `to` has room for whole words. Answers whether all of it is
/// ASCII.
bool fold(std::string_view name, char* to) noexcept {
    std::uint64_t all = 0;
    std::size_t done = 0;
    for (; done + word <= name.size(); done += word) {
        std::uint64_t bytes;
        std::memcpy(&bytes, name.data() + done, word);
        all |= bytes;
        bytes = lowered(bytes);
        std::memcpy(to + done, &bytes, word);
    }
    if (done < name.size()) {
        std::uint64_t bytes = 0;
        std::memcpy(&bytes, name.data() + done, name.size() - done);
        all |= bytes;
        bytes = lowered(bytes);
        std::memcpy(to + done, &bytes, word);
    }
    return (all & (eachByte * 0x80)) == 0;
}

bool isPlain(std::string_view text) noexcept {
    return std::ranges::all_of(text, [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

} // namespace

NameMatcher::NameMatcher(std::string_view text)
    : folded_(FileName::loweredASCII(text)), text_(text), isASCII_(isPlain(text)) {
    if (isASCII_) return;
    search_ = std::make_unique<TextSearch>(text_);
    auto spelling = search_->spelling();
    fitsPlainNames_ = spelling.fitsPlainNames;
    if (!spelling.letters) return;
    folded_ = std::move(*spelling.letters);
    isASCII_ = true;
}
NameMatcher::NameMatcher(NameMatcher&&) noexcept = default;
NameMatcher& NameMatcher::operator=(NameMatcher&&) noexcept = default;
NameMatcher::~NameMatcher() = default;

bool NameMatcher::matches(std::string_view name) {
    if (folded_.empty()) return true;
    char near[256];
    char* bytes = near;
    if (name.size() > sizeof near - word) {
        long_.resize(name.size() + word);
        bytes = long_.data();
    }
    const bool isNamePlain = fold(name, bytes);
    if (std::string_view(bytes, name.size()).find(folded_) != std::string_view::npos) return true;
    if (isNamePlain && (isASCII_ || !fitsPlainNames_)) return false;
    if (!search_) search_ = std::make_unique<TextSearch>(text_);
    if (isASCII_ && !search_->mayWeighBeyondASCII(name)) return false;
    return search_->finds(name);
}

} // namespace ombrel
