#include "app/PictureContent.h"

#include "browser/ThumbnailCache.h"
#include "listing/SystemCall.h"

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QPolygonF>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <system_error>

namespace ombrel {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t kilo = 1024, mega = kilo * kilo, tenthOfGiga = kilo * mega / 10;
constexpr std::string_view surveyPath = "home/ines/Projects/Field survey 2026/";

/// A file or, without a size, a folder.
struct Entry {
    std::string_view path;
    std::int64_t size;
    const char* date; ///< local time
};
constexpr std::int64_t folder = -1;

constexpr auto surroundings = std::to_array<Entry>({
    {"home/ines/Desktop", folder, "2026-04-20 10:12"},
    {"home/ines/Downloads", folder, "2026-04-21 16:40"},
    {"home/ines/Documents", folder, "2026-04-17 09:31"},
    {"home/ines/Pictures", folder, "2026-04-18 20:02"},
    {"home/ines/Music", folder, "2025-12-24 18:00"},
    {"home/ines/Videos", folder, "2026-02-11 21:14"},
    {"home/ines/Documents/Letters", folder, "2026-01-12 11:52"},
    {"home/ines/Pictures/Albums", folder, "2026-01-12 11:52"},
    {"home/ines/Projects/Bridge inspection 2025/Span 4", folder, "2025-10-02 15:20"},
    {"home/ines/Projects/Restricted data/Sealed", folder, "2026-03-11 09:00"},
    {"srv/team/Team archive", folder, "2026-03-02 12:00"},
    {"media/ines/Backup/Backup 2025", folder, "2026-02-02 12:00"},
    {"media/ines/Survey drive/Backups", folder, "2026-04-02 12:00"},
    {"media/ines/Station NAS/Shared", folder, "2026-04-02 12:00"},
});

constexpr auto surveyEntries = std::to_array<Entry>({
    {"01 Site plans", folder, "2026-04-22 09:12"},
    {"02 Photographs", folder, "2026-04-21 18:40"},
    {"03 Soil samples", folder, "2026-04-19 11:05"},
    {"Interviews", folder, "2026-04-14 16:30"},
    {"Maps and GIS", folder, "2026-04-20 08:47"},
    {"Reports", folder, "2026-04-02 13:22"},
    {"Budget 2026.ods", 86 * kilo, "2026-04-17 10:02"},
    {"Contact sheet north ridge.pdf", 4'800 * kilo + 133'000, "2026-04-21 18:51"},
    {"Crew rota April.ods", 41 * kilo, "2026-03-30 09:15"},
    {"drone-flight-014.mp4", 12 * tenthOfGiga, "2026-04-18 15:26"},
    {"Equipment checklist.odt", 29 * kilo, "2026-04-08 14:44"},
    {"Field notes week 14.md", 12 * kilo, "2026-04-05 20:18"},
    {"Field notes week 15.md", 15 * kilo, "2026-04-12 19:56"},
    {"Field notes week 16.md", 18 * kilo, "2026-04-19 20:31"},
    {"GPS tracks 2026-04-18.gpx", 734 * kilo, "2026-04-18 17:03"},
    {"Grant letter signed.pdf", 312 * kilo, "2026-01-12 11:40"},
    {"Landowner consent forms.zip", 2 * mega, "2026-02-19 08:20"},
    {"Lab results batch 2.csv", 58 * kilo, "2026-04-16 12:44"},
    {"Logger firmware 3.2.bin", 940 * kilo, "2026-01-30 09:09"},
    {"Meeting agenda.txt", 2 * kilo, "2026-04-20 07:50"},
    {"Overview.svg", 64 * kilo, "2026-04-09 13:13"},
    {"Presentation council.odp", 7 * mega, "2026-04-01 17:35"},
    {"Ridge model.py", 9 * kilo, "2026-03-27 22:01"},
    {"Risk assessment.odt", 47 * kilo, "2026-02-03 08:30"},
    {"Sampling plan.pdf", 620 * kilo, "2026-03-05 10:10"},
    {"Station log.txt", 33 * kilo, "2026-04-21 23:59"},
    {"Voice memo 007.ogg", 3 * mega, "2026-04-13 15:41"},
});

/// The colours of a landscape: sky from top to bottom, and ridges from the farthest to the nearest.
struct Landscape {
    std::string_view name;
    std::array<QRgb, 5> colours;
    std::int64_t size;
    const char* date;
};
constexpr auto landscapes = std::to_array<Landscape>({
    {"IMG_4812.jpg",
     {0xfff9e3c8, 0xfff6c99c, 0xffc98a63, 0xff915f49, 0xff563730},
     61 * mega / 10,
     "2026-04-18 12:08"},
    {"IMG_4813.jpg",
     {0xffdce9f3, 0xffc3d6e6, 0xff93a2c0, 0xff66718f, 0xff3f4663},
     59 * mega / 10,
     "2026-04-18 12:09"},
    {"IMG_4814.jpg",
     {0xffe6ecca, 0xffd0dfa8, 0xff8fb168, 0xff5a8a45, 0xff2f5a2f},
     64 * mega / 10,
     "2026-04-18 12:31"},
});

constexpr QSize photograph(1500, 900);

void paintRidge(QPainter& painter, QRgb colour, double base, double height, int phase) {
    const QSizeF size = painter.window().size();
    QPolygonF ridge;
    ridge << QPointF(0, size.height());
    constexpr int corners = 7;
    constexpr std::array heights = {0.2, 0.7, 0.4, 1.0, 0.5, 0.8, 0.3, 0.6};
    for (int i = 0; i <= corners; ++i)
        ridge << QPointF(size.width() * i / corners,
                         size.height() *
                             (base - height * heights[static_cast<std::size_t>((i + phase) % 8)]));
    ridge << QPointF(size.width(), size.height());
    painter.setBrush(QColor::fromRgb(colour));
    painter.drawPolygon(ridge);
}

QImage paintLandscape(const Landscape& landscape, QSize size) {
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    QLinearGradient sky(0, 0, 0, size.height());
    sky.setColorAt(0, QColor::fromRgb(landscape.colours[0]));
    sky.setColorAt(1, QColor::fromRgb(landscape.colours[1]));
    painter.fillRect(image.rect(), sky);
    painter.setBrush(QColor(255, 255, 255, 200));
    painter.drawEllipse(QPointF(size.width() * 0.5, size.height() * 0.28), size.height() * 0.08,
                        size.height() * 0.08);
    paintRidge(painter, landscape.colours[2], 0.75, 0.3, 0);
    paintRidge(painter, landscape.colours[3], 0.85, 0.25, 2);
    paintRidge(painter, landscape.colours[4], 0.97, 0.2, 5);
    return image;
}

/// A written page.
QImage paintPage(QRgb heading, QSize size) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    const auto bar = [&](double top, double width, double height, QRgb colour) {
        painter.fillRect(
            QRectF(size.width() * 0.13, size.height() * top, size.width() * width, size.height() * height),
            QColor::fromRgb(colour));
    };
    constexpr QRgb ink = 0xffc7d0d2;
    bar(0.1, 0.42, 0.06, heading);
    for (const double top : {0.25, 0.32, 0.39})
        bar(top, 0.74, 0.03, ink);
    bar(0.46, 0.44, 0.03, ink);
    bar(0.56, 0.74, 0.18, 0xffdbe5f1);
    for (const double top : {0.8, 0.87})
        bar(top, 0.66, 0.03, ink);
    return image;
}

