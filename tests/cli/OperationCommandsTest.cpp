#include "cli/SurroundingsWorld.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

/// Runs commands as a user of the tree: its home is there. They run as nobody where trashes of all volumes
/// are looked through, because root's on this machine are not the test's.
class OperationCommands : public Surroundings {
protected:
    OperationCommands() {
        home = "home";
        tree.folder(home);
        ::chmod(tree.path().c_str(), 0777);
        ::chmod(tree.path(home).c_str(), 0777);
    }
};

TEST_F(OperationCommands, RenameAndCreateInFolders) {
    auto result = run({"new-folder", ".", "a\xFF"});
    EXPECT_EQ(result.output, tree.path("a\xFF") + "\n");
    result = run({"new-folder", "-0", ".", "a\xFF"});
    EXPECT_EQ(result.output, tree.path("a\xFF (2)") + std::string(1, '\0'));
    result = run({"new-file", "--json", "a\xFF", "-n.txt"});
    EXPECT_EQ(result.status, 2); // looks like an option
    result = run({"new-file", "--json", "--", "a\xFF", "-n.txt"});
    const auto lines = objectsIn(result.output);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_TRUE(lines[0].value(QLatin1String("source")).isNull());
    EXPECT_EQ(QByteArray::fromBase64(lines[0].value(QLatin1String("destinationBytes")).toString().toLatin1()),
              QByteArray::fromStdString(tree.path("a\xFF/-n.txt")));
    EXPECT_EQ(text(lines[1], "overall"), "succeeded");

    result = run({"rename", "a\xFF/-n.txt", "new"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output + result.errors, IsEmpty());
    EXPECT_THAT(tree.names("a\xFF"), ElementsAre("new"));
    result = run({"rename", "a\xFF", "a\xFF (2)", "--json"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(text(objectsIn(result.output).at(0), "error"), "destinationExists");
    EXPECT_THAT(result.errors, EndsWith(": An item with this name is already there.\n"));
}

TEST_F(OperationCommands, TellEachFailureInOneSentence) {
    tree.file("kept");
    tree.file("gone");
    const auto result = run({"delete", "--json", "gone", "absent", "/"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, tree.path("absent") +
                                 ": The item no longer exists.\n/: This name is reserved.\n" +
                                 "1 of 3 items were deleted.\n");
    const auto lines = objectsIn(result.output);
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(text(lines[0], "outcome"), "completed");
    EXPECT_EQ(text(lines[1], "outcome") + " " + text(lines[1], "error"), "failed sourceMissing");
    EXPECT_EQ(text(lines[2], "reason"), "reserved");
    EXPECT_EQ(text(lines[3], "overall"), "partiallySucceeded");
    EXPECT_THAT(tree.names(), ElementsAre("home", "kept"));
}

TEST_F(OperationCommands, RefuseToAskWithoutATerminal) {
    for (const auto* value : {"ask", "perhaps"}) {
        const auto result = run({"delete", "--on-error", value, "x"});
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.errors, HasSubstr("--on-error"));
    }
}

TEST_F(OperationCommands, TrashListAndEmpty) {
    tree.file("home/a");
    tree.folder("home/b\tc");
    ::chmod(tree.path("home/b\tc").c_str(), 0777);
    EXPECT_EQ(runAsNobody({"trash", "home/a", "home/b\tc"}).status, 0);
    const auto files = tree.path("home/Trash/files");
    EXPECT_EQ(runAsNobody({"trash-list", "-0"}).output, files + "/a\t" + tree.path("home/a") + '\0' + files +
                                                            "/b\tc\t" + tree.path("home/b\tc") + '\0');
    const auto listed = objectsIn(runAsNobody({"trash-list", "--json", "--sizes"}).output);
    ASSERT_EQ(listed.size(), 2U);
    EXPECT_EQ(text(listed[1], "original"), tree.path("home/b\tc"));
    EXPECT_TRUE(listed[1].value(QLatin1String("size")).isDouble());
    EXPECT_GT(listed[1].value(QLatin1String("deleted")).toInteger(), 1700000000);

    EXPECT_EQ(runAsNobody({"restore", files + "/a"}).status, 0);
    EXPECT_TRUE(tree.exists("home/a"));
    EXPECT_EQ(runAsNobody({"trash", "home/a"}).status, 0);
    tree.file("home/a", "newer");
    const auto refused = runAsNobody({"restore", "--json", files + "/a"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(text(objectsIn(refused.output).at(0), "outcome"), "skipped");
    EXPECT_EQ(tree.contents("home/a"), "newer");

    auto result = runAsNobody({"trash", "--json", "home", "/proc/self/status"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(text(objectsIn(result.output).at(0), "reason"), "isHome");
    tree.file("home/Trash/files/orphan");
    result = runAsNobody({"empty-trash"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.errors, AllOf(StartsWith(files + "/orphan: "), HasSubstr("no record")));
    EXPECT_THAT(tree.names("home/Trash/files"), ElementsAre("orphan"));
    EXPECT_EQ(runAsNobody({"delete", files + "/orphan"}).status, 0);
    EXPECT_EQ(runAsNobody({"empty-trash", "--json"}).output, "{\"overall\":\"nothingToDo\"}\n");
}

// ---- On a terminal

TEST_F(OperationCommands, AskOnATerminal) {
    auto program = startOnTerminal({"delete", "absent", "late", "absent too"});
    EXPECT_THAT(
        program->readUntil("further ones too: "),
        AllOf(HasSubstr("absent: The item no longer exists."), HasSubstr("1 Try again  2 Skip  3 Cancel")));
    program->type("nonsense\n9\n2\n");
    program->readUntil("/late: The item no longer exists.");
    tree.file("late");
    program->type("1\n");
    program->readUntil("/absent too: ");
    program->type("2 *\n");
    EXPECT_EQ(program->finish().status, 1);
    EXPECT_FALSE(tree.exists("late"));

    program = startOnTerminal({"delete", "absent", "home"});
    program->readUntil("further ones too: ");
    program->type("\x03");
    const auto result = program->finish();
    EXPECT_EQ(result.status, 130);
    EXPECT_TRUE(tree.exists("home"));
}

} // namespace
} // namespace ombrel
