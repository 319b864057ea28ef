#include "base/FileName.h"

#include <gmock/gmock.h>

#include <string>

namespace ombrel {
namespace {

using FileName::displayText;

TEST(FileNameExtension, IsWhatFollowsTheLastDot) {
    struct Row {
        std::string_view name, stem, extension;
    };
    constexpr Row rows[] = {
        {"report.pdf", "report", "pdf"},
        {"archive.tar.gz", "archive.tar", "gz"},
        {"Report.PDF", "Report", "PDF"},
        {".config.json", ".config", "json"},
        {"a..b", "a.", "b"},
        {"\xFF.\xFE", "\xFF", "\xFE"},
        {"Makefile", "Makefile", ""},
        {".profile", ".profile", ""},
        {"..hidden", "..hidden", ""},
        {"notes.", "notes.", ""},
        {"notes..", "notes..", ""},
        {"v1. Final draft", "v1. Final draft", ""},
        {"...", "...", ""},
        {".", ".", ""},
        {"", "", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(FileName::extension(row.name), row.extension) << row.name;
        EXPECT_EQ(FileName::stem(row.name), row.stem) << row.name;
    }
}

TEST(FileNameUTF8, AcceptsWellFormedSequencesAlone) {
    for (const char* valid : {"", "plain", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF",
                              "\xEE\x80\x80", "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"})
        EXPECT_TRUE(FileName::isValidUTF8(valid)) << ::testing::PrintToString(valid);
    for (const char* invalid :
         {"\x80", "\xC0\x80", "\xC1\xBF", "\xC3", "\xC3(", "\xE0\x9F\xBF", "\xE2\x82", "\xED\xA0\x80",
          "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "a\xF0\x9F\x98"})
        EXPECT_FALSE(FileName::isValidUTF8(invalid)) << ::testing::PrintToString(invalid);
}

TEST(FileNameDisplayText, MarksWhatIsNotTextAndWhatDisguises) {
    EXPECT_EQ(displayText("Größe 漢字 🙂.txt"), "Größe 漢字 🙂.txt");
    EXPECT_EQ(displayText("e\u0301"), "e\u0301") << "composition is left alone";
    EXPECT_EQ(displayText("a\nb\tc\x1B[31m\x7F"), "a\uFFFDb\uFFFDc\uFFFD[31m\uFFFD");
    EXPECT_EQ(displayText("a\u0085b"), "a\uFFFDb") << "C1 controls";
    EXPECT_EQ(displayText("\xFF\xFE.txt"), "\uFFFD\uFFFD.txt") << "one mark a byte";
    EXPECT_EQ(displayText("\xE2\x82"), "\uFFFD\uFFFD");
    EXPECT_EQ(displayText("photo\u202Egpj.exe"), "photo\uFFFDgpj.exe");
    for (const char* direction :
         {"\u061C", "\u200E", "\u200F", "\u202A", "\u202D", "\u2066", "\u2069", "\u2028"})
        EXPECT_EQ(displayText(std::string("a") + direction + "b"), "a\uFFFDb")
            << ::testing::PrintToString(direction);
    EXPECT_TRUE(FileName::isValidUTF8(displayText("\xED\xA0\x80\xF4\x90\x80\x80\xC3")));
}

TEST(FileNameLetters, AreLoweredInASCIIAlone) {
    EXPECT_EQ(FileName::loweredASCII("ABYZ@[`Ä\xC4z"), "abyz@[`Ä\xC4z");
}

} // namespace
} // namespace ombrel
