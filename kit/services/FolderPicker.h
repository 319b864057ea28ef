#pragma once

#include "base/FileURL.h"

#include <functional>
#include <optional>
#include <string>

namespace ombrel {

/// The dialog in which the user picks a folder to grant. Main thread; neither call waits for the user.
class FolderPicker {
public:
    struct Request {
        std::optional<FileURL> startingAt;
        std::string message; ///< what for
        std::string prompt;  ///< on the button
    };

    virtual ~FolderPicker() = default;
    /// One existing folder is to be picked; it may be made in the dialog. `done` is called once, with nothing
    /// when the user picked none.
    virtual void pickFolder(const Request& request, std::function<void(std::optional<FileURL>)> done) = 0;
    /// Tells the user why the picked folder could not be granted.
    virtual void showFailure(const std::string& message) = 0;
};

} // namespace ombrel
