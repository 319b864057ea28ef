#include "copy/Deletion.h"

#include "operations/PermanentDeletion.h"

#include <string>
#include <vector>

#include "copy/Trees.h"

namespace ombrel::bench {
namespace {

constexpr int rounds = 5, folders = 1000, filesInEach = 99;

Duration ours(const std::string& top) {
    return timed([&] {
        const auto item = FileReference::sampling(*FileURL::fromPath(top));
        OperationHooks hooks;
        hooks.progress = [](const OperationProgress&) {};
        const auto report = deletePermanently({&item, 1}, hooks);
        if (report.overall() != OperationReport::Overall::succeeded) fail("deleting " + top);
    });
}

} // namespace

/// All trees are made first: where one was removed a moment ago, ext4 makes new ones only slowly.
void measureDeletion(Report& report, Workshop& workshop) {
    const std::size_t fileBytes = workshop.isDisk() ? 1024 : 0;
    std::vector<std::string> trees;
    for (int i = 0; i < 2 * rounds; ++i) {
        trees.push_back(workshop.fresh());
        makeUniformTree(trees.back(), folders, filesInEach, fileBytes);
    }
    workshop.quieten();
    const auto next = [&] {
        auto tree = std::move(trees.back());
        trees.pop_back();
        return tree;
    };
    const auto runs = interleaved(
        rounds, {[&] { return ours(next()); }, [&] { return timedProcess({"rm", "-rf", next()}); }});
    const std::string what = workshop.isDisk() ? "files of 1 KiB, disk" : "empty files, tmpfs";
    report.ratio("delete a tree of 100,000 " + what, "rm -rf", medianElapsed(runs[0]), medianElapsed(runs[1]),
                 1.1);
}

} // namespace ombrel::bench
