#include "services/VolumeEjector.h"

#include "base/FileName.h"
#include "base/Log.h"

#include <QByteArrayList>
#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QMap>
#include <QPointer>
#include <QVariantMap>

#include <algorithm>
#include <climits>
#include <deque>
#include <string_view>
#include <utility>
#include <vector>

using Interfaces = QMap<QString, QVariantMap>;
using ManagedObjects = QMap<QDBusObjectPath, Interfaces>;
Q_DECLARE_METATYPE(Interfaces)
Q_DECLARE_METATYPE(ManagedObjects)

namespace ombrel {
namespace {

// Interfaces and errors as the documentation of UDisks 2 names them.
constexpr QLatin1String service("org.freedesktop.UDisks2"), root("/org/freedesktop/UDisks2");
constexpr QLatin1String block("org.freedesktop.UDisks2.Block"),
    fileSystem("org.freedesktop.UDisks2.Filesystem"), drive("org.freedesktop.UDisks2.Drive"),
    encrypted("org.freedesktop.UDisks2.Encrypted"), loop("org.freedesktop.UDisks2.Loop");
constexpr QLatin1String nowhere("/");

/// Flushing a slow stick takes minutes.
constexpr int asLongAsItTakes = INT_MAX;

/// One call of the service's.
struct Step {
    QString object;
    QLatin1String interface;
    QLatin1String method;
    bool mayFail = false; ///< the volume is out of use without it
};

QVariant property(const ManagedObjects& objects, const QString& object, QLatin1String interface,
                  const char* name) {
    if (object.isEmpty()) return {};
    return objects.value(QDBusObjectPath(object)).value(interface).value(QLatin1String(name));
}

QString pathProperty(const ManagedObjects& objects, const QString& object, QLatin1String interface,
                     const char* name) {
    const auto path = property(objects, object, interface, name).value<QDBusObjectPath>().path();
    return path == nowhere ? QString() : path;
}

std::vector<std::string> mountPoints(const ManagedObjects& objects, const QString& object) {
    std::vector<std::string> points;
    // Paths are bytes that end in NUL.
    for (const QByteArray& point :
         qdbus_cast<QByteArrayList>(property(objects, object, fileSystem, "MountPoints")))
        points.emplace_back(point.constData());
    return points;
}

/// What was unlocked to reach a block device; empty when nothing was.
QString lockOf(const ManagedObjects& objects, const QString& object) {
    return pathProperty(objects, object, block, "CryptoBackingDevice");
}

QString driveOf(const ManagedObjects& objects, const QString& object) {
    const QString lock = lockOf(objects, object);
    return pathProperty(objects, lock.isEmpty() ? object : lock, block, "Drive");
}

QString holderOf(const ManagedObjects& objects, const FileURL& volume) {
    for (auto object = objects.begin(); object != objects.end(); ++object)
        for (const std::string& point : mountPoints(objects, object.key().path()))
            if (FileURL::fromPath(point) == volume) return object.key().path();
    return {};
}

void planUnmount(std::deque<Step>& steps, const ManagedObjects& objects, const QString& object) {
    const auto count = mountPoints(objects, object).size();
    for (std::size_t i = 0; i < count; ++i)
        steps.push_back({object, fileSystem, QLatin1String("Unmount")});
}

std::deque<Step> planEject(const ManagedObjects& objects, const QString& object) {
    std::deque<Step> steps;
    const QString ownDrive = driveOf(objects, object);
    std::vector<QString> holders = {object};
    if (!ownDrive.isEmpty())
        for (auto other = objects.begin(); other != objects.end(); ++other)
            if (other.key().path() != object && driveOf(objects, other.key().path()) == ownDrive)
                holders.push_back(other.key().path());
    for (const QString& holder : holders)
        planUnmount(steps, objects, holder);
    for (const QString& holder : holders)
        if (const QString lock = lockOf(objects, holder); !lock.isEmpty())
            steps.push_back({lock, encrypted, QLatin1String("Lock")});
    if (objects.value(QDBusObjectPath(object)).contains(loop))
        steps.push_back({object, loop, QLatin1String("Delete"), true});
    if (property(objects, ownDrive, drive, "Ejectable").toBool())
        steps.push_back({ownDrive, drive, QLatin1String("Eject")});
    else if (property(objects, ownDrive, drive, "CanPowerOff").toBool())
        steps.push_back({ownDrive, drive, QLatin1String("PowerOff"), true});
    return steps;
}

enum class Meaning : std::uint8_t { done, takenBack, failure };

/// What a failed call means for the whole, and the words for it.
std::pair<Meaning, Text> understood(const QDBusError& error, const FileURL& volume) {
    const std::string name = FileName::displayText(volume.name());
    const QString type = error.name();
    const auto isOneOf = [&](std::initializer_list<const char*> endings) {
        return std::ranges::any_of(endings,
                                   [&](const char* ending) { return type.endsWith(QLatin1String(ending)); });
    };
    if (isOneOf({".Error.NotMounted", ".Error.AlreadyUnmounting"})) return {Meaning::done, {}};
    if (isOneOf({".Error.NotAuthorizedDismissed", ".Error.Cancelled"})) return {Meaning::takenBack, {}};
    if (isOneOf({".Error.DeviceBusy"})) return {Meaning::failure, {"volume.eject.busy", {name}}};
    if (isOneOf({".Error.NotAuthorized", ".Error.NotAuthorizedCanObtain", ".Error.AccessDenied"}))
        return {Meaning::failure, {"volume.eject.notAuthorized", {name}}};
    if (isOneOf({".Error.Timedout", ".Error.NoReply", ".Error.Timeout"}))
        return {Meaning::failure, {"volume.eject.noAnswer", {name}}};
    if (isOneOf({".Error.ServiceUnknown", ".Error.NameHasNoOwner", ".Error.Disconnected"}) ||
        error.type() == QDBusError::NoServer || error.type() == QDBusError::ServiceUnknown)
        return {Meaning::failure, {"volume.eject.noService"}};
    return {Meaning::failure, {"volume.eject.failed", {name, error.message().toStdString()}}};
}

} // namespace

/// One request: asks for the objects, plans, then takes the steps one after another.
class VolumeEjector::Job final : public QObject {
public:
    Job(QDBusConnection bus, FileURL volume, Extent extent, Done done)
        : bus_(std::move(bus)), volume_(std::move(volume)), extent_(extent), done_(std::move(done)) {}

