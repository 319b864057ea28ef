#include "copy/Deletion.h"

#include "operations/PermanentDeletion.h"
#include "support/NamedTree.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

namespace ombrel::bench {
namespace {

constexpr int rounds = 5, folders = 1000, filesInEach = 100;

[[noreturn]] void fail(const std::string& what) {
    std::fprintf(stderr, "bench: %s\n", what.c_str());
    std::exit(1);
}

/// 100,000 files in 1,000 folders under a name that was never used before: on ext4, the place of a tree just
/// removed makes new ones many times dearer. With `flushes` they are on the medium afterwards.
std::string freshTree(const std::string& base, std::size_t fileBytes, bool flushes) {
    static int made = 0;
    static std::mt19937 random(9);
    const std::string contents(fileBytes, 'x');
    const std::string top =
        base + "/ombrel-bench-" + std::to_string(::getpid()) + "-" + std::to_string(++made);
    if (::mkdir(top.c_str(), 0755) != 0) fail("making " + top);
    long number = 0;
    for (int i = 0; i < folders; ++i) {
        const std::string folder = top + "/" + usualName(++number, random);
        if (::mkdir(folder.c_str(), 0755) != 0) fail("making " + folder);
        for (int j = 0; j < filesInEach; ++j) {
            const std::string path = folder + "/" + usualName(++number, random);
            const int fd = ::open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
            if (fd < 0 || ::write(fd, contents.data(), fileBytes) != static_cast<ssize_t>(fileBytes))
                fail("making " + path);
            ::close(fd);
        }
    }
    if (flushes) ::sync();
    return top;
}

Duration ours(const std::string& top) {
    return timed([&] {
        const auto item = FileReference::sampling(*FileURL::fromPath(top));
        OperationHooks hooks;
        hooks.progress = [](const OperationProgress&) {};
        const auto report = deletePermanently({&item, 1}, hooks);
        if (report.overall() != OperationReport::Overall::succeeded) fail("deleting " + top);
    });
}

void measureIn(Report& report, const std::string& base, const std::string& label, std::size_t fileBytes,
               bool isDisk) {
    const auto runs = interleaved(
        rounds, {[&] { return ours(freshTree(base, fileBytes, isDisk)); },
                 [&] { return timedProcess({"rm", "-rf", freshTree(base, fileBytes, isDisk)}); }});
    report.ratio("delete 100,000 " + label, "rm -rf", medianElapsed(runs[0]), medianElapsed(runs[1]), 1.1);
}

} // namespace

void measureDeletion(Report& report) {
    const MountedTmpfs memory("/var/tmp");
    if (memory.path().empty())
        report.note("no tmpfs may be mounted here: no figure for memory");
    else
        measureIn(report, memory.path(), "empty files, tmpfs", 0, false);
    measureIn(report, "/var/tmp", "files of 1 KiB, disk", 1024, true);
}

} // namespace ombrel::bench
