#include "services/QtConnections.h"

#include "base/Log.h"
#include "base/MainThread.h"
#include "base/Text.h"
#include "base/Worker.h"
#include "listing/NameCollation.h"
#include "listing/TypeDatabase.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QLoggingCategory>
#include <QThread>

#include <gmock/gmock.h>

#include <atomic>
#include <optional>
#include <vector>

namespace ombrel {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Lets the event loop run until `done` or for five seconds.
template <typename Done>
[[nodiscard]] bool runUntil(Done done) {
    const QDeadlineTimer limit(5000);
    while (!done()) {
        if (limit.hasExpired()) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
}

/// Counts how often it is destroyed unrun.
struct Guard {
    explicit Guard(std::atomic<int>& destroyed) : count(&destroyed) {}
    Guard(Guard&& other) noexcept : count(std::exchange(other.count, nullptr)) {}
    Guard& operator=(Guard&&) = delete;
    ~Guard() {
        if (count) ++*count;
    }
    std::atomic<int>* count;
};

TEST(MainThreadDoor, RunsTasksInOrderOnTheMainThreadAndNeverAtOnce) {
    const QtConnections connections({});
    std::vector<int> order;
    QThread* ranOn = nullptr;
    std::atomic<bool> isPosted = false;
    const Worker worker("poster", [&](std::stop_token) {
        for (int i = 0; i < 3; ++i)
            MainThread::post([&, i] {
                order.push_back(i);
                ranOn = QThread::currentThread();
            });
        isPosted = true;
    });
    while (!isPosted)
        QThread::yieldCurrentThread();
    EXPECT_THAT(order, IsEmpty());
    ASSERT_TRUE(runUntil([&] { return order.size() == 3; }));
    EXPECT_THAT(order, ElementsAre(0, 1, 2));
    EXPECT_EQ(ranOn, QCoreApplication::instance()->thread());
    EXPECT_TRUE(MainThread::isCurrent());
}

TEST(MainThreadDoor, DestroysWhatWaitsWhenItCloses) {
    std::atomic<int> destroyed = 0;
    bool ran = false;
    {
        const QtConnections connections({});
        MainThread::post([&, guard = Guard(destroyed)] { ran = true; });
    }
    EXPECT_EQ(destroyed, 1);
    MainThread::post([&, guard = Guard(destroyed)] { ran = true; });
    EXPECT_EQ(destroyed, 2);
    QCoreApplication::processEvents();
    EXPECT_FALSE(ran);
}

TEST(MainThreadDoor, MayBePostedToByATaskThatItDestroys) {
    struct PostsAtItsEnd {
        PostsAtItsEnd() = default;
        PostsAtItsEnd(PostsAtItsEnd&& other) noexcept : isArmed(std::exchange(other.isArmed, false)) {}
        PostsAtItsEnd& operator=(PostsAtItsEnd&&) = delete;
        ~PostsAtItsEnd() {
            if (isArmed) MainThread::post([] {});
        }
        bool isArmed = true;
    };
    const QtConnections connections({});
    MainThread::post([last = PostsAtItsEnd()] {});
}

TEST(MainThreadDoor, ClosesWhileWorkersPost) {
    std::atomic<bool> isOver = false;
    {
        auto connections = std::make_optional<QtConnections>(InterfaceLanguage{});
        const Worker worker("poster", [&](std::stop_token) {
            while (!isOver)
                MainThread::post([] {});
        });
        for (int i = 0; i < 50; ++i)
            QCoreApplication::processEvents();
        connections.reset();
        isOver = true;
        EXPECT_TRUE(Worker::waitUntilNoneRuns(5s));
    }
}

std::vector<QString> written;

void collect(QtMsgType, const QMessageLogContext& context, const QString& line) {
    written.push_back(QStringLiteral("%1: %2").arg(QString::fromUtf8(context.category), line));
}

TEST(LogOfTheQtFreeHalf, GoesToItsCategoryAndInfoOnlyWhereAskedFor) {
    const QtConnections connections({});
    written.clear();
    const auto before = qInstallMessageHandler(collect);
    Log::info(Log::Category::operations, "unseen");
    Log::error(Log::Category::directory, "a listing failed");
    QLoggingCategory::setFilterRules(QStringLiteral("ombrel.operations.info=true"));
    Log::info(Log::Category::operations, "seen");
    Log::info(Log::Category::volumes, "unseen");
    QLoggingCategory::setFilterRules({});
    qInstallMessageHandler(before);
    EXPECT_THAT(written, ElementsAre(QStringLiteral("ombrel.directory: a listing failed"),
                                     QStringLiteral("ombrel.operations: seen")));
}

TEST(QtConnections, BringTextsAndTheOrderOfNames) {
    {
        // Swedish sorts ä after z, German beside a.
        const QtConnections connections({"en", QLocale(QStringLiteral("sv_SE")), "sv_SE.UTF-8"});
        EXPECT_GT(NameCollation::compare("ä", "z"), 0);
    }
    const QtConnections connections({"en", QLocale(QStringLiteral("de_DE")), "de"});
    EXPECT_LT(NameCollation::compare("ä", "z"), 0);
    EXPECT_EQ(Texts::localized("error.directory.io", {"why"}), "The folder could not be read: why.");
    EXPECT_EQ((Text{"ui.status.items", {}, 12'345}).localized(), "12.345 items");
}

TEST(QtConnectionsLanguage, IsThatOfTypeDescriptionsToo) {
    struct Row {
        const char *code, *type, *words;
    };
    // GIO keeps its first words for a type as long as the process runs.
    for (const auto& [code, type, words] : {Row{"de", "image/png", "PNG-Bild"},
                                            {"pt-BR", "image/jpeg", "Imagem JPEG"},
                                            {"zh-Hans", "image/gif", "GIF 图像"},
                                            {"en", "image/tiff", "TIFF image"}}) {
        const QtConnections connections(InterfaceLanguage::choose(code));
        EXPECT_EQ(TypeDatabase::description(TypeDatabase::index(type)), words);
    }
}

} // namespace
} // namespace ombrel
