#pragma once

#include "browser/ModelWorld.h"
#include "browser/SteppedListings.h"
#include "ui/DetailsView.h"
#include "ui/OmbrelStyle.h"
#include "ui/Theme.h"

#include <QApplication>
#include <QTest>

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

namespace ombrel::testing {

/// The look that all tests of widgets share: sizes as given in the theme's tables, nothing moves.
inline const Theme& quietTheme() {
    static const Theme* const theme = [] {
        QFont font(QStringLiteral("Noto Sans"));
        font.setPixelSize(13);
        QApplication::setFont(font);
        auto* const made = new Theme({.isMotionReduced = true});
        QApplication::setStyle(new OmbrelStyle(*made));
        QApplication::setPalette(made->palette());
        return made;
    }();
    return *theme;
}

/// A details view over a folder of its own, shown nowhere.
class ViewWorld : public ::testing::Test {
protected:
    explicit ViewWorld(const ListingFeed::Source& source = realListings())
        : theme(quietTheme()), model(source),
          keys(commands, {.preset = [this] { return preset; },
                          .activePane = [this]() -> BrowserModel& { return model; },
                          .performTabCommand = {}}),
          view(model, theme) {
        view.setKeys(keys);
        constexpr int width = 800, height = 400;
        view.resize(width, height);
        view.show();
    }

    void open(const FileURL& folder) {
        model.navigate(folder);
        ASSERT_TRUE(runUntilLoaded(model));
    }
    void makeFiles(int count) {
        for (int i = 0; i < count; ++i)
            tree.file("file " + std::to_string(1000 + i));
    }
    void key(int which, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(&view, static_cast<Qt::Key>(which), modifiers);
    }
    [[nodiscard]] QPoint middleOf(std::size_t row, DetailsColumn column) const {
        const QRect rect = view.rowRect(row);
        return {view.header().left(column) + view.header().width(column) / 2, rect.center().y()};
    }
    /// On the icon of a row.
    [[nodiscard]] QPoint pointOn(std::size_t row) const {
        return {view.header().left(DetailsColumn::name) + 18, view.rowRect(row).center().y()};
    }
    void click(std::size_t row, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::mouseClick(view.viewport(), Qt::LeftButton, modifiers, pointOn(row));
    }
    void drag(QPoint from, QPoint to, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::mousePress(view.viewport(), Qt::LeftButton, modifiers, from);
        dragTo((from + to) / 2, modifiers);
        dragTo(to, modifiers);
    }
    void dragTo(QPoint to, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QMouseEvent move(QEvent::MouseMove, to, view.viewport()->mapToGlobal(to), Qt::NoButton,
                         Qt::LeftButton, modifiers);
        QApplication::sendEvent(view.viewport(), &move);
    }
    [[nodiscard]] std::vector<std::size_t> selectedRows() const {
        std::vector<std::size_t> rows;
        for (std::size_t row = 0; row < model.items().size(); ++row)
            if (model.selection().contains(row)) rows.push_back(row);
        return rows;
    }
    [[nodiscard]] std::optional<std::size_t> current() const {
        return model.row(BrowserModel::Place::current);
    }

    const Theme& theme;
    TempTree tree;
    BrowserModel model;
    KeyPreset preset = KeyPreset::windows;
    CommandDispatcher commands;
    KeyRouter keys;
    DetailsView view;
};

} // namespace ombrel::testing
