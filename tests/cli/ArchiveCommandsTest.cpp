#include "cli/SurroundingsWorld.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>
#include <string>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

using ArchiveCommands = Surroundings;

TEST_F(ArchiveCommands, CompressAndExtractAndPrintWhatTheyMade) {
    tree.folder("photos");
    tree.file("photos/\xFF\n1", "one");
    tree.file("two", "2");
    auto result = run({"compress", "photos", "two", "."});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, tree.path("photos.zip") + "\n");
    EXPECT_THAT(result.errors, IsEmpty());
    result = run({"compress", "-0", "--name", "my album", "photos", tree.path()});
    EXPECT_EQ(result.output, tree.path("my album.zip") + std::string(1, '\0'));

    result = run({"extract", "photos.zip", "my album.zip"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, tree.path("photos (2)") + "\n" + tree.path("my album") + "\n");
    EXPECT_EQ(tree.contents("photos (2)/photos/\xFF\n1") + tree.contents("photos (2)/two"), "one2");
    EXPECT_EQ(tree.contents("my album/photos/\xFF\n1"), "one");

    const auto json = objects({"compress", "--name=j", "two", "."});
    EXPECT_EQ(text(json.at(0), "destination"), tree.path("j.zip"));
}

TEST_F(ArchiveCommands, TellWhatIsWrongInOneSentence) {
    tree.file("bad.zip", "no zip");
    tree.file("x.aar", "AA01");
    const auto result = run({"extract", "--json", "bad.zip", "x.aar", "absent.7z"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr(tree.path("bad.zip") +
                                         ": The archive could not be extracted: The archive is damaged"));
    EXPECT_THAT(
        result.errors,
        HasSubstr("x.aar: The archive could not be extracted: Archives of this kind are not supported."));
    EXPECT_THAT(result.errors, HasSubstr("absent.7z: The item no longer exists."));
    EXPECT_THAT(result.output, HasSubstr("\"reason\":\"damaged\""));
    EXPECT_THAT(result.output, HasSubstr("\"reason\":\"unsupported\""));
    EXPECT_THAT(tree.names(), ElementsAre("bad.zip", "x.aar"));
    EXPECT_EQ(run({"compress", "bad.zip", "nowhere"}).status, 1);
    EXPECT_EQ(run({"compress", "bad.zip"}).status, 2);
    EXPECT_EQ(run({"extract"}).status, 2);
}

TEST_F(ArchiveCommands, LeaveNothingBehindWhenInterrupted) {
    tree.folder("out");
    tree.fileOfSize("big", 150'000'000);
    ChildProcess program(command({"compress", "big", "out"}), setting());
    for (int look = 0; look < 2000 && tree.names("out").empty(); ++look)
        ::usleep(10'000);
    EXPECT_THAT(tree.names("out"), ElementsAre(HasSubstr(".hom-zip-")));
    program.signal(SIGINT);
    EXPECT_EQ(program.finish().status, 130);
    EXPECT_THAT(tree.names("out"), IsEmpty());
}

} // namespace
} // namespace ombrel
