#include "app/Desktop.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <string_view>
#include <thread>
#include <utility>

namespace ombrel::testing {
namespace {

constexpr auto serverPath = "/usr/bin/Xvfb", managerPath = "/usr/bin/openbox", handPath = "/usr/bin/xdotool";

bool isThere(const char* program) {
    return ::access(program, X_OK) == 0;
}

bool waitFor(const std::function<bool()>& done) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!done()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

} // namespace

std::unique_ptr<Desktop> Desktop::open() {
    if (!isThere(serverPath) || !isThere(managerPath) || !isThere(handPath)) return nullptr;
    auto server = std::make_unique<ChildProcess>(std::vector<std::string>{
        serverPath, "-displayfd", "2", "-screen", "0", "1600x1000x24", "-nolisten", "tcp",
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
    waitFor([this] { return hand({"get_num_desktops"}).find_first_of("123456789") == 0; });
}

Desktop::~Desktop() {
    for (auto& process : {manager_.get(), server_.get()}) {
        process->signal(SIGTERM);
        static_cast<void>(process->finish());
    }
}

std::vector<std::string> Desktop::variables() const {
    // 9 points at 104 dots an inch are 13 pixels.
    return {"DISPLAY=" + display_, "WAYLAND_DISPLAY=", "QT_QPA_PLATFORM=xcb", "QT_FONT_DPI=104",
            "DBUS_SESSION_BUS_ADDRESS=" + busAddress_};
}

std::unique_ptr<ChildProcess> Desktop::start(const std::vector<std::string>& words) const {
    return std::make_unique<ChildProcess>(words, ChildProcess::Setting{.variables = variables()});
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
    return waitFor([&] { return this->title() == title; });
}

int Desktop::windowWidth() const {
    const std::string told = hand({"getactivewindow", "getwindowgeometry", "--shell"});
    constexpr std::string_view label = "WIDTH=";
    const auto found = told.find(label);
    return found == std::string::npos ? 0 : std::atoi(told.c_str() + found + label.size());
}

void Desktop::click(QPoint at, int times) const {
    hand({"getactivewindow", "mousemove", "--window", "%1", std::to_string(at.x()), std::to_string(at.y()),
          "click", "--repeat", std::to_string(times), "--delay", "40", "1"});
}

} // namespace ombrel::testing
