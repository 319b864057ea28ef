#include "ui/Formats.h"

#include "ui/LocalizedText.h"

#include <QDateTime>
#include <QLocale>

#include <array>
#include <string_view>

namespace ombrel::Formats {
namespace {

constexpr std::array<std::string_view, 6> unitKeys = {"size.kilobytes", "size.megabytes", "size.gigabytes",
                                                      "size.terabytes", "size.petabytes", "size.exabytes"};

struct DateFormats {
    QString date;
    QString time;
};

DateFormats formatsOf(const QLocale& locale) {
    // The plain C locale says nothing about dates that a person would want to read.
    if (locale.language() == QLocale::C) return {QStringLiteral("d MMM yyyy"), QStringLiteral("HH:mm")};
    QString date = locale.dateFormat(QLocale::ShortFormat);
    if (!date.contains(QLatin1String("yyyy"))) date.replace(QLatin1String("yy"), QLatin1String("yyyy"));
    QString time = locale.timeFormat(QLocale::ShortFormat);
    // Parts of the day ("in the evening") are no letters that the library understands.
    if (time.contains(QLatin1Char('B'))) time = QStringLiteral("HH:mm");
    return {date, time};
}

} // namespace

QString size(std::int64_t bytes) {
    constexpr double step = 1024;
    if (bytes < 1024) return localized("size.bytes", bytes);
    double value = static_cast<double>(bytes) / step;
    std::size_t unit = 0;
    // What would round up to 1,024 is one of the next unit.
    for (; value >= step - 0.5 && unit + 1 < unitKeys.size(); ++unit)
        value /= step;
    // Tenths are of interest from megabytes on.
    const double leastWithoutDecimals = unit == 0 ? 9.95 : 99.95;
    const int decimals = value < leastWithoutDecimals ? 1 : 0;
    return localized(unitKeys[unit], {QLocale().toString(value, 'f', decimals).toStdString()});
}

QString dateAndTime(const FileTime& time) {
    const QLocale locale;
    const auto formats = formatsOf(locale);
    const auto moment = QDateTime::fromSecsSinceEpoch(time.seconds);
    if (!moment.isValid()) return {};
    return localized("format.dateAndTime", {locale.toString(moment.date(), formats.date).toStdString(),
                                            locale.toString(moment.time(), formats.time).toStdString()});
}

QString period(const FileTime& first, const FileTime& last) {
    const QString from = dateAndTime(first), to = dateAndTime(last);
    if (from == to) return from;
    const QLocale locale;
    const auto formats = formatsOf(locale);
    const auto begin = QDateTime::fromSecsSinceEpoch(first.seconds);
    const auto end = QDateTime::fromSecsSinceEpoch(last.seconds);
    const auto words = [](const QString& since, const QString& until) {
        return localized("format.period", {since.toStdString(), until.toStdString()});
    };
    if (!begin.isValid() || !end.isValid()) return words(from, to);
    if (begin.date() == end.date()) return words(from, locale.toString(end.time(), formats.time));
    // Over several days the hours say little.
    return words(locale.toString(begin.date(), formats.date), locale.toString(end.date(), formats.date));
}

QString sizeInFull(std::int64_t bytes) {
    constexpr std::int64_t kilobyte = 1024;
    if (bytes < kilobyte) return size(bytes);
    return localized("format.sizeInFull",
                     {size(bytes).toStdString(), localized("size.bytes", bytes).toStdString()});
}

QString number(std::int64_t count) {
    return QLocale().toString(static_cast<qlonglong>(count));
}

} // namespace ombrel::Formats
