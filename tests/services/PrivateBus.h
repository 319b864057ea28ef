#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QString>

#include <vector>

namespace ombrel::testing {

/// A bus of the test's own.
class PrivateBus {
public:
    PrivateBus() {
        daemon_.start(QStringLiteral("dbus-daemon"), {QStringLiteral("--session"), QStringLiteral("--nofork"),
                                                      QStringLiteral("--print-address")});
        if (daemon_.waitForStarted() && daemon_.waitForReadyRead())
            address_ = QString::fromUtf8(daemon_.readLine()).trimmed();
    }
    ~PrivateBus() {
        for (const QString& name : names_)
            QDBusConnection::disconnectFromBus(name);
        daemon_.kill();
        daemon_.waitForFinished();
    }
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    [[nodiscard]] bool isThere() const { return !address_.isEmpty(); }
    QDBusConnection connect(const QString& name) {
        names_.push_back(name);
        return QDBusConnection::connectToBus(address_, name);
    }

private:
    QProcess daemon_;
    QString address_;
    std::vector<QString> names_;
};

} // namespace ombrel::testing
