#pragma once

#include "app/Desktop.h"
#include "app/ScreenReader.h"
#include "support/TempTree.h"

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace ombrel::testing {

/// A person in front of the real program: does everything by mouse and keys, and sees what the screen reader
/// tells. What is not seen in time is thrown as an error that says what is there instead.
///
/// Works in a home of its own, "home" of the tree, with the folder "desk" in it, which is pinned.
class Session : public ::testing::Test {
public:
    static void SetUpTestSuite();
    static void TearDownTestSuite();

protected:
    using Role = ScreenReader::Role;
    using Match = ScreenReader::Match;
    using Thing = ScreenReader::Thing;

    void SetUp() override;
    void TearDown() override;

    static Desktop& desktop();
    static ScreenReader& reader();

    // ---- The program

    /// `members` are those of the settings file besides the ones that every session has, as JSON.
    void writeSettings(const std::string& members = {}) const;
    [[nodiscard]] std::string settings() const;
    /// Starts the program in `folder` of the tree and waits until its list is shown.
    void start(const std::string& folder = "home/desk", bool asNobody = false);
    /// Closes all windows and waits for an end without complaints, but for lines with `expected` in them.
    void quit(const std::string& expected = {});

    // ---- What is seen

    /// The window that has the keyboard, once there is one.
    static Thing window();
    static Thing see(Role role, const std::string& name, Match match = Match::whole);
    /// In whichever window.
    static Thing seeAnywhere(Role role, const std::string& name, Match match = Match::whole);
    static void seeGone(Role role, const std::string& name, Match match = Match::whole);
    static void seeTitle(const std::string& title);
    /// The names in the list of the active window.
    static std::vector<std::string> rows();
    static void seeRows(const std::vector<std::string>& names);
    static Thing row(const std::string& name);
    /// Whatever it is, as it says itself in `what`.
    static void wait(const std::string& what, const std::function<bool()>& isThere);

    // ---- What is done

    static QPoint middle(const Thing& thing) { return thing.place.center(); }
    /// On the icon of a row or a cell.
    static QPoint grip(const Thing& row);
    static void click(Role role, const std::string& name, Match match = Match::whole, int times = 1);
    static void clickRow(const std::string& name, int times = 1);
    /// A button of whichever window, which may just be coming up: once it stays where it is.
    static void clickAnywhere(const std::string& button);
    /// Where it is on the display.
    [[nodiscard]] static QPoint placeAnywhere(const std::string& button);
    static void key(const std::string& name) { desktop().key(name); }
    /// Into the field, in place of what is selected there; waits until it reads `whole`, `text` if that is
    /// empty.
    static void typeInto(const std::string& field, const std::string& text, const std::string& whole = {});
    /// By the address, to a folder of the tree.
    void goTo(const std::string& folder);
    /// Begins to drag from one place and moves over another until some window says what a drop would do
    /// there. The button stays down, and so does the key of the name `held` if it is not empty.
    static void hold(QPoint from, QPoint over, const std::string& effect, const std::string& held = {});
    /// The same from a row, and drops there.
    static void drag(const std::string& row, QPoint to, const std::string& effect,
                     const std::string& held = {});
    /// Waits until a popup is there once `open` has been done, and runs `use`.
    static void inPopup(const std::function<void()>& open, const std::function<void()>& use);

    // ---- The disk

    void waitForDisk(const std::string& folder, const std::vector<std::string>& names) const;

    TempTree tree;
    std::unique_ptr<ChildProcess> program;

private:
    [[nodiscard]] std::vector<std::string> variables() const;
};

} // namespace ombrel::testing
