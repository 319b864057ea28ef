#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ombrel::cli {

/// A JSON object (RFC 8259) on one line, put together member by member. Whole numbers are written in full,
/// although some readers keep only 53 bits of them. Text that is not UTF-8 is written with U+FFFD for what is
/// not.
class JSONObject {
public:
    void add(std::string_view key, std::string_view text);
    void add(std::string_view key, const char* text) { add(key, std::string_view(text)); }
    void add(std::string_view key, bool flag) { addLiteral(key, flag ? "true" : "false"); }
    void add(std::string_view key, std::integral auto number) { addLiteral(key, std::to_string(number)); }
    void add(std::string_view key, std::nullopt_t) { addLiteral(key, "null"); }
    template <typename T>
    void add(std::string_view key, const std::optional<T>& value) {
        if (value)
            add(key, *value);
        else
            add(key, std::nullopt);
    }

    /// A name or path. One that is not UTF-8 gets a second member, `key` with "Bytes" behind it: its bytes in
    /// base64.
    void addBytes(std::string_view key, std::string_view bytes);
    /// The name in <errno.h>, which scripts may rely on; the number in text where it has none; null without a
    /// number.
    void addErrorName(std::string_view key, std::optional<int> number);
    /// `literal` is JSON already.
    void addLiteral(std::string_view key, std::string_view literal);

    /// The object with a line end.
    [[nodiscard]] std::string line() && { return std::move(text_) + "}\n"; }

private:
    std::string text_ = "{";
};

} // namespace ombrel::cli
