// One window's models, driven by nothing but keys: real services, real files, both presets. After each step
// what is published is compared with the disk.
#include "browser/ActionsWorld.h"
#include "browser/BrowserTabsModel.h"
#include "browser/KeyRouter.h"
#include "browser/KeyStrokes.h"
#include "browser/PaneMaker.h"
#include "browser/SelectionGestures.h"
#include "browser/TypeAhead.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Place = BrowserModel::Place;

/// The keys of one preset.
struct Keys {
    KeyPreset preset;
    std::string_view open, back, up, copy, cut, paste, newFolder, rename, trash, undo, newTab, closeTab,
        nextTab, search;
};

/// What a window does with keys: the router first, then the text field that has the keyboard, or else the
/// file view.
class KeyDriven : public ActionsWorld, public ::testing::WithParamInterface<Keys> {
protected:
    KeyDriven() {
        for (const auto* folder : {"pane/inner", "pane/inner/sub"})
            tree.folder(folder);
        tree.file("pane/inner/note.txt", "a note");
        tree.file("pane/inner/plan.txt", "a plan");
        tree.file("pane/zebra");
        commands.bind(FileCommand::open, {.perform = [](BrowserModel& model) {
                          const auto item = model.selection().items().front();
                          if (item.isDirectoryLike()) model.navigate(item.url());
                      }});
        tabs.emplace([this] { return madePane(); }, tree.url("pane"));
        keys.emplace(commands, KeyRouter::Targets{
                                   .preset = [] { return GetParam().preset; },
                                   .activePane = [this]() -> BrowserModel& { return active(); },
                                   .performTabCommand = [this](TabCommand which) { tabs->perform(which); }});
    }

    std::unique_ptr<BrowserModel> madePane() {
        auto made = makePane(*services);
        BrowserModel& model = *made;
        model.setPrompter(&prompter);
        model.requestRename = [this, &model](std::size_t row) {
            edit(model, [this, &model, item = model.items().item(row)](const std::string& text) {
                actions.renaming().commit(model, item, text);
            });
        };
        model.requestSearchFocus = [this, &model] {
            edit(model, [&model](const std::string& text) { model.search(text); });
        };
        return made;
    }
    void edit(BrowserModel& model, std::function<void(const std::string&)> commit) {
        field = Field{{}, std::move(commit)};
        model.setTextEditing(true);
    }

    [[nodiscard]] BrowserModel& active() const { return tabs->activeTab(); }

    void press(std::string_view key) {
        const KeyStroke given = stroke(key);
        if (keys->pressInWindow(given, KeyRouter::Press::first, active().isTextEditing(), false)) return;
        if (field) return pressInField(given);
        if (keys->pressInFileView(given, KeyRouter::Press::first)) return;
        if (given.modifiers == 0 && !given.characters.empty())
            typing->type(QString::fromStdString(std::string(given.characters)));
        else
            ADD_FAILURE() << "nobody takes " << key;
    }
    void pressInField(const KeyStroke& given) {
        if (given.keyCode == KeyStroke::Code::returnKey) {
            const auto done = std::exchange(field, std::nullopt);
            active().setTextEditing(false);
            done->commit(done->text);
        } else {
            field->text += given.characters;
        }
    }
    /// A character a key.
    void type(std::string_view text) {
        for (const char character : text)
            press(character == ' ' ? "space" : std::string_view(&character, 1));
    }
    /// Types the beginning of a name in the list, which makes it the selected one.
    void find(std::string_view beginning) {
        typing.emplace(active());
        std::optional<std::size_t> found;
        QObject::connect(&*typing, &TypeAhead::found, [&](std::size_t row) { found = row; });
        type(beginning);
        ASSERT_TRUE(runUntil([&] { return found.has_value(); })) << beginning;
        SelectionGestures(active()).select(*found, SelectionGestures::How::only);
    }

