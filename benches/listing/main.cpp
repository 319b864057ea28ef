// Listings of large folders beside what the kernel alone takes and beside other ways to list.

#include "base/Worker.h"
#include "listing/DirectoryProvider.h"
#include "listing/NameCollation.h"
#include "support/Floor.h"
#include "support/NamedTree.h"
#include "support/Report.h"

#include <QDir>

#include <gio/gio.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>

using namespace ombrel;
using namespace ombrel::bench;

namespace {

constexpr int rounds = 7, peerRounds = 5;

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "bench: %s\n", what);
    std::exit(1);
}

FileItemList complete(const std::string& path, FileSort sort = {}, bool directoriesOnly = false) {
    auto snapshot = DirectoryProvider().load({.url = *FileURL::fromPath(path),
                                              .sort = sort,
                                              .directoriesOnly = directoriesOnly,
                                              .firstBatchSize = 200});
    if (!snapshot) fail("a listing failed");
    return snapshot->items();
}

Duration ours(const std::string& path) {
    return timed([&] {
        if (complete(path).empty()) fail("an empty listing");
    });
}

Duration floorOf(const std::string& path) {
    return timed([&] {
        if (floor_examine(path.c_str()) <= 0) fail("the floor saw nothing");
    });
}

void enumerateWithGIO(const std::string& path) {
    GFile* folder = g_file_new_for_path(path.c_str());
    GFileEnumerator* entries =
        g_file_enumerate_children(folder, "*", G_FILE_QUERY_INFO_NOFOLLOW_SYMLINKS, nullptr, nullptr);
    if (!entries) fail("GIO does not enumerate");
    while (GFileInfo* entry = g_file_enumerator_next_file(entries, nullptr, nullptr))
        g_object_unref(entry);
    g_object_unref(entries);
    g_object_unref(folder);
}

void listWithQt(const std::string& path) {
    const auto entries =
        QDir(QString::fromStdString(path))
            .entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                           QDir::Name | QDir::DirsFirst | QDir::LocaleAware);
    if (entries.isEmpty()) fail("Qt lists nothing");
}

void againstTheFloor(Report& report, const std::string& where, const std::string& path, double elapsedTarget,
                     double processorTarget) {
    const auto runs = interleaved(rounds, {[&] { return floorOf(path); }, [&] { return ours(path); }});
    report.ratio("complete, sorted by name, elapsed, " + where, "readdir + fstatat", medianElapsed(runs[1]),
                 medianElapsed(runs[0]), elapsedTarget);
    report.ratio("the same, processor time, " + where, "readdir + fstatat", medianProcessor(runs[1]),
                 medianProcessor(runs[0]), processorTarget);
}

void againstPeers(Report& report, const std::string& path) {
    const auto runs = interleaved(peerRounds, {[&] { return ours(path); },
                                               [&] { return timedProcess({"ls", "-la", path}); },
                                               [&] { return timed([&] { enumerateWithGIO(path); }); },
                                               [&] { return timed([&] { listWithQt(path); }); }});
    const double own = medianElapsed(runs[0]);
    report.ratio("complete, sorted by name, elapsed", "ls -la into a pipe", own, medianElapsed(runs[1]),
                 0.40);
    report.ratio("the same", "GIO, all attributes", own, medianElapsed(runs[2]), 0.22);
    report.ratio("the same", "QDir::entryInfoList, sorted", own, medianElapsed(runs[3]), 0.22);
}

