#include "services/SettingsFile.h"

#include "base/Log.h"
#include "base/UserFolders.h"

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonParseError>

namespace ombrel {
namespace {

using Fault = SettingsFile::Fault;
using Failure = SettingsFile::Failure;

std::expected<QJsonObject, Failure> parsed(std::string_view bytes) {
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(
        QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size())), &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return std::unexpected(Failure{Fault::damaged});
    return document.object();
}

} // namespace

SettingsFile SettingsFile::standard() {
    return SettingsFile(UserFolders::ours(UserFolders::config()).appending("settings.json"));
}

std::expected<QJsonObject, Failure> SettingsFile::read() const {
    const auto bytes = file_.read();
    if (!bytes) return std::unexpected(Failure{Fault::unreadable, bytes.error()});
    if (!*bytes) return QJsonObject();
    return parsed(**bytes);
}

std::expected<QJsonObject, Failure> SettingsFile::change(std::span<const Edit> edits) const {
    const auto lock = file_.lock();
    if (!lock) return std::unexpected(Failure{Fault::unwritable, lock.error()});
    auto found = read();
    if (!found && found.error().fault != Fault::damaged) return found;
    if (!found) {
        const auto aside = file_.setAside();
        if (!aside) return std::unexpected(Failure{Fault::unwritable, aside.error()});
        Log::error(Log::Category::ui, "damaged settings kept as " + aside->path());
        found = QJsonObject();
    }
    auto values = *found;
    for (const auto& edit : edits)
        edit(values);
    if (values == *found) return values;
    const auto written = file_.replace(QJsonDocument(values).toJson().toStdString());
    if (!written) return std::unexpected(Failure{Fault::unwritable, written.error()});
    return values;
}

} // namespace ombrel