bool setDate(const std::string& path, const char* date) {
    std::tm parts{};
    if (!::strptime(date, "%Y-%m-%d %H:%M", &parts)) return false;
    parts.tm_isdst = -1;
    const timespec time{std::mktime(&parts), 0};
    const std::array times = {time, time};
    return ::utimensat(AT_FDCWD, path.c_str(), times.data(), 0) == 0;
}

/// A file of a size that takes no room, with the beginning that it has already.
bool setSize(const std::string& path, std::int64_t size) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    if (file < 0) return false;
    const bool isDone = ::ftruncate(file, size) == 0;
    return ::close(file) == 0 && isDone;
}

bool makeEntry(const std::string& path, std::int64_t size) {
    std::error_code error;
    if (size == folder) {
        fs::create_directories(path, error);
        return !error;
    }
    return setSize(path, size);
}

bool makePhotograph(const std::string& path, const Landscape& landscape) {
    return paintLandscape(landscape, photograph).save(QString::fromStdString(path), "JPEG") &&
           setSize(path, landscape.size);
}

/// The thumbnail that the desktop would have made of a file that we cannot draw ourselves.
void keepThumbnail(const FileURL& cache, const FileURL& url, const std::string& type, const QImage& image) {
    struct stat status{};
    if (::stat(url.path().c_str(), &status) != 0) return;
    const ThumbnailCache::Original original{
        .url = url, .modified = status.st_mtim.tv_sec, .size = status.st_size, .type = type};
    for (const auto size : {ThumbnailCache::Size::normal, ThumbnailCache::Size::large}) {
        const int side = ThumbnailCache::pixels(size);
        ThumbnailCache(cache).keep(original, size,
                                   image.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation),
                                   image.size());
    }
}

} // namespace

PictureContent::PictureContent() {
    std::error_code error;
    auto base = fs::temp_directory_path(error);
    if (error) return;
    std::string pattern = (base / "ombrel-pictures-XXXXXX").string();
    if (::mkdtemp(pattern.data())) root_ = pattern;
}

PictureContent::~PictureContent() {
    std::error_code error;
    if (!root_.empty()) fs::remove_all(root_, error);
}

