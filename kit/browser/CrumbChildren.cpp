#include "browser/CrumbChildren.h"

#include "base/MainThread.h"
#include "listing/DirectoryProvider.h"

#include <QPointer>

#include <system_error>
#include <utility>

namespace ombrel {

struct CrumbChildren::Found {
    FileItemList folders;
    std::optional<DirectoryError> error;
};

CrumbChildren::CrumbChildren(QObject* parent) : QObject(parent) {}

void CrumbChildren::read(const FileURL& folder, const ItemFilter& filter) {
    const std::uint64_t ticket = ++ticket_;
    state_ = State::reading;
    folders_ = {};
    error_ = std::nullopt;
    const auto work = [self = QPointer(this), ticket, folder, filter](const std::stop_token& stop) {
        const DirectoryRequest request{.url = folder,
                                       .sort = {},
                                       .directoriesOnly = true,
                                       .firstBatchSize = DirectoryProvider::largestBatch};
        Found found;
        if (const auto snapshot = DirectoryProvider().load(request, stop))
            found.folders =
                ItemArrangement::make(snapshot->items(), request.sort, {request.sort, filter}).items;
        else if (snapshot.error().wasCancelled())
            return;
        else
            found.error = snapshot.error().error();
        MainThread::post([self, ticket, found = std::move(found)]() mutable {
            if (self && self->ticket_ == ticket) self->take(std::move(found));
        });
    };
    try {
        reader_ = Worker("ombrel-crumb", work);
    } catch (const std::system_error& failure) {
        take({.folders = {}, .error = DirectoryError::from(failure.code().value())});
    }
}

void CrumbChildren::take(Found found) {
    folders_ = std::move(found.folders);
    error_ = found.error;
    state_ = error_ ? State::failed : State::ready;
    Q_EMIT changed();
}

} // namespace ombrel
