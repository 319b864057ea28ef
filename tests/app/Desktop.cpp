#include "app/Desktop.h"

#include "app/Patience.h"
#include "support/TempTree.h"

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <utility>

namespace ombrel::testing {
namespace {

constexpr auto serverPath = "/usr/bin/Xvfb", managerPath = "/usr/bin/openbox", handPath = "/usr/bin/xdotool",
               busPath = "/usr/bin/dbus-daemon", cameraPath = "/usr/bin/import",
               surveyorPath = "/usr/bin/xwininfo";

/// A bus on which everybody may do everything, whoever started it.
constexpr auto busConfig = R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow user="*"/>
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

bool isThere(const char* program) {
    return ::access(program, X_OK) == 0;
}

} // namespace

std::unique_ptr<Desktop> Desktop::open() {
    if (!isThere(serverPath) || !isThere(managerPath) || !isThere(handPath)) return nullptr;
    auto server = std::make_unique<ChildProcess>(std::vector<std::string>{
        serverPath, "-displayfd", "2", "-screen", "0", "1600x1000x24", "-nolisten", "tcp",
        "-ac", // programs of other users too
        // Else the server starts anew, and drops who is just connecting, when its only client goes.
        "-noreset"});
    const auto isNumber = [](const std::string& line) {
        return !line.empty() && std::ranges::all_of(line, [](char c) { return c >= '0' && c <= '9'; });
    };
    std::string line = server->readErrorLine();
    while (!line.empty() && !isNumber(line))
        line = server->readErrorLine();
    if (line.empty()) return nullptr;
    return std::unique_ptr<Desktop>(new Desktop(std::move(server), ":" + line));
}

Desktop::Desktop(std::unique_ptr<ChildProcess> server, std::string display)
    : server_(std::move(server)), display_(std::move(display)) {
    manager_ = start({managerPath});
    // The manager has the say once the root window names it.
    comesTrue([this] { return hand({"get_num_desktops"}).find_first_of("123456789") == 0; });
}

Desktop::~Desktop() {
    for (auto& process : {manager_.get(), server_.get()}) {
        process->signal(SIGTERM);
        static_cast<void>(process->finish());
    }
}

std::vector<std::string> Desktop::variables() const {
    // At 96 dots an inch the programs' pixels are those of the screen.
    return {"DISPLAY=" + display_, "WAYLAND_DISPLAY=", "QT_QPA_PLATFORM=xcb", "QT_FONT_DPI=96",
            "DBUS_SESSION_BUS_ADDRESS=" + busAddress_};
}

std::unique_ptr<ChildProcess> Desktop::start(const std::vector<std::string>& words,
                                             ChildProcess::Setting setting) const {
    for (auto& variable : variables())
        setting.variables.push_back(std::move(variable));
    return std::make_unique<ChildProcess>(words, setting);
}

std::unique_ptr<ChildProcess> Desktop::openBus(const std::string& configPath, std::string& address) {
    if (!isThere(busPath)) return nullptr;
    std::ofstream(configPath) << busConfig;
    auto bus = std::make_unique<ChildProcess>(
        std::vector<std::string>{busPath, "--config-file=" + configPath, "--nofork", "--print-address=2"});
    address = bus->readErrorLine();
    return bus;
}

std::string Desktop::hand(const std::vector<std::string>& words) const {
    std::vector<std::string> command = words;
    command.insert(command.begin(), handPath);
    std::string output = start(command)->finish().output;
    while (!output.empty() && output.back() == '\n')
        output.pop_back();
    return output;
}

std::string Desktop::title() const {
    return hand({"getactivewindow", "getwindowname"});
}

bool Desktop::hasTitle(const std::string& title) const {
    return comesTrue([&] { return this->title() == title; });
}

void Desktop::clickAt(QPoint at, int button, int times) const {
    hand({"mousemove", std::to_string(at.x()), std::to_string(at.y()), "click", "--repeat",
          std::to_string(times), "--delay", "40", std::to_string(button)});
}

void Desktop::moveTo(QPoint at) const {
    hand({"mousemove", std::to_string(at.x()), std::to_string(at.y())});
}

void Desktop::beginDrag(QPoint from, QPoint to, int button) const {
    moveTo(from);
    hand({"mousedown", std::to_string(button)});
    constexpr int steps = 6;
    for (int step = 1; step <= steps; ++step)
        moveTo(from + (to - from) * step / steps);
}

int Desktop::windowCount(const std::string& name) const {
    const std::string told = hand({"search", "--onlyvisible", "--class", name});
    return told.empty() ? 0 : 1 + static_cast<int>(std::ranges::count(told, '\n'));
}

std::vector<QRect> Desktop::windowPlaces(const std::string& name) const {
    std::istringstream windows(hand({"search", "--onlyvisible", "--class", name}));
    std::vector<QRect> places;
    for (std::string window; std::getline(windows, window);) {
        // Not xdotool, which counts frames twice.
        std::istringstream lines(start({surveyorPath, "-id", window})->finish().output);
        QRect place;
        for (std::string line; std::getline(lines, line);) {
            const auto sign = line.find(':');
            if (sign == std::string::npos) continue;
            const int number = std::atoi(line.c_str() + sign + 1);
            if (line.find("Absolute upper-left X") != std::string::npos) place.moveLeft(number);
            if (line.find("Absolute upper-left Y") != std::string::npos) place.moveTop(number);
            if (line.find("  Width") != std::string::npos) place.setWidth(number);
            if (line.find("  Height") != std::string::npos) place.setHeight(number);
        }
        if (!place.isEmpty()) places.push_back(place);
    }
    return places;
}

QImage Desktop::picture(const QRect& of) const {
    const TempTree folder;
    const std::string file = folder.path("picture.png");
    const std::string part = std::to_string(of.width()) + "x" + std::to_string(of.height()) + "+" +
                             std::to_string(of.x()) + "+" + std::to_string(of.y());
    static_cast<void>(
        start({cameraPath, "-silent", "-window", "root", "-crop", part, "+repage", file})->finish());
    return QImage(QString::fromStdString(file));
}

} // namespace ombrel::testing