    /// Once all has come to rest, the active tab shows the folder as it is on the disk, with just these
    /// selected.
    void expect(const std::string& folder, const std::vector<std::string>& selected) {
        ASSERT_TRUE(waitForJobs());
        ASSERT_EQ(active().currentURL(), tree.url(folder));
        ASSERT_TRUE(runUntil([&] {
            auto shown = namesOf(active().items());
            std::ranges::sort(shown);
            return active().listingState() == ListingState::Case::loaded && shown == onDisk(folder) &&
                   selectedNames(active()) == selected;
        })) << folder
            << " shows " << ::testing::PrintToString(namesOf(active().items())) << ", holds "
            << ::testing::PrintToString(onDisk(folder)) << ", selected "
            << ::testing::PrintToString(selectedNames(active()));
        for (const FileItemView item : active().items())
            if (const auto size = item.size(); size.hasValue()) {
                EXPECT_EQ(static_cast<std::uintmax_t>(size.value()),
                          std::filesystem::file_size(item.url().path()));
            }
        EXPECT_THAT(prompter.told, IsEmpty());
        EXPECT_THAT(prompter.shown, IsEmpty());
    }
    [[nodiscard]] std::vector<std::string> onDisk(const std::string& folder) const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(tree.path(folder)))
            names.push_back(entry.path().filename());
        std::ranges::sort(names);
        return names;
    }
    [[nodiscard]] std::string contents(const std::string& file) const {
        std::ifstream stream(tree.path(file));
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    struct Field {
        std::string text;
        std::function<void(const std::string&)> commit;
    };
    std::optional<Field> field; ///< the text field that has the keyboard
    std::optional<BrowserTabsModel> tabs;
    std::optional<KeyRouter> keys;
    std::optional<TypeAhead> typing;
};

TEST_P(KeyDriven, WorksThroughADay) {
    const Keys& with = GetParam();
    expect("pane", {});
    find("in");
    press(with.open);
    expect("pane/inner", {});

    press(with.newFolder);
    ASSERT_TRUE(runUntil([&] { return field.has_value(); })) << "what is new is named at once";
    type("made");
    press("return");
    expect("pane/inner", {"made"});
    EXPECT_THAT(onDisk("pane/inner"), ElementsAre("made", "note.txt", "plan.txt", "sub"));

    find("no");
    press(with.copy);
    find("ma");
    press(with.open);
    expect("pane/inner/made", {});
    press(with.paste);
    expect("pane/inner/made", {"note.txt"});
    EXPECT_EQ(contents("pane/inner/made/note.txt"), "a note");

    press(with.rename);
    ASSERT_TRUE(field.has_value());
    type("my copy.txt");
    press("return");
    expect("pane/inner/made", {"my copy.txt"});
    press(with.undo);
    ASSERT_TRUE(waitForJobs());
    EXPECT_THAT(onDisk("pane/inner/made"), ElementsAre("note.txt"));
    expect("pane/inner/made", {"note.txt"});

    press(with.trash);
    expect("pane/inner/made", {});
    EXPECT_THAT(onDisk("pane/inner/made"), IsEmpty());
    press(with.undo);
    expect("pane/inner/made", {"note.txt"});
    EXPECT_EQ(contents("pane/inner/made/note.txt"), "a note");

    press(with.up);
    expect("pane/inner", {"made"});
    find("pl");
    press(with.cut);
    EXPECT_EQ(services->clipboard().cutURLs().size(), 1U);
    find("su");
    press(with.open);
    expect("pane/inner/sub", {});
    press(with.paste);
    expect("pane/inner/sub", {"plan.txt"});
    EXPECT_THAT(onDisk("pane/inner"), ElementsAre("made", "note.txt", "sub"));
    EXPECT_THAT(services->clipboard().cutURLs(), IsEmpty());
    press(with.back);
    expect("pane/inner", {"sub"});

    press(with.newTab);
    EXPECT_EQ(tabs->count(), 2U);
    EXPECT_TRUE(active().isHome());
    press(with.nextTab);
    expect("pane/inner", {"sub"});
    press(with.nextTab);
    EXPECT_TRUE(active().isHome());
    press(with.closeTab);
    EXPECT_EQ(tabs->count(), 1U);
    expect("pane/inner", {"sub"});

    press(with.search);
    ASSERT_TRUE(active().isTextEditing());
    type("note");
    press("return");
    EXPECT_TRUE(active().isSearching());
    ASSERT_TRUE(runUntilLoaded(active()));
    std::vector<std::string> found;
    for (const FileItemView item : active().items())
        found.push_back(item.url().path());
    EXPECT_THAT(found, ::testing::UnorderedElementsAre(tree.path("pane/inner/note.txt"),
                                                       tree.path("pane/inner/made/note.txt")));
    press(with.back);
    expect("pane/inner", {"sub"});
}

INSTANTIATE_TEST_SUITE_P(Presets, KeyDriven,
                         ::testing::Values(Keys{KeyPreset::windows, "return", "backspace", "alt+up", "ctrl+c",
                                                "ctrl+x", "ctrl+v", "ctrl+shift+n", "f2", "delete", "ctrl+z",
                                                "ctrl+t", "ctrl+w", "ctrl+tab", "ctrl+f"},
                                           Keys{KeyPreset::mac, "cmd+down", "cmd+[", "cmd+up", "cmd+c",
                                                "cmd+x", "cmd+v", "shift+cmd+n", "return", "cmd+backspace",
                                                "cmd+z", "cmd+t", "cmd+w", "ctrl+tab", "cmd+f"}));

} // namespace
} // namespace ombrel
