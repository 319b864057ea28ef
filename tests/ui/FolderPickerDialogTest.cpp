#include "ui/FolderPickerDialog.h"

#include "support/TempTree.h"

#include <QFileDialog>
#include <QMessageBox>
#include <QWidget>

#include <gmock/gmock.h>

#include <memory>

namespace ombrel {
namespace {

using testing::TempTree;

class PickingAFolder : public ::testing::Test {
protected:
    void pick() {
        picker.pickFolder({tree.url("start"), "what for", "Allow"}, [this](std::optional<FileURL> url) {
            ++answers;
            picked = std::move(url);
        });
        dialog = window->findChild<QFileDialog*>();
        ASSERT_NE(dialog, nullptr);
    }

    TempTree tree;
    FileURL start = tree.folder("start");
    std::unique_ptr<QWidget> window = std::make_unique<QWidget>();
    FolderPickerDialog picker{[this] { return window.get(); }};
    QFileDialog* dialog = nullptr;
    int answers = 0;
    std::optional<FileURL> picked;
};

TEST_F(PickingAFolder, AnswersWithTheOneThatWasChosen) {
    tree.folder("start/caf\u00E9 #1");
    pick();
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("what for"));
    EXPECT_EQ(dialog->labelText(QFileDialog::Accept), QStringLiteral("Allow"));
    EXPECT_EQ(dialog->directory().path().toStdString(), tree.path("start"));
    dialog->selectFile(QString::fromStdString(tree.path("start/caf\u00E9 #1")));
    static_cast<QDialog*>(dialog)->accept();
    EXPECT_EQ(picked, tree.url("start/caf\u00E9 #1"));
    EXPECT_EQ(answers, 1);
}

TEST_F(PickingAFolder, AnswersWithNothingWhenItIsCancelled) {
    pick();
    dialog->reject();
    EXPECT_EQ(picked, std::nullopt);
    EXPECT_EQ(answers, 1);
}

TEST_F(PickingAFolder, AnswersWithNothingWhenTheWindowGoes) {
    pick();
    window.reset();
    EXPECT_EQ(picked, std::nullopt);
    EXPECT_EQ(answers, 1);
}

TEST_F(PickingAFolder, TellsAFailureOnlyOnAWindow) {
    picker.showFailure("why");
    const auto* box = window->findChild<QMessageBox*>();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->text(), QStringLiteral("why"));
    window.reset();
    picker.showFailure("why");
}

} // namespace
} // namespace ombrel
