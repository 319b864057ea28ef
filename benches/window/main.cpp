// The whole window: how soon it shows a folder, what it holds, what its main thread is kept by, and what it
// does when nobody touches it; beside other programs that show folders, which are looked at from outside.

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "window/Bench.h"

using namespace ombrel::bench;

namespace {

constexpr std::pair<std::string_view, void (WindowBench::*)()> parts[] = {
    {"start", &WindowBench::measureStart},       {"memory", &WindowBench::measureMemory},
    {"large", &WindowBench::measureLargeFolder}, {"huge", &WindowBench::measureHugeFolder},
    {"gestures", &WindowBench::measureGestures}, {"photographs", &WindowBench::measurePhotographs},
    {"idle", &WindowBench::measureIdleness},
};

int run(std::span<char*> wanted) {
    const char* const chosen = std::getenv("OMBREL_BENCH_DIR");
    const std::string base = chosen ? chosen : "/var/tmp";
    Report report("The whole window, warm");
    report.note("folders below " + base + "; Xvfb and openbox; medians of 5 to 7 interleaved runs");
    {
        WindowBench bench(report, base);
        for (const auto& [name, measure] : parts) {
            bool isWanted = wanted.empty();
            for (const char* const word : wanted)
                isWanted = isWanted || word == name;
            if (isWanted) (bench.*measure)();
        }
    }
    const int missed = report.print();
    std::printf("\n%d missed\n", missed);
    return missed == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    heedSignals();
    try {
        return run({argv + 1, argv + argc});
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "bench: %s\n", problem.what());
        return 1;
    }
}
