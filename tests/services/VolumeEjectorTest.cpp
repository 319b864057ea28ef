#include "services/VolumeEjector.h"

#include "services/PrivateBus.h"
#include "support/Locations.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>

#include <gmock/gmock.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "qtmain/KitWorld.h"

using Interfaces = QMap<QString, QVariantMap>;
using ManagedObjects = QMap<QDBusObjectPath, Interfaces>;
Q_DECLARE_METATYPE(Interfaces)
Q_DECLARE_METATYPE(ManagedObjects)

namespace ombrel {
namespace {

using testing::at;
using ::testing::ElementsAre;
using testing::KitWorld;
using testing::PrivateBus;
using testing::runUntil;

/// The disk service with two partitions of one stick, an unlocked disk and an image.
class Disks final : public QDBusVirtualObject {
public:
    Disks() {
        qDBusRegisterMetaType<QByteArrayList>();
        qDBusRegisterMetaType<Interfaces>();
        qDBusRegisterMetaType<ManagedObjects>();
        addBlock("sdb1", {"/media/ann/STICK"}, "Stick");
        addBlock("sdb2", {"/media/ann/Second", "/mnt/bound"}, "Stick");
        addBlock("sda1", {"/data"}, "Disk");
        addBlock("sdc1", {}, "Vault");
        addBlock("dm_2d0", {"/media/ann/Secret"}, "", "sdc1");
        addBlock("loop0", {"/media/ann/Image"}, "");
        objects_[block("loop0")][QStringLiteral("org.freedesktop.UDisks2.Loop")] = {};
        addDrive("Stick", true, true);
        addDrive("Disk", false, false);
        addDrive("Vault", false, true);
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        if (message.member() == QLatin1String("GetManagedObjects")) {
            bus.send(message.createReply(QVariant::fromValue(objects_)));
            return true;
        }
        const auto call = (message.path().section(QLatin1Char('/'), -1) + QLatin1Char(' ') + message.member())
                              .toStdString();
        calls.push_back(call);
        if (const auto failure = failures.find(call); failure != failures.end())
            bus.send(message.createErrorReply(QStringLiteral("org.freedesktop.UDisks2.Error.") +
                                                  QString::fromStdString(failure->second),
                                              QStringLiteral("Words of the service's")));
        else
            bus.send(message.createReply());
        return true;
    }
    QString introspect(const QString&) const override { return {}; }

    std::vector<std::string> calls;
    std::map<std::string, std::string> failures; ///< by call, the error's name

private:
    static QDBusObjectPath block(const char* name) {
        return QDBusObjectPath(QStringLiteral("/org/freedesktop/UDisks2/block_devices/") +
                               QLatin1String(name));
    }
    static QDBusObjectPath drive(const char* name) {
        return QDBusObjectPath(*name
                                   ? QStringLiteral("/org/freedesktop/UDisks2/drives/") + QLatin1String(name)
                                   : QStringLiteral("/"));
    }
    void addBlock(const char* name, const std::vector<std::string>& points, const char* driveName,
                  const char* lock = "") {
        auto& interfaces = objects_[block(name)];
        interfaces[QStringLiteral("org.freedesktop.UDisks2.Block")] = {
            {QStringLiteral("Drive"), QVariant::fromValue(drive(driveName))},
            {QStringLiteral("CryptoBackingDevice"),
             QVariant::fromValue(*lock ? block(lock) : QDBusObjectPath(QStringLiteral("/")))}};
        QByteArrayList bytes;
        for (const std::string& point : points)
            bytes.push_back(QByteArray(point.c_str(), static_cast<qsizetype>(point.size() + 1)));
        if (!points.empty())
            interfaces[QStringLiteral("org.freedesktop.UDisks2.Filesystem")] = {
                {QStringLiteral("MountPoints"), QVariant::fromValue(bytes)}};
    }
    void addDrive(const char* name, bool isEjectable, bool canPowerOff) {
        objects_[drive(name)][QStringLiteral("org.freedesktop.UDisks2.Drive")] = {
            {QStringLiteral("Ejectable"), isEjectable}, {QStringLiteral("CanPowerOff"), canPowerOff}};
    }

    ManagedObjects objects_;
};

class Ejecting : public ::testing::Test {
protected:
    void SetUp() override {
        if (!bus.isThere()) GTEST_SKIP() << "no dbus-daemon here";
        auto server = bus.connect(QStringLiteral("server"));
        server.registerVirtualObject(QStringLiteral("/org/freedesktop/UDisks2"), &disks,
                                     QDBusConnection::SubPath);
        ASSERT_TRUE(server.registerService(QStringLiteral("org.freedesktop.UDisks2")));
        ejector = std::make_unique<VolumeEjector>(bus.connect(QStringLiteral("client")));
    }

