#include "listing/NameCollation.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace ombrel {
namespace {

using ::testing::ElementsAre;
using ::testing::Eq;
using ::testing::Gt;
using ::testing::Lt;

std::string keyOf(std::string_view name) {
    std::string key;
    NameCollation::appendKey(name, key);
    return key;
}

int sign(int value) {
    return (value > 0) - (value < 0);
}

class NameCollationTest : public ::testing::Test {
protected:
    ~NameCollationTest() override { NameCollation::setLocale(""); }

    static std::vector<std::string> sortedByKey(std::vector<std::string> names) {
        std::ranges::sort(names, {}, keyOf);
        return names;
    }
};

TEST_F(NameCollationTest, OrdersDigitsByValueAndIgnoresCase) {
    EXPECT_THAT(sortedByKey({"file10", "File2", "b", "A", "file1", "a2", "file02x", "_x"}),
                ElementsAre("_x", "A", "a2", "b", "file1", "File2", "file02x", "file10"));
    EXPECT_THAT(keyOf("README"), Eq(keyOf("readme")));
    EXPECT_THAT(keyOf("resume"), Lt(keyOf("résumé"))) << "accents count";
    EXPECT_THAT(keyOf("résumé"), Lt(keyOf("resumf"))) << "but less than letters";
    EXPECT_THAT(keyOf(std::string(300, '9')), Gt(keyOf(std::string(299, '9'))));
}

TEST_F(NameCollationTest, FollowsTheLocale) {
    NameCollation::setLocale("sv_SE.UTF-8");
    EXPECT_THAT(sortedByKey({"ö", "z", "o"}), ElementsAre("o", "z", "ö"));
    NameCollation::setLocale("de-DE");
    EXPECT_THAT(sortedByKey({"ö", "z", "o"}), ElementsAre("o", "ö", "z"));
    NameCollation::setLocale("cs");
    EXPECT_THAT(sortedByKey({"chata", "cukr", "hora"}), ElementsAre("cukr", "hora", "chata"));
}

TEST_F(NameCollationTest, TakesTheRootOrderWithoutALanguage) {
    const std::string root = keyOf("chata 10 ö");
    for (const char* locale : {"C", "POSIX", "C.UTF-8", "", "no such locale at all", "xx_YY"}) {
        NameCollation::setLocale(locale);
        EXPECT_THAT(keyOf("chata 10 ö"), Eq(root)) << locale;
    }
}

TEST_F(NameCollationTest, AppendsKeysWithoutNULAndWithinTheLimit) {
    std::string keys = "kept";
    NameCollation::appendKey("name", keys);
    EXPECT_THAT(keys, Eq("kept" + keyOf("name")));
    for (const auto& name :
         {std::string(), std::string(255, 'x'), std::string(5000, 'q'), std::string(200'000, 'z')}) {
        const std::string key = keyOf(name);
        EXPECT_THAT(key.find('\0'), Eq(std::string::npos));
        EXPECT_LE(key.size(), 65535U);
    }
    EXPECT_THAT(keyOf(std::string(5000, 'q') + "a"), Lt(keyOf(std::string(5000, 'q') + "b")));
}

TEST_F(NameCollationTest, CountsBytesThatAreNotUTF8AsReplacementCharacters) {
    EXPECT_THAT(keyOf("a\xFFz"), Eq(keyOf("a\uFFFDz")));
    EXPECT_THAT(keyOf("a\xC0\xAFz"), Eq(keyOf("a\uFFFD\uFFFDz")));
    EXPECT_THAT(NameCollation::compare("a\xFF", "a\uFFFD"), Eq(0));
}

TEST_F(NameCollationTest, ComparesAsTheKeysDo) {
    constexpr std::array<std::string_view, 16> pieces = {"a", "B", "z",  "0", "7", "12", ".",    "_",
                                                         "-", " ", "ch", "é", "ß", "漢", "\xFF", "\u0301"};
    std::mt19937 random(7);
    const auto name = [&] {
        std::string made;
        for (auto count = random() % 6; count > 0; --count)
            made += pieces[random() % pieces.size()];
        return made;
    };
    for (const char* locale : {"", "cs", "vi", "ja"}) {
        NameCollation::setLocale(locale);
        for (int round = 0; round < 2000; ++round) {
            const std::string a = name(), b = name();
            ASSERT_THAT(sign(NameCollation::compare(a, b)), Eq(sign(keyOf(a).compare(keyOf(b)))))
                << a << " / " << b;
        }
    }
}

TEST_F(NameCollationTest, MakesTheSameKeysBeforeAndAfterItIsPrepared) {
    for (const char* locale : {"", "de", "cs"}) {
        NameCollation::setLocale(locale);
        std::string before, after;
        const auto append = [](std::string& keys) {
            for (const char* name : {"chapter 10.txt", "Größe", "x\xFFz", "0012", ""})
                NameCollation::appendKey(name, keys);
        };
        append(before);
        NameCollation::prepare();
        append(after);
        EXPECT_THAT(after, Eq(before)) << locale;
    }
}

TEST_F(NameCollationTest, ServesManyThreadsAlike) {
    const std::string expected = keyOf("Größe 10.txt");
    std::array<int, 4> wrong{};
    {
        std::vector<std::jthread> threads;
        for (int& count : wrong)
            threads.emplace_back([&count, &expected] {
                for (int round = 0; round < 5000; ++round)
                    count += keyOf("Größe 10.txt") != expected;
            });
    }
    EXPECT_THAT(wrong, ::testing::Each(0));
}

} // namespace
} // namespace ombrel
