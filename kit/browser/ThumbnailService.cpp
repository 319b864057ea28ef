#include "browser/ThumbnailService.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <utility>

namespace ombrel {
namespace {

constexpr auto busName = "org.freedesktop.thumbnails.Thumbnailer1";
constexpr auto path = "/org/freedesktop/thumbnails/Thumbnailer1";
constexpr int patience = 5000; // milliseconds, within which a service that is there has started

QString string(const char* text) {
    return QString::fromLatin1(text);
}

} // namespace

ThumbnailService::ThumbnailService(QObject* parent) : QObject(parent) {}

void ThumbnailService::call(const char* method, const QVariantList& arguments,
                            std::function<void(const QDBusMessage&)> take) {
    auto message =
        QDBusMessage::createMethodCall(string(busName), string(path), string(busName), string(method));
    message.setArguments(arguments);
    auto* const watcher =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message, patience), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, take = std::move(take)] {
        watcher->deleteLater();
        if (take) take(watcher->reply());
    });
}

void ThumbnailService::whenKnown(std::function<void()> done) {
    if (knowledge_ == Knowledge::known) return done();
    waiting_.push_back(std::move(done));
    if (knowledge_ == Knowledge::asked) return;
    knowledge_ = Knowledge::asked;
    // Without an address the bus library would try to launch a bus.
    if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS") ||
        !QDBusConnection::sessionBus().isConnected()) {
        learn();
        return;
    }
    call("GetSupported", {}, [this](const QDBusMessage& types) {
        const auto answer = types.arguments();
        if (types.type() != QDBusMessage::ReplyMessage || answer.size() != 2) return learn();
        const auto schemes = answer[0].toStringList(), supported = answer[1].toStringList();
        for (qsizetype i = 0; i < std::min(schemes.size(), supported.size()); ++i)
            if (schemes[i] == QLatin1String("file")) types_.insert(supported[i]);
        call("GetFlavors", {}, [this](const QDBusMessage& sizes) {
            if (sizes.type() == QDBusMessage::ReplyMessage && !sizes.arguments().isEmpty())
                sizes_ = sizes.arguments().constFirst().toStringList();
            learn();
        });
    });
}

void ThumbnailService::learn() {
    knowledge_ = Knowledge::known;
    if (!types_.isEmpty()) {
        auto bus = QDBusConnection::sessionBus();
        const auto listen = [&](const char* signal, const char* slot) {
            bus.connect(string(busName), string(path), string(busName), string(signal), this, slot);
        };
        listen("Ready", SLOT(takeReady(uint, QStringList)));
        listen("Error", SLOT(takeError(uint, QStringList, int, QString)));
        listen("Finished", SLOT(takeFinished(uint)));
    }
    for (auto& done : std::exchange(waiting_, {}))
        done();
}

void ThumbnailService::ask(const std::vector<File>& files, const QString& size) {
    QStringList uris, types;
    for (const File& file : files) {
        uris << file.uri;
        types << file.type;
    }
    const QString flavour = sizes_.contains(size)                      ? size
                            : sizes_.contains(QStringLiteral("large")) ? QStringLiteral("large")
                                                                       : QStringLiteral("normal");
    call("Queue", {uris, types, flavour, QStringLiteral("foreground"), uint{0}},
         [this, uris](const QDBusMessage& reply) {
             const bool isTaken = reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty();
             if (!isTaken) {
                 for (const QString& uri : uris)
                     Q_EMIT finished(uri);
                 return;
             }
             asked_.insert(reply.arguments().constFirst().toUInt(), QSet<QString>(uris.begin(), uris.end()));
         });
}

void ThumbnailService::giveUp(const std::function<bool(const QString&)>& isWanted) {
    for (auto each = asked_.begin(); each != asked_.end();) {
        if (std::ranges::any_of(each.value(), isWanted)) {
            ++each;
            continue;
        }
        call("Dequeue", {each.key()}, {});
        each = asked_.erase(each);
    }
}

void ThumbnailService::end(uint handle, const QStringList& uris) {
    const auto request = asked_.find(handle);
    if (request == asked_.end()) return;
    for (const QString& uri : uris)
        if (request->remove(uri)) Q_EMIT finished(uri);
}

void ThumbnailService::takeReady(uint handle, const QStringList& uris) {
    end(handle, uris);
}

void ThumbnailService::takeError(uint handle, const QStringList& uris, int, const QString&) {
    end(handle, uris);
}

void ThumbnailService::takeFinished(uint handle) {
    for (const QString& uri : asked_.take(handle))
        Q_EMIT finished(uri);
}

} // namespace ombrel
