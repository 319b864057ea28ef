#include "window/probe/Photographs.h"

#include "base/UserFolders.h"
#include "browser/ThumbnailCache.h"
#include "browser/ThumbnailStore.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImage>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <random>

#include "window/probe/Figures.h"
#include "window/probe/ProbeWindow.h"

namespace ombrel::bench {
namespace {

/// Something that compresses about as badly as a photograph.
QImage scene(QSize size, std::mt19937& random) {
    QImage image(size, QImage::Format_RGB32);
    const unsigned ground = random();
    for (int y = 0; y < size.height(); ++y) {
        auto* const line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            constexpr unsigned grain = 0x030303;
            line[x] = 0xFF000000U |
                      ((ground + static_cast<unsigned>(x) * 0x10000U + static_cast<unsigned>(y) * 0x101U) ^
                       (random() & grain));
        }
    }
    return image;
}

double residentBytes() {
    std::ifstream file("/proc/self/statm");
    double total = 0, resident = 0;
    file >> total >> resident;
    return resident * static_cast<double>(::sysconf(_SC_PAGESIZE));
}

} // namespace

void makePhotographs(const std::string& folder, int count) {
    std::mt19937 random(20);
    QByteArray photograph;
    QBuffer buffer(&photograph);
    if (!scene({160, 120}, random).save(&buffer, "JPEG")) failProbe("no photograph can be made");
    const Theme theme;
    const QSize box(theme.size(ThemeSize::largeImageWidth), theme.size(ThemeSize::largeImageHeight));
    const auto size = ThumbnailCache::sizeFor(box);
    const int side = ThumbnailCache::pixels(size);
    const ThumbnailCache cache(UserFolders::cache().appending("thumbnails", FileURL::Mark::directory));
    for (int i = 0; i < count; ++i) {
        const QString path =
            QFile::decodeName(folder.c_str()) + QStringLiteral("/IMG_%1.jpg").arg(i, 5, 10, QLatin1Char('0'));
        QFile file(path);
        if (!file.open(QFile::WriteOnly) || file.write(photograph) != photograph.size())
            failProbe("a photograph cannot be written");
        file.close();
        struct stat facts{};
        const std::string name = QFile::encodeName(path).toStdString();
        if (::stat(name.c_str(), &facts) != 0) failProbe("a photograph is missing");
        cache.keep({.url = *FileURL::fromPath(name),
                    .modified = facts.st_mtim.tv_sec,
                    .size = facts.st_size,
                    .type = "image/jpeg"},
                   size, scene({side, side * 3 / 4}, random), {160, 120});
    }
}

void probePhotographs(const std::string& folder) {
    const ProbeWindow probe(*FileURL::fromPath(folder));
    auto& thumbnails = ThumbnailStore::of(probe.services());
    std::size_t shown = 0;
    QObject::connect(&thumbnails, &ThumbnailStore::changed, &probe.window(), [&shown] { ++shown; });
    const double before = residentBytes();
    probe.model().setViewMode(ViewMode::icons);
    FileView& view = probe.view();
    Frames painted(view);
    probe.settle();
    double longest = 0;
    std::size_t kept = 0;
    for (qint64 last = -1; view.offset() > last;) {
        last = view.offset();
        runUntil([&view] { return view.isSettled(); });
        kept = std::max(kept, thumbnails.bytesKept());
        if (view.visibleRows().end == probe.model().items().size()) break;
        longest = std::max({longest, painted.wheel(1), application().takeLongest()});
    }
    if (view.visibleRows().end != probe.model().items().size()) failProbe("the end was not reached");
    Figures::tell("longest", std::max(longest, application().takeLongest()));
    Figures::tell("kept", static_cast<double>(kept));
    Figures::tell("shown", static_cast<double>(shown));
    Figures::tell("grown", residentBytes() - before);
}

} // namespace ombrel::bench
