#pragma once

#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <vector>

class QDBusMessage;

namespace ombrel {

/// The desktop's thumbnail service (org.freedesktop.thumbnails.Thumbnailer1), which puts into the shared
/// cache what it is asked for. Main thread only; nothing is ever waited for.
class ThumbnailService final : public QObject {
    Q_OBJECT

public:
    /// A file by its URI and type.
    struct File {
        QString uri;
        QString type;
    };

    explicit ThumbnailService(QObject* parent = nullptr);

    /// Finds out, once, whether there is a service and what it can do; `done` is called when that is known.
    void whenKnown(std::function<void()> done);
    /// Whether it makes thumbnails of files of the type; false as long as nothing is known.
    [[nodiscard]] bool makes(const QString& type) const { return types_.contains(type); }
    /// Asks for thumbnails, in the size of that name or the nearest that the service has.
    void ask(const std::vector<File>& files, const QString& size);
    /// Gives up what nobody wants any more: requests of which `isWanted` holds for no file.
    void giveUp(const std::function<bool(const QString& uri)>& isWanted);

Q_SIGNALS:
    /// The service has done with the file, one way or the other.
    void finished(const QString& uri);

private Q_SLOTS:
    void takeReady(uint handle, const QStringList& uris);
    void takeError(uint handle, const QStringList& uris, int code, const QString& text);
    void takeFinished(uint handle);

private:
    enum class Knowledge : std::uint8_t { none, asked, known };
    void call(const char* method, const QVariantList& arguments,
              std::function<void(const QDBusMessage& reply)> take);
    void learn();
    void end(uint handle, const QStringList& uris);

    Knowledge knowledge_ = Knowledge::none;
    std::vector<std::function<void()>> waiting_;
    QSet<QString> types_;
    QStringList sizes_;
    QHash<uint, QSet<QString>> asked_; ///< by the service's number of the request
};

} // namespace ombrel
