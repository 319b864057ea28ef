#pragma once

#include "listing/DirectoryError.h"

#include <cstdint>
#include <optional>

namespace ombrel {

/// How far a pane's listing is. Equality is member-wise.
class ListingState {
public:
    enum class Case : std::uint8_t {
        failed,      ///< the listing failed; see `error`
        noLocation,  ///< there is nothing to show
        loading,     ///< a listing is under way; items may be there already
        loaded,      ///< the listing is complete
        invalidated, ///< the shown folder was removed or renamed away
    };

    /// Any case but `failed`.
    constexpr ListingState(Case which) noexcept : case_(which) {}
    [[nodiscard]] static constexpr ListingState failed(DirectoryError error) noexcept {
        ListingState state(Case::failed);
        state.error_ = error;
        return state;
    }

    [[nodiscard]] constexpr Case which() const noexcept { return case_; }
    /// Only for `failed`.
    [[nodiscard]] constexpr DirectoryError error() const noexcept { return *error_; }

    friend bool operator==(const ListingState&, const ListingState&) = default;

private:
    Case case_;
    std::optional<DirectoryError> error_;
};

} // namespace ombrel
