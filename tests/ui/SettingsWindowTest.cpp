#include "ui/SettingsWindow.h"

#include "ui/FolderOptionsDialog.h"
#include "ui/LocationRow.h"
#include "ui/OnboardingDialog.h"
#include "ui/PresetCard.h"
#include "ui/SettingsPages.h"
#include "ui/WindowWorld.h"

#include <QCheckBox>
#include <QPushButton>
#include <QRadioButton>

namespace ombrel {
namespace {

using testing::quietTheme;
using testing::runUntil;
using testing::TempTree;
using testing::TestServices;
using Page = SettingsWindow::Page;

template <typename Button>
Button* buttonOf(const QWidget& in, const QString& text) {
    const auto all = in.findChildren<Button*>();
    for (Button* button : all)
        if (button->text() == text) return button;
    return nullptr;
}

class SettingsWindowTest : public ::testing::Test {
protected:
    TempTree tree;
    TestServices services{tree.url("settings.json")};
    AppSettings& settings = services->settings();
};

TEST_F(SettingsWindowTest, AppliesEveryChangeAtOnceAndFollowsOthers) {
    auto& window = SettingsWindow::open(quietTheme(), *services);
    EXPECT_EQ(&SettingsWindow::open(quietTheme(), *services), &window);
    auto* const compact = buttonOf<QCheckBox>(window, QStringLiteral("Compact rows"));
    ASSERT_NE(compact, nullptr);
    compact->click();
    EXPECT_TRUE(settings.compactView());
    settings.setCompactView(false);
    EXPECT_FALSE(compact->isChecked());

    window.select(Page::keyboard);
    auto* const mac = buttonOf<PresetCard>(window, QStringLiteral("Mac style"));
    ASSERT_TRUE(mac && mac->isVisible());
    QTest::mouseClick(mac, Qt::LeftButton, {}, mac->rect().center());
    EXPECT_EQ(settings.keyPreset(), KeyPreset::mac);
    EXPECT_EQ(buttonOf<QAbstractButton>(window, QStringLiteral("Updates")), nullptr);
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
}

TEST_F(SettingsWindowTest, TabLeadsToWhatIsChosen) {
    settings.setKeyPreset(KeyPreset::mac);
    KeyboardPage page(quietTheme(), settings);
    page.show();
    QTest::keyClick(&page, Qt::Key_Tab);
    EXPECT_EQ(page.focusWidget(), buttonOf<PresetCard>(page, QStringLiteral("Mac style")));
}

TEST_F(SettingsWindowTest, LocationsAreRemovedOnlyAfterAQuestion) {
    tree.folder("granted");
    services->access().addGrant(tree.url("granted"), nullptr, [](const auto&) {});
    ASSERT_TRUE(
        runUntil([&] { return services->access().grants().size() == 1 && !services->access().isBusy(); }));
    SettingsWindow window(quietTheme(), *services);
    window.setAttribute(Qt::WA_DeleteOnClose, false);
    window.select(Page::locations);
    window.show();
    ASSERT_NE(window.findChild<LocationRow*>(), nullptr);
    const auto remove = [&](const QString& answer) {
        buttonOf<QPushButton>(*window.findChild<LocationRow*>(), QStringLiteral("Remove"))->click();
        const auto dialogs = window.findChildren<QDialog*>();
        ASSERT_FALSE(dialogs.isEmpty());
        buttonOf<QPushButton>(*dialogs.back(), answer)->click();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    };
    // Nobody can be asked for a folder here.
    buttonOf<QPushButton>(window, QStringLiteral("Add a folder…"))->click();
    remove(QStringLiteral("Cancel"));
    EXPECT_EQ(services->access().grants().size(), 1u);
    remove(QStringLiteral("Remove"));
    EXPECT_TRUE(services->access().grants().empty());
    EXPECT_EQ(window.findChild<LocationRow*>(), nullptr);
}

TEST_F(SettingsWindowTest, FolderOptionsApplyTogether) {
    QWidget parent;
    parent.show();
    auto* const dialog = new FolderOptionsDialog(quietTheme(), settings, &parent);
    dialog->open();
    buttonOf<QCheckBox>(*dialog, QStringLiteral("Show hidden items"))->click();
    buttonOf<QCheckBox>(*dialog, QStringLiteral("Full path in the title"))->click();
    auto* const hides = buttonOf<QCheckBox>(*dialog, QStringLiteral("Hide protected system items"));
    hides->click();
    buttonOf<QPushButton>(*dialog->findChild<QDialog*>(), QStringLiteral("Cancel"))->click();
    EXPECT_TRUE(hides->isChecked());
    EXPECT_FALSE(settings.showHiddenFiles());
    buttonOf<QPushButton>(*dialog, QStringLiteral("OK"))->click();
    AppSettings::FolderOptions expected;
    expected.showHiddenFiles = expected.showFullPathInTitle = true;
    EXPECT_EQ(settings.folderOptions(), expected);

    auto* const again = new FolderOptionsDialog(quietTheme(), settings, &parent);
    again->open();
    buttonOf<QPushButton>(*again, QStringLiteral("Restore defaults"))->click();
    EXPECT_EQ(settings.folderOptions(), expected);
    buttonOf<QPushButton>(*again, QStringLiteral("OK"))->click();
    EXPECT_EQ(settings.folderOptions(), AppSettings::FolderOptions());
}

TEST(LanguagePageTest, SaysThatTheNextStartCounts) {
    const TempTree tree;
    AppSettings settings(SettingsFile(tree.url("settings.json")));
    LanguagePage page(quietTheme(), settings);
    page.show();
    const auto choices = page.findChildren<QRadioButton*>();
    EXPECT_EQ(choices.size(), 17);
    EXPECT_TRUE(choices.front()->isChecked());
    auto* const german = buttonOf<QRadioButton>(page, QStringLiteral("Deutsch"));
    ASSERT_NE(german, nullptr);
    german->click();
    EXPECT_EQ(settings.interfaceLanguage(), "de");
    EXPECT_EQ(settings.launchInterfaceLanguage(), std::nullopt);
    choices.front()->click();
    EXPECT_EQ(settings.interfaceLanguage(), std::nullopt);
    ASSERT_TRUE(runUntil([&] { return !settings.isWriting(); }));
}

TEST_F(SettingsWindowTest, OnboardingCountsAsDoneHoweverItEnds) {
    auto* const left = new OnboardingDialog(quietTheme(), *services);
    left->open();
    EXPECT_EQ(left->focusWidget(), buttonOf<QPushButton>(*left, QStringLiteral("Next")));
    buttonOf<PresetCard>(*left, QStringLiteral("Mac style"))->click();
    QTest::keyClick(left, Qt::Key_Escape);
    EXPECT_TRUE(settings.didCompleteOnboarding());
    EXPECT_EQ(settings.keyPreset(), KeyPreset::windows);

    auto* const whole = new OnboardingDialog(quietTheme(), *services);
    whole->open();
    QTest::keyClick(whole->focusWidget(), Qt::Key_Return);
    buttonOf<PresetCard>(*whole, QStringLiteral("Mac style"))->click();
    QTest::keyClick(buttonOf<QPushButton>(*whole, QStringLiteral("Next")), Qt::Key_Return);
    EXPECT_EQ(whole->step(), 2);
    buttonOf<QCheckBox>(*whole, QStringLiteral("Music"))->click();
    buttonOf<QPushButton>(*whole, QStringLiteral("Start"))->click();
    EXPECT_EQ(settings.keyPreset(), KeyPreset::mac);
    EXPECT_FALSE(settings.isPinned(settings.knownFolders().url(KnownFolder::music)));
    EXPECT_TRUE(settings.isPinned(settings.knownFolders().url(KnownFolder::documents)));
}

} // namespace
} // namespace ombrel
