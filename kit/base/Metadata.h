#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>
#include <variant>

namespace ombrel {

/// One attribute of an entry: its value, or that it could not be read (with the error number when known), or
/// that it does not apply or was not asked for. The three are never the same thing, neither in a sort nor on
/// the screen.
template <typename T>
class Metadata {
public:
    /// `unknown`.
    Metadata() = default;
    Metadata(T value) : state_(std::in_place_index<0>, std::move(value)) {}
    [[nodiscard]] static Metadata failed(std::optional<int> errorNumber = std::nullopt) {
        Metadata metadata;
        metadata.state_.template emplace<1>(Failure{errorNumber});
        return metadata;
    }

    [[nodiscard]] bool hasValue() const noexcept { return state_.index() == 0; }
    [[nodiscard]] bool isFailed() const noexcept { return state_.index() == 1; }
    [[nodiscard]] bool isUnknown() const noexcept { return state_.index() == 2; }

    /// Only when `hasValue()`.
    [[nodiscard]] const T& value() const { return std::get<0>(state_); }
    /// Only when `isFailed()`; empty when the reason is not known.
    [[nodiscard]] std::optional<int> errorNumber() const { return std::get<1>(state_).number; }

    friend bool operator==(const Metadata&, const Metadata&) = default;

private:
    struct Failure {
        std::optional<int> number;
        friend bool operator==(const Failure&, const Failure&) = default;
    };
    std::variant<T, Failure, std::monostate> state_{std::in_place_index<2>};
};

} // namespace ombrel
