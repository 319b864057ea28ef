#include "app/Session.h"

#include "app/Patience.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <utility>

namespace ombrel::testing {
namespace {

/// What all tests of a suite have in common.
struct Stage {
    TempTree files;
    std::unique_ptr<Desktop> desktop;
    std::unique_ptr<ChildProcess> bus;
    std::string busAddress;
    std::unique_ptr<ScreenReader> reader;

    ~Stage() {
        reader.reset();
        if (!bus) return;
        bus->signal(SIGTERM);
        static_cast<void>(bus->finish());
    }
};
std::unique_ptr<Stage> stage;

constexpr auto worldFolders = {"home", "config", "config/HalvaneOmbrel", "data", "cache", "state", "run"};
constexpr auto settingsName = "config/HalvaneOmbrel/settings.json";

constexpr std::chrono::milliseconds readingTime(600);

/// The place of the list's rows in the accessible name: what follows is type, date and size.
std::string nameIn(const std::string& spoken) {
    return spoken.substr(0, spoken.find(", "));
}

std::optional<ScreenReader::Thing> activeWindow() {
    for (const auto& each : stage->reader->windows())
        if (each.isActive) return each;
    return std::nullopt;
}

std::string quoted(const std::vector<std::string>& names) {
    std::string all;
    for (const auto& name : names)
        all += "“" + name + "” ";
    return all;
}

} // namespace

void Session::SetUpTestSuite() {
    stage = std::make_unique<Stage>();
    stage->desktop = Desktop::open();
    if (!stage->desktop) return;
    stage->bus = Desktop::openBus(stage->files.path("bus.conf"), stage->busAddress);
    stage->desktop->setBus(stage->busAddress);
    if (stage->bus) stage->reader = ScreenReader::onBus(stage->busAddress);
}

void Session::TearDownTestSuite() {
    stage.reset();
}

void Session::SetUp() {
    if (!stage->desktop) GTEST_SKIP() << "Xvfb, openbox and xdotool are not all there";
    if (!stage->reader) GTEST_SKIP() << "there is no dbus-daemon";
    for (const char* folder : worldFolders)
        tree.folder(folder);
    ASSERT_EQ(::chmod(tree.path("run").c_str(), 0700), 0);
    tree.folder("home/desk");
    writeSettings();
}

void Session::TearDown() {
    if (HasFailure() && program) {
        program->signal(SIGTERM);
        const auto ended = program->finish();
        if (!ended.errors.empty()) ADD_FAILURE() << "the program says: " << ended.errors;
    }
    program.reset();
}

Desktop& Session::desktop() {
    return *stage->desktop;
}

ScreenReader& Session::reader() {
    return *stage->reader;
}

// ---- The program

void Session::writeSettings(const std::string& members) const {
    tree.file(settingsName, R"({"showsDetailsPane": false, "pinnedFolders": [")" + tree.path("home/desk") +
                                "\"]" + (members.empty() ? members : ", " + members) + "}");
}

std::string Session::settings() const {
    return tree.exists(settingsName) ? tree.contents(settingsName) : std::string();
}

std::vector<std::string> Session::variables() const {
    return {"HOME=" + tree.path("home"), "XDG_CONFIG_HOME=" + tree.path("config"),
            "XDG_DATA_HOME=" + tree.path("data"), "XDG_CACHE_HOME=" + tree.path("cache"),
            "XDG_STATE_HOME=" + tree.path("state"), "XDG_RUNTIME_DIR=" + tree.path("run"),
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1",
            // What it says of things that the screen reader asks for too late is no complaint of ours.
            "QT_LOGGING_RULES=qt.accessibility.*=false"};
}

void Session::start(const std::string& folder, bool asNobody) {
    program =
        desktop().start({OMBREL_PATH, tree.path(folder)}, {.asNobody = asNobody, .variables = variables()});
    seeTitle(folder.substr(folder.rfind('/') + 1));
    see(Role::list, "Files");
}

void Session::quit(const std::string& expected) {
    for (auto left = reader().windows().size(); left > 0; --left) {
        window();
        key("alt+F4");
        wait("a window fewer", [left] { return reader().windows().size() < left; });
    }
    const auto ended = std::exchange(program, nullptr)->finish();
    EXPECT_EQ(ended.status, 0);
    std::istringstream lines(ended.errors);
    for (std::string line; std::getline(lines, line);)
        EXPECT_TRUE(!expected.empty() && line.find(expected) != std::string::npos) << line;
}

// ---- What is seen

void Session::wait(const std::string& what, const std::function<bool()>& isThere) {
    if (comesTrue(isThere)) return;
    throw std::runtime_error(what + " does not come; there is:\n" + reader().everything());
}

Session::Thing Session::window() {
    std::optional<Thing> found;
    wait("an active window", [&] { return (found = activeWindow()).has_value(); });
    return *found;
}

Session::Thing Session::see(Role role, const std::string& name, Match match) {
    std::optional<Thing> found;
    wait("“" + name + "”", [&] {
        const auto active = activeWindow();
        if (active) found = reader().find(*active, role, name, match);
        return found.has_value();
    });
    return *found;
}

