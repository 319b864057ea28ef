#include "copy/Copies.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "copy/Floor.h"
#include "copy/OurTransfer.h"
#include "copy/Trees.h"

namespace ombrel::bench {
namespace {

constexpr int rounds = 5;
constexpr std::size_t largeBytes = std::size_t{4} << 30;
constexpr int smallFolders = 500, smallFiles = 100, smallBytes = 4096;
constexpr int mixedFiles = 40'000;

/// Makes one copy of the source in a folder of its own.
using Contender = std::function<Duration(const std::string& source, const std::string& folder)>;

/// What a bare copy is read back from.
enum class Depth { cache, medium };

template <int (*copyLoop)(const char*, const char*)>
Duration bareCopy(const std::string& source, const std::string& folder) {
    const auto copy = folder + "/copy";
    return timed([&] {
        if (copyLoop(source.c_str(), copy.c_str()) != 0) fail("a bare copy");
    });
}

template <int (*copyLoop)(const char*, const char*), int (*compareLoop)(const char*, const char*, int),
          Depth depth>
Duration bareLoops(const std::string& source, const std::string& folder) {
    const auto copy = folder + "/copy";
    return timed([&] {
        if (copyLoop(source.c_str(), copy.c_str()) != 0) fail("a bare copy");
        if (depth == Depth::medium && floor_flush(folder.c_str()) != 0) fail("a flush");
        if (compareLoop(source.c_str(), copy.c_str(), depth == Depth::medium) != 0) fail("a bare comparison");
    });
}

Duration ours(const std::string& source, const std::string& folder) {
    return timed([&] { transferAll(FileOperationKind::copy, source, folder); });
}

Duration oursDurably(const std::string& source, const std::string& folder) {
    return timed([&] { copyDurably(source, folder); });
}

Duration sum(Duration a, Duration b) {
    return {a.elapsed + b.elapsed, a.processor + b.processor};
}

std::string nameOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

Duration archiveCopy(const std::string& source, const std::string& folder) {
    return timedProcess({"cp", "-a", "--reflink=never", source, folder});
}

/// What becomes of a copy once it was timed.
enum class Copies { stay, go };

/// For those who look for the reason of a median.
void tell(const std::string& source, const std::vector<std::vector<Duration>>& runs) {
    if (!std::getenv("OMBREL_BENCH_RUNS")) return;
    for (const auto& contender : runs) {
        std::fprintf(stderr, "%s:", source.c_str());
        for (const auto& run : contender)
            std::fprintf(stderr, "  %.2f s (%.2f s)", run.elapsed, run.processor);
        std::fprintf(stderr, "\n");
    }
}

/// The runs of each contender. One run of each comes first and does not count: the machine takes its memory,
/// and the source is in the cache from then on.
std::vector<std::vector<Duration>> compete(Workshop& workshop, const std::string& source, Copies copies,
                                           const std::vector<Contender>& contenders) {
    const auto run = [&](const Contender& contender) {
        const auto folder = workshop.freshFolder();
        workshop.quieten();
        const auto duration = contender(source, folder);
        if (copies == Copies::go) (void)timedProcess({"rm", "-rf", folder});
        return duration;
    };
    std::vector<std::function<Duration()>> turns;
    for (const auto& contender : contenders) {
        (void)run(contender);
        turns.emplace_back([&run, &contender] { return run(contender); });
    }
    auto runs = interleaved(rounds, turns);
    tell(source, runs);
    return runs;
}

void durably(Report& report, const std::string& figure, const std::vector<Duration>& ours,
             const std::vector<Duration>& bare) {
    report.ratio(figure + ", flushed and read back", "bare loops, one syncfs, cache dropped for the copy",
                 medianElapsed(ours), medianElapsed(bare), 1.15);
}

/// Files in memory go at once: their place is as good as new.
Copies manyIn(const Workshop& workshop) {
    return workshop.isDisk() ? Copies::stay : Copies::go;
}

} // namespace

void measureLargeFile(Report& report, Workshop& workshop) {
    const auto source = workshop.fresh();
    makeFile(source, largeBytes);
    const auto copyAndCompare = [](const std::string& from, const std::string& folder) {
        const auto copied = archiveCopy(from, folder);
        return sum(copied, timedProcess({"cmp", from, folder + "/" + nameOf(from)}));
    };
    const auto rsync = [](const std::string& from, const std::string& folder) {
        return timedProcess({"rsync", "-a", from, folder + "/"});
    };
    std::vector<Contender> contenders{ours, bareLoops<floor_copy_file, floor_compare_files, Depth::cache>,
                                      copyAndCompare, rsync};
    if (workshop.isDisk()) {
        contenders.emplace_back(oursDurably);
        contenders.emplace_back(bareLoops<floor_copy_file, floor_compare_files, Depth::medium>);
    }
    const auto runs = compete(workshop, source, Copies::go, contenders);
    const auto figure = "one file of 4 GiB, " + workshop.label();
    const double own = medianElapsed(runs[0]);
    report.ratio(figure, "cp -a --reflink=never, then cmp", own, medianElapsed(runs[2]), 1.0);
    report.ratio(figure, "bare read-write loop, then bare compare loop", own, medianElapsed(runs[1]), 1.10);
    report.ratio(figure, "rsync -a, nothing verified", own, medianElapsed(runs[3]), 0.5);
    if (workshop.isDisk()) durably(report, figure, runs[4], runs[5]);
    ::unlink(source.c_str());
}

void measureSmallFiles(Report& report, Workshop& workshop) {
    const auto source = workshop.fresh();
    makeUniformTree(source, smallFolders, smallFiles, smallBytes);
    std::vector<Contender> contenders{ours, bareCopy<floor_copy_tree>, archiveCopy};
    if (workshop.isDisk()) {
        contenders.emplace_back(oursDurably);
        contenders.emplace_back(bareLoops<floor_copy_tree, floor_compare_tree, Depth::medium>);
    }
    const auto runs = compete(workshop, source, manyIn(workshop), contenders);
    const auto figure = "50,000 files of 4 KiB, " + workshop.label();
    const double own = medianElapsed(runs[0]);
    report.ratio(figure, "bare copying loop, nothing verified", own, medianElapsed(runs[1]), 1.30);
    report.ratio(figure, "cp -a, nothing verified", own, medianElapsed(runs[2]), 1.0);
    if (workshop.isDisk()) durably(report, figure, runs[3], runs[4]);
}

void measureMixedTree(Report& report, Workshop& workshop) {
    const auto source = workshop.fresh();
    makeMixedTree(source, mixedFiles);
    const auto copyAndCompare = [](const std::string& from, const std::string& folder) {
        const auto copied = archiveCopy(from, folder);
        return sum(copied,
                   timedProcess({"diff", "-r", "--no-dereference", from, folder + "/" + nameOf(from)}));
    };
    const auto runs = compete(workshop, source, manyIn(workshop), {ours, copyAndCompare});
    report.ratio("40,000 sources and documents, " + workshop.label(), "cp -a, then diff -r --no-dereference",
                 medianElapsed(runs[0]), medianElapsed(runs[1]), 0.75);
}

} // namespace ombrel::bench