void PictureContent::enter() const {
    if (!isMade()) return;
    for (const auto& [variable, path] :
         std::to_array<std::pair<const char*, const char*>>({{"XDG_CONFIG_HOME", "config"},
                                                             {"XDG_DATA_HOME", "data"},
                                                             {"XDG_CACHE_HOME", "cache"},
                                                             {"XDG_STATE_HOME", "state"}}))
        ::setenv(variable, at(path).path().c_str(), 1);
    ::setenv("HOME", home().path().c_str(), 1);
    // The desktop's thumbnailers and settings have no part in it.
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANGUAGE"})
        ::unsetenv(variable);
    ::setenv("LANG", "en_GB.UTF-8", 1);
}

bool PictureContent::fill() const {
    if (!isMade()) return false;
    bool isWhole = true;
    for (const char* path : {"config", "data", "cache", "state"})
        isWhole &= makeEntry(at(path).path(), folder);
    for (const auto& entry : surroundings)
        isWhole &= makeEntry(at(entry.path).path(), entry.size);
    const auto inSurvey = [this](std::string_view name) {
        return at(std::string(surveyPath) + std::string(name)).path();
    };
    isWhole &= makeEntry(survey().path(), folder);
    for (const auto& entry : surveyEntries)
        isWhole &= makeEntry(inSurvey(entry.path), entry.size);
    for (const char* below : {"02 Photographs/Ridge north", "Reports/Drafts"})
        isWhole &= makeEntry(inSurvey(below), folder);
    const auto card = cameraCard().path();
    isWhole &= makeEntry(card, folder);
    const auto names = pictureNames();
    for (std::size_t i = 0; i < names.size(); ++i) {
        auto& landscape = landscapes[i % landscapes.size()];
        isWhole &= makePhotograph(card + '/' + names[i], {names[i], landscape.colours, 42 * mega / 10, {}}) &&
                   setDate(card + '/' + names[i], "2026-04-22 07:14");
        // Some of them have been copied before.
        constexpr std::size_t copied = 7;
        if (i < copied) isWhole &= setSize(inSurvey("01 Site plans/" + names[i]), mega);
    }
    for (int i = 0; i < 10; ++i)
        isWhole &= setSize(inSurvey("01 Site plans/Plan " + std::to_string(i + 1) + ".pdf"), mega);
    for (const auto& landscape : landscapes)
        isWhole &= makePhotograph(inSurvey(landscape.name), landscape) &&
                   setDate(inSurvey(landscape.name), landscape.date);
    for (const auto& entry : surveyEntries)
        isWhole &= setDate(inSurvey(entry.path), entry.date);
    for (const auto& entry : surroundings)
        isWhole &= setDate(at(entry.path).path(), entry.date);
    isWhole &= setDate(restricted().path(), "2026-03-11 09:00");
    const FileURL cache = at("cache/thumbnails");
    constexpr QSize page(724, 1024), film(1280, 720);
    constexpr QRgb blue = 0xff2f6db5, purple = 0xff7a57b5, green = 0xff3c8a5a;
    keepThumbnail(cache, survey().appending("Equipment checklist.odt"),
                  "application/vnd.oasis.opendocument.text", paintPage(blue, page));
    keepThumbnail(cache, survey().appending("Grant letter signed.pdf"), "application/pdf",
                  paintPage(purple, page));
    keepThumbnail(cache, survey().appending("Contact sheet north ridge.pdf"), "application/pdf",
                  paintPage(green, page));
    keepThumbnail(cache, survey().appending("drone-flight-014.mp4"), "video/mp4",
                  paintLandscape(landscapes.back(), film));
    return isWhole;
}

void PictureContent::tidy() const {
    constexpr std::size_t copied = 7;
    const auto names = pictureNames();
    std::error_code error;
    for (std::size_t i = copied; i < names.size(); ++i)
        for (const auto& place : {survey().appending("01 Site plans"), survey()})
            fs::remove(place.appending(names[i]).path(), error);
    for (const auto& entry : surveyEntries)
        setDate(at(std::string(surveyPath) + std::string(entry.path)).path(), entry.date);
}

FileURL PictureContent::at(std::string_view path) const {
    return FileURL::fromPath(root_ + '/' + std::string(path)).value_or(FileURL());
}

std::vector<std::string> PictureContent::pictureNames() {
    constexpr int first = 4813, count = 38;
    std::vector<std::string> names;
    // Of these one name is taken in the survey's folder and seven are among the site plans.
    names.push_back("IMG_4813.jpg");
    for (int i = 1; i < count; ++i)
        names.push_back("IMG_" + std::to_string(first + 1 + i) + ".jpg");
    return names;
}

// ---- Folders that cannot be opened

class ClosedFolders::Refusal final : public SystemCall::Interceptor {
public:
    std::optional<SystemCall::Fault> before(SystemCall::Kind kind) override {
        if (kind != SystemCall::Kind::openDirectory) return std::nullopt;
        return SystemCall::Fault{.errorNumber = EACCES};
    }
};

ClosedFolders::ClosedFolders() : refusal_(std::make_unique<Refusal>()) {
    SystemCall::intercept(refusal_.get());
}

ClosedFolders::~ClosedFolders() {
    SystemCall::intercept(nullptr);
}

} // namespace ombrel
