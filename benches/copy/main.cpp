// File operations, beside bare loops of the same calls and the tools that people use for them.

#include <cstdio>
#include <cstdlib>
#include <string>

#include "copy/Copies.h"
#include "copy/Deletion.h"
#include "copy/Memory.h"
#include "copy/Moving.h"
#include "copy/Steering.h"

using namespace ombrel::bench;

int main(int argc, char** argv) {
    if (argc == 4 && std::string(argv[1]) == "--memory-of-copy") return printMemoryOfCopy(argv[2], argv[3]);
    const char* chosen = std::getenv("OMBREL_BENCH_DIR");
    const std::string base = chosen ? chosen : "/var/tmp";
    Report report("Copy: files and trees, warm sources, fresh names in every run");
    report.note("trees below " + base +
                " and on a tmpfs; medians of 5 interleaved runs after one that does not count");
    const auto part = [&](const char* name, auto&& body) {
        // One part alone, for those who work on it.
        if (argc < 2 || std::string(argv[1]) == name) body();
    };
    part("large", [&] {
        auto disk = Workshop::onDisk(base);
        measureLargeFile(report, disk);
    });
    part("large", [&] {
        auto memory = Workshop::inMemory();
        measureLargeFile(report, memory);
    });
    const auto trees = [&](const char* name, void (*measure)(Report&, Workshop&)) {
        part(name, [&] {
            auto disk = Workshop::onOwnDisk(base);
            measure(report, disk);
        });
        part(name, [&] {
            auto memory = Workshop::inMemory();
            measure(report, memory);
        });
    };
    trees("small", measureSmallFiles);
    trees("mixed", measureMixedTree);
    trees("move", measureMoving);
    trees("delete", measureDeletion);
    part("memory", [&] {
        auto memory = Workshop::inMemory();
        measureMemory(report, memory, argv[0]);
    });
    part("steer", [&] {
        auto disk = Workshop::onDisk(base);
        measureSteering(report, disk);
    });
    const int missed = report.print();
    std::printf("\n%d missed\n", missed);
    return missed == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
