#pragma once

#include <plist/plist.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// libplist's nodes as owned values. Any thread.
namespace ombrel::PropertyList {

struct Release {
    void operator()(plist_t node) const noexcept { plist_free(node); }
};
/// A whole list, from its root on.
using Root = std::unique_ptr<void, Release>;
using Date = std::chrono::time_point<std::chrono::system_clock, std::chrono::microseconds>;

/// From the binary or the XML form; nothing when the bytes are neither.
[[nodiscard]] Root parse(std::string_view bytes);
/// The binary form.
[[nodiscard]] std::string binary(const Root& root);

/// The values of a dictionary's members; nothing for a member that is missing or of another type.
[[nodiscard]] std::optional<std::string> stringAt(plist_t dictionary, const char* key);
[[nodiscard]] std::optional<std::string> dataAt(plist_t dictionary, const char* key);
[[nodiscard]] std::optional<std::uint64_t> numberAt(plist_t dictionary, const char* key);
[[nodiscard]] std::optional<Date> dateAt(plist_t dictionary, const char* key);

/// Sets a member. `text` is UTF-8.
void setString(plist_t dictionary, const char* key, const std::string& text);
void setData(plist_t dictionary, const char* key, std::string_view bytes);
void setNumber(plist_t dictionary, const char* key, std::uint64_t number);
void setDate(plist_t dictionary, const char* key, Date date);

} // namespace ombrel::PropertyList