    void start() {
        // A call on a bus that is not there would never be answered.
        if (!bus_.isConnected()) {
            QMetaObject::invokeMethod(
                this, [this] { finish(std::unexpected(Text{"volume.eject.noService"})); },
                Qt::QueuedConnection);
            return;
        }
        const auto message =
            QDBusMessage::createMethodCall(service, root, QLatin1String("org.freedesktop.DBus.ObjectManager"),
                                           QLatin1String("GetManagedObjects"));
        call(message, [this](const QDBusPendingCall& answer) {
            const QDBusPendingReply<ManagedObjects> reply = answer;
            if (reply.isError()) return finish(std::unexpected(understood(reply.error(), volume_).second));
            const auto objects = reply.value();
            const QString object = holderOf(objects, volume_);
            if (object.isEmpty())
                return finish(
                    std::unexpected(Text{"volume.eject.unknown", {FileName::displayText(volume_.name())}}));
            if (extent_ == Extent::drive)
                steps_ = planEject(objects, object);
            else
                planUnmount(steps_, objects, object);
            next();
        });
    }

private:
    template <typename Take>
    void call(const QDBusMessage& message, Take take) {
        auto* const watcher = new QDBusPendingCallWatcher(bus_.asyncCall(message, asLongAsItTakes), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, take = std::move(take)] {
            watcher->deleteLater();
            take(*watcher);
        });
    }

    void next() {
        if (steps_.empty()) return finish({});
        const Step step = std::move(steps_.front());
        steps_.pop_front();
        auto message = QDBusMessage::createMethodCall(service, step.object, step.interface, step.method);
        message.setArguments({QVariantMap()});
        call(message, [this, step](const QDBusPendingCall& answer) {
            if (answer.isError()) {
                const auto [meaning, text] = understood(answer.error(), volume_);
                Log::info(Log::Category::volumes,
                          step.method.data() + std::string(": ") + answer.error().name().toStdString());
                if (meaning == Meaning::takenBack) return finish({});
                if (meaning == Meaning::failure && !step.mayFail) return finish(std::unexpected(text));
            }
            next();
        });
    }

    void finish(std::expected<void, Text> outcome) {
        deleteLater();
        auto& ejector = static_cast<VolumeEjector&>(*parent());
        ejector.working_.erase(volume_);
        const QPointer guard(&ejector);
        const auto done = std::move(done_);
        Q_EMIT ejector.workingChanged();
        if (guard && done) done(std::move(outcome));
    }

    QDBusConnection bus_;
    const FileURL volume_;
    const Extent extent_;
    Done done_;
    std::deque<Step> steps_;
};

VolumeEjector::VolumeEjector(QObject* parent) : QObject(parent) {
    qDBusRegisterMetaType<QByteArrayList>();
    qDBusRegisterMetaType<Interfaces>();
    qDBusRegisterMetaType<ManagedObjects>();
}

VolumeEjector::VolumeEjector(const QDBusConnection& bus, QObject* parent) : VolumeEjector(parent) {
    bus_ = bus;
}

VolumeEjector::~VolumeEjector() = default;

void VolumeEjector::eject(const FileURL& volume, Done done) {
    begin(volume, Extent::drive, std::move(done));
}

void VolumeEjector::unmount(const FileURL& volume, Done done) {
    begin(volume, Extent::volume, std::move(done));
}

void VolumeEjector::begin(const FileURL& volume, Extent extent, Done done) {
    if (!bus_) bus_ = QDBusConnection::systemBus();
    auto* const job = new Job(*bus_, volume, extent, std::move(done));
    job->setParent(this);
    working_.insert(volume);
    job->start();
    Q_EMIT workingChanged();
}

} // namespace ombrel
