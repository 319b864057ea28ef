#pragma once

#include <string>

namespace ombrel::bench {

/// A new folder, removed with all that is in it.
class ScratchFolder {
public:
    /// Below the folder `base`. Exits the bench with a message when it cannot be made.
    explicit ScratchFolder(const std::string& base);
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    [[nodiscard]] const std::string& path() const noexcept { return path_; }
    /// A folder in it, made with those above it.
    [[nodiscard]] std::string folder(const std::string& name) const;

private:
    std::string path_;
};

/// Fills the folder with `count` empty files that have usual names; no folders, no links.
void makeEmptyFiles(const std::string& folder, long count);

} // namespace ombrel::bench
