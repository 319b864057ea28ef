#include "ui/PaneArea.h"

#include "services/AppSettings.h"
#include "ui/IconsView.h"
#include "ui/Overlay.h"
#include "ui/ViewWorld.h"

#include <QLabel>

namespace ombrel {
namespace {

using namespace testing;

class PaneAreaZoom : public ::testing::Test {
protected:
    PaneAreaZoom() {
        for (int i = 0; i < 200; ++i)
            tree.file("file " + std::to_string(1000 + i));
        area.resize(800, 400);
        area.show();
        model.navigate(tree.url());
        EXPECT_TRUE(runUntilLoaded(model));
    }
    void zoom(int step, QPoint at) { Q_EMIT area.view().zoomRequested(step, at); }

    TempTree tree, configTree;
    AppSettings settings{SettingsFile(configTree.url("settings.json"))};
    BrowserModel model{realListings()};
    CommandDispatcher commands;
    KeyRouter keys{commands,
                   {.preset = [] { return KeyPreset::windows; },
                    .activePane = [this]() -> BrowserModel& { return model; },
                    .performTabCommand = {}}};
    PaneArea area{model, quietTheme(), keys, {.settings = &settings}};
};

TEST_F(PaneAreaZoom, StepsFromDetailsThroughEverySizeAndBackWithTheItemUnderThePointer) {
    area.view().scrollTo(50 * 32);
    const QPoint at = area.view().viewport()->rect().center();
    const auto pointed = area.view().anchorAt(at);
    ASSERT_TRUE(pointed);
    for (const auto size : {IconSize::small, IconSize::medium, IconSize::large, IconSize::extraLarge}) {
        const auto before = area.view().anchorAt(at);
        zoom(1, at);
        ASSERT_EQ(model.viewMode(), ViewMode::icons);
        EXPECT_EQ(settings.iconSize(), size);
        EXPECT_EQ(area.view().rowRect(before->row).center().y(), before->y) << rawValue(size);
    }
    zoom(1, at);
    EXPECT_EQ(settings.iconSize(), IconSize::extraLarge);
    EXPECT_TRUE(settings.showsIcons());
    for (int i = 0; i < 4; ++i)
        zoom(-1, at);
    EXPECT_EQ(model.viewMode(), ViewMode::details);
    EXPECT_FALSE(settings.showsIcons());
    zoom(-1, at);
    EXPECT_EQ(model.viewMode(), ViewMode::details);
}

TEST_F(PaneAreaZoom, OverlayFitsTheSmallestView) {
    model.navigate(tree.url("gone"));
    ASSERT_TRUE(runUntil([&] { return area.overlay().isVisible(); }));
    constexpr QSize sizes[] = {{1000, 700}, {320, 400}, {640, 212}, {1000, 700}};
    std::vector<int> gaps;
    for (const QSize& size : sizes) {
        area.resize(size);
        QApplication::processEvents();
        const auto parts = area.overlay().findChildren<QWidget*>();
        for (const QWidget* part : parts) {
            if (!part->isVisible()) continue;
            const QRect place(part->mapTo(&area.overlay(), QPoint()), part->size());
            EXPECT_TRUE(area.overlay().rect().contains(place))
                << part->metaObject()->className() << " at " << size.width();
            const auto* const label = qobject_cast<const QLabel*>(part);
            EXPECT_TRUE(!label || label->height() >= label->heightForWidth(label->width())) << size.width();
        }
        const auto labels = area.overlay().findChildren<QLabel*>();
        gaps.push_back(labels.back()->y() - labels.front()->y());
    }
    EXPECT_EQ(gaps.front(), gaps.back());
    EXPECT_LT(gaps.front(), 2 * quietTheme().size(ThemeSize::space28));
}

TEST_F(PaneAreaZoom, OtherViewTakesFocusSelectionAndOverlayOver) {
    area.activateWindow();
    area.focusContent();
    area.view().scrollTo(3000);
    const RowRange seen = area.view().visibleRows();
    model.setViewMode(ViewMode::icons);
    EXPECT_NE(qobject_cast<IconsView*>(&area.view()), nullptr);
    EXPECT_TRUE(area.view().visibleRows().contains((seen.begin + seen.end) / 2));
    EXPECT_EQ(area.overlay().parentWidget(), area.view().viewport());
    EXPECT_EQ(area.focusProxy(), &area.view());
    // The hidden view keeps no place of its own while the shown one does.
    area.view().scrollTo(700);
    QTest::keyClick(&area.view(), Qt::Key_Right);
    const auto row = model.row(BrowserModel::Place::current);
    ASSERT_TRUE(row);
    const QRect place = area.view().rowRect(*row);
    tree.file("a first one");
    model.refresh();
    ASSERT_TRUE(runUntil([&] { return model.items().size() == 201; }));
    EXPECT_EQ(area.view().rowRect(*model.row(BrowserModel::Place::current)).top(), place.top());
}

TEST_F(PaneAreaZoom, ColumnsAreKeptForAllWindows) {
    auto& details = static_cast<DetailsView&>(area.view());
    PaneArea other(model, quietTheme(), keys, {.settings = &settings});
    const auto type = static_cast<int>(DetailsColumn::type),
               date = static_cast<int>(DetailsColumn::dateModified);
    details.header().resizeSection(date, 120);
    details.header().moveSection(details.header().visualIndex(type), 2);
    ASSERT_TRUE(runUntil([&] { return !settings.detailsColumns().empty(); }));
    const auto& header = static_cast<DetailsView&>(other.view()).header();
    EXPECT_EQ(header.arrangement(), details.header().arrangement());
    EXPECT_LT(header.visualIndex(type), header.visualIndex(date));
    EXPECT_EQ(header.width(DetailsColumn::dateModified), 120);
    settings.setShowItemCheckBoxes(false);
    EXPECT_EQ(header.width(DetailsColumn::checkBox), 0);
    settings.setCompactView(true);
    EXPECT_EQ(details.rowRect(0).height(), 24);
    // Closed before the edge has come to rest.
    details.header().resizeSection(date, 130);
    area.hide();
    EXPECT_THAT(settings.detailsColumns(), ::testing::Contains("dateModified 130"));
}

} // namespace
} // namespace ombrel
