#include "services/MimeAppsList.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace ombrel::MimeAppsList {
namespace {

using Lines = std::vector<std::string>;

std::string_view trimmed(std::string_view text) {
    constexpr auto blanks = " \t\r";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

Lines linesOf(std::string_view text) {
    Lines lines;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

/// Where the lines of a group begin and end.
struct Group {
    std::size_t begin, end;
};

std::optional<Group> groupNamed(const Lines& lines, std::string_view header) {
    for (std::size_t row = 0; row < lines.size(); ++row) {
        if (trimmed(lines[row]) != header) continue;
        std::size_t end = row + 1;
        while (end < lines.size() && !trimmed(lines[end]).starts_with('['))
            ++end;
        return Group{row + 1, end};
    }
    return std::nullopt;
}

std::optional<std::size_t> entryOf(const Lines& lines, const Group& group, std::string_view type) {
    for (std::size_t row = group.begin; row < group.end; ++row) {
        const std::string_view line = lines[row];
        const auto equals = line.find('=');
        if (equals != std::string_view::npos && trimmed(line.substr(0, equals)) == type) return row;
    }
    return std::nullopt;
}

/// The applications that a line names, without `left`.
std::string othersOf(std::string_view line, std::string_view left) {
    std::string others;
    for (auto rest = line.substr(line.find('=') + 1); !rest.empty();) {
        const auto end = std::min(rest.find(';'), rest.size());
        const auto one = trimmed(rest.substr(0, end));
        if (!one.empty() && one != left) others.append(one).append(1, ';');
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return others;
}

enum class Others : bool { drop, keep };

void putFirst(Lines& lines, std::string_view header, std::string_view type, std::string_view application,
              Others others) {
    auto group = groupNamed(lines, header);
    if (!group) {
        if (!lines.empty() && !trimmed(lines.back()).empty()) lines.emplace_back();
        lines.emplace_back(header);
        group = Group{lines.size(), lines.size()};
    }
    std::string line = std::string(type) + "=" + std::string(application) + ";";
    if (const auto row = entryOf(lines, *group, type)) {
        if (others == Others::keep) line += othersOf(lines[*row], application);
        lines[*row] = std::move(line);
        return;
    }
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(group->begin), std::move(line));
}

void takeOut(Lines& lines, std::string_view header, std::string_view type, std::string_view application) {
    const auto group = groupNamed(lines, header);
    const auto row = group ? entryOf(lines, *group, type) : std::nullopt;
    if (!row) return;
    const std::string others = othersOf(lines[*row], application);
    if (others.empty())
        lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(*row));
    else
        lines[*row] = std::string(type) + "=" + others;
}

} // namespace

std::string withDefault(std::string_view text, std::string_view type, std::string_view application) {
    Lines lines = linesOf(text);
    putFirst(lines, "[Default Applications]", type, application, Others::drop);
    putFirst(lines, "[Added Associations]", type, application, Others::keep);
    takeOut(lines, "[Removed Associations]", type, application);
    std::string result;
    for (const auto& line : lines)
        result.append(line).append(1, '\n');
    return result;
}

} // namespace ombrel::MimeAppsList
