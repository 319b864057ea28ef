#pragma once

#include "base/TextMap.h"
#include "listing/FileItem.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace ombrel {

/// Numbers for the kind texts of the Type column, so that a sort by kind makes and compares each text once
/// and not once per item. A number stands for one text, process-wide. An instance is a cache for one thread.
class KindTexts {
public:
    /// The number of an item's kind text.
    [[nodiscard]] std::uint32_t number(FileItemView item);

    /// The collation key of a numbered text. Any thread, for numbers that were handed over to it.
    [[nodiscard]] static std::string_view key(std::uint32_t number) noexcept;

private:
    static constexpr std::uint32_t unasked = 0xFFFFFFFF;

    TextMap<std::uint32_t> byExtension_;
    std::array<std::uint32_t, 16> byKind_ = filled();
    static constexpr std::array<std::uint32_t, 16> filled() {
        std::array<std::uint32_t, 16> numbers{};
        numbers.fill(unasked);
        return numbers;
    }
};

} // namespace ombrel
