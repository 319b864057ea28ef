#pragma once

#include "base/FileURL.h"
#include "base/Text.h"

#include <cstdint>
#include <expected>
#include <string>

namespace ombrel {

/// What opening an item would mean. A plain value.
struct OpeningFacts {
    enum class Kind : std::uint8_t {
        folder,   ///< shown in place
        document, ///< opened by an application
        script,   ///< text that an interpreter runs
        launcher, ///< a desktop file
        program,  ///< machine code, or an image of a whole application
    };

    Kind kind = Kind::document;
    std::string type; ///< content type, by name and contents
    /// Whether the user has marked it as something to be run. Desktop files that are installed are, too.
    bool mayRun = false;
    /// Of a program: whether the system itself runs it; others (of Java, of Windows) are run by applications.
    bool isNative = true;

    /// Looks at the item, following links. The error is a sentence for people that names the item. Blocking.
    [[nodiscard]] static std::expected<OpeningFacts, Text> of(const FileURL& url);
};

} // namespace ombrel
