#include "support/ChildProcess.h"
#include "support/MirrorMount.h"
#include "support/TempTree.h"
#include "support/TestMount.h"

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>

#include <csignal>
#include <map>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::HasSubstr;

ChildResult run(std::vector<std::string> words) {
    words.insert(words.begin(), {OMBRELCTL_PATH, "volumes"});
    return ChildProcess(words).finish();
}

/// The volumes by their mount points.
std::map<std::string, QJsonObject> volumesIn(const ChildResult& result) {
    std::map<std::string, QJsonObject> volumes;
    for (const auto& line : QByteArray::fromStdString(result.output).split('\n')) {
        const auto object = QJsonDocument::fromJson(line).object();
        if (!line.isEmpty()) volumes[object.value(QStringLiteral("path")).toString().toStdString()] = object;
    }
    return volumes;
}

TEST(VolumesCommand, ListsWhatIsMounted) {
    const auto image = TestMount::image("ext4", "/mnt/ombrel-cli-volume", "Travels");
    if (!image) GTEST_SKIP() << image.error();
    const auto memory = TestMount::tmpfs("/media/ombrel-cli-memory\xFF", "size=1m");
    if (!memory) GTEST_SKIP() << memory.error();
    ASSERT_TRUE((*memory)->setReadOnly(true));
    const auto plain = run({});
    EXPECT_EQ(plain.status, 0) << plain.errors;
    EXPECT_THAT(plain.output, HasSubstr("\nTravels\t/mnt/ombrel-cli-volume\text4\t"));
    EXPECT_THAT(plain.output,
                HasSubstr("\t/media/ombrel-cli-memory\xFF\ttmpfs\t1048576\t1048576\treadOnly\n"));
    EXPECT_THAT(run({"-0"}).output, HasSubstr(std::string("\0Travels\t", 9)));

    auto volumes = volumesIn(run({"--json"}));
    EXPECT_TRUE(volumes["/"].value(QStringLiteral("root")).toBool());
    const auto travels = volumes["/mnt/ombrel-cli-volume"];
    EXPECT_EQ(travels.value(QStringLiteral("name")), QStringLiteral("Travels"));
    EXPECT_EQ(travels.value(QStringLiteral("type")), QStringLiteral("ext4"));
    EXPECT_GT(travels.value(QStringLiteral("total")).toInteger(),
              travels.value(QStringLiteral("available")).toInteger());
    EXPECT_TRUE(travels.value(QStringLiteral("ejectable")).toBool()) << "an image can be detached";
    EXPECT_FALSE(travels.value(QStringLiteral("readOnly")).toBool());
    EXPECT_TRUE(travels.value(QStringLiteral("error")).isNull());
    EXPECT_TRUE(volumes["/media/ombrel-cli-memory\xEF\xBF\xBD"].contains(QStringLiteral("pathBytes")));
}

TEST(VolumesCommand, NamesTheOneThatDoesNotAnswer) {
    const TempTree tree;
    const auto dead = MirrorMount::of(tree.path(), {"hanging"}, "/mnt/ombrel-cli-dead");
    if (!dead) GTEST_SKIP() << dead.error();
    const auto result = run({"--json"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "/mnt/ombrel-cli-dead: The volume does not answer.\n");
    auto volumes = volumesIn(result);
    EXPECT_EQ(volumes["/mnt/ombrel-cli-dead"].value(QStringLiteral("error")), QStringLiteral("ETIMEDOUT"));
    EXPECT_EQ(volumes["/mnt/ombrel-cli-dead"].value(QStringLiteral("type")), QStringLiteral("fuse.mirror"));
    EXPECT_TRUE(volumes["/mnt/ombrel-cli-dead"].value(QStringLiteral("total")).isNull());
    EXPECT_GT(volumes["/"].value(QStringLiteral("total")).toInteger(), 0) << "the others answer";
}

TEST(VolumesCommand, TellsWhatIsMountedMovedAndUnmountedAsItHappens) {
    ChildProcess watching({OMBRELCTL_PATH, "volumes", "--watch"});
    EXPECT_THAT(watching.readErrorLine(), HasSubstr("Ctrl+C"));
    const auto image = TestMount::image("ext4", "/mnt/ombrel-cli-came");
    if (!image) GTEST_SKIP() << image.error();
    EXPECT_EQ(watching.readOutputLine(), "mounted\t/mnt/ombrel-cli-came");
    ASSERT_TRUE((*image)->moveTo("/media/ombrel-cli-moved"));
    EXPECT_EQ(watching.readOutputLine(), "renamed\t/media/ombrel-cli-moved");
    ASSERT_TRUE((*image)->unmount());
    EXPECT_EQ(watching.readOutputLine(), "unmounted\t/media/ombrel-cli-moved");
    const auto memory = TestMount::tmpfs("/media/ombrel-cli-memory");
    ASSERT_TRUE(memory) << memory.error();
    EXPECT_EQ(watching.readOutputLine(), "mounted\t/media/ombrel-cli-memory");
    watching.signal(SIGINT);
    EXPECT_EQ(watching.finish().status, 130);
}

TEST(VolumesCommand, TellsEventsInJSONWhileOneVolumeHangs) {
    const TempTree tree;
    const auto dead = MirrorMount::of(tree.path(), {"hanging"}, "/mnt/ombrel-cli-dead");
    if (!dead) GTEST_SKIP() << dead.error();
    ChildProcess watching({OMBRELCTL_PATH, "volumes", "--watch", "--json"});
    EXPECT_NE(watching.readErrorLine(), "");
    const auto memory = TestMount::tmpfs("/mnt/ombrel-cli-memory");
    ASSERT_TRUE(memory) << memory.error();
    EXPECT_EQ(watching.readOutputLine(), R"({"event":"mounted","path":"/mnt/ombrel-cli-memory"})");
    // A reader that has gone away is noticed at the next event.
    watching.closeOutput();
    ASSERT_TRUE((*memory)->moveTo("/mnt/ombrel-cli-moved"));
    EXPECT_EQ(watching.finish().status, 1);
}

} // namespace
} // namespace ombrel
