#include "app/Instance.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>

#include <utility>

namespace ombrel {
namespace {

constexpr int patience = 4000; // milliseconds
constexpr auto tokenVariable = "XDG_ACTIVATION_TOKEN", startupVariable = "DESKTOP_STARTUP_ID";
const QString name = QStringLiteral("com.halvane.Ombrel");
const QString path = QStringLiteral("/com/halvane/Ombrel");
const QString interfaceName = QStringLiteral("org.freedesktop.Application");
const QString tokenKey = QStringLiteral("activation-token"),
              startupKey = QStringLiteral("desktop-startup-id");

/// What lets the window that is opened elsewhere take the focus.
QVariantMap platformData() {
    QVariantMap data;
    const auto pass = [&data](const char* variable, const QString& key) {
        const QString value = qEnvironmentVariable(variable);
        if (!value.isEmpty()) data.insert(key, value);
    };
    pass(tokenVariable, tokenKey);
    pass(startupVariable, startupKey);
    return data;
}

} // namespace

std::optional<QDBusConnection> Instance::sessionBus() {
    // Without an address the library would start a bus that nobody else is on.
    if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")) return std::nullopt;
    auto bus = QDBusConnection::sessionBus();
    return bus.isConnected() ? std::optional(bus) : std::nullopt;
}

Instance::Instance(QDBusConnection bus) : bus_(std::move(bus)) {}

Instance::~Instance() {
    if (!hasName_) return;
    // In this order: whoever finds the name finds the object.
    bus_.interface()->unregisterService(name);
    bus_.unregisterObject(path);
}

bool Instance::handOver(const std::vector<FileURL>& folders) {
    if (claimName()) return false;
    if (call(folders)) return true;
    // The one that had it may just have ended.
    static_cast<void>(claimName());
    return false;
}

bool Instance::claimName() {
    if (!bus_.registerObject(path, this, QDBusConnection::ExportScriptableInvokables)) return false;
    const auto reply = bus_.interface()->registerService(name, QDBusConnectionInterface::DontQueueService,
                                                         QDBusConnectionInterface::DontAllowReplacement);
    hasName_ = reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered;
    if (!hasName_) bus_.unregisterObject(path);
    return hasName_;
}

bool Instance::call(const std::vector<FileURL>& folders) const {
    auto request = QDBusMessage::createMethodCall(
        name, path, interfaceName, folders.empty() ? QStringLiteral("Activate") : QStringLiteral("Open"));
    request.setAutoStartService(false);
    QStringList uris;
    for (const FileURL& folder : folders)
        uris << QString::fromStdString(folder.uri());
    QVariantList arguments;
    if (!folders.empty()) arguments << uris;
    arguments << platformData();
    request.setArguments(arguments);
    return bus_.call(request, QDBus::Block, patience).type() == QDBusMessage::ReplyMessage;
}

void Instance::serve(OpenWindows openWindows) {
    openWindows_ = std::move(openWindows);
    for (const auto& folders : std::exchange(waiting_, {}))
        openWindows_(folders);
}

void Instance::Activate(const QVariantMap& platformData) {
    open({}, platformData);
}

void Instance::Open(const QStringList& uris, const QVariantMap& platformData) {
    std::vector<FileURL> folders;
    for (const QString& uri : uris)
        if (auto folder = FileURL::fromURI(uri.toStdString())) folders.push_back(*std::move(folder));
    open(folders, platformData);
}

void Instance::ActivateAction(const QString& action, const QVariantList&, const QVariantMap& platformData) {
    if (action == QLatin1String("new-window")) open({}, platformData);
}

void Instance::open(const std::vector<FileURL>& folders, const QVariantMap& platformData) {
    const auto take = [&platformData](const QString& key, const char* variable) {
        const QString value = platformData.value(key).toString();
        if (!value.isEmpty()) qputenv(variable, value.toUtf8());
    };
    take(tokenKey, tokenVariable);
    take(startupKey, startupVariable);
    if (openWindows_)
        openWindows_(folders);
    else
        waiting_.push_back(folders);
}

} // namespace ombrel
