#include "support/ChildProcess.h"
#include "support/TempTree.h"

#include <QImage>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <set>
#include <string>
#include <vector>

namespace ombrel {
namespace {

using testing::ChildProcess;
using testing::ChildResult;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using testing::TempTree;

ChildResult ombrel(std::vector<std::string> words, ChildProcess::Setting setting = {}) {
    words.insert(words.begin(), OMBREL_PATH);
    return ChildProcess(words, setting).finish();
}

TEST(OmbrelProgram, ExplainsItself) {
    const auto help = ombrel({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.output, HasSubstr("--screenshot FILE"));
    EXPECT_THAT(help.errors, IsEmpty());
    const auto version = ombrel({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_THAT(version.output, StartsWith("ombrel 0."));
}

TEST(OmbrelProgram, RefusesWrongUsageWithTwo) {
    struct Row {
        std::vector<std::string> words;
        const char* named;
    };
    const Row rows[] = {
        {{"--colour"}, "--colour"},
        {{"-x", "/"}, "-x"},
        {{"--screenshot"}, "--screenshot"},
        {{"--screenshot", ""}, "--screenshot"},
        {{"--screenshot", "a.png", "/", "/usr"}, "one folder"},
        {{"--screenshots"}, "--screenshots"},
        {{"--screenshots", "pictures", "/"}, "--screenshots"},
        {{"--dark", "/"}, "--dark"},
        {{"file://elsewhere.example/x"}, "elsewhere.example"},
        {{""}, "“”"},
    };
    for (const auto& row : rows) {
        const auto result = ombrel(row.words);
        EXPECT_EQ(result.status, 2) << row.named;
        EXPECT_THAT(result.errors, HasSubstr(row.named));
        EXPECT_THAT(result.output, IsEmpty());
    }
}

TEST(OmbrelProgram, WithoutADisplaySaysInASentenceHowToGetOne) {
    const auto result = ombrel({"/"}, {.variables = {"DISPLAY=", "WAYLAND_DISPLAY=", "QT_QPA_PLATFORM="}});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("xvfb-run"));
}

// ---- Pictures

class Pictures : public ::testing::Test {
protected:
    QImage pictureOf(const std::string& folder, std::vector<std::string> options = {},
                     bool asNobody = false) {
        const std::string file = out.path("picture.png");
        options.insert(options.end(), {"--screenshot", file, folder});
        const auto result = ombrel(options, {.asNobody = asNobody});
        EXPECT_EQ(result.status, 0) << result.errors;
        QImage picture(QString::fromStdString(file));
        EXPECT_EQ(picture.size(), QSize(1280, 800));
        return picture;
    }
    /// How many colours there are where the rows, or the overlay, are.
    static std::size_t coloursOf(const QImage& picture) {
        std::set<QRgb> colours;
        for (int y = 90; y < picture.height() - 40; ++y)
            for (int x = 30; x < picture.width() - 20; ++x)
                colours.insert(picture.pixel(x, y));
        return colours.size();
    }
    TempTree tree;
    TempTree out;
};

TEST_F(Pictures, ShowWhatIsInTheFolder) {
    const QImage empty = pictureOf(tree.path());
    tree.folder("folder");
    for (const auto* name : {"a.pdf", "b.txt", "invalid \xFF\xFE.jpg", "new\nline", "right\u202Efdp.exe"})
        tree.file(name, "x");
    tree.symlink("broken", "nowhere");
    tree.fifo("pipe");
    const QImage full = pictureOf(tree.path());
    EXPECT_GT(coloursOf(full), 50U);
    EXPECT_NE(full, empty);
    EXPECT_EQ(full.pixelColor(600, 700), QColor(Qt::white));
    const QImage dark = pictureOf(tree.path(), {"--dark"});
    EXPECT_LT(dark.pixelColor(600, 700).lightness(), 60);
}

TEST_F(Pictures, SpeakTheLanguageOfTheSettings) {
    tree.file("dated");
    for (const char* folder : {"config", "config/HalvaneOmbrel"})
        out.folder(folder);
    const auto picture = [&] {
        const auto file = out.path("language.png");
        const auto drawn = ombrel({"--screenshot", file, tree.path()},
                                  {.variables = {"XDG_CONFIG_HOME=" + out.path("config")}});
        EXPECT_EQ(drawn.status, 0) << drawn.errors;
        return QImage(QString::fromStdString(file));
    };
    const QImage before = picture();
    out.file("config/HalvaneOmbrel/settings.json", R"({"HalvaneOmbrel": {"AppleLanguages": ["ja"]}})");
    EXPECT_NE(picture(), before) << "dates, if nothing else, are written in another way";
}

TEST_F(Pictures, OfAFolderThatCannotBeShownSayWhy) {
    const QImage missing = pictureOf(tree.path("missing"));
    EXPECT_GT(coloursOf(missing), 20U);
    tree.file("file");
    EXPECT_NE(pictureOf(tree.path("file")), missing);

    const FileURL closed = tree.folder("closed");
    ASSERT_EQ(::chmod(closed.path().c_str(), 0700), 0);
    ASSERT_EQ(::chmod(tree.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(out.path().c_str(), 0777), 0);
    ASSERT_EQ(::unlink(out.path("picture.png").c_str()), 0);
    EXPECT_GT(coloursOf(pictureOf(closed.path(), {}, true)), 20U);
}

TEST_F(Pictures, ThatCannotBeWrittenEndWithOne) {
    const auto result = ombrel({"--screenshot", out.path("missing/picture.png"), tree.path()});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("could not be written"));
}

TEST_F(Pictures, OfTheSeriesAreAllThere) {
    const std::string folder = out.path("series");
    const auto result = ombrel({"--screenshots", folder});
    ASSERT_EQ(result.status, 0) << result.errors;
    const std::string names[] = {"context-menu",       "home",
                                 "main-details",       "main-icons",
                                 "onboarding-preset",  "overlay-permission",
                                 "progress-copying",   "progress-conflict-batch",
                                 "settings-locations", "progress-conflict-single"};
    for (const auto& name : names)
        for (const char* language : {"", "-de", "-zh"}) {
            const auto picture = [&](const char* colours) {
                const std::string file = folder + '/' + name + '-' + colours + language + ".png";
                QImage image(QString::fromStdString(file));
                EXPECT_EQ(image.size(), name == "progress-copying" ? QSize(560, 482) : QSize(1280, 800))
                    << file;
                EXPECT_GT(coloursOf(image), 20U) << file;
                return image;
            };
            EXPECT_GT(picture("light").pixelColor(1, 60).lightness(), 128) << name;
            EXPECT_LT(picture("dark").pixelColor(1, 60).lightness(), 128) << name;
        }
}

TEST_F(Pictures, OfTheSeriesNeedAFolder) {
    tree.file("file");
    for (const auto& folder : {out.path("missing/series"), tree.path("file")}) {
        const auto result = ombrel({"--screenshots", folder});
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.errors, HasSubstr("could not be made"));
    }
}

} // namespace
} // namespace ombrel
