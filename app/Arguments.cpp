#include "app/Arguments.h"

#include "base/FileName.h"

#include <unistd.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <utility>

namespace ombrel {
namespace {

std::optional<FileURL> locationOf(std::string_view word) {
    if (word.starts_with("file:")) {
        const auto url = FileURL::fromURI(word);
        return url ? std::optional(*url) : std::nullopt;
    }
    if (word.empty()) return std::nullopt;
    std::string path(word);
    if (path.front() != '/') {
        const std::unique_ptr<char, decltype(&std::free)> working(::getcwd(nullptr, 0), &std::free);
        if (!working) return std::nullopt;
        path = std::string(working.get()) + '/' + path;
    }
    const auto url = FileURL::fromPath(path);
    return url ? std::optional(*url) : std::nullopt;
}

Text withWord(std::string_view key, std::string_view word) {
    return {key, {FileName::displayText(word)}};
}

struct Option {
    std::string_view name;
    std::string_view value;
    std::string_view textKey;
};

constexpr std::array options = {
    Option{"--screenshot", " FILE [FOLDER]", "app.help.screenshot"},
    Option{"--screenshots", " FOLDER", "app.help.screenshots"},
    Option{"--dark", "", "app.help.dark"},
    Option{"--help", "", "app.help.help"},
    Option{"--version", "", "app.help.version"},
};

} // namespace

std::expected<Arguments, Text> Arguments::parse(std::span<const std::string_view> words) {
    Arguments arguments;
    bool takesOptions = true;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string_view word = words[i];
        if (takesOptions && word == "--") {
            takesOptions = false;
        } else if (takesOptions && word == "--help") {
            return Arguments{.request = Request::help, .pictureFile = {}, .folders = {}};
        } else if (takesOptions && word == "--version") {
            return Arguments{.request = Request::version, .pictureFile = {}, .folders = {}};
        } else if (takesOptions && word == "--dark") {
            arguments.isDark = true;
        } else if (takesOptions && (word == "--screenshot" || word == "--screenshots")) {
            if (i + 1 == words.size() || words[i + 1].empty())
                return std::unexpected(withWord("app.error.optionNeedsFile", word));
            arguments.request = word == "--screenshot" ? Request::picture : Request::series;
            arguments.pictureFile = words[++i];
        } else if (takesOptions && word.starts_with('-') && word.size() > 1) {
            return std::unexpected(withWord("app.error.noSuchOption", word));
        } else if (auto folder = locationOf(word)) {
            arguments.folders.push_back(*std::move(folder));
        } else {
            return std::unexpected(withWord("app.error.notALocation", word));
        }
    }
    const bool isPicture = arguments.request == Request::picture;
    if (isPicture && arguments.folders.size() > 1) return std::unexpected(Text{"app.error.tooManyFolders"});
    if (arguments.request == Request::series && !arguments.folders.empty())
        return std::unexpected(Text{"app.error.seriesHasItsOwnFolders"});
    if (!isPicture && arguments.isDark) return std::unexpected(Text{"app.error.darkIsForPictures"});
    return arguments;
}

std::string Arguments::help() {
    constexpr std::size_t column = 30;
    std::string text =
        Texts::localized("app.help.usage") + "\n" + Texts::localized("app.help.summary") + "\n\n";
    for (const auto& option : options) {
        std::string line = "  " + std::string(option.name) + std::string(option.value);
        line.resize(std::max(line.size() + 2, column), ' ');
        text += line + Texts::localized(option.textKey) + "\n";
    }
    return text;
}

} // namespace ombrel
