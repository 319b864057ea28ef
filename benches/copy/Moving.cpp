#include "copy/Moving.h"

#include <filesystem>
#include <string>
#include <vector>

#include "copy/OurTransfer.h"
#include "copy/Trees.h"

namespace ombrel::bench {
namespace {

constexpr int rounds = 9;

double milliseconds(const std::vector<double>& seconds) {
    return 1e3 * median(seconds);
}

} // namespace

void measureMoving(Report& report, Workshop& workshop) {
    auto tree = workshop.fresh();
    makeUniformTree(tree, 1000, 99, 0);
    const auto name = tree.substr(tree.rfind('/') + 1);
    const auto move = [&](const std::string& folder) {
        workshop.quieten();
        const auto duration = timed([&] { transferAll(FileOperationKind::move, tree, folder); });
        tree = folder + "/" + name;
        return duration.elapsed;
    };
    std::vector<double> moved, movedIntoMany;
    for (int round = 0; round < rounds; ++round)
        moved.push_back(move(workshop.freshFolder()));
    report.value("move of a tree of 100,000 entries, " + workshop.label(), milliseconds(moved), "ms", 20);

    // Each time into another one: in the same one its own name would be taken.
    for (int round = 0; round < 3; ++round) {
        const auto above = workshop.fresh();
        makeUniformTree(above, 1, 100'000, 0);
        const std::string full = std::filesystem::directory_iterator(above)->path();
        movedIntoMany.push_back(move(full));
    }
    report.value("the same into a folder of 100,000 entries, " + workshop.label(),
                 milliseconds(movedIntoMany), "ms", 100);
}

} // namespace ombrel::bench
