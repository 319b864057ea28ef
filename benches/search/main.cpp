// Names searched below a folder, beside a bare walk and beside the tools that people use for it.

#include "listing/SearchProvider.h"
#include "support/NamedTree.h"
#include "support/Report.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>

#include "search/Floor.h"

using namespace ombrel;
using namespace ombrel::bench;

namespace {

constexpr int rounds = 7, coldRounds = 3;
constexpr const char* text = "q";

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "bench: %s\n", what);
    std::exit(1);
}

/// 300,000 files in 20,000 folders, three levels deep; every fiftieth name holds the text.
class Forest {
public:
    explicit Forest(const std::string& base) {
        path_ = base + "/ombrel-bench-XXXXXX";
        if (!::mkdtemp(path_.data())) fail("no folder for the tree");
        std::mt19937 random(4);
        long number = 0;
        for (int outer = 0; outer < 20; ++outer) {
            const std::string year = path_ + "/" + std::to_string(2000 + outer);
            ::mkdir(year.c_str(), 0755);
            for (int middle = 0; middle < 10; ++middle) {
                const std::string month = year + "/" + usualName(number, random);
                ::mkdir(month.c_str(), 0755);
                for (int inner = 0; inner < 100; ++inner)
                    fill(month + "/" + usualName(++number, random), number, random);
            }
        }
    }
    ~Forest() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    Forest(const Forest&) = delete;
    Forest& operator=(const Forest&) = delete;

    [[nodiscard]] const std::string& path() const noexcept { return path_; }

private:
    static void fill(const std::string& folder, long& number, std::mt19937& random) {
        if (::mkdir(folder.c_str(), 0755) != 0) fail("making the tree");
        for (int file = 0; file < 15; ++file) {
            std::string name = usualName(++number, random);
            if (random() % 50 == 0) name.insert(0, random() % 2 ? "Quarter " : "sequel_");
            const int fd = ::open((folder + "/" + name).c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
            if (fd < 0) fail("making the tree");
            ::close(fd);
        }
    }

    std::string path_;
};

std::vector<std::string> found(const std::string& path) {
    std::vector<std::string> paths;
    const SearchRequest request{*FileURL::fromPath(path), text, 1, true, true};
    const auto ending = SearchProvider::walk(request, [&](const FileItemList& batch) {
        for (const auto item : batch)
            paths.push_back(item.url().path());
    });
    if (!ending) fail("the search failed");
    return paths;
}

/// As a pane takes it: items, not yet locations.
Duration ours(const std::string& path, double* first = nullptr) {
    std::size_t count = 0;
    const auto start = std::chrono::steady_clock::now();
    return timed([&] {
        const SearchRequest request{*FileURL::fromPath(path), text, 1, true, true};
        const auto ending = SearchProvider::walk(request, [&](const FileItemList& batch) {
            if (count == 0 && first)
                *first = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
                             .count();
            count += batch.size();
        });
        if (!ending || count == 0) fail("the search failed");
    });
}

std::vector<std::string> fdCommand(const std::string& path) {
    for (const char* name : {"/usr/bin/fdfind", "/usr/bin/fd"})
        if (::access(name, X_OK) == 0) return {name, "-HI", text, path};
    return {};
}

std::vector<std::string> findCommand(const std::string& path) {
    return {"find", path, "-mindepth", "1", "-iname", std::string("*") + text + "*"};
}

std::vector<std::string> linesOf(const std::vector<std::string>& command) {
    std::string line;
    for (const auto& word : command)
        line += "'" + word + "' ";
    FILE* pipe = ::popen(line.c_str(), "r");
    if (!pipe) fail("a tool does not start");
    std::vector<std::string> lines;
    char buffer[8192];
    while (std::fgets(buffer, sizeof buffer, pipe)) {
        lines.emplace_back(buffer);
        lines.back().pop_back();
        if (lines.back().ends_with('/')) lines.back().pop_back();
    }
    ::pclose(pipe);
    std::ranges::sort(lines);
    return lines;
}

/// Forgets what the kernel has read. Answers false where that is not allowed.
bool dropCaches() {
    ::sync();
    std::ofstream control("/proc/sys/vm/drop_caches");
    control << "3" << std::flush;
    return control.good();
}

void coldAgainstFd(Report& report, const std::string& path) {
    const auto fd = fdCommand(path);
    if (fd.empty() || !dropCaches()) {
        report.note("no cold figures: no fd here, or no right to empty the cache");
        return;
    }
    const auto cold = [](const std::function<Duration()>& run) {
        return [run] {
            // What the program itself needs comes back first.
            dropCaches();
            (void)timedProcess({"/usr/bin/find", "/dev/null"});
            (void)linesOf(fdCommand("/dev/shm"));
            return run();
        };
    };
    const auto runs =
        interleaved(coldRounds, {cold([&] { return timedProcess(fd); }), cold([&] { return ours(path); })});
    report.ratio("elapsed, cold", "fdfind -HI q", medianElapsed(runs[1]), medianElapsed(runs[0]), 1.0);
}

} // namespace

int main() {
    Report report("search");
    const Forest forest("/var/tmp");
    const std::string& path = forest.path();
    auto own = found(path);
    std::ranges::sort(own);
    report.note("300,000 files in 20,000 folders, " + std::to_string(own.size()) + " matches of \"q\"");
    if (own.size() >= SearchProvider::resultLimit) fail("too many matches to compare");
    if (own != linesOf(findCommand(path))) fail("find -iname finds another set");
    if (floor_search(path.c_str(), text) != static_cast<long>(own.size()))
        fail("the floor finds another set");
    const auto fd = fdCommand(path);
    if (!fd.empty() && own != linesOf(fd)) fail("fdfind finds another set");

    std::vector<double> firsts;
    std::vector<std::function<Duration()>> contenders = {
        [&] { return timed([&] { (void)floor_search(path.c_str(), text); }); },
        [&] {
            double first = 0;
            const auto run = ours(path, &first);
            firsts.push_back(first);
            return run;
        },
        [&] { return timedProcess(findCommand(path)); },
    };
    if (!fd.empty()) contenders.push_back([&] { return timedProcess(fd); });
    const auto runs = interleaved(rounds, contenders);
    const double our = medianProcessor(runs[1]);
    report.ratio("processor time, warm", "bare getdents walk", our, medianProcessor(runs[0]), 1.25);
    report.ratio("processor time, warm", "find -iname '*q*'", our, medianProcessor(runs[2]), 0.65);
    if (fd.empty())
        report.note("fdfind is not installed");
    else
        report.ratio("processor time, warm", "fdfind -HI q", our, medianProcessor(runs[3]), 0.8);
    report.value("first match after", median(firsts), "ms", 20);
    coldAgainstFd(report, path);
    return report.print() == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
