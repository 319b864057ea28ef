#pragma once

#include "base/FileURL.h"
#include "base/Text.h"

#include <expected>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ombrel {

/// What the words of the command line ask for. Words are bytes: they name files.
struct Arguments {
    enum class Request : unsigned char { windows, picture, series, help, version };

    Request request = Request::windows;
    std::string pictureFile; ///< only for `picture`, and for `series` the folder of its pictures
    bool isDark = false;     ///< only for `picture`
    std::vector<FileURL> folders;

    /// Folders may be paths, seen from the working folder when they are relative, or "file:" URIs. Fails with
    /// a sentence.
    [[nodiscard]] static std::expected<Arguments, Text> parse(std::span<const std::string_view> words);

    /// What `--help` prints.
    [[nodiscard]] static std::string help();
};

} // namespace ombrel
