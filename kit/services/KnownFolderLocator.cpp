#include "services/KnownFolderLocator.h"

#include "base/Log.h"
#include "base/MainThread.h"
#include "base/Worker.h"
#include "listing/UserDirectories.h"

#include <QPointer>

#include <string>
#include <system_error>
#include <utility>

namespace ombrel {

KnownFolderLocator::KnownFolderLocator(FileURL home, FileURL config, QObject* parent)
    : QObject(parent), config_(std::move(config)), folders_(std::move(home)) {}

void KnownFolderLocator::refresh() {
    if (isReading_) {
        // A second thread beside one that hangs would only hang too.
        isToBeRepeated_ = true;
        return;
    }
    isReading_ = true;
    try {
        Worker("ombrel-folders", [self = QPointer(this), home = folders_.home(),
                                  config = config_](std::stop_token) {
            MainThread::post([self, folders = UserDirectories::read(home, config)] {
                if (self) self->take(folders);
            });
        }).detach();
    } catch (const std::system_error& failure) {
        Log::error(Log::Category::ui, std::string("user folders are not read: ") + failure.what());
        finish();
    }
}

void KnownFolderLocator::take(const KnownFolders& folders) {
    const QPointer guard(this);
    if (folders != folders_) {
        folders_ = folders;
        Q_EMIT changed();
    }
    if (guard) finish();
}

void KnownFolderLocator::finish() {
    isReading_ = false;
    if (std::exchange(isToBeRepeated_, false))
        refresh();
    else
        Q_EMIT settled();
}

} // namespace ombrel
