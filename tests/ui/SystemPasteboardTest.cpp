#include "ui/SystemPasteboard.h"

#include "services/ClipboardService.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QUrl>

#include <gmock/gmock.h>

namespace ombrel {
namespace {

using Case = ClipboardService::PasteIntent::Case;
using ::testing::ElementsAre;

TEST(SystemClipboard, CarriesEveryByteOfAName) {
    std::string name;
    for (int byte = 1; byte < 256; ++byte)
        if (byte != '/') name.push_back(static_cast<char>(byte));
    const auto url = FileURL().appending(name);
    SystemPasteboard pasteboard;
    ClipboardService service(pasteboard);
    service.copy({{url, {}}});
    EXPECT_THAT(service.fileURLs(), ElementsAre(url));
    EXPECT_EQ(pasteboard.read("text/uri-list"), url.uri() + "\r\n");
    EXPECT_EQ(pasteboard.read("text/plain"), url.path());
    EXPECT_EQ(pasteboard.read("image/png"), std::nullopt);
}

TEST(SystemClipboard, TellsWhenSomebodyWrites) {
    SystemPasteboard pasteboard;
    ClipboardService service(pasteboard);
    service.cut({{*FileURL::fromPath("/a"), {}}});
    EXPECT_EQ(service.currentIntent().which, Case::move);
    auto* other = new QMimeData;
    other->setUrls({QUrl(QStringLiteral("file:///a"))});
    QGuiApplication::clipboard()->setMimeData(other);
    EXPECT_TRUE(service.cutURLs().empty());
    EXPECT_EQ(service.currentIntent().which, Case::copy);
    service.cut({{*FileURL::fromPath("/b"), {}}});
    service.cancelCut();
    EXPECT_EQ(service.currentIntent().which, Case::none);
}

} // namespace
} // namespace ombrel
