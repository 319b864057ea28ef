#include "support/StrikeAt.h"
#include "support/TempTree.h"
#include "support/TestMount.h"
#include "support/TransferWorld.h"
#include "support/TreeSnapshot.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Error = FileOperationError;
using Kind = FileOperationKind;
using Overall = OperationReport::Overall;

/// Lowers one of the process's limits while it lives.
class Limit {
public:
    Limit(__rlimit_resource_t resource, rlim_t value) : resource_(resource) {
        ::getrlimit(resource_, &before_);
        const rlimit lower{value, before_.rlim_max};
        ::setrlimit(resource_, &lower);
    }
    ~Limit() { ::setrlimit(resource_, &before_); }
    Limit(const Limit&) = delete;
    Limit& operator=(const Limit&) = delete;

private:
    __rlimit_resource_t resource_;
    rlimit before_{};
};

// ---- A file that cannot become as large as it must

/// What cannot be written in whole, against something that has the name.
struct Hindered {
    const char* name;
    Kind kind;
    bool isTree;
};

class TransferHindered : public ::testing::TestWithParam<Hindered> {
protected:
    const Hindered& tested = GetParam();
    TempTree from;
    TransferWorld world;

    void makeSource() const {
        if (!tested.isTree) {
            from.fileOfSize("thing", 2'500'000);
            return;
        }
        from.folder("thing");
        from.file("thing/both", "new");
        from.fileOfSize("thing/large", 2'500'000);
    }
    static void makeExisting(const TempTree& to, bool isTree) {
        if (isTree) to.folder("thing");
        to.file(isTree ? "thing/both" : "thing", "old");
        if (isTree) to.file("thing/kept", "old");
    }

    /// Runs into the hindrance and looks at what it leaves. Entries that fit may have come through.
    void expectAllWhole(const TempTree& to, const Error& error) {
        makeSource();
        makeExisting(to, tested.isTree);
        const auto source = snapshotOf(from.path("thing"));
        world.answers.conflictAnswers = {{ConflictChoice::replace, true}};
        const auto report = world.run(tested.kind, {from.url("thing")}, to.url());
        ASSERT_FALSE(world.answers.errors.empty());
        EXPECT_EQ(world.answers.errors.front().error, error);
        EXPECT_EQ(report.items.back().outcome, ItemOutcome::failed(error));
        if (tested.isTree) {
            EXPECT_THAT(to.names(), ElementsAre("thing"));
            EXPECT_THAT(to.names("thing"), ElementsAre("both", "kept"));
            EXPECT_EQ(to.contents("thing/both") + to.contents("thing/kept"), "newold");
            EXPECT_THAT(differences(partOf(source, "large"), snapshotOf(from.path("thing/large"))),
                        IsEmpty());
        } else {
            EXPECT_THAT(to.names(), ElementsAre("thing"));
            EXPECT_EQ(to.contents("thing"), "old");
            EXPECT_THAT(differences(source, snapshotOf(from.path("thing"))), IsEmpty());
        }
    }
};

TEST_P(TransferHindered, ByALimitOnTheSizeOfFiles) {
    const auto volume = TestMount::tmpfs();
    if (!volume) GTEST_SKIP() << volume.error();
    const TempTree to((*volume)->path());
    // Not earlier: this process makes the source as well.
    std::optional<Limit> limit;
    const StrikeAt strike(1, [&] { limit.emplace(RLIMIT_FSIZE, rlim_t{1} << 20); });
    expectAllWhole(to, Error::posix(EFBIG));
}

