#pragma once

#include <cstdint>

namespace ombrel {

/// Where a symbolic link leads.
class SymlinkTarget {
public:
    enum class Case : std::uint8_t { inaccessible, file, directory, broken, loop };

    constexpr SymlinkTarget(Case which) noexcept : case_(which) {}
    [[nodiscard]] static constexpr SymlinkTarget inaccessible(int errorNumber) noexcept {
        return {Case::inaccessible, errorNumber};
    }
    /// What an error of `stat` on the link says of its target: ENOENT and ENOTDIR `broken`, ELOOP `loop`, any
    /// other `inaccessible`.
    [[nodiscard]] static SymlinkTarget fromError(int errorNumber) noexcept;

    [[nodiscard]] constexpr Case which() const noexcept { return case_; }
    /// The errno of `inaccessible`, otherwise 0.
    [[nodiscard]] constexpr int errorNumber() const noexcept { return errorNumber_; }

    friend bool operator==(SymlinkTarget, SymlinkTarget) = default;

private:
    constexpr SymlinkTarget(Case which, int errorNumber) noexcept : case_(which), errorNumber_(errorNumber) {}
    Case case_;
    int errorNumber_ = 0;
};

/// What a listed entry is. `package` is a folder whose name's extension stands for a package type.
class FileKind {
public:
    enum class Case : std::uint8_t { symlink, file, directory, package, other };

    /// Any case but `symlink`.
    constexpr FileKind(Case which) noexcept : case_(which) {}
    [[nodiscard]] static constexpr FileKind symlink(SymlinkTarget target) noexcept {
        FileKind kind(Case::symlink);
        kind.target_ = target;
        return kind;
    }

    [[nodiscard]] constexpr Case which() const noexcept { return case_; }
    /// Means something only for `symlink`.
    [[nodiscard]] constexpr SymlinkTarget target() const noexcept { return target_; }
    [[nodiscard]] constexpr bool isSymlinkTo(SymlinkTarget::Case target) const noexcept {
        return case_ == Case::symlink && target_.which() == target;
    }

    friend bool operator==(FileKind, FileKind) = default;

private:
    Case case_;
    SymlinkTarget target_ = SymlinkTarget::Case::file;
};

} // namespace ombrel
