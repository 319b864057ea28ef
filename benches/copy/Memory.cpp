#include "copy/Memory.h"

#include <malloc.h>

#include <cstdio>
#include <fstream>

#include "copy/OurTransfer.h"
#include "copy/Trees.h"

namespace ombrel::bench {
namespace {

constexpr int folders = 1000, filesInEach = 999;
constexpr double entries = folders * (filesInEach + 1.0);

double statusBytes(const std::string& wanted) {
    std::ifstream facts("/proc/self/status");
    for (std::string name; facts >> name;) {
        double kilobytes = 0;
        if (name == wanted && facts >> kilobytes) return kilobytes * 1024;
    }
    fail("the memory was not measured");
}

} // namespace

int printMemoryOfCopy(const std::string& source, const std::string& folder) {
    ::malloc_trim(0);
    const double before = statusBytes("VmRSS:");
    transferAll(FileOperationKind::copy, source, folder);
    std::printf("%f\n", statusBytes("VmHWM:") - before);
    return 0;
}

void measureMemory(Report& report, Workshop& workshop, const std::string& self) {
    const auto source = workshop.fresh();
    makeUniformTree(source, folders, filesInEach, 0);
    const auto command = "'" + self + "' --memory-of-copy '" + source + "' '" + workshop.freshFolder() + "'";
    FILE* const child = ::popen(command.c_str(), "r");
    double bytes = 0;
    if (!child || std::fscanf(child, "%lf", &bytes) != 1) fail("the memory was not measured");
    ::pclose(child);
    report.value("memory of a copy of 1,000,000 entries above the start, an entry", bytes / entries, "bytes",
                 200);
}

} // namespace ombrel::bench
