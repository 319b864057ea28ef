#include "listing/NameMatcher.h"

#include "base/FileName.h"
#include "listing/NameCollation.h"

#include <gmock/gmock.h>
#include <unicode/ucol.h>
#include <unicode/usearch.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace ombrel {
namespace {

/// Sets the locale for one test and puts the root back.
struct Locale {
    explicit Locale(const char* name) { NameCollation::setLocale(name); }
    ~Locale() { NameCollation::setLocale(""); }
};

struct Row {
    const char* name;
    const char* text;
    bool matches;
};

TEST(NameMatcher, LooksAsideFromCaseAndDiacritics) {
    const Row rows[] = {
        {"Report.PDF", "report", true},
        {"Report.PDF", "rt.p", true},
        {"Report.PDF", "ort ", false},
        {"Résumé.pdf", "resume", true},
        {"Re\u0301sume\u0301", "RESUME", true},
        {"resume", "Résumé", true},
        {"ÜBER", "über", true},
        {"Straße", "STRASSE", true},
        {"Ελλάδα", "ελλαδα", true},
        {"ПРИВЕТ", "привет", true},
        {"ﬁle", "file", true},
        {"日本語.txt", "本", true},
        {"日本語.txt", "木", false},
        {"caf\xC3\xA9 \xFF", "cafe", true},
        {"a\xFF", "\xFF", true},
        {"a\xFE", "\xFF\xFE", false},
        {"anything", "", true},
        {"plain", "\u0301", false},
        {"a_b", "a b", false},
    };
    for (const Row& row : rows)
        EXPECT_EQ(NameMatcher(row.text).matches(row.name), row.matches) << row.text << " in " << row.name;
    const std::string longName = std::string(900, 'x') + "NEEDLE";
    EXPECT_TRUE(NameMatcher("needle").matches(longName));
    EXPECT_FALSE(NameMatcher("needles").matches(longName));
}

TEST(NameMatcher, FollowsTheLocalesAlphabet) {
    EXPECT_TRUE(NameMatcher("ol").matches("öl"));
    const Locale swedish("sv");
    EXPECT_FALSE(NameMatcher("ol").matches("öl")) << "a letter of its own in Swedish";
    EXPECT_TRUE(NameMatcher("öl").matches("ÖL"));
}

TEST(NameMatcher, FindsASCIITheSameWayInEveryLanguage) {
    for (const char* language : {"", "da", "cs", "hu", "tr", "de", "ja"}) {
        const Locale locale(language);
        EXPECT_TRUE(NameMatcher("a").matches("Haag")) << language;
        EXPECT_TRUE(NameMatcher("c").matches("chata é")) << language;
        EXPECT_TRUE(NameMatcher("img").matches("IMG_1.JPG")) << language;
        EXPECT_FALSE(NameMatcher("cscs").matches("ccs")) << language;
    }
}

/// The rule as it is written, with a fresh search of ICU's for each question.
bool matchesByTheRule(const std::string& name, const std::string& text, const char* locale) {
    const auto isPlain = [](const std::string& bytes) {
        return std::ranges::all_of(bytes, [](char byte) { return static_cast<signed char>(byte) >= 0; });
    };
    if (FileName::loweredASCII(name).find(FileName::loweredASCII(text)) != std::string::npos) return true;
    if (isPlain(name) && isPlain(text)) return false;
    const auto wide = [](const std::string& bytes) {
        std::u16string units(bytes.size(), u'\0');
        std::int32_t length = 0;
        UErrorCode status = U_ZERO_ERROR;
        u_strFromUTF8(units.data(), static_cast<std::int32_t>(units.size()), &length, bytes.data(),
                      static_cast<std::int32_t>(bytes.size()), &status);
        units.resize(static_cast<std::size_t>(length));
        return units;
    };
    UErrorCode status = U_ZERO_ERROR;
    UCollator* collator = ucol_open(locale, &status);
    ucol_setStrength(collator, UCOL_PRIMARY);
    ucol_setAttribute(collator, UCOL_NORMALIZATION_MODE, UCOL_ON, &status);
    const auto wideName = wide(name), wideText = wide(text);
    UStringSearch* search =
        usearch_openFromCollator(wideText.data(), static_cast<std::int32_t>(wideText.size()), wideName.data(),
                                 static_cast<std::int32_t>(wideName.size()), collator, nullptr, &status);
    const bool isFound =
        usearch_first(search, &status) != USEARCH_DONE && usearch_getMatchedLength(search) > 0;
    usearch_close(search);
    ucol_close(collator);
    return isFound;
}

TEST(NameMatcher, ItsShortWaysChangeNoAnswer) {
    const std::vector<std::string> letters = {
        "a",  "e",  "s",  "S",  "o", "l",  "c",      "h", "-",       " ", "é", "É", "å",
        "ö",  "ß",  "ø",  "œ",  "ﬁ", "f",  "i",      "ı", "İ",       "ł", "·", "ж", "я",
        "日", "本", "か", "が", "ｶ", "😀", "\u0301", "Å", "e\u0301", "1", "¹"};
    std::mt19937 random(11);
    for (const char* language : {"", "de", "sv", "da", "tr", "ca", "ja", "ru"}) {
        const Locale locale(language);
        int found = 0;
        for (int round = 0; round < 800; ++round) {
            std::string name, text;
            for (auto i = random() % 8 + 1; i > 0; --i)
                name += letters[random() % letters.size()];
            for (auto i = random() % 2 + 1; i > 0; --i)
                text += letters[random() % letters.size()];
            const bool isMatch = NameMatcher(text).matches(name);
            ASSERT_EQ(isMatch, matchesByTheRule(name, text, language))
                << text << " in " << name << " " << language;
            found += isMatch;
        }
        EXPECT_GT(found, 50);
    }
}

} // namespace
} // namespace ombrel
