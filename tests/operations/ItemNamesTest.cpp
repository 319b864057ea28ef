#include "operations/ItemNames.h"

#include <gmock/gmock.h>

namespace ombrel::ItemNames {
namespace {

using Reason = InvalidNameReason;
using namespace std::string_literals;
using namespace std::string_view_literals;

TEST(NameValidation, FirstRuleThatFiresDecides) {
    struct Row {
        std::string name;
        std::optional<Reason> plain, windows;
    };
    const auto both = [](std::string name, std::optional<Reason> reason) {
        return Row{std::move(name), reason, reason};
    };
    std::string twoByteCharacters, wideSpaces;
    for (int i = 0; i < 128; ++i) {
        twoByteCharacters += "\xC3\xA9";
        wideSpaces += "\xE3\x80\x80";
    }
    const Row table[] = {
        both("", Reason::empty),
        both(" ", Reason::empty),
        both("\t\r\n", Reason::empty),
        both("\xE2\x80\x83\xC2\xA0", Reason::empty), // em space, no-break space
        both(wideSpaces, Reason::empty),
        both(".", Reason::reserved),
        both("..", Reason::reserved),
        both("...", std::nullopt),
        {"a/b", Reason::containsSlash, Reason::windowsCharacters},
        {"a:b", std::nullopt, Reason::windowsCharacters},
        {"a\0/"s, Reason::containsSlash, Reason::windowsCharacters},
        both("a\0b"s, Reason::containsNull),
        both(std::string(255, 'a'), std::nullopt),
        both(std::string(256, 'a'), Reason::tooLong),
        both(twoByteCharacters, Reason::tooLong),
        both(" a ", std::nullopt),
        both("a. ", std::nullopt),
        both("\x01", std::nullopt),
        both("\xFF", std::nullopt),
        both(" \xC2", std::nullopt),        // a cut-off character is no white space
        both("\xE2\x80\x8B", std::nullopt), // neither is the zero-width space
    };
    for (const auto& row : table) {
        EXPECT_EQ(validate(row.name, WindowsRules::off), row.plain) << row.name;
        EXPECT_EQ(validate(row.name, WindowsRules::on), row.windows) << row.name;
    }
    for (const char character : "\\/:*?\"<>|"sv)
        EXPECT_EQ(validate(std::string("a") + character, WindowsRules::on), Reason::windowsCharacters)
            << character;
}

TEST(NumberedNames, KeepTheExtensionWhereThereIsOne) {
    const std::tuple<std::string_view, KeepExtension, std::string_view> table[] = {
        {"Report.txt", KeepExtension::yes, "Report (2).txt"},
        {"Report.txt", KeepExtension::no, "Report.txt (2)"},
        {"Photos.2024", KeepExtension::no, "Photos.2024 (2)"},
        {"archive.tar.gz", KeepExtension::yes, "archive.tar (2).gz"},
        {".x", KeepExtension::yes, ".x (2)"},
        {"..x", KeepExtension::yes, "..x (2)"},
        {".a.b", KeepExtension::yes, ".a (2).b"},
        {"notes.", KeepExtension::yes, "notes. (2)"},
        {"plain", KeepExtension::yes, "plain (2)"},
        {"a\xFF.txt", KeepExtension::yes, "a\xFF (2).txt"},
        {"v1. Final draft", KeepExtension::yes, "v1. Final draft (2)"},
    };
    for (const auto& [name, keep, expected] : table)
        EXPECT_EQ(numbered(name, 2, keep), expected);
    EXPECT_EQ(numbered("a.b", 500, KeepExtension::yes), "a (500).b");
    EXPECT_EQ(splitExtension("a.b", KeepExtension::yes), (Split{"a", "b"}));
    EXPECT_EQ(splitExtension("..b", KeepExtension::yes), (Split{"..b", std::nullopt}));
}

} // namespace
} // namespace ombrel::ItemNames
