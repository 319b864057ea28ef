#include "base/Text.h"

#include <gmock/gmock.h>

#include <map>
#include <string>

namespace ombrel {
namespace {

/// Texts from a table of the test's own, for its time.
class TextTest : public ::testing::Test {
protected:
    TextTest() {
        Texts::connect([this](std::string_view key, std::optional<std::int64_t> count) {
            asked = count;
            const auto found = table.find(key);
            return found == table.end() ? std::string() : found->second;
        });
    }
    ~TextTest() override { Texts::connect({}); }

    std::map<std::string, std::string, std::less<>> table;
    std::optional<std::int64_t> asked;
};

TEST_F(TextTest, PutsItsArgumentsWhereTheTableSays) {
    table = {{"a", "{2} before {1}, {1} again"}, {"b", "{n} of {1}"}};
    EXPECT_EQ(Texts::localized("a", {"one", "two"}), "two before one, one again");
    EXPECT_EQ((Text{"b", {"nine"}, 3}).localized(), "{n} of nine") << "{n} belongs to the table";
    EXPECT_EQ(asked, 3);
}

TEST_F(TextTest, LeavesAloneWhatIsNoPlaceholder) {
    table = {{"a", "{1} {3} {0} {x} {} { {1"}};
    EXPECT_EQ(Texts::localized("a", {"one", "two"}), "one {3} {0} {x} {} { {1");
}

TEST_F(TextTest, NeverReadsPlaceholdersInAnArgument) {
    table = {{"a", "“{1}” and “{2}”"}};
    EXPECT_EQ(Texts::localized("a", {"{2}", "{1}"}), "“{2}” and “{1}”");
}

TEST_F(TextTest, ShowsItsKeyAndArgumentsWhereNoTableKnowsIt) {
    EXPECT_EQ(Texts::localized("some.key"), "some.key");
    EXPECT_EQ((Text{"some.key", {"a", "b"}, 2}).localized(), "some.key(2, a, b)");
    Texts::connect({});
    EXPECT_EQ(Texts::localized("some.key", {"a"}), "some.key(a)");
}

} // namespace
} // namespace ombrel
