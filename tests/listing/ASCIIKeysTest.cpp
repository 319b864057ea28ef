#include "listing/ASCIIKeys.h"

#include <gmock/gmock.h>

#include <memory>
#include <random>
#include <string>

namespace ombrel {
namespace {

using Collator = std::unique_ptr<UCollator, decltype(&ucol_close)>;

Collator collatorOf(const char* locale) {
    UErrorCode status = U_ZERO_ERROR;
    Collator collator(ucol_open(locale, &status), &ucol_close);
    ucol_setAttribute(collator.get(), UCOL_NUMERIC_COLLATION, UCOL_ON, &status);
    ucol_setStrength(collator.get(), UCOL_SECONDARY);
    EXPECT_TRUE(U_SUCCESS(status)) << locale;
    return collator;
}

std::string keyByICU(const Collator& collator, const std::string& name) {
    const std::u16string wide(name.begin(), name.end());
    std::string key(4096, '\0');
    const auto length =
        ucol_getSortKey(collator.get(), wide.data(), static_cast<std::int32_t>(wide.size()),
                        reinterpret_cast<std::uint8_t*>(key.data()), static_cast<std::int32_t>(key.size()));
    return key.substr(0, static_cast<std::size_t>(length) - 1);
}

/// Names of three tempers: any characters, almost only digits, and what people write.
std::string randomName(std::mt19937& random) {
    const auto length = random() % 16 == 0 ? random() % 256 : random() % 40;
    const auto temper = random() % 3;
    constexpr std::string_view everyday = "abcxyzABCXYZ00123456789._- ";
    std::string name;
    while (name.size() < length)
        switch (temper) {
        case 0: name += static_cast<char>(1 + random() % 127); break;
        case 1: name += static_cast<char>('.' + random() % 12); break;
        default: name += everyday[random() % everyday.size()];
        }
    return name;
}

class ASCIIKeysInLocale : public ::testing::TestWithParam<const char*> {};

TEST_P(ASCIIKeysInLocale, AreThoseOfICU) {
    const auto collator = collatorOf(GetParam());
    const auto keys = ASCIIKeys::learn(collator.get());
    ASSERT_TRUE(keys);
    std::mt19937 random(11);
    int answered = 0;
    for (int round = 0; round < 20'000; ++round) {
        const auto name = randomName(random);
        std::string key = "before";
        if (!keys->append(name, key)) continue;
        ++answered;
        ASSERT_EQ(key, "before" + keyByICU(collator, name)) << ::testing::PrintToString(name);
    }
    EXPECT_GT(answered, 15'000);
}

// The interface languages, the root, and locales that move scripts, letters or accents about.
INSTANTIATE_TEST_SUITE_P(Languages, ASCIIKeysInLocale,
                         ::testing::Values("", "en", "zh_Hans", "zh_Hant", "ja", "ko", "de", "fr", "es", "it",
                                           "pt_BR", "nl", "pl", "ru", "tr", "vi", "id", "en_US_POSIX", "sv",
                                           "th", "fr_CA", "ar", "he", "el", "et"));

TEST(ASCIIKeys, AreNotForLocalesThatJoinLetters) {
    for (const char* locale : {"cs", "hr", "hu", "da", "nb", "cy"})
        EXPECT_FALSE(ASCIIKeys::learn(collatorOf(locale).get())) << locale;
}

TEST(ASCIIKeys, AreNotForOtherCollators) {
    const auto collator = collatorOf("");
    UErrorCode status = U_ZERO_ERROR;
    ucol_setAttribute(collator.get(), UCOL_NUMERIC_COLLATION, UCOL_OFF, &status);
    EXPECT_FALSE(ASCIIKeys::learn(collator.get())) << "digits by value are expected";
    ucol_setAttribute(collator.get(), UCOL_NUMERIC_COLLATION, UCOL_ON, &status);
    ucol_setStrength(collator.get(), UCOL_TERTIARY);
    EXPECT_FALSE(ASCIIKeys::learn(collator.get())) << "a third level is not";
}

TEST(ASCIIKeys, LeaveOtherNamesToICU) {
    const auto keys = ASCIIKeys::learn(collatorOf("").get());
    ASSERT_TRUE(keys);
    for (const auto& name :
         {std::string("é"), std::string("a\xFF"), std::string(256, 'a'), std::string(255, '9')}) {
        std::string key;
        EXPECT_FALSE(keys->append(name, key));
        EXPECT_TRUE(key.empty());
    }
}

} // namespace
} // namespace ombrel
