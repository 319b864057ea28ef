#include "listing/KindTexts.h"

#include "base/FileName.h"
#include "listing/FileTypeNames.h"
#include "listing/NameCollation.h"

#include <atomic>
#include <memory>
#include <mutex>

namespace ombrel {
namespace {

/// All kind texts of the process. Only grows; what a number stands for is read without the lock, because a
/// number reaches another thread only through something that orders memory.
class Registry {
public:
    std::uint32_t number(const std::string& text) {
        const std::scoped_lock lock(mutex_);
        if (numbers_.size() == capacity && !numbers_.contains(text)) return capacity - 1;
        const auto [known, isNew] = numbers_.try_emplace(text, static_cast<std::uint32_t>(numbers_.size()));
        if (isNew) {
            auto& chunk = chunks_[known->second / chunkSize];
            if (!chunk) chunk = std::make_unique<Chunk>();
            NameCollation::appendKey(text, (*chunk)[known->second % chunkSize]);
        }
        return known->second;
    }

    std::string_view key(std::uint32_t number) const noexcept {
        return (*chunks_[number / chunkSize])[number % chunkSize];
    }

private:
    static constexpr std::uint32_t chunkSize = 4096;
    /// Far more extensions than exist; whatever comes later sorts as the last one did.
    static constexpr std::uint32_t capacity = chunkSize * 4096;
    using Chunk = std::array<std::string, chunkSize>;

    std::mutex mutex_; // guards numbers_ and the growing of chunks_
    std::unordered_map<std::string, std::uint32_t> numbers_;
    std::array<std::unique_ptr<Chunk>, capacity / chunkSize> chunks_;
};

Registry& registry() {
    static auto& instance = *new Registry;
    return instance;
}

} // namespace

std::uint32_t KindTexts::number(FileItemView item) {
    const auto kind = item.kind();
    if (kind.which() != FileKind::Case::file && kind.which() != FileKind::Case::package) {
        const auto index = static_cast<std::size_t>(kind.which()) == 0
                               ? static_cast<std::size_t>(kind.target().which())
                               : 8 + static_cast<std::size_t>(kind.which());
        if (byKind_[index] == unasked) byKind_[index] = registry().number(FileTypeNames::name(item));
        return byKind_[index];
    }
    const auto extension = FileName::extension(item.name());
    if (const auto known = byExtension_.find(extension); known != byExtension_.end()) return known->second;
    const auto number = registry().number(FileTypeNames::name(item));
    byExtension_.emplace(extension, number);
    return number;
}

std::string_view KindTexts::key(std::uint32_t number) noexcept {
    return registry().key(number);
}

} // namespace ombrel
