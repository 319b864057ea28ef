#include "listing/DirectoryProvider.h"

#include "listing/LazyItems.h"
#include "listing/ListingRun.h"
#include "listing/POSIX.h"

#include <optional>
#include <system_error>
#include <thread>
#include <utility>

namespace ombrel {

std::size_t DirectorySnapshot::count() const noexcept {
    return lazyItems->count();
}

const FileItemList& DirectorySnapshot::items() const {
    return lazyItems->list();
}

DirectoryProvider::Ending DirectoryProvider::read(const DirectoryRequest& request,
                                                  const std::function<void(DirectorySnapshot)>& emit,
                                                  std::stop_token stop) const {
    auto stream = POSIX::openDirectory(request.url);
    if (!stream) return std::unexpected(DirectoryError::from(stream.error().number));
    ListingRun run(request, std::move(*stream), emit, std::move(stop));
    std::jthread second;
    try {
        second = std::jthread([&run] { run.work(); });
    } catch (const std::system_error&) {
        // A system that has no thread left lists on one.
    }
    run.work();
    if (second.joinable()) second.join();
    return run.finish();
}

DirectoryProvider::Stream DirectoryProvider::snapshots(DirectoryRequest request) const {
    const auto produce = [request = std::move(request)](const Stream::Sink& sink, std::stop_token stop) {
        return DirectoryProvider().read(
            request, [&sink](DirectorySnapshot snapshot) { sink.yield(std::move(snapshot)); },
            std::move(stop));
    };
    try {
        return Stream("ombrel-listing", produce);
    } catch (const std::system_error& failure) {
        return Stream::ended(std::unexpected(DirectoryError::from(failure.code().value())));
    }
}

std::expected<DirectorySnapshot, Stopped<DirectoryError>>
DirectoryProvider::load(DirectoryRequest request, std::stop_token stop) const {
    std::optional<DirectorySnapshot> last;
    const auto ending =
        read(request, [&last](DirectorySnapshot snapshot) { last = std::move(snapshot); }, std::move(stop));
    if (!ending) return std::unexpected(ending.error());
    return std::move(*last);
}

} // namespace ombrel
