#include "services/QtConnections.h"

#include "base/Log.h"
#include "base/MainThread.h"
#include "base/Text.h"
#include "listing/NameCollation.h"
#include "listing/TypeDatabase.h"
#include "services/TextTables.h"

#include <QLoggingCategory>
#include <QMetaObject>

#include <array>
#include <mutex>
#include <utility>

namespace ombrel {
namespace {

using Categories = std::array<std::unique_ptr<QLoggingCategory>, 5>;

Categories made(QtMsgType least) {
    constexpr std::array names = {"ombrel.access", "ombrel.directory", "ombrel.operations", "ombrel.volumes",
                                  "ombrel.ui"};
    Categories all;
    for (std::size_t i = 0; i < names.size(); ++i)
        all[i] = std::make_unique<QLoggingCategory>(names[i], least);
    return all;
}

/// Never destroyed: a worker that outlives main() may still log.
const Categories& categories(QtConnections::Logging logging) {
    static const auto& telling = *new Categories(made(QtCriticalMsg));
    static const auto& silent = *new Categories(made(QtFatalMsg));
    return logging == QtConnections::Logging::silent ? silent : telling;
}

void connectLog(QtConnections::Logging logging) {
    Log::connect(
        [&all = categories(logging)](Log::Category category, Log::Level level, const std::string& line) {
            const auto& to = *all[std::to_underlying(category)];
            if (level == Log::Level::error)
                qCCritical(to).noquote() << QString::fromStdString(line);
            else
                qCInfo(to).noquote() << QString::fromStdString(line);
        });
}

} // namespace

/// What workers hold on to. The receiver lives as long as the event loop may run tasks; a task in the queue
/// belongs to the receiver's pending events and goes with it.
struct QtConnections::Door {
    std::mutex mutex; // guards receiver
    std::unique_ptr<QObject> receiver = std::make_unique<QObject>();

    void post(MainThread::Task task) {
        const std::scoped_lock lock(mutex);
        if (!receiver) return;
        // Queued calls copy their closure; a task can only be moved.
        QMetaObject::invokeMethod(
            receiver.get(), [shared = std::make_shared<MainThread::Task>(std::move(task))] { (*shared)(); },
            Qt::QueuedConnection);
    }
};

QtConnections::QtConnections(InterfaceLanguage language, Logging logging)
    : language_(std::move(language)), door_(std::make_shared<Door>()) {
    MainThread::connect([door = door_](MainThread::Task task) { door->post(std::move(task)); });
    connectLog(logging);
    NameCollation::setLocale(language_.collation);
    TypeDatabase::setLanguage(language_.locale.name().toStdString());
    Texts::connect(
        [tables = std::make_shared<const TextTables>(language_)](
            std::string_view key, std::optional<std::int64_t> count) { return tables->text(key, count); });
}

QtConnections::~QtConnections() {
    MainThread::connect({});
    std::unique_ptr<QObject> receiver;
    {
        const std::scoped_lock lock(door_->mutex);
        receiver = std::move(door_->receiver);
    }
    // Destroyed outside the lock, because a task that goes with it may post.
}

} // namespace ombrel