    /// Empty when it went well, otherwise the key of what is told.
    std::string outcomeOf(void (VolumeEjector::*request)(const FileURL&, VolumeEjector::Done),
                          std::string_view path) {
        std::optional<std::string> outcome;
        (ejector.get()->*request)(at(path), [&](const std::expected<void, Text>& result) {
            outcome = result ? std::string() : std::string(result.error().key);
        });
        EXPECT_TRUE(ejector->isWorking(at(path)));
        EXPECT_TRUE(runUntil([&] { return outcome.has_value(); }, std::chrono::seconds(10)));
        EXPECT_FALSE(ejector->isWorking(at(path)));
        return outcome.value_or("nothing");
    }
    std::string eject(std::string_view path) { return outcomeOf(&VolumeEjector::eject, path); }

    KitWorld world;
    PrivateBus bus;
    Disks disks;
    std::unique_ptr<VolumeEjector> ejector;
};

TEST_F(Ejecting, UnmountsAllOfTheDriveFirst) {
    EXPECT_EQ(eject("/media/ann/STICK"), "");
    EXPECT_THAT(disks.calls, ElementsAre("sdb1 Unmount", "sdb2 Unmount", "sdb2 Unmount", "Stick Eject"));
}

TEST_F(Ejecting, LocksWhatWasUnlockedAndSwitchesOff) {
    EXPECT_EQ(eject("/media/ann/Secret"), "");
    EXPECT_THAT(disks.calls, ElementsAre("dm_2d0 Unmount", "sdc1 Lock", "Vault PowerOff"));
}

TEST_F(Ejecting, DetachesAnImage) {
    EXPECT_EQ(eject("/media/ann/Image"), "");
    EXPECT_THAT(disks.calls, ElementsAre("loop0 Unmount", "loop0 Delete"));
}

TEST_F(Ejecting, UnmountsTheVolumeAloneWhenThatIsAsked) {
    EXPECT_EQ(outcomeOf(&VolumeEjector::unmount, "/media/ann/STICK"), "");
    EXPECT_THAT(disks.calls, ElementsAre("sdb1 Unmount"));
}

TEST_F(Ejecting, TellsInWordsWhatStandsInTheWay) {
    const std::pair<const char*, const char*> rows[] = {{"DeviceBusy", "volume.eject.busy"},
                                                        {"NotAuthorized", "volume.eject.notAuthorized"},
                                                        {"Timedout", "volume.eject.noAnswer"},
                                                        {"Failed", "volume.eject.failed"}};
    for (const auto& [error, key] : rows) {
        disks.calls.clear();
        disks.failures["sdb1 Unmount"] = error;
        EXPECT_EQ(eject("/media/ann/STICK"), key);
        EXPECT_THAT(disks.calls, ElementsAre("sdb1 Unmount"))
            << "nothing more is done to a drive that is in use";
    }
    EXPECT_EQ(eject("/media/ann/Elsewhere"), "volume.eject.unknown");
}

TEST_F(Ejecting, GoesOnWhenThereIsNothingLeftToDo) {
    disks.failures = {
        {"sdc1 Lock", "Failed"}, {"sdb1 Unmount", "NotMounted"}, {"loop0 Delete", "NotAuthorized"}};
    EXPECT_EQ(eject("/media/ann/STICK"), "");
    EXPECT_EQ(eject("/media/ann/Image"), "");
    disks.failures = {{"sda1 Unmount", "NotAuthorizedDismissed"}};
    disks.calls.clear();
    EXPECT_EQ(eject("/data"), "") << "whoever closes the password dialog knows";
    EXPECT_THAT(disks.calls, ElementsAre("sda1 Unmount"));
}

TEST_F(Ejecting, SaysWhenThereIsNoService) {
    PrivateBus empty;
    ejector = std::make_unique<VolumeEjector>(empty.connect(QStringLiteral("lonely")));
    EXPECT_EQ(eject("/media/ann/STICK"), "volume.eject.noService");
    ejector = std::make_unique<VolumeEjector>(QDBusConnection(QStringLiteral("never connected")));
    EXPECT_EQ(eject("/media/ann/STICK"), "volume.eject.noService");
}

TEST_F(Ejecting, MayBeForgotten) {
    ejector->eject(at("/media/ann/STICK"), [](const auto&) { FAIL() << "told after it was gone"; });
    ejector.reset();
    EXPECT_TRUE(testing::runUntilQuiet());
}

} // namespace
} // namespace ombrel
