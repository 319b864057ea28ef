// A pane over a folder of a million entries, on a running event loop: how soon it shows something, when it is
// complete, how long it keeps the main thread, what it holds, and what changes of the selection and the order
// take.

#include "base/Worker.h"
#include "browser/BrowserModel.h"
#include "listing/NameCollation.h"
#include "services/QtConnections.h"
#include "support/Floor.h"
#include "support/NamedTree.h"
#include "support/Report.h"

#include <QEventLoop>

#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "pane/Stretches.h"

using namespace ombrel;
using namespace ombrel::bench;

namespace {

using Clock = std::chrono::steady_clock;
using StretchedApplication = Stretched<QCoreApplication>;

constexpr long entries = 1'000'000;
constexpr int rounds = 7, gestureRounds = 9, navigations = 1000;
constexpr std::size_t scattered = 500'000;
constexpr double firstItemsTarget = 15, completionTarget = 1.2, stretchTarget = 8, bytesTarget = 140,
                 gestureTarget = 5;
constexpr auto patience = std::chrono::minutes(1);

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "bench: %s\n", what);
    std::exit(1);
}

StretchedApplication& application() {
    return *static_cast<StretchedApplication*>(QCoreApplication::instance());
}

double milliseconds(Clock::duration duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

void runUntil(const std::function<bool()>& done) {
    const auto end = Clock::now() + patience;
    while (!done()) {
        if (Clock::now() > end) fail("what was waited for does not come");
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

/// Freed lists are gone too, so that one round does not pay for the one before.
void settle() {
    Worker::waitUntilNoneRuns(patience);
    QCoreApplication::processEvents();
    (void)application().takeLongest();
}

bool isLoaded(const BrowserModel& pane) {
    if (pane.listingState().which() == ListingState::Case::failed) fail("a listing failed");
    return pane.listingState() == ListingState::Case::loaded;
}

BrowserModel* makePane() {
    return new BrowserModel(
        [](const DirectoryRequest& request) { return DirectoryProvider().snapshots(request); });
}

/// One pane that opens one folder again and again.
class Opening {
public:
    explicit Opening(const std::string& path) : folder_(*FileURL::fromPath(path)), pane_(makePane()) {}

    Duration open() {
        pane_->navigateHome();
        settle();
        const auto duration = timed([&] {
            const auto began = Clock::now();
            pane_->navigate(folder_);
            const double call = milliseconds(Clock::now() - began);
            runUntil([&] { return !pane_->items().empty() || isLoaded(*pane_); });
            firstItems_.push_back(milliseconds(Clock::now() - began));
            runUntil([&] { return isLoaded(*pane_); });
            longest_ = std::max({longest_, call, application().takeLongest()});
        });
        if (pane_->allItems().size() != entries) fail("items are missing");
        return duration;
    }
    /// Of reading the folder again while it is shown.
    double stretchOfReload() {
        settle();
        const auto generation = pane_->allItems()[0].id().generation;
        pane_->refresh();
        runUntil([&] { return pane_->allItems()[0].id().generation != generation; });
        return application().takeLongest();
    }

    [[nodiscard]] BrowserModel& pane() { return *pane_; }
    [[nodiscard]] double firstItems() const { return median(firstItems_); }
    [[nodiscard]] double longestStretch() const { return longest_; }

private:
    const FileURL folder_;
    const std::unique_ptr<BrowserModel> pane_;
    std::vector<double> firstItems_;
    double longest_ = 0;
};

/// Each in milliseconds, from the gesture to the end of what hears of it.
struct Gestures {
    double selectAll, invert, toggle;
};

Gestures measureGestures(BrowserModel& pane) {
    std::mt19937 random(4711);
    std::vector<double> all, inverted, toggled;
    const auto change = [&pane](std::vector<double>& times, auto gesture) {
        const auto began = Clock::now();
        FileSelection selection = pane.selection();
        gesture(selection);
        pane.setSelection(std::move(selection));
        times.push_back(milliseconds(Clock::now() - began));
    };
    for (int round = 0; round < gestureRounds; ++round) {
        FileSelection selection = pane.selection();
        selection.clear();
        while (selection.count() < scattered)
            selection.change(random() % pane.items().size(), FileSelection::Change::add);
        pane.setSelection(selection);
        const std::size_t row = random() % pane.items().size();
        change(toggled, [row](FileSelection& some) { some.change(row, FileSelection::Change::flip); });
        change(inverted, [](FileSelection& some) {
            some.change(RowRange{0, some.list().size()}, FileSelection::Change::flip);
        });
        change(all, [](FileSelection& some) { some.selectAll(); });
        if (!pane.selection().isEverything()) fail("not everything is selected");
    }
    return {median(all), median(inverted), median(toggled)};
}

double stretchOfSorts(BrowserModel& pane) {
    settle();
    for (const FileSort& sort : {FileSort{.key = FileSort::Key::size},
                                 {.key = FileSort::Key::kind, .ascending = false},
                                 {.key = FileSort::Key::modificationDate},
                                 {.key = FileSort::Key::name, .ascending = false},
                                 {}}) {
        pane.setSort(sort);
        runUntil([&] { return pane.itemsSort() == sort; });
    }
    return application().takeLongest();
}

long openDescriptors() {
    namespace fs = std::filesystem;
    return std::distance(fs::directory_iterator("/proc/self/fd"), {});
}

void navigateInABurst(Report& report, const std::string& path) {
    const std::unique_ptr<BrowserModel> pane(makePane());
    const auto folder = *FileURL::fromPath(path), other = *FileURL::fromPath("/usr/bin");
    pane->navigate(other);
    runUntil([&] { return isLoaded(*pane); });
    settle();
    const long before = openDescriptors();
    const auto began = Clock::now();
    for (int i = 0; i < navigations; ++i)
        pane->navigate(i % 2 == 0 ? folder : other);
    const double burst = milliseconds(Clock::now() - began);
    runUntil([&] { return isLoaded(*pane); });
    settle();
    report.value("main thread, one of 1,000 navigations in a burst, mean", burst / navigations, "ms",
                 stretchTarget);
    report.value("workers left after them", static_cast<double>(Worker::running()), "", 0);
    report.value("descriptors left after them", static_cast<double>(openDescriptors() - before), "", 0);
}

long residentBytes() {
    std::ifstream file("/proc/self/statm");
    long total = 0, resident = 0;
    file >> total >> resident;
    return resident * ::sysconf(_SC_PAGESIZE);
}

int measureMemory(const std::string& path) {
    const std::unique_ptr<BrowserModel> pane(makePane());
    pane->navigate(*FileURL::fromPath("/usr/bin"));
    runUntil([&] { return isLoaded(*pane); });
    pane->navigateHome();
    settle();
    ::malloc_trim(0);
    const long before = residentBytes();
    pane->navigate(*FileURL::fromPath(path));
    runUntil([&] { return isLoaded(*pane); });
    settle();
    ::malloc_trim(0);
    std::printf("%f\n",
                static_cast<double>(residentBytes() - before) / static_cast<double>(pane->allItems().size()));
    return 0;
}

/// What a process holds with one pane over the folder above what it held before, in bytes an entry; in a
/// fresh process.
double bytesPerEntry(const std::string& self, const std::string& path) {
    FILE* child = ::popen(("'" + self + "' --memory-of '" + path + "'").c_str(), "r");
    double bytes = 0;
    if (!child || std::fscanf(child, "%lf", &bytes) != 1) fail("the memory was not measured");
    ::pclose(child);
    return bytes;
}

void measure(Report& report, const std::string& self, const std::string& path) {
    const auto floor = [&] {
        return timed([&] {
            if (floor_examine(path.c_str()) != entries + 2) fail("the floor saw something else");
        });
    };
    (void)floor();
    Opening opening(path);
    const auto runs = interleaved(rounds, {floor, [&] { return opening.open(); }});
    report.value("first items shown after the navigation", opening.firstItems(), "ms", firstItemsTarget);
    report.ratio("complete, sorted and filtered, elapsed", "readdir + fstatat", medianElapsed(runs[1]),
                 medianElapsed(runs[0]), completionTarget);
    report.value("longest stretch of the main thread while it loads, worst of 7", opening.longestStretch(),
                 "ms", stretchTarget);
    report.value("the same while it is read again", opening.stretchOfReload(), "ms", stretchTarget);
    report.value("the same while it is sorted anew, worst of 5", stretchOfSorts(opening.pane()), "ms",
                 stretchTarget);
    const auto gestures = measureGestures(opening.pane());
    report.value("select all", gestures.selectAll, "ms", gestureTarget);
    report.value("invert 500,000 scattered", gestures.invert, "ms", gestureTarget);
    report.value("toggle one of 500,000 scattered", gestures.toggle, "ms", gestureTarget);
    report.value("memory of one pane, an entry", bytesPerEntry(self, path), "bytes", bytesTarget);
    navigateInABurst(report, path);
}

} // namespace

int main(int argc, char** argv) {
    StretchedApplication application(argc, argv);
    const QtConnections connections(InterfaceLanguage{}, QtConnections::Logging::silent);
    NameCollation::prepare();
    if (argc == 3 && std::string(argv[1]) == "--memory-of") return measureMemory(argv[2]);
    const char* chosen = std::getenv("OMBREL_BENCH_DIR");
    const std::string base = chosen ? chosen : "/var/tmp";
    Report report("Panes: a folder of 1,000,000 entries, warm");
    report.note("tree below " + base + "; medians of 7 to 9 interleaved runs");
    {
        const NamedTree million(base, entries);
        measure(report, argv[0], million.path());
    }
    const int missed = report.print();
    std::printf("\n%d missed\n", missed);
    return missed == 0 ? 0 : 1;
}
