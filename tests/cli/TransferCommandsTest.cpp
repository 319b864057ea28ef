#include "cli/SurroundingsWorld.h"
#include "support/TestMount.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <string>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

using TransferCommands = Surroundings;

TEST_F(TransferCommands, AreSilentWhenAllIsWell) {
    tree.folder("from");
    tree.file("from/\xFF", "x");
    tree.folder("to");
    for (const auto* name : {"copy", "move"}) {
        const auto result = run({name, "from", "to", "--conflict", "replace"});
        EXPECT_EQ(result.status, 0) << result.errors;
        EXPECT_THAT(result.output + result.errors, IsEmpty());
    }
    EXPECT_THAT(tree.names("to/from"), ElementsAre("\xFF"));
    EXPECT_FALSE(tree.exists("from"));
}

TEST_F(TransferCommands, AnswerConflictsAsTheyAreTold) {
    tree.file("a.txt", "new");
    tree.folder("to");
    tree.file("to/a.txt", "old");
    auto result = run({"copy", "a.txt", "to"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, tree.path("a.txt") + ": Skipped.\n");
    result = run({"copy", "--json", "--conflict=keepBoth", "a.txt", "to"});
    EXPECT_THAT(result.output, HasSubstr("\"destination\":\"" + tree.path("to/a (2).txt") + "\""));
    EXPECT_THAT(result.output, EndsWith("{\"overall\":\"succeeded\"}\n"));
    EXPECT_EQ(run({"copy", "--conflict=cancel", "a.txt", "to"}).status, 1);
    EXPECT_EQ(tree.contents("to/a.txt"), "old");
    EXPECT_EQ(run({"move", "--conflict=replace", "a.txt", "to"}).status, 0);
    EXPECT_EQ(tree.contents("to/a.txt") + tree.contents("to/a (2).txt"), "newnew");
    EXPECT_EQ(run({"copy", "--conflict", "ask", "to", "."}).status, 2);
    EXPECT_EQ(run({"copy", "to", "absent"}).status, 1);
    EXPECT_EQ(run({"copy", "to"}).status, 2);
}

TEST_F(TransferCommands, AskAboutAConflictOnATerminal) {
    tree.file("a.txt", "new");
    tree.folder("to");
    tree.file("to/a.txt", "old");
    const auto program = startOnTerminal({"copy", "a.txt", "to"});
    const auto shown = program->readUntil("further ones too: ");
    EXPECT_THAT(shown, HasSubstr("“a.txt” is already there"));
    EXPECT_THAT(shown, HasSubstr("1 Replace  2 Skip  3 Keep both (a (2).txt)  4 Cancel"));
    program->type("3\n");
    EXPECT_EQ(program->finish().status, 0);
    EXPECT_EQ(tree.contents("to/a.txt") + tree.contents("to/a (2).txt"), "oldnew");
}

// The progress line shows that the copy is under way when Ctrl+C is typed.
TEST_F(TransferCommands, StopAtCtrlCAndLeaveNothingBehind) {
    const auto volume = TestMount::tmpfs(tree.path("volume"), "size=6g");
    if (!volume) GTEST_SKIP() << volume.error();
    ASSERT_EQ(std::system(("head -c 2600M /dev/zero > '" + tree.path("volume/big") + "'").c_str()), 0);
    tree.folder("volume/to");
    for (const auto* name : {"copy", "move"}) {
        const auto program =
            startOnTerminal({name, "volume/big", std::string(name) == "copy" ? "volume/to" : "."});
        program->readUntil("%");
        program->type("\x03");
        const auto result = program->finish();
        EXPECT_EQ(result.status, 130);
        EXPECT_THAT(result.errors, HasSubstr("0 of 1 item was "));
        EXPECT_THAT(tree.names("volume/to"), IsEmpty());
        EXPECT_THAT(tree.names(), ElementsAre("volume"));
        EXPECT_TRUE(tree.exists("volume/big"));
    }
}

TEST_F(TransferCommands, CopyARealTreeToAnotherVolumeAsItIs) {
    const auto volume = TestMount::tmpfs(tree.path("volume"), "size=512m");
    if (!volume) GTEST_SKIP() << volume.error();
    const std::string source = "/usr/share/mime";
    if (std::system(("test -d " + source).c_str()) != 0) GTEST_SKIP() << "there is no " << source;
    const auto result = run({"copy", source, "volume"});
    EXPECT_EQ(result.status, 0) << result.errors;
    const std::string copy = tree.path("volume/mime");
    EXPECT_EQ(shellOutput("diff -r --no-dereference " + source + " " + copy + " 2>&1"), "");
    // The sizes and link counts of folders are their file system's own.
    const auto facts = [](const std::string& folder) {
        return shellOutput(
            "cd " + folder +
            " && { find . -type d -printf '%P %y %m %U %G %T@\\n' -o -printf '%P %y %m %U %G %s %T@ %l\\n' | "
            "LC_ALL=C sort; find . | LC_ALL=C sort | getfacl -P - 2>&1; "
            "find . | LC_ALL=C sort | xargs -d '\\n' getfattr -hd -m '^user' 2>&1; }");
    };
    EXPECT_EQ(facts(source), facts(copy));
}

} // namespace
} // namespace ombrel
