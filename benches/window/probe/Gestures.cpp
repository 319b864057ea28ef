#include "window/probe/Gestures.h"

#include "support/Report.h"

#include <QScrollBar>
#include <QTest>

#include <algorithm>
#include <vector>

#include "window/probe/Figures.h"
#include "window/probe/ProbeWindow.h"

namespace ombrel::bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int loadRounds = 5, gestureRounds = 9, frames = 200;

double worstStretchOfLoading(const ProbeWindow& probe, const FileURL& empty, const FileURL& huge) {
    double worst = 0;
    for (int round = 0; round < loadRounds; ++round) {
        probe.model().navigate(empty);
        runUntil([&] { return probe.isLoaded(); });
        probe.settle();
        const auto began = Clock::now();
        probe.model().navigate(huge);
        worst = std::max(worst, millisecondsSince(began));
        runUntil([&] { return probe.isLoaded(); });
        probe.settle();
        worst = std::max(worst, application().takeLongest());
    }
    return worst;
}

/// From a key press until what it leads to is painted, elapsed.
double keyUntilPainted(const ProbeWindow& probe, Frames& painted, Qt::Key key,
                       Qt::KeyboardModifiers modifiers, const std::function<bool()>& done) {
    probe.settle();
    const std::size_t before = painted.count();
    const auto began = Clock::now();
    QTest::keyClick(&probe.view(), key, modifiers);
    runUntil([&] { return done() && painted.count() > before; });
    return millisecondsSince(began);
}

void probeKeys(const ProbeWindow& probe) {
    Frames painted(probe.view());
    BrowserModel& model = probe.model();
    const std::size_t count = model.items().size();
    std::vector<double> ends, alls;
    for (int round = 0; round < gestureRounds; ++round) {
        (void)keyUntilPainted(probe, painted, Qt::Key_Home, Qt::NoModifier,
                              [&] { return probe.view().visibleRows().begin == 0; });
        alls.push_back(keyUntilPainted(probe, painted, Qt::Key_A, Qt::ControlModifier,
                                       [&] { return model.selection().isEverything(); }));
        ends.push_back(keyUntilPainted(probe, painted, Qt::Key_End, Qt::NoModifier,
                                       [&] { return probe.view().visibleRows().end == count; }));
    }
    Figures::tell("end", median(ends));
    Figures::tell("all", median(alls));
}

void probeSort(const ProbeWindow& probe) {
    Frames painted(probe.view());
    BrowserModel& model = probe.model();
    std::vector<double> times;
    std::size_t paintedBefore = 0;
    bool hasChanged = false;
    const auto connection = QObject::connect(&model, &BrowserModel::itemsChanged, &painted, [&] {
        hasChanged = true;
        paintedBefore = painted.count();
    });
    for (int round = 0; round < gestureRounds; ++round) {
        probe.settle();
        hasChanged = false;
        const FileSort wanted{.ascending = !model.sort().ascending};
        const auto began = Clock::now();
        model.setSort(wanted);
        runUntil(
            [&] { return hasChanged && model.itemsSort() == wanted && painted.count() > paintedBefore; });
        times.push_back(millisecondsSince(began));
    }
    QObject::disconnect(connection);
    Figures::tell("reversed", median(times));
}

void probeScrolling(const ProbeWindow& probe, const std::string& name) {
    Frames painted(probe.view());
    auto* const bar = probe.view().verticalScrollBar();
    std::vector<double> wheels, thumbs;
    bar->setSliderDown(true);
    for (int i = 1; i <= frames; ++i) {
        probe.settle();
        const int place = static_cast<int>(static_cast<qint64>(bar->maximum()) * i / (frames + 1));
        thumbs.push_back(painted.costOf([&] { bar->setSliderPosition(place); }));
    }
    bar->setSliderDown(false);
    probe.view().scrollTo(0);
    for (int i = 0; i < frames; ++i) {
        probe.settle();
        wheels.push_back(painted.wheel(1));
    }
    Figures::tell(name + " thumb", median(thumbs));
    Figures::tell(name + " thumb worst", std::ranges::max(thumbs));
    Figures::tell(name + " wheel", median(wheels));
    Figures::tell(name + " wheel worst", std::ranges::max(wheels));
}

} // namespace

void probeGestures(const std::string& emptyFolder, const std::string& hugeFolder) {
    const auto empty = *FileURL::fromPath(emptyFolder), huge = *FileURL::fromPath(hugeFolder);
    const ProbeWindow probe(empty);
    Figures::tell("stretch", worstStretchOfLoading(probe, empty, huge));
    probeKeys(probe);
    probeSort(probe);
    probeScrolling(probe, "details");
    probe.model().setViewMode(ViewMode::icons);
    probe.settle();
    probeScrolling(probe, "icons");
}

} // namespace ombrel::bench
