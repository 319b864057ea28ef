#pragma once

#include "base/FileURL.h"
#include "base/Hash.h"
#include "operations/FileOperationError.h"

#include <cstdint>
#include <optional>

namespace ombrel {

/// What became of one item. Equality compares payloads too.
class ItemOutcome {
public:
    enum class Case : std::uint8_t { completed, failed, copiedSourceKept, skipped, cancelled };

    /// Done; the new location where there is one.
    [[nodiscard]] static ItemOutcome completed(std::optional<FileURL> destination = std::nullopt);
    /// Not done.
    [[nodiscard]] static ItemOutcome failed(FileOperationError error);
    /// A move that copied the item to `destination` and had to keep the source.
    [[nodiscard]] static ItemOutcome copiedSourceKept(FileURL destination, FileOperationError reason);
    /// Left alone by the user's choice.
    [[nodiscard]] static ItemOutcome skipped() { return ItemOutcome(Case::skipped); }
    /// Not reached, or interrupted, because the job was cancelled.
    [[nodiscard]] static ItemOutcome cancelled() { return ItemOutcome(Case::cancelled); }

    [[nodiscard]] Case which() const noexcept { return case_; }
    [[nodiscard]] bool isSuccess() const noexcept { return case_ == Case::completed; }
    /// Of `completed` (where there is one) and `copiedSourceKept`.
    [[nodiscard]] const std::optional<FileURL>& destination() const noexcept { return destination_; }
    /// Of `failed` and `copiedSourceKept`.
    [[nodiscard]] const std::optional<FileOperationError>& error() const noexcept { return error_; }
    [[nodiscard]] std::size_t hashValue() const { return hashOf(case_, destination_, error_); }

    friend bool operator==(const ItemOutcome&, const ItemOutcome&) = default;

private:
    explicit ItemOutcome(Case which) noexcept : case_(which) {}

    Case case_;
    std::optional<FileURL> destination_;
    std::optional<FileOperationError> error_;
};

template <>
struct RawValues<ItemOutcome::Case> {
    static constexpr std::string_view names[] = {"completed", "failed", "copiedSourceKept", "skipped",
                                                 "cancelled"};
};

} // namespace ombrel