TEST_P(TransferHindered, ByADiskThatSomebodyFillsMeanwhile) {
    const auto volume = TestMount::tmpfs({}, "size=4m");
    if (!volume) GTEST_SKIP() << volume.error();
    const TempTree to((*volume)->path());
    const std::string filler = (*volume)->path() + "/filler";
    // The first megabyte is through by then, or the small file is.
    const StrikeAt strike(SystemCall::Kind::write, 2, [&] {
        const int fd = ::open(filler.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
        const std::string block(1 << 16, 'f');
        while (::write(fd, block.data(), block.size()) > 0) {
        }
        ::close(fd);
    });
    expectAllWhole(to, Error::Case::noSpace);
    EXPECT_TRUE(strike.hasStruck());
}

TEST_P(TransferHindered, ByADiskThatIsTooSmallAndSaysHowMuchIsMissing) {
    const auto volume = TestMount::tmpfs({}, "size=1m");
    if (!volume) GTEST_SKIP() << volume.error();
    const TempTree to((*volume)->path());
    expectAllWhole(to, Error::Case::noSpace);
    const auto missing = world.answers.errors.front().facts.missingBytes;
    ASSERT_TRUE(missing);
    EXPECT_GT(*missing, 1'000'000);
    EXPECT_LT(*missing, 2'500'000);
}

TEST_P(TransferHindered, ByAQuota) {
    const auto volume = TestMount::image("btrfs");
    if (!volume) GTEST_SKIP() << volume.error();
    const std::string path = (*volume)->path();
    const std::string command = "{ btrfs quota enable '" + path + "' && btrfs subvolume create '" + path +
                                "/limited' && btrfs qgroup limit 1M '" + path +
                                "/limited'; } >/dev/null 2>&1";
    if (std::system(command.c_str()) != 0) GTEST_SKIP() << "btrfs has no quotas here";
    const TempTree to(path + "/limited");
    expectAllWhole(to, Error::Case::noSpace);
}

INSTANTIATE_TEST_SUITE_P(Of, TransferHindered,
                         ::testing::Values(Hindered{"ACopyReplacing", Kind::copy, false},
                                           Hindered{"AMoveReplacing", Kind::move, false},
                                           Hindered{"ACopyMerging", Kind::copy, true},
                                           Hindered{"AMoveMerging", Kind::move, true}),
                         [](const auto& shown) { return std::string(shown.param.name); });

// ---- Descriptors

std::size_t openDescriptors() {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
        count += entry.exists();
    return count;
}

class TransferWithFewDescriptors : public ::testing::TestWithParam<Kind> {};

TEST_P(TransferWithFewDescriptors, EndsWholeOrNotAtAll) {
    const Kind kind = GetParam();
    const auto volume = TestMount::tmpfs();
    if (!volume) GTEST_SKIP() << volume.error();
    bool hasFailed = false, hasSucceeded = false;
    for (unsigned spare = 0; !hasSucceeded && spare < 60; ++spare) {
        SCOPED_TRACE(std::to_string(spare) + " descriptors to spare");
        const TempTree from, to((*volume)->path());
        std::string folder = "top";
        from.folder(folder);
        for (int depth = 0; depth < 5; ++depth) {
            from.file(folder + "/file", "x");
            from.folder(folder += "/deeper");
        }
        const auto source = snapshotOf(from.path("top"));
        TransferWorld world;
        std::optional<OperationReport> report;
        {
            const Limit limit(RLIMIT_NOFILE, openDescriptors() + spare);
            report = world.run(kind, {from.url("top")}, to.url());
        }
        hasSucceeded = report->overall() == Overall::succeeded;
        hasFailed = hasFailed || !hasSucceeded;
        const bool isThere = to.exists("top");
        if (isThere) {
            EXPECT_THAT(differences(source, snapshotOf(to.path("top"))), IsEmpty());
        }
        if (!isThere || kind == Kind::copy) {
            EXPECT_THAT(differences(source, snapshotOf(from.path("top"))), IsEmpty());
        }
        const bool isTold = report->items.at(0).outcome.error() &&
                            report->items[0].outcome.error()->which() == Error::Case::partialCopyLeftBehind;
        EXPECT_TRUE(isTold || stagingNames(to.names()).empty());
        if (HasFailure()) break;
    }
    EXPECT_TRUE(hasFailed);
    EXPECT_TRUE(hasSucceeded);
}

INSTANTIATE_TEST_SUITE_P(Each, TransferWithFewDescriptors, ::testing::Values(Kind::copy, Kind::move),
                         [](const auto& shown) { return shown.param == Kind::copy ? "Copy" : "Move"; });

// ---- Large and deep trees

std::size_t countOf(const std::string& path) {
    std::size_t count = 0;
    std::error_code failure;
    for (std::filesystem::recursive_directory_iterator entry(path, failure), end; entry != end;
         entry.increment(failure))
        ++count;
    return count;
}

TEST(TransferOfATree, OfAHundredThousandEntries) {
    const auto first = TestMount::tmpfs({}, "size=1g"), second = TestMount::tmpfs({}, "size=1g");
    if (!first) GTEST_SKIP() << first.error();
    if (!second) GTEST_SKIP() << second.error();
    const TempTree from((*first)->path()), to((*second)->path());
    from.folder("top");
    constexpr int folders = 100, files = 999;
    for (int i = 0; i < folders; ++i) {
        const auto folder = "top/" + std::to_string(i);
        from.folder(folder);
        for (int j = 0; j < files; ++j)
            ASSERT_EQ(::mknod(from.path(folder + "/" + std::to_string(j)).c_str(), S_IFREG | 0644, 0), 0);
        from.file(folder + "/with contents", folder);
    }
    constexpr std::size_t entries = folders * (files + 2);
    TransferWorld world;
    EXPECT_EQ(world.copy({from.url("top")}, to.url()).overall(), Overall::succeeded);
    EXPECT_EQ(countOf(to.path("top")), entries);
    EXPECT_EQ(to.contents("top/77/with contents"), "top/77");
    const auto copy = FileReference::sampling(to.url("top"));
    EXPECT_EQ(world.service.deletePermanently({&copy, 1}, {}).overall(), Overall::succeeded);
    EXPECT_THAT(to.names(), IsEmpty());

    EXPECT_EQ(world.move({from.url("top")}, to.url()).overall(), Overall::succeeded);
    EXPECT_EQ(countOf(to.path("top")), entries);
    EXPECT_THAT(from.names(), IsEmpty());
    to.folder("elsewhere");
    EXPECT_EQ(world.move({to.url("top")}, to.url("elsewhere")).overall(), Overall::succeeded);
    EXPECT_EQ(to.contents("elsewhere/top/99/with contents"), "top/99");
    EXPECT_THAT(world.answers.errors, IsEmpty());
}

constexpr int depth = 2000;
constexpr const char* deeper = "deeper and deeper"; // paths of 36,000 bytes

void makeDeep(const std::string& top) {
    ASSERT_EQ(::mkdir(top.c_str(), 0755), 0);
    int folder = ::open(top.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int i = 0; i < depth; ++i) {
        ASSERT_EQ(::mkdirat(folder, deeper, 0755), 0);
        const int next = ::openat(folder, deeper, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ::close(folder);
        folder = next;
    }
    const int file = ::openat(folder, "bottom", O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    EXPECT_EQ(::write(file, "gold", 4), 4);
    ::close(file);
    ::close(folder);
}

/// What the file at the bottom holds; empty when the way there does not go down all the way.
std::string bottomOf(const std::string& top) {
    int folder = ::open(top.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int i = 0; i < depth && folder >= 0; ++i) {
        const int next = ::openat(folder, deeper, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ::close(folder);
        folder = next;
    }
    const int file = ::openat(folder, "bottom", O_RDONLY | O_CLOEXEC);
    std::string bytes(16, '\0');
    const auto count = ::read(file, bytes.data(), bytes.size());
    ::close(file);
    ::close(folder);
    return bytes.substr(0, count > 0 ? static_cast<std::size_t>(count) : 0);
}

TEST(TransferOfATree, DeeperThanAnyPathMayBeLong) {
    const auto volume = TestMount::tmpfs({}, "size=256m");
    if (!volume) GTEST_SKIP() << volume.error();
    const TempTree from, to((*volume)->path());
    makeDeep(from.path("top"));
    ASSERT_EQ(bottomOf(from.path("top")), "gold");
    TransferWorld world;
    EXPECT_EQ(world.copy({from.url("top")}, to.url()).overall(), Overall::succeeded);
    EXPECT_EQ(bottomOf(to.path("top")), "gold");
    const auto copy = FileReference::sampling(to.url("top"));
    EXPECT_EQ(world.service.deletePermanently({&copy, 1}, {}).overall(), Overall::succeeded);
    EXPECT_THAT(to.names(), IsEmpty());
    EXPECT_EQ(world.move({from.url("top")}, to.url()).overall(), Overall::succeeded);
    EXPECT_EQ(bottomOf(to.path("top")), "gold");
    EXPECT_THAT(from.names(), IsEmpty());
    const auto moved = FileReference::sampling(to.url("top"));
    EXPECT_EQ(world.service.deletePermanently({&moved, 1}, {}).overall(), Overall::succeeded);
    EXPECT_THAT(world.answers.errors, IsEmpty());
}

// ---- Names

TEST(TransferOfNames, ThatAreHostile) {
    const std::vector<std::string> names = {"\xFF\xFE\x80",
                                            "new\nline",
                                            "\xE2\x80\xAEgnp.exe",
                                            std::string(255, 'x'),
                                            std::string(254, '\xC3') + "\x28",
                                            "-rf",
                                            "*?[a]$(reboot)`",
                                            "\x01\x1B[31m",
                                            " ",
                                            "...",
                                            ".hidden",
                                            "a\\b",
                                            "%41;#?"};
    const auto volume = TestMount::tmpfs();
    if (!volume) GTEST_SKIP() << volume.error();
    const TempTree from, to((*volume)->path());
    std::vector<FileURL> sources;
    for (const auto& name : names)
        sources.push_back(from.file(name, name));
    const auto original = snapshotOf(from.path());
    TransferWorld world;
    EXPECT_EQ(world.copy(sources, to.url()).overall(), Overall::succeeded);
    EXPECT_THAT(differences(original, snapshotOf(to.path()), Compare::metadata), IsEmpty());
    world.answers.conflictAnswers = {{ConflictChoice::replace, true}};
    EXPECT_EQ(world.move(sources, to.url()).overall(), Overall::succeeded);
    EXPECT_THAT(differences(original, snapshotOf(to.path()), Compare::metadata), IsEmpty());
    EXPECT_THAT(from.names(), IsEmpty());
    std::vector<FileReference> all;
    for (const auto& name : names)
        all.push_back(FileReference::sampling(to.url(name)));
    EXPECT_EQ(world.service.deletePermanently(all, {}).overall(), Overall::succeeded);
    EXPECT_THAT(to.names(), IsEmpty());
    EXPECT_THAT(world.answers.errors, IsEmpty());
}

TEST(TransferOfNames, ThatHaveNoRoomForANumber) {
    const TempTree from, to;
    const std::string longest(255, 'x');
    const auto source = from.file(longest, "new");
    to.file(longest, "old");
    TransferWorld world;
    world.answers.conflictAnswers = {{ConflictChoice::keepBoth, false}};
    const auto outcome = world.copy({source}, to.url()).items.at(0).outcome;
    EXPECT_EQ(outcome, ItemOutcome::failed(Error::invalidName(InvalidNameReason::tooLong)));
    EXPECT_THAT(to.names(), ElementsAre(longest));
    EXPECT_EQ(to.contents(longest), "old");
}

// ---- Pause and cancel

/// Pauses a transfer on its own thread, right before one of its writes, and counts all of them.
class PauseAtWrite final : public SystemCall::Interceptor {
public:
    PauseAtWrite(OperationControl& control, int nth) : control_(control), nth_(nth) {
        SystemCall::intercept(this);
    }
    ~PauseAtWrite() override { SystemCall::intercept(nullptr); }
    std::optional<SystemCall::Fault> before(SystemCall::Kind kind) override {
        if (kind == SystemCall::Kind::write && ++count_ == nth_) control_.setPaused(true);
        return std::nullopt;
    }
    [[nodiscard]] int count() const noexcept { return count_; }

private:
    OperationControl& control_;
    const int nth_;
    std::atomic<int> count_ = 0;
};

TEST(TransferPaused, WritesNothingGoesOnWhereItWasAndCanBeCancelled) {
    const auto volume = TestMount::tmpfs({}, "size=128m");
    if (!volume) GTEST_SKIP() << volume.error();
    const TempTree from, to((*volume)->path());
    const auto source = from.fileOfSize("source", 40'000'000);
    for (const bool isCancelled : {false, true}) {
        SCOPED_TRACE(isCancelled);
        TransferWorld world;
        constexpr int nth = 5;
        const PauseAtWrite pause(*world.control, nth);
        std::optional<OperationReport> report;
        std::atomic<bool> isOver = false;
        std::thread job([&] {
            report = world.copy({source}, to.url());
            isOver = true;
        });
        while (!world.control->isPaused() && !isOver)
            std::this_thread::yield();
        // Time in which a job that does not keep still gives itself away.
        std::this_thread::sleep_for(std::chrono::milliseconds(150));
        EXPECT_EQ(pause.count(), nth); // the one that was under way was let through
        EXPECT_FALSE(isOver);
        EXPECT_FALSE(to.exists("source"));
        isCancelled ? (void)world.stop.request_stop() : world.control->setPaused(false);
        job.join();
        if (isCancelled) {
            EXPECT_EQ(report->items[0].outcome, ItemOutcome::cancelled());
            EXPECT_THAT(to.names(), IsEmpty());
        } else {
            EXPECT_EQ(report->overall(), Overall::succeeded);
            EXPECT_THAT(differences(snapshotOf(source), snapshotOf(to.path("source"))), IsEmpty());
            ASSERT_EQ(::unlink(to.path("source").c_str()), 0);
        }
        EXPECT_EQ(snapshotOf(source).at("").size, 40'000'000);
    }
}

} // namespace
} // namespace ombrel
