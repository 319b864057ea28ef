#include "services/SleepInhibitor.h"

#include "services/OperationWorld.h"
#include "services/PrivateBus.h"

#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <unistd.h>

#include <array>

namespace ombrel {
namespace {

using testing::Holdup;
using testing::OperationWorld;
using testing::PrivateBus;
using testing::runUntil;

/// A login service that gives out one end of a pipe and watches the other.
class LoginService final : public QDBusVirtualObject {
public:
    QVariantList asked;

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        if (message.member() != QStringLiteral("Inhibit")) return false;
        asked = message.arguments();
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) return false;
        watched_ = OwnedFd(ends[0]);
        const OwnedFd given(ends[1]);
        bus.send(message.createReply(QVariant::fromValue(QDBusUnixFileDescriptor(given.get()))));
        return true;
    }
    /// Whether nobody holds what was given out any more.
    [[nodiscard]] bool isReleased() const {
        pollfd end{watched_.get(), POLLIN, 0};
        return ::poll(&end, 1, 0) == 1 && (end.revents & POLLHUP) != 0;
    }

private:
    OwnedFd watched_;
};

class SleepInhibition : public ::testing::Test, public OperationWorld {};

TEST_F(SleepInhibition, LastsAsLongAsJobsRun) {
    PrivateBus bus;
    if (!bus.isThere()) GTEST_SKIP() << "no dbus-daemon here";
    LoginService login;
    auto server = bus.connect(QStringLiteral("login"));
    ASSERT_TRUE(server.registerService(QStringLiteral("org.freedesktop.login1")));
    ASSERT_TRUE(server.registerVirtualObject(QStringLiteral("/"), &login, QDBusConnection::SubPath));
    const auto client = bus.connect(QStringLiteral("program"));
    const SleepInhibitor inhibitor(*center, [client] { return client; });
    EXPECT_FALSE(inhibitor.isInhibiting());

    Holdup holdup;
    run(holdup.plan(tree.url()));
    ASSERT_TRUE(runUntil([&] { return inhibitor.isInhibiting(); }));
    ASSERT_EQ(login.asked.size(), 4);
    EXPECT_EQ(login.asked[0].toString(), QStringLiteral("sleep:shutdown"));
    EXPECT_EQ(login.asked[3].toString(), QStringLiteral("block"));
    EXPECT_FALSE(login.isReleased());
    holdup.end();
    ASSERT_TRUE(waitForResults(1));
    EXPECT_FALSE(inhibitor.isInhibiting());
    EXPECT_TRUE(runUntil([&] { return login.isReleased(); }));
}

TEST_F(SleepInhibition, IsDoneWithoutWhereThereIsNoSuchService) {
    PrivateBus empty;
    if (!empty.isThere()) GTEST_SKIP() << "no dbus-daemon here";
    const auto client = empty.connect(QStringLiteral("program"));
    const SleepInhibitor withoutService(*center, [client] { return client; });
    const SleepInhibitor withoutBus(*center, [] {
        return QDBusConnection::connectToBus(QStringLiteral("unix:path=/nonexistent/bus"),
                                             QStringLiteral("nowhere"));
    });
    Holdup holdup;
    run(holdup.plan(tree.url()));
    bool isOver = false;
    QTimer::singleShot(std::chrono::milliseconds(600), [&] { isOver = true; });
    ASSERT_TRUE(runUntil([&] { return isOver; }));
    EXPECT_FALSE(withoutService.isInhibiting());
    EXPECT_FALSE(withoutBus.isInhibiting());
    holdup.end();
    ASSERT_TRUE(waitForResults(1));
}

} // namespace
} // namespace ombrel
