#pragma once

#include "base/FileURL.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ombrel {

/// The files that the series of pictures shows: the home of somebody who surveys land, in a scratch folder
/// that goes with this object. Blocking; not for the main thread of a program that people use.
class PictureContent {
public:
    /// Makes an empty scratch folder. `isMade` tells whether it could.
    PictureContent();
    ~PictureContent();
    PictureContent(const PictureContent&) = delete;
    PictureContent& operator=(const PictureContent&) = delete;

    [[nodiscard]] bool isMade() const noexcept { return !root_.empty(); }
    /// Has this process, which has made no application object yet, keep its settings, caches and data here,
    /// and write dates as the pictures do.
    void enter() const;
    /// Makes all files; false when one could not be made.
    [[nodiscard]] bool fill() const;
    /// Removes what was copied from the camera card meanwhile.
    void tidy() const;

    /// A place by its path below the scratch folder.
    [[nodiscard]] FileURL at(std::string_view path) const;
    [[nodiscard]] FileURL home() const { return at("home/ines"); }
    [[nodiscard]] FileURL projects() const { return at("home/ines/Projects"); }
    [[nodiscard]] FileURL survey() const { return at("home/ines/Projects/Field survey 2026"); }
    [[nodiscard]] FileURL restricted() const { return at("home/ines/Projects/Restricted data"); }
    [[nodiscard]] FileURL cameraCard() const { return at("media/ines/Camera card"); }

    /// What is on the camera card.
    [[nodiscard]] static std::vector<std::string> pictureNames();

private:
    std::string root_;
};

/// While it lives, no folder can be opened for reading: what the owner of all files, whom no permission
/// stops, needs to see how it is for everybody else.
class ClosedFolders {
public:
    ClosedFolders();
    ~ClosedFolders();
    ClosedFolders(const ClosedFolders&) = delete;
    ClosedFolders& operator=(const ClosedFolders&) = delete;

private:
    class Refusal;
    std::unique_ptr<Refusal> refusal_;
};

} // namespace ombrel