Session::Thing Session::seeAnywhere(Role role, const std::string& name, Match match) {
    std::optional<Thing> found;
    wait("“" + name + "” in any window", [&] {
        for (const Thing& each : reader().windows())
            if ((found = reader().find(each, role, name, match))) break;
        return found.has_value();
    });
    return *found;
}

void Session::seeGone(Role role, const std::string& name, Match match) {
    wait("the end of “" + name + "”", [&] {
        for (const Thing& each : reader().windows())
            if (reader().find(each, role, name, match)) return false;
        return true;
    });
}

void Session::seeTitle(const std::string& title) {
    wait("a window called “" + title + "”", [&] {
        const auto active = activeWindow();
        return active && active->name == title && desktop().title() == title;
    });
}

std::vector<std::string> Session::rows() {
    std::vector<std::string> names;
    const auto active = activeWindow();
    const auto list = active ? reader().find(*active, Role::list, "Files") : std::nullopt;
    if (!list) return names;
    for (const Thing& each : reader().children(*list))
        if (each.role == static_cast<unsigned>(Role::listItem)) names.push_back(nameIn(each.name));
    return names;
}

void Session::seeRows(const std::vector<std::string>& names) {
    wait("the rows " + quoted(names), [&] { return rows() == names; });
}

Session::Thing Session::row(const std::string& name) {
    return see(Role::listItem, name + ", ", Match::beginning);
}

// ---- What is done

QPoint Session::grip(const Thing& row) {
    // A row of details begins with the column of its check box, which is as wide as it is high.
    const bool isCell = row.place.width() < 3 * row.place.height();
    if (isCell) return {row.place.center().x(), row.place.top() + row.place.height() / 3};
    return {row.place.left() + row.place.height() * 8 / 5, row.place.center().y()};
}

void Session::click(Role role, const std::string& name, Match match, int times) {
    const Thing thing = see(role, name, match);
    if (!thing.isEnabled)
        wait("“" + name + "” that can be used", [&] { return see(role, name, match).isEnabled; });
    desktop().clickAt(middle(thing), 1, times);
}

void Session::clickAnywhere(const std::string& button) {
    // What comes up unasked takes no clicks before it can have been read.
    QPoint at;
    do {
        at = placeAnywhere(button);
        std::this_thread::sleep_for(readingTime);
    } while (placeAnywhere(button) != at);
    desktop().clickAt(at);
}

QPoint Session::placeAnywhere(const std::string& button) {
    // Who shows a window learns a little later where the window manager has put it, and may err by its frame.
    QPoint at;
    wait("“" + button + "” in a window that has its place", [&] {
        const auto places = desktop().windowPlaces("ombrel");
        for (const Thing& each : reader().windows()) {
            const auto found = reader().find(each, Role::button, button);
            if (!found) continue;
            const auto shown = std::ranges::find(places, each.place.size(), &QRect::size);
            if (!found->isEnabled || shown == places.end()) return false;
            at = shown->topLeft() + middle(*found) - each.place.topLeft();
            return true;
        }
        return false;
    });
    return at;
}

void Session::clickRow(const std::string& name, int times) {
    desktop().clickAt(grip(row(name)), 1, times);
}

void Session::typeInto(const std::string& field, const std::string& text, const std::string& whole) {
    wait("the field “" + field + "” with the focus", [&] { return see(Role::field, field).hasFocus; });
    desktop().type(text);
    const std::string expected = whole.empty() ? text : whole;
    wait("“" + expected + "” in the field “" + field + "”",
         [&] { return reader().textIn(see(Role::field, field)) == expected; });
}

void Session::goTo(const std::string& folder) {
    key("ctrl+l");
    typeInto("Address", tree.path(folder));
    key("Return");
    seeTitle(folder.substr(folder.rfind('/') + 1));
}

void Session::hold(QPoint from, QPoint over, const std::string& effect, const std::string& held) {
    desktop().beginDrag(from, over);
    if (!held.empty()) desktop().hand({"keydown", held});
    // A step that is made before the one before was answered is not told to whom the drag is over.
    int step = 0;
    wait("“" + effect + "” under the drag", [&] {
        desktop().moveTo(over + QPoint(++step % 2, 0));
        return std::ranges::any_of(reader().windows(), [&](const Thing& each) {
            return reader().find(each, Role::label, effect).has_value();
        });
    });
}

void Session::drag(const std::string& name, QPoint to, const std::string& effect, const std::string& held) {
    hold(grip(row(name)), to, effect, held);
    desktop().release();
    if (!held.empty()) desktop().hand({"keyup", held});
}

void Session::inPopup(const std::function<void()>& open, const std::function<void()>& use) {
    const int before = desktop().windowCount("ombrel");
    open();
    wait("a popup", [before] { return desktop().windowCount("ombrel") > before; });
    use();
}

// ---- The disk

void Session::waitForDisk(const std::string& folder, const std::vector<std::string>& names) const {
    wait(quoted(names) + "in " + folder, [&] { return tree.names(folder) == names; });
}

} // namespace ombrel::testing
