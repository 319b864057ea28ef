#include "app/Session.h"

#include <QImage>

#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <utility>

namespace ombrel {
namespace {

/// How the program looks and what it remembers.
class SettingsSession : public testing::Session {
protected:
    void SetUp() override {
        Session::SetUp();
        if (IsSkipped()) return;
        tree.folder("home/desk/alpha");
        tree.file("home/desk/notes.txt", "text");
    }

    /// The share of a place on the screen that has about this colour.
    static double shareOf(QColor color, const QRect& place) {
        const QImage picture = desktop().picture(place);
        int found = 0;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x) {
                const QColor there = picture.pixelColor(x, y);
                constexpr int near = 24;
                if (std::abs(there.red() - color.red()) < near &&
                    std::abs(there.green() - color.green()) < near &&
                    std::abs(there.blue() - color.blue()) < near)
                    ++found;
            }
        return picture.isNull() ? 0 : static_cast<double>(found) / (picture.width() * picture.height());
    }
    /// Where the header's columns end, by the lines that are painted there; points of the screen.
    static std::vector<QPoint> columnEdges() {
        const QRect header = see(Role::any, "Columns").place;
        const QImage picture = desktop().picture(header);
        std::vector<QPoint> edges;
        const auto isLine = [&](int x) {
            for (int y = 0; y < picture.height() - 2; ++y)
                if (picture.pixel(x, y) != picture.pixel(x, 0)) return false;
            return picture.pixel(x, 0) != picture.pixel(x - 1, 0) &&
                   picture.pixel(x, 0) != picture.pixel(x + 1, 0);
        };
        for (int x = 1; x + 1 < picture.width(); ++x)
            if (isLine(x)) edges.push_back({header.left() + x, header.center().y()});
        return edges;
    }
    [[nodiscard]] std::vector<std::string> thumbnails() const {
        std::vector<std::string> found;
        std::error_code ignored;
        for (const auto& each :
             std::filesystem::recursive_directory_iterator(tree.path("cache/thumbnails"), ignored))
            if (each.path().extension() == ".png") found.push_back(each.path().parent_path().filename());
        return found;
    }
};

TEST_F(SettingsSession, RemembersThePresetThatIsClicked) {
    start();
    inPopup([] { click(Role::button, "More"); },
            [] {
                key("Up"); // from the end: what the program is, then the settings
                key("Up");
                key("Return");
            });
    seeTitle("Settings");
    click(Role::any, "Keyboard");
    click(Role::any, "Mac style");
    wait("the preset on the disk", [&] { return settings().find("\"mac\"") != std::string::npos; });
    key("alt+F4");
    seeTitle("desk");
    quit();

    start();
    clickRow("notes.txt");
    key("Return");
    typeInto("Rename", "report", "report.txt");
    key("Return");
    waitForDisk("home/desk", {"alpha", "report.txt"});
    quit();
}

TEST_F(SettingsSession, RemembersTheWidthsThatColumnsAreDraggedTo) {
    start();
    constexpr std::size_t columns = 4; // name, date, type and size
    std::vector<QPoint> edges;
    wait("the columns", [&] { return (edges = columnEdges()).size() == columns; });
    for (const auto& [column, wider] : {std::pair(0, -70), std::pair(2, -25), std::pair(1, 30)}) {
        auto& edge = edges[static_cast<std::size_t>(column)];
        desktop().beginDrag(edge, edge + QPoint(wider, 0));
        desktop().release();
        edge += QPoint(wider, 0);
        wait("the dragged edge", [&] { return columnEdges() == edges; });
    }
    quit();
    start();
    wait("the columns as they were left", [&] { return columnEdges() == edges; });
    quit();
}

TEST_F(SettingsSession, ShowsThumbnailsAsIconsAndRemembersThat) {
    const QColor red(220, 20, 60);
    QImage picture(400, 300, QImage::Format_RGB32);
    picture.fill(red);
    ASSERT_TRUE(picture.save(QString::fromStdString(tree.path("home/desk/poppy.png")), "PNG"));
    start();
    seeRows({"alpha", "notes.txt", "poppy.png"});
    const QRect asRow = row("poppy.png").place;
    click(Role::any, "Large icons");
    wait("cells", [&] { return row("poppy.png").place.width() < asRow.width() / 2; });
    wait("the picture", [&] { return shareOf(red, row("poppy.png").place) > 0.2; });
    EXPECT_LT(shareOf(red, row("alpha").place), 0.01);
    wait("a thumbnail on the disk", [&] { return !thumbnails().empty(); });
    // Arrows go as the cells lie.
    clickRow("alpha");
    key("Right");
    wait("the next cell", [] { return row("notes.txt").isSelected; });
    quit();

    start();
    wait("cells at once", [&] { return row("poppy.png").place.width() < asRow.width() / 2; });
    wait("the picture", [&] { return shareOf(red, row("poppy.png").place) > 0.2; });
    quit();
}

TEST_F(SettingsSession, SaysThatAFolderIsClosedToTheUserAndTriesAgain) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root to be somebody else";
    constexpr unsigned nobody = 65534;
    ASSERT_EQ(::chmod(tree.path().c_str(), 0755), 0);
    for (const auto& each : std::filesystem::recursive_directory_iterator(tree.path()))
        ASSERT_EQ(::chown(each.path().c_str(), nobody, nobody), 0);
    tree.folder("home/desk/closed");
    tree.file("home/desk/closed/secret.txt", "secret");
    ASSERT_EQ(::chmod(tree.path("home/desk/closed").c_str(), 0700), 0);

    start("home/desk", true);
    clickRow("closed", 2);
    seeTitle("closed");
    see(Role::label, "Ombrel can’t open this folder yet");
    see(Role::button, "Allow access…");
    EXPECT_TRUE(rows().empty());
    click(Role::button, "Try again");
    see(Role::label, "Ombrel can’t open this folder yet");
    ASSERT_EQ(::chmod(tree.path("home/desk/closed").c_str(), 0755), 0);
    click(Role::button, "Try again");
    seeRows({"secret.txt"});
    seeGone(Role::label, "Ombrel can’t open this folder yet");
    quit("error.directory.permissionDenied");
}

} // namespace
} // namespace ombrel
