#include "services/PropertyList.h"

#include <limits>

namespace ombrel::PropertyList {
namespace {

/// The format counts from the beginning of 2001, UTC.
constexpr std::chrono::sys_seconds epoch = std::chrono::sys_days(std::chrono::January / 1 / 2001);

plist_t memberOfType(plist_t dictionary, const char* key, plist_type type) {
    if (plist_get_node_type(dictionary) != PLIST_DICT) return nullptr;
    const plist_t member = plist_dict_get_item(dictionary, key);
    return member && plist_get_node_type(member) == type ? member : nullptr;
}

} // namespace

Root parse(std::string_view bytes) {
    if (bytes.size() > std::numeric_limits<std::uint32_t>::max()) return nullptr;
    plist_t root = nullptr;
    plist_from_memory(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &root);
    return Root(root);
}

std::string binary(const Root& root) {
    char* bytes = nullptr;
    std::uint32_t length = 0;
    plist_to_bin(root.get(), &bytes, &length);
    if (!bytes) return {};
    const std::unique_ptr<char, decltype(&plist_to_bin_free)> owned(bytes, plist_to_bin_free);
    return {bytes, length};
}

std::optional<std::string> stringAt(plist_t dictionary, const char* key) {
    const plist_t member = memberOfType(dictionary, key, PLIST_STRING);
    if (!member) return std::nullopt;
    std::uint64_t length = 0;
    const char* text = plist_get_string_ptr(member, &length);
    return text ? std::optional<std::string>(std::in_place, text, length) : std::nullopt;
}

std::optional<std::string> dataAt(plist_t dictionary, const char* key) {
    const plist_t member = memberOfType(dictionary, key, PLIST_DATA);
    if (!member) return std::nullopt;
    std::uint64_t length = 0;
    const char* bytes = plist_get_data_ptr(member, &length);
    return bytes ? std::string(bytes, length) : std::string();
}

std::optional<std::uint64_t> numberAt(plist_t dictionary, const char* key) {
    const plist_t member = memberOfType(dictionary, key, PLIST_UINT);
    if (!member) return std::nullopt;
    std::uint64_t number = 0;
    plist_get_uint_val(member, &number);
    return number;
}

std::optional<Date> dateAt(plist_t dictionary, const char* key) {
    const plist_t member = memberOfType(dictionary, key, PLIST_DATE);
    if (!member) return std::nullopt;
    std::int32_t seconds = 0, microseconds = 0;
    plist_get_date_val(member, &seconds, &microseconds);
    return epoch + std::chrono::seconds(seconds) + std::chrono::microseconds(microseconds);
}

void setString(plist_t dictionary, const char* key, const std::string& text) {
    plist_dict_set_item(dictionary, key, plist_new_string(text.c_str()));
}

void setData(plist_t dictionary, const char* key, std::string_view bytes) {
    plist_dict_set_item(dictionary, key, plist_new_data(bytes.data(), bytes.size()));
}

void setNumber(plist_t dictionary, const char* key, std::uint64_t number) {
    plist_dict_set_item(dictionary, key, plist_new_uint(number));
}

void setDate(plist_t dictionary, const char* key, Date date) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(date);
    plist_dict_set_item(dictionary, key,
                        plist_new_date(static_cast<std::int32_t>((seconds - epoch).count()),
                                       static_cast<std::int32_t>((date - seconds).count())));
}

} // namespace ombrel::PropertyList
