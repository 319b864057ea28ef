#pragma once

#include "base/FileURL.h"

#include <string>
#include <vector>

namespace ombrel {

/// One application of the desktop, as its desktop file describes it. A plain value.
struct DesktopApplication {
    std::string id;   ///< "org.example.Editor.desktop"; empty for a desktop file outside the usual folders
    std::string name; ///< UTF-8, in the interface language
    std::string icon; ///< a name of the icon theme, or an absolute path; may be empty
    FileURL file;     ///< the desktop file

    friend bool operator==(const DesktopApplication&, const DesktopApplication&) = default;
};

/// What some files can be opened with.
struct ApplicationChoice {
    /// Those that open all of the files, the default one first, then by the desktop's own preference.
    std::vector<DesktopApplication> applications;
    /// Whether the first one is the default for all of the files.
    bool hasDefault = false;
    /// The content types of the files, each once.
    std::vector<std::string> types;
};

} // namespace ombrel
