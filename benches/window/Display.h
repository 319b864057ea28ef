#pragma once

#include "support/ScratchFolder.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "window/Process.h"

namespace ombrel::bench {

/// The pixels of a display, row by row.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;
};

/// A display that nobody sees, with a window manager on it. Its server keeps the pixels in a file that is
/// mapped here, so that looking at them costs neither the server nor the programs on it anything.
class Display {
public:
    /// Fails where the machine lacks the programs for it.
    Display();
    ~Display();
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    /// As $DISPLAY has it.
    [[nodiscard]] const std::string& name() const noexcept { return name_; }
    [[nodiscard]] int width() const noexcept { return width_; }
    [[nodiscard]] int height() const noexcept { return height_; }
    /// The first pixel of a row, as it is at this moment.
    [[nodiscard]] const std::uint32_t* row(int y) const noexcept {
        return pixels_ + static_cast<std::size_t>(y) * stride_;
    }
    [[nodiscard]] Picture picture() const;
    /// How many pixels differ from a picture of this display.
    [[nodiscard]] std::size_t differences(const Picture& from) const;

    /// Drops what a program of GTK leaves on the display for those that come after it: a list of visuals, for
    /// which each would load the libraries of GL otherwise and keep them.
    void forgetVisuals() const;

private:
    void map(const std::string& file);
    void startManager();

    const ScratchFolder folder_;
    std::unique_ptr<Process> server_;
    std::unique_ptr<Process> manager_;
    std::string name_;
    void* file_ = nullptr;
    std::size_t fileSize_ = 0;
    const std::uint32_t* pixels_ = nullptr;
    std::size_t stride_ = 0; ///< pixels from one row to the next
    int width_ = 0, height_ = 0;
};

} // namespace ombrel::bench
