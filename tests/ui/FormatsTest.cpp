#include "ui/Formats.h"

#include "listing/TypeDatabase.h"
#include "ui/FileClass.h"

#include <QLocale>
#include <QTimeZone>

#include <gmock/gmock.h>

#include <cstdlib>
#include <ctime>

namespace ombrel {
namespace {

class Formatting : public ::testing::Test {
protected:
    Formatting() { use(QLocale(QLocale::English, QLocale::UnitedKingdom)); }
    ~Formatting() override { QLocale::setDefault(before); }
    static void use(const QLocale& locale) { QLocale::setDefault(locale); }
    const QLocale before;
};

TEST_F(Formatting, SizesStepAt1024AndStayShort) {
    const auto size = [](std::int64_t bytes) { return Formats::size(bytes).toStdString(); };
    EXPECT_EQ(size(0), "0 bytes");
    EXPECT_EQ(size(1), "1 byte");
    EXPECT_EQ(size(1023), "1,023 bytes");
    EXPECT_EQ(size(1024), "1.0 KB");
    EXPECT_EQ(size(88'064), "86 KB");
    EXPECT_EQ(size(10'189), "10 KB");
    EXPECT_EQ(size(1'048'575), "1.0 MB");
    EXPECT_EQ(size(5'033'164), "4.8 MB");
    EXPECT_EQ(size(1'288'490'188), "1.2 GB");
    EXPECT_EQ(size(44'130'788'147), "41.1 GB");
    EXPECT_EQ(size(137'438'953'472), "128 GB");
    EXPECT_EQ(size(INT64_MAX), "8.0 EB");
    use(QLocale(QLocale::German));
    EXPECT_EQ(size(5'033'164), "4,8 MB");
}

TEST_F(Formatting, DatesAreTheLocalesWithTheYearInFull) {
    const FileTime time{QDateTime({2026, 4, 22}, {9, 12}).toSecsSinceEpoch(), 0};
    EXPECT_EQ(Formats::dateAndTime(time).toStdString(), "22/04/2026, 09:12");
    use(QLocale(QLocale::German));
    EXPECT_EQ(Formats::dateAndTime(time).toStdString(), "22.04.2026, 09:12");
    use(QLocale(QLocale::English, QLocale::UnitedStates));
    EXPECT_EQ(Formats::dateAndTime(time).toStdString(), "4/22/2026, 9:12 AM");
    use(QLocale(QLocale::Chinese, QLocale::TraditionalHanScript, QLocale::Taiwan));
    EXPECT_EQ(Formats::dateAndTime(time).toStdString(), "2026/4/22, 09:12");
    use(QLocale::c());
    EXPECT_EQ(Formats::dateAndTime(time).toStdString(), "22 Apr 2026, 09:12");
}

TEST_F(Formatting, PeriodsSayNothingTwice) {
    const auto at = [](int day, int hour) {
        return FileTime{QDateTime({2026, 4, day}, {hour, 0}).toSecsSinceEpoch(), 0};
    };
    const auto period = [](FileTime a, FileTime b) { return Formats::period(a, b).toStdString(); };
    EXPECT_EQ(period(at(18, 12), at(18, 12)), "18/04/2026, 12:00");
    EXPECT_EQ(period(at(18, 12), at(18, 13)), "18/04/2026, 12:00 to 13:00");
    EXPECT_EQ(period(at(18, 12), at(19, 12)), "18/04/2026 to 19/04/2026");
    EXPECT_EQ(Formats::sizeInFull(5'033'164).toStdString(), "4.8 MB (5,033,164 bytes)");
    EXPECT_EQ(Formats::sizeInFull(512).toStdString(), "512 bytes");
}

TEST_F(Formatting, DatesFarAwayAreNoTrouble) {
    EXPECT_FALSE(Formats::dateAndTime({-62'000'000'000, 0}).isEmpty());
    EXPECT_NO_FATAL_FAILURE(static_cast<void>(Formats::dateAndTime({INT64_MAX, 0})));
    EXPECT_NO_FATAL_FAILURE(static_cast<void>(Formats::dateAndTime({INT64_MIN, 0})));
}

TEST(FileClasses, OfTypesThatPeopleHave) {
    const auto expect = [](FileClass fileClass, std::initializer_list<std::string_view> types) {
        for (const auto type : types)
            EXPECT_EQ(FileClasses::ofType(type), fileClass) << type;
    };
    expect(FileClass::folder, {"inode/directory"});
    expect(FileClass::text, {"text/plain", "text/x-log"});
    expect(FileClass::markup, {"text/markdown"});
    expect(FileClass::document, {"application/vnd.oasis.opendocument.text", "application/msword"});
    expect(FileClass::spreadsheet,
           {"application/vnd.ms-excel", "application/vnd.oasis.opendocument.spreadsheet"});
    expect(FileClass::presentation,
           {"application/vnd.openxmlformats-officedocument.presentationml.presentation"});
    expect(FileClass::pdf, {"application/pdf"});
    expect(FileClass::image, {"image/jpeg", "image/png"});
    expect(FileClass::vectorImage, {"image/svg+xml"});
    expect(FileClass::audio, {"audio/flac"});
    expect(FileClass::video, {"video/mp4"});
    expect(FileClass::archive,
           {"application/zip", "application/x-compressed-tar", "application/x-xz-compressed-tar"});
    expect(FileClass::code,
           {"text/x-csrc", "application/json", "text/html", "application/x-shellscript", "x/y+xml"});
    expect(FileClass::tableData, {"text/csv"});
    expect(FileClass::mapData, {"application/gpx+xml", "application/geo+json"});
    expect(FileClass::other, {"application/octet-stream", ""});
}

} // namespace
} // namespace ombrel
