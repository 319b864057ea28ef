#include "support/ChildProcess.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace ombrel {
namespace {

using ::testing::AllOf;
using testing::ChildProcess;
using testing::ChildResult;
using ::testing::Eq;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

ChildResult ombrelctl(std::vector<std::string> words) {
    words.insert(words.begin(), OMBRELCTL_PATH);
    return ChildProcess(words).finish();
}

TEST(WrongUsage, ExitsWithTwoAndNamesWhatIsWrong) {
    struct Row {
        std::vector<std::string> words;
        const char* named;
    };
    const Row rows[] = {
        {{}, "No command"},
        {{"lost", "/"}, "“lost”"},
        {{"list"}, "FOLDER"},
        {{"list", "/", "/usr"}, "“/usr”"},
        {{"list", ""}, "empty path"},
        {{"list", "--colour", "/"}, "--colour."},
        {{"list", "--colour=never", "/"}, "--colour."},
        {{"list", "-x", "/"}, "-x."},
        {{"list", "--0", "/"}, "--0."},
        {{"list", "-json", "/"}, "-json."},
        {{"--all", "list", "/"}, "--all."},
        {{"list", "--sort", "colour", "/"}, "“colour”. Possible are: name, kind, size, modificationDate."},
        {{"list", "--sort=", "/"}, "“”"},
        {{"list", "/", "--sort"}, "--sort needs a value"},
        {{"list", "--all=yes", "/"}, "--all takes no value"},
        {{"list", "--first-batch", "many", "/"}, "“many”"},
        {{"list", "--first-batch", "99999999999999999999", "/"}, "“99999999999999999999”"},
        {{"list", "--lang", "tlh", "/"}, "“tlh”"},
        {{"list", "--\xFF\n", "/"}, "--\uFFFD\uFFFD."},
    };
    for (const auto& row : rows) {
        const auto result = ombrelctl(row.words);
        EXPECT_THAT(result.status, Eq(2)) << row.named;
        EXPECT_THAT(result.output, IsEmpty());
        EXPECT_THAT(result.errors, AllOf(HasSubstr(row.named), HasSubstr("--help"), Not(HasSubstr("cli."))));
    }
}

TEST(Usage, TakesOptionsInAnyOrder) {
    for (const std::vector<std::string>& words : {
             std::vector<std::string>{"list", "/usr", "--json"},
             {"--json", "list", "/usr"},
             {"list", "--lang", "tlh", "--lang=en", "--json", "--", "/usr"},
             {"list", "--sort=size", "--sort", "name", "--json", "/usr"},
         }) {
        const auto result = ombrelctl(words);
        EXPECT_THAT(result.status, Eq(0));
        EXPECT_THAT(result.output, AllOf(HasSubstr("\"name\":\"share\""), HasSubstr("\"name\":\"bin\"")));
    }
}

TEST(Help, NamesCommandsAndOptions) {
    const auto program = ombrelctl({"--help"});
    EXPECT_THAT(program.status, Eq(0));
    EXPECT_THAT(program.output,
                AllOf(HasSubstr("list "), HasSubstr("--json"), HasSubstr("--lang CODE"), HasSubstr("-0 ")));
    const auto command = ombrelctl({"list", "--help"});
    EXPECT_THAT(command.status, Eq(0));
    for (const char* option : {"--sort KEY", "--descending", "--mixed", "--all", "--batches",
                               "--first-batch N", "--json", "FOLDER"})
        EXPECT_THAT(command.output, HasSubstr(option));
    for (const auto& help : {program, command}) {
        EXPECT_THAT(help.output, Not(HasSubstr("cli."))) << "every text is there";
        EXPECT_THAT(help.errors, IsEmpty());
    }
}

} // namespace
} // namespace ombrel
