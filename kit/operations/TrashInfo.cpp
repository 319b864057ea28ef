#include "operations/TrashInfo.h"

#include "base/PercentEncoding.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace ombrel {
namespace {

/// Whether a path holds "..", which would lead a restored item to a place that the text does not show.
bool leadsUp(std::string_view path) {
    for (std::size_t start = 0; start <= path.size();) {
        auto end = path.find('/', start);
        if (end == std::string_view::npos) end = path.size();
        if (path.substr(start, end - start) == "..") return true;
        start = end + 1;
    }
    return false;
}

std::optional<std::int64_t> parsedDate(const std::string& text) {
    std::tm parts{};
    // The form without dashes was written by older programs.
    if (std::sscanf(text.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d", &parts.tm_year, &parts.tm_mon, &parts.tm_mday,
                    &parts.tm_hour, &parts.tm_min, &parts.tm_sec) != 6 &&
        std::sscanf(text.c_str(), "%4d%2d%2dT%2d:%2d:%2d", &parts.tm_year, &parts.tm_mon, &parts.tm_mday,
                    &parts.tm_hour, &parts.tm_min, &parts.tm_sec) != 6)
        return std::nullopt;
    const bool isPossible = parts.tm_year >= 1900 && parts.tm_mon >= 1 && parts.tm_mon <= 12 &&
                            parts.tm_mday >= 1 && parts.tm_mday <= 31 && parts.tm_hour >= 0 &&
                            parts.tm_hour <= 23 && parts.tm_min >= 0 && parts.tm_min <= 59 &&
                            parts.tm_sec >= 0 && parts.tm_sec <= 60;
    if (!isPossible) return std::nullopt;
    parts.tm_year -= 1900;
    parts.tm_mon -= 1;
    parts.tm_isdst = -1;
    return std::mktime(&parts);
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

} // namespace

std::string TrashInfo::text() const {
    std::string result = "[Trash Info]\nPath=" + PercentEncoding::encoded(path, "-._~/") + "\n";
    if (deletedAt) result += "DeletionDate=" + trashDateText(*deletedAt) + "\n";
    return result;
}

std::optional<TrashInfo> TrashInfo::parse(std::string_view text) {
    std::optional<std::string_view> path, date;
    bool isInGroup = false;
    while (!text.empty()) {
        const auto end = text.find('\n');
        const auto line = trimmed(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.starts_with('[')) {
            isInGroup = line == "[Trash Info]";
            continue;
        }
        const auto sign = line.find('=');
        if (!isInGroup || sign == std::string_view::npos) continue;
        const auto key = trimmed(line.substr(0, sign)), value = trimmed(line.substr(sign + 1));
        if (key == "Path" && !path) path = value;
        if (key == "DeletionDate" && !date) date = value;
    }
    const auto bytes = path ? PercentEncoding::decoded(*path) : std::nullopt;
    if (!bytes || bytes->empty() || bytes->find('\0') != std::string::npos || leadsUp(*bytes))
        return std::nullopt;
    return TrashInfo{*bytes, date ? parsedDate(std::string(*date)) : std::nullopt};
}

std::string trashDateText(std::int64_t secondsSince1970) {
    const std::time_t time = secondsSince1970;
    std::tm parts{};
    ::localtime_r(&time, &parts);
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &parts);
    return text.data();
}

} // namespace ombrel
