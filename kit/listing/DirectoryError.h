#pragma once

#include "base/Text.h"

#include <cstdint>
#include <string>

namespace ombrel {

/// Why a folder could not be listed. Equality is member-wise.
class DirectoryError {
public:
    enum class Case : std::uint8_t { io, notFound, permissionDenied, notADirectory, volumeUnavailable };

    /// Any case but `io`.
    constexpr DirectoryError(Case which) noexcept : case_(which) {}
    [[nodiscard]] static constexpr DirectoryError io(int errorNumber) noexcept {
        DirectoryError error(Case::io);
        error.errorNumber_ = errorNumber;
        return error;
    }
    /// ENOENT `notFound`; EPERM, EACCES `permissionDenied`; ENOTDIR `notADirectory`; EIO, ENXIO, ENODEV
    /// `volumeUnavailable`; any other `io`.
    [[nodiscard]] static DirectoryError from(int errorNumber) noexcept;

    [[nodiscard]] constexpr Case which() const noexcept { return case_; }
    /// Means something only for `io`.
    [[nodiscard]] constexpr int errorNumber() const noexcept { return errorNumber_; }

    [[nodiscard]] Text text() const;
    [[nodiscard]] std::string localizedDescription() const { return text().localized(); }

    friend bool operator==(DirectoryError, DirectoryError) = default;

private:
    Case case_;
    int errorNumber_ = 0;
};

} // namespace ombrel
