#include "services/TextTables.h"

#include <QFile>

#include <gmock/gmock.h>

namespace ombrel {
namespace {

/// An environment variable for the time of a test.
class Variable {
public:
    Variable(const char* name, const char* value)
        : name_(name), old_(qgetenv(name)), wasSet_(qEnvironmentVariableIsSet(name)) {
        if (value)
            qputenv(name, value);
        else
            qunsetenv(name);
    }
    ~Variable() {
        if (wasSet_)
            qputenv(name_, old_);
        else
            qunsetenv(name_);
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* name_;
    QByteArray old_;
    bool wasSet_;
};

struct Environment {
    const char* language;
    const char* lcAll;
    const char* lcMessages;
    const char* lang;
};

InterfaceLanguage chosen(const Environment& environment,
                         std::optional<std::string_view> asked = std::nullopt) {
    const Variable language("LANGUAGE", environment.language);
    const Variable lcAll("LC_ALL", environment.lcAll);
    const Variable lcMessages("LC_MESSAGES", environment.lcMessages);
    const Variable lang("LANG", environment.lang);
    return InterfaceLanguage::choose(asked);
}

TEST(InterfaceLanguage, MatchesALocaleToTheTableThatSpeaksForIt) {
    struct Row {
        const char* locale;
        std::optional<std::string_view> code;
    };
    for (const auto& [locale, code] : std::initializer_list<Row>{{"en_GB.UTF-8", "en"},
                                                                 {"de", "de"},
                                                                 {"de_AT.UTF-8@euro", "de"},
                                                                 {"pt_PT", "pt-BR"},
                                                                 {"pt-BR", "pt-BR"},
                                                                 {"zh", "zh-Hans"},
                                                                 {"zh_SG", "zh-Hans"},
                                                                 {"zh_TW.UTF-8", "zh-Hant"},
                                                                 {"zh-HK", "zh-Hant"},
                                                                 {"zh-Hant", "zh-Hant"},
                                                                 {"id_ID", "id"},
                                                                 {"sw_KE", std::nullopt},
                                                                 {"no such language", std::nullopt},
                                                                 {"C.UTF-8", std::nullopt},
                                                                 {"POSIX", std::nullopt},
                                                                 {"", std::nullopt}})
        EXPECT_EQ(InterfaceLanguage::match(QString::fromLatin1(locale)), code) << locale;
}

TEST(InterfaceLanguage, FollowsWhatWasAskedThenTheEnvironment) {
    EXPECT_EQ(chosen({nullptr, nullptr, nullptr, nullptr}).code, "en");
    EXPECT_EQ(chosen({nullptr, nullptr, nullptr, "fr_FR.UTF-8"}).code, "fr");
    EXPECT_EQ(chosen({nullptr, nullptr, "pl_PL", "fr_FR.UTF-8"}).code, "pl");
    EXPECT_EQ(chosen({nullptr, "it_IT", "pl_PL", "fr_FR.UTF-8"}).code, "it");
    EXPECT_EQ(chosen({"sw:ko:ja", nullptr, nullptr, "fr_FR.UTF-8"}).code, "ko");
    EXPECT_EQ(chosen({"ko", "C", nullptr, "fr_FR.UTF-8"}).code, "en");
    EXPECT_EQ(chosen({"ko", nullptr, nullptr, "fr_FR.UTF-8"}, "de").code, "de");
    EXPECT_EQ(chosen({nullptr, nullptr, nullptr, "fr_FR.UTF-8"}, "xx").code, "fr");
}

TEST(InterfaceLanguage, TakesDigitsAndTheOrderOfNamesFromTheSameChoice) {
    EXPECT_EQ(chosen({nullptr, nullptr, nullptr, "de_CH.UTF-8"}).locale.territory(), QLocale::Switzerland);
    EXPECT_EQ(chosen({"de", nullptr, nullptr, "de_CH.UTF-8"}).locale.territory(), QLocale::Switzerland);
    EXPECT_EQ(chosen({"ko", nullptr, nullptr, "de_CH.UTF-8"}).locale.language(), QLocale::Korean);
    EXPECT_EQ(chosen({nullptr, nullptr, nullptr, "sv_SE.UTF-8"}).collation, "sv_SE.UTF-8");
    EXPECT_EQ(chosen({nullptr, nullptr, nullptr, "sv_SE.UTF-8"}, "de").collation, "de");
    EXPECT_EQ(chosen({nullptr, nullptr, nullptr, "C"}).locale.language(), QLocale::English);
}

TEST(TextTables, HaveAFileForEveryLanguage) {
    const TextTables registered({});
    for (const auto code : InterfaceLanguage::supported())
        EXPECT_TRUE(QFile::exists(
            QStringLiteral(":/texts/ombrel_%1.qm").arg(QString::fromStdString(std::string(code)))))
            << code;
}

TEST(TextTables, AnswerInEnglishWhereALanguageIsSilent) {
    for (const auto code : InterfaceLanguage::supported()) {
        const TextTables tables({code, QLocale(QLocale::English), {}});
        EXPECT_FALSE(tables.text("error.directory.notFound").empty()) << code;
        EXPECT_EQ(tables.text("no.such.key"), "") << code;
    }
    EXPECT_EQ(TextTables({}).text("error.directory.io"), "The folder could not be read: {1}.");
}

TEST(TextTables, ChooseThePluralFormAndWriteTheCountInTheLocale) {
    const TextTables tables({"en", QLocale(QLocale::English, QLocale::UnitedStates), {}});
    EXPECT_EQ(tables.text("ui.status.items", 1), "1 item");
    EXPECT_EQ(tables.text("ui.status.items", 0), "0 items");
    EXPECT_EQ(tables.text("ui.status.items", 1'234'567), "1,234,567 items");
    EXPECT_EQ(tables.text("ui.status.items", 9'000'000'000'000'000'001), "9,000,000,000,000,000,001 items");
    const TextTables german({"de", QLocale(QLocale::German), {}});
    EXPECT_THAT(german.text("ui.status.items", 1'234'567), ::testing::HasSubstr("1.234.567"));
}

} // namespace
} // namespace ombrel
