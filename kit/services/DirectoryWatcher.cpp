#include "services/DirectoryWatcher.h"

#include "base/MainThread.h"

#include <optional>
#include <system_error>
#include <utility>

namespace ombrel {

/// The main thread's end. The watch's thread knows it weakly.
struct DirectoryWatcher::Desk : std::enable_shared_from_this<Desk> {
    FolderWatch::Pace pace;
    Handler handler;
    std::uint64_t ticket = 0; ///< raised by whatever makes the watch's news stale
    std::optional<FileURL> url;
    FolderWatch watch;
    Answer answer;
    std::uint64_t awaited = 0; ///< number of the start or renewal that `answer` is for

    /// Something that runs on the main thread while the present watch lasts.
    template <typename Body>
    auto onMain(Body body) {
        return [desk = weak_from_this(), number = ticket, body](auto... arguments) {
            MainThread::post([desk, number, body, arguments...] {
                const auto present = desk.lock();
                if (present && present->ticket == number) body(*present, arguments...);
            });
        };
    }

    void start(const FileURL& folder) {
        ++ticket;
        awaited = 0;
        url = folder;
        try {
            watch = FolderWatch(
                folder, pace,
                {.begun =
                     onMain([](Desk& desk, std::uint64_t number, std::expected<void, POSIXFailure> begun) {
                         if (number >= desk.awaited) desk.tellAnswer(begun);
                     }),
                 .changed = onMain([](Desk& desk) { desk.handler(Event::contentsChanged); }),
                 .gone = onMain([](Desk& desk) { desk.handler(Event::directoryInvalidated); })});
        } catch (const std::system_error& failure) {
            stop();
            onMain([](Desk& desk, POSIXFailure why) { desk.tellAnswer(std::unexpected(why)); })(
                POSIXFailure{failure.code().value()});
        }
    }

    void tellAnswer(std::expected<void, POSIXFailure> begun) {
        if (!begun) stop();
        if (const auto told = std::exchange(answer, nullptr)) told(begun);
    }

    void stop() {
        ++ticket;
        url.reset();
        watch = FolderWatch();
    }
};

DirectoryWatcher::DirectoryWatcher(Seconds coalescingDelay, Handler handler)
    : desk_(std::make_shared<Desk>()) {
    desk_->pace.quiet = std::chrono::ceil<std::chrono::milliseconds>(coalescingDelay);
    desk_->handler = std::move(handler);
}

DirectoryWatcher::~DirectoryWatcher() {
    stop();
}

void DirectoryWatcher::watch(const FileURL& url, Answer answer) {
    desk_->answer = std::move(answer);
    if (desk_->url == url)
        desk_->awaited = desk_->watch.renew();
    else
        desk_->start(url);
}

void DirectoryWatcher::stop() {
    desk_->answer = nullptr;
    desk_->stop();
}

FolderWatch::Arming DirectoryWatcher::arming() const {
    return desk_->watch.arming();
}

} // namespace ombrel
