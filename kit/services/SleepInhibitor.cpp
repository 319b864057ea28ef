#include "services/SleepInhibitor.h"

#include "base/Log.h"
#include "base/MainThread.h"
#include "base/Text.h"
#include "services/OperationCenter.h"

#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QPointer>
#include <QString>

#include <fcntl.h>

#include <string>
#include <system_error>
#include <utility>

namespace ombrel {
namespace {

constexpr std::chrono::milliseconds shortJob(250);
constexpr int patience = 5000; // milliseconds

/// An open descriptor stands for the promise; an invalid one says that there is none.
OwnedFd inhibit(const QDBusConnection& bus, const QString& why) {
    if (!bus.isConnected()) return {};
    auto request = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
    request.setArguments(
        {QStringLiteral("sleep:shutdown"), QStringLiteral("Ombrel"), why, QStringLiteral("block")});
    const auto reply = bus.call(request, QDBus::Block, patience);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
        Log::info(Log::Category::operations, "sleep is not inhibited: " + reply.errorName().toStdString());
        return {};
    }
    const auto descriptor = reply.arguments().constFirst().value<QDBusUnixFileDescriptor>();
    return OwnedFd(::fcntl(descriptor.fileDescriptor(), F_DUPFD_CLOEXEC, 0));
}

} // namespace

SleepInhibitor::SleepInhibitor(const OperationCenter& center, Bus bus, QObject* parent)
    : QObject(parent), center_(center), bus_(std::move(bus)) {
    start_.setSingleShot(true);
    start_.setInterval(shortJob);
    connect(&start_, &QTimer::timeout, this, &SleepInhibitor::ask);
    connect(&center, &OperationCenter::jobsChanged, this, &SleepInhibitor::follow);
    follow();
}

SleepInhibitor::~SleepInhibitor() = default;

void SleepInhibitor::follow() {
    if (!center_.jobs().empty()) {
        if (request_ == 0 && !start_.isActive()) start_.start();
        return;
    }
    start_.stop();
    request_ = 0;
    if (!lock_) return;
    lock_.reset();
    Q_EMIT inhibitingChanged();
}

void SleepInhibitor::ask() {
    request_ = ++lastRequest_;
    try {
        worker_ = Worker("ombrel-inhibit", [inhibitor = QPointer(this), request = request_, bus = bus_,
                                            why = Texts::localized("inhibit.why")](const std::stop_token&) {
            auto lock = inhibit(bus(), QString::fromStdString(why));
            if (!lock) return;
            MainThread::post([inhibitor, request, lock = std::move(lock)]() mutable {
                if (inhibitor) inhibitor->take(std::move(lock), request);
            });
        });
    } catch (const std::system_error& failure) {
        Log::error(Log::Category::operations, std::string("sleep is not inhibited: ") + failure.what());
    }
}

void SleepInhibitor::take(OwnedFd lock, std::uint64_t request) {
    if (request != request_) return;
    lock_ = std::move(lock);
    Q_EMIT inhibitingChanged();
}

} // namespace ombrel
