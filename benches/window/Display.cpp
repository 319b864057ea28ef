#include "window/Display.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace ombrel::bench {
namespace {

constexpr auto screen = "1600x1000x24";
constexpr auto memoryFolder = "/dev/shm";

/// Of the dump that the server keeps; numbers of 32 bits, the largest byte first.
enum HeaderField { headerSize, width = 4, height = 5, bitsPerPixel = 11, bytesPerLine = 12, colors = 19 };
constexpr std::size_t colorBytes = 12;
constexpr std::uint32_t wantedBits = 32;

std::string scratchBase() {
    return ::access(memoryFolder, W_OK) == 0 ? memoryFolder : "/tmp";
}

std::string needed(const char* program) {
    const std::string path = programPath(program);
    if (path.empty()) fail(std::string(program) + " is not installed");
    return path;
}

} // namespace

Display::Display() : folder_(scratchBase()) {
    server_ = std::make_unique<Process>(std::vector<std::string>{needed("Xvfb"), "-displayfd", "3", "-screen",
                                                                 "0", screen, "-fbdir", folder_.path(),
                                                                 "-nolisten", "tcp", "-noreset"},
                                        std::vector<std::string>{});
    const std::string number = server_->readLine();
    if (number.empty()) fail("the display server does not start");
    name_ = ":" + number;
    map(folder_.path() + "/Xvfb_screen0");
    startManager();
}

Display::~Display() {
    manager_.reset();
    server_.reset();
    if (file_) ::munmap(file_, fileSize_);
}

void Display::map(const std::string& file) {
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat facts{};
    if (descriptor < 0 || ::fstat(descriptor, &facts) != 0) fail("the server keeps no picture");
    fileSize_ = static_cast<std::size_t>(facts.st_size);
    file_ = ::mmap(nullptr, fileSize_, PROT_READ, MAP_SHARED, descriptor, 0);
    ::close(descriptor);
    if (file_ == MAP_FAILED) fail("the picture of the server cannot be mapped");
    const auto* const header = static_cast<const std::uint32_t*>(file_);
    const auto field = [header](HeaderField which) { return ntohl(header[which]); };
    if (field(bitsPerPixel) != wantedBits) fail("the server's pixels are not of 32 bits");
    width_ = static_cast<int>(field(HeaderField::width));
    height_ = static_cast<int>(field(HeaderField::height));
    stride_ = field(bytesPerLine) / sizeof(std::uint32_t);
    const std::size_t first = field(headerSize) + field(colors) * colorBytes;
    pixels_ = reinterpret_cast<const std::uint32_t*>(static_cast<const char*>(file_) + first);
}

void Display::startManager() {
    const std::vector<std::string> variables = {"DISPLAY=" + name_};
    manager_ =
        std::make_unique<Process>(std::vector<std::string>{needed("openbox"), "--sm-disable"}, variables);
    // It has the say once the root window names it, and xdotool can ask it for its desktops.
    const std::string hand = needed("xdotool");
    constexpr int mostTries = 100;
    for (int tries = 0; tries < mostTries; ++tries) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        const Process asking({"/bin/sh", "-c", "\"$0\" get_num_desktops >&3 2>/dev/null", hand}, variables);
        const std::string answer = asking.readLine();
        if (answer.find_first_of("123456789") != 0) continue;
        // Out of the way of every window.
        const Process moving({"/bin/sh", "-c", "\"$0\" mousemove 1599 999; echo done >&3", hand}, variables);
        (void)moving.readLine();
        return;
    }
    fail("the window manager does not start");
}

void Display::forgetVisuals() const {
    const Process removing(
        {"/bin/sh", "-c", "\"$0\" -root -remove GDK_VISUALS; echo done >&3", needed("xprop")},
        {"DISPLAY=" + name_});
    (void)removing.readLine();
}

Picture Display::picture() const {
    Picture taken{.width = width_, .height = height_, .pixels = {}};
    taken.pixels.reserve(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
    for (int y = 0; y < height_; ++y)
        taken.pixels.insert(taken.pixels.end(), row(y), row(y) + width_);
    return taken;
}

std::size_t Display::differences(const Picture& from) const {
    std::size_t count = 0;
    const std::uint32_t* other = from.pixels.data();
    for (int y = 0; y < height_; ++y, other += width_) {
        const std::uint32_t* const now = row(y);
        for (int x = 0; x < width_; ++x)
            count += now[x] != other[x];
    }
    return count;
}

} // namespace ombrel::bench
