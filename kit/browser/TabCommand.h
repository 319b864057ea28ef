#pragma once

#include <cstddef>
#include <cstdint>

namespace ombrel {

/// A change of the active tab. A plain value.
class TabCommand {
public:
    enum class Case : std::uint8_t { index, next, previous, last };

    /// To the tab at a position that counts from 0.
    [[nodiscard]] static constexpr TabCommand index(std::size_t position) noexcept {
        return {Case::index, position};
    }
    [[nodiscard]] static constexpr TabCommand next() noexcept { return {Case::next}; }
    [[nodiscard]] static constexpr TabCommand previous() noexcept { return {Case::previous}; }
    [[nodiscard]] static constexpr TabCommand last() noexcept { return {Case::last}; }

    [[nodiscard]] constexpr Case which() const noexcept { return which_; }
    /// Of `index`; otherwise 0.
    [[nodiscard]] constexpr std::size_t position() const noexcept { return position_; }

    friend bool operator==(const TabCommand&, const TabCommand&) = default;

private:
    constexpr TabCommand(Case which, std::size_t position = 0) noexcept
        : which_(which), position_(position) {}

    Case which_;
    std::size_t position_;
};

} // namespace ombrel
