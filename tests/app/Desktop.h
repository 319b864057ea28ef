#pragma once

#include "support/ChildProcess.h"

#include <QPoint>

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

    /// Starts `words` on the display. Fonts are as large as the sizes in the theme's tables are given for,
    /// where the machine's default font has usual proportions.
    [[nodiscard]] std::unique_ptr<ChildProcess> start(const std::vector<std::string>& words) const;
    /// What is started from now on is on the bus that has this address; before, on none.
    void setBus(std::string address) { busAddress_ = std::move(address); }

    /// Runs xdotool with `words`; answers with what it prints, its last line end left out.
    std::string hand(const std::vector<std::string>& words) const;
    /// The title of the window with the focus; empty when there is none.
    [[nodiscard]] std::string title() const;
    /// Waits until the window with the focus is called `title`.
    [[nodiscard]] bool hasTitle(const std::string& title) const;
    /// In pixels, of the window with the focus; 0 when there is none.
    [[nodiscard]] int windowWidth() const;
    /// A point inside the window with the focus.
    void click(QPoint at, int times = 1) const;
    void key(const std::string& name) const { hand({"key", "--clearmodifiers", name}); }

private:
    explicit Desktop(std::unique_ptr<ChildProcess> server, std::string display);
    [[nodiscard]] std::vector<std::string> variables() const;

    std::unique_ptr<ChildProcess> server_;
    std::unique_ptr<ChildProcess> manager_;
    const std::string display_;
    std::string busAddress_;
};

} // namespace ombrel::testing
