#pragma once

#include "support/ChildProcess.h"

#include <QImage>
#include <QPoint>
#include <QRect>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ombrel::testing {

/// A display that nobody sees with a window manager on it, and the hand that moves its mouse and presses its
/// keys.
class Desktop {
public:
    /// Nothing when the machine lacks the programs for it.
    [[nodiscard]] static std::unique_ptr<Desktop> open();
    ~Desktop();
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;

    /// A bus of the test's own, which takes every user; nothing when the machine has no program for it.
    /// `address` is where it is reached.
    [[nodiscard]] static std::unique_ptr<ChildProcess> openBus(const std::string& configPath,
                                                               std::string& address);

    /// Starts `words` on the display, where the programs' pixels are those of the screen.
    [[nodiscard]] std::unique_ptr<ChildProcess> start(const std::vector<std::string>& words,
                                                      ChildProcess::Setting setting = {}) const;
    /// What is started from now on is on the bus that has this address; before, on none.
    void setBus(std::string address) { busAddress_ = std::move(address); }

    /// Runs xdotool with `words`; answers with what it prints, its last line end left out.
    std::string hand(const std::vector<std::string>& words) const;
    /// The title of the window with the focus; empty when there is none.
    [[nodiscard]] std::string title() const;
    /// Waits until the window with the focus is called `title`.
    [[nodiscard]] bool hasTitle(const std::string& title) const;
    /// Not with the modifiers cleared, for xdotool counts the mouse's buttons among them.
    void key(const std::string& name) const { hand({"key", name}); }
    void type(const std::string& text) const { hand({"type", "--clearmodifiers", "--delay", "2", text}); }

    // In what follows points are of the screen.
    void clickAt(QPoint at, int button = 1, int times = 1) const;
    /// Presses `button` at the first point and moves to the second one, by way of others; the button stays
    /// down.
    void beginDrag(QPoint from, QPoint to, int button = 1) const;
    void moveTo(QPoint at) const;
    void release(int button = 1) const { hand({"mouseup", std::to_string(button)}); }
    /// How many windows of the program `name` are to be seen, its menus counted.
    [[nodiscard]] int windowCount(const std::string& name) const;
    /// Where the display has the contents of the program's windows; the program may not know it yet.
    [[nodiscard]] std::vector<QRect> windowPlaces(const std::string& name) const;
    /// What is on the screen there; null when it could not be taken.
    [[nodiscard]] QImage picture(const QRect& of) const;

private:
    explicit Desktop(std::unique_ptr<ChildProcess> server, std::string display);
    [[nodiscard]] std::vector<std::string> variables() const;

    std::unique_ptr<ChildProcess> server_;
    std::unique_ptr<ChildProcess> manager_;
    const std::string display_;
    std::string busAddress_;
};

} // namespace ombrel::testing