/// From the request to the first snapshot's items in the consumer's hands, in milliseconds.
double firstSnapshot(const std::string& path) {
    std::vector<double> values;
    for (int round = 0; round < 15; ++round) {
        const auto start = std::chrono::steady_clock::now();
        auto stream = DirectoryProvider().snapshots({.url = *FileURL::fromPath(path), .firstBatchSize = 200});
        const auto first = stream.next();
        if (!first || !*first || (*first)->items().size() != 200) fail("no first snapshot");
        values.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    Worker::waitUntilNoneRuns(std::chrono::seconds(5));
    return median(values);
}

/// From the wish to cancel until no thread is left, in milliseconds; the worst of several moments.
double cancelled(const std::string& path) {
    double worst = 0;
    for (int moment = 1; moment <= 10; ++moment) {
        std::optional stream(
            DirectoryProvider().snapshots({.url = *FileURL::fromPath(path), .firstBatchSize = 200}));
        std::this_thread::sleep_for(std::chrono::milliseconds(100 * moment));
        const auto start = std::chrono::steady_clock::now();
        stream.reset();
        if (!Worker::waitUntilNoneRuns(std::chrono::seconds(5))) fail("a cancelled listing goes on");
        worst = std::max(
            worst,
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    return worst;
}

void resorts(Report& report, const std::string& path) {
    std::vector<Duration> listings, sorts[4];
    const FileSort wanted[] = {{.key = FileSort::Key::kind},
                               {.key = FileSort::Key::size},
                               {.key = FileSort::Key::modificationDate},
                               {.key = FileSort::Key::name, .ascending = false}};
    for (int round = 0; round < peerRounds; ++round) {
        FileItemList items;
        listings.push_back(timed([&] { items = complete(path); }));
        for (std::size_t i = 0; i < std::size(wanted); ++i)
            sorts[i].push_back(timed([&] {
                if (wanted[i].sorted(items).size() != items.size()) fail("a sort lost items");
            }));
    }
    constexpr const char* names[] = {"kind", "size", "date", "name, reversed"};
    for (std::size_t i = 0; i < std::size(wanted); ++i)
        report.ratio(std::string("re-sort of a loaded listing by ") + names[i], "the complete listing",
                     medianElapsed(sorts[i]), medianElapsed(listings), 0.40);
}

long residentBytes() {
    std::ifstream file("/proc/self/statm");
    long total = 0, resident = 0;
    file >> total >> resident;
    return resident * ::sysconf(_SC_PAGESIZE);
}

/// What a process holds with a complete listing above what it held before, in bytes an entry; in a fresh
/// process.
double bytesPerEntry(const std::string& self, const std::string& path) {
    FILE* child = ::popen(("'" + self + "' --memory-of '" + path + "'").c_str(), "r");
    double bytes = 0;
    if (!child || std::fscanf(child, "%lf", &bytes) != 1) fail("the memory was not measured");
    ::pclose(child);
    return bytes;
}

int measureMemory(const std::string& path) {
    NameCollation::prepare();
    (void)complete("/usr/bin");
    Worker::waitUntilNoneRuns(std::chrono::seconds(5));
    ::malloc_trim(0);
    const long before = residentBytes();
    const FileItemList items = complete(path);
    ::malloc_trim(0);
    std::printf("%f\n", static_cast<double>(residentBytes() - before) / static_cast<double>(items.size()));
    return 0;
}

void foldersOnly(Report& report, const std::string& path) {
    const auto runs = interleaved(rounds, {[&] { return timed([&] { (void)floor_names(path.c_str()); }); },
                                           [&] { return timed([&] { (void)complete(path, {}, true); }); }});
    report.ratio("folders alone, elapsed", "readdir without looking", medianElapsed(runs[1]),
                 medianElapsed(runs[0]), 1.3);
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::string(argv[1]) == "--memory-of") return measureMemory(argv[2]);
    const char* chosen = std::getenv("OMBREL_BENCH_DIR");
    const std::string base = chosen ? chosen : "/var/tmp";
    NameCollation::prepare();
    Report report("Listing: folders of 100,000 and 1,000,000 entries, warm");
    report.note("trees below " + base + " and on a tmpfs; medians of 5 to 15 interleaved runs");
    {
        const NamedTree hundred(base, 100'000);
        report.value("first snapshot of 200 in its consumer's hands, 100,000 entries",
                     firstSnapshot(hundred.path()), "ms", 5);
    }
    {
        const NamedTree million(base, 1'000'000);
        (void)floor_examine(million.path().c_str());
        againstTheFloor(report, "disk", million.path(), 1.10, 1.6);
        againstPeers(report, million.path());
        report.value("first snapshot of 200, 1,000,000 entries", firstSnapshot(million.path()), "ms", 5);
        resorts(report, million.path());
        report.value("memory of a complete listing, an entry", bytesPerEntry(argv[0], million.path()),
                     "bytes", 125);
        foldersOnly(report, million.path());
        report.value("cancel until the threads have ended, worst of 10", cancelled(million.path()), "ms", 10);
    }
    const MountedTmpfs memory("/tmp");
    if (memory.path().empty()) {
        report.note("tmpfs: not measured, this machine does not allow a mount");
    } else {
        const NamedTree million(memory.path(), 1'000'000);
        againstTheFloor(report, "tmpfs", million.path(), 1.25, 1.6);
    }
    const int missed = report.print();
    std::printf("\n%d missed\n", missed);
    return missed == 0 ? 0 : 1;
}
