#include "ui/WindowPrompter.h"

#include "ui/ReportTable.h"
#include "ui/ViewWorld.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>

namespace ombrel {
namespace {

using testing::runUntil;
using testing::TempTree;
using Choice = BrowserAnswer::Choice;
using Kind = BrowserQuestion::Kind;

class WindowPrompterTest : public ::testing::Test {
protected:
    WindowPrompterTest() { window.show(); }

    QDialog* ask(Kind kind, std::vector<FileReference> items, std::int64_t count) {
        answers.clear();
        prompter.ask({kind, std::move(items), count},
                     [this](const BrowserAnswer& answer) { answers.push_back(answer); });
        return dialog();
    }
    [[nodiscard]] QDialog* dialog() const {
        const auto all = window.findChildren<QDialog*>();
        for (QDialog* dialog : all)
            if (dialog->isVisible()) return dialog;
        return nullptr;
    }
    [[nodiscard]] static QString focused(const QDialog* dialog) {
        const auto* const button = qobject_cast<QPushButton*>(dialog->focusWidget());
        return button ? button->text() : QString();
    }
    [[nodiscard]] static QStringList words(const QWidget* dialog) {
        QStringList words;
        const auto labels = dialog->findChildren<QLabel*>();
        for (const QLabel* label : labels)
            words << label->text();
        return words;
    }
    static void press(QDialog* dialog, Qt::Key key) { QTest::keyClick(dialog->focusWidget(), key); }

    TempTree tree;
    QWidget window;
    WindowPrompter prompter{testing::quietTheme(), window};
    std::vector<BrowserAnswer> answers;
};

TEST_F(WindowPrompterTest, TrashCanBeUndoneSoItsButtonHasTheFocus) {
    tree.file("note.txt", "12345");
    QDialog* const dialog = ask(Kind::moveToTrash, {{tree.url("note.txt"), std::nullopt}}, 1);
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->windowModality(), Qt::WindowModal);
    EXPECT_EQ(words(dialog).front(), QStringLiteral("Move “\u2068note.txt\u2069” to the trash?"));
    EXPECT_TRUE(
        runUntil([&] { return words(dialog).join(QLatin1Char('|')).contains(QStringLiteral("5 bytes, ")); }));
    EXPECT_EQ(focused(dialog), QStringLiteral("Move to trash"));
    dialog->findChild<QCheckBox*>()->click();
    press(dialog, Qt::Key_Return);
    ASSERT_EQ(answers.size(), 1u);
    EXPECT_EQ(answers.front().choice, Choice::accept);
    EXPECT_TRUE(answers.front().dontAskAgain);
}

TEST_F(WindowPrompterTest, WhatCannotBeUndoneHasTheFocusOnCancel) {
    for (const Kind kind : {Kind::deletePermanently, Kind::dissolveFolder, Kind::removeLocation,
                            Kind::openMany, Kind::runProgram, Kind::showProtected}) {
        QDialog* dialog = ask(kind, {{tree.url("a"), std::nullopt}}, 3);
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(focused(dialog), QStringLiteral("Cancel"));
        press(dialog, Qt::Key_Return);
        ASSERT_EQ(answers.size(), 1u);
        EXPECT_EQ(answers.front().choice, Choice::decline);
        dialog = ask(kind, {{tree.url("a"), std::nullopt}}, 1);
        press(dialog, Qt::Key_Escape);
        ASSERT_EQ(answers.size(), 1u);
        EXPECT_EQ(answers.front().choice, Choice::decline);
    }
    QDialog* const dialog = ask(Kind::runProgram, {{tree.url("a"), std::nullopt}}, 1);
    const auto buttons = dialog->findChildren<QPushButton*>();
    for (QPushButton* button : buttons)
        if (button->text() == QStringLiteral("Show the text")) button->click();
    ASSERT_EQ(answers.size(), 1u);
    EXPECT_EQ(answers.front().choice, Choice::alternative);
}

TEST_F(WindowPrompterTest, TellsAndShowsReports) {
    prompter.tell({"ui.status.failed"});
    ASSERT_NE(dialog(), nullptr);
    EXPECT_EQ(focused(dialog()), QStringLiteral("Close"));
    press(dialog(), Qt::Key_Return);
    prompter.show({.kind = FileOperationKind::rename, .items = {{tree.url("a"), ItemOutcome::skipped()}}});
    ASSERT_NE(dialog(), nullptr);
    EXPECT_EQ(dialog()->findChild<ReportTable*>()->model()->rowCount(), 1);
    press(dialog(), Qt::Key_Return);
    EXPECT_EQ(dialog(), nullptr);
}

} // namespace
} // namespace ombrel
