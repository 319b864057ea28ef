#include "browser/ContentsCount.h"

#include "base/MainThread.h"
#include "listing/POSIX.h"

#include <QPointer>

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <system_error>
#include <utility>

namespace ombrel {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds betweenReports(150);

class Walk {
public:
    Walk(const std::stop_token& stop, const std::function<void(const Contents&)>& told)
        : stop_(&stop), told_(&told) {}

    void item(const FileURL& url) {
        const auto status = POSIX::lstat(url);
        if (!status) {
            ++contents_.unreadable;
            return;
        }
        if (!status->isDirectory()) return add(*status);
        mount_ = status->mountID;
        folders_.push_back(url);
        while (!folders_.empty() && !stop_->stop_requested()) {
            const FileURL next = std::move(folders_.back());
            folders_.pop_back();
            folder(next);
        }
    }
    [[nodiscard]] Contents finish() {
        contents_.isComplete = !stop_->stop_requested();
        return contents_;
    }

private:
    void add(const FileStatus& status) {
        ++contents_.files;
        if (status.isRegular()) contents_.bytes += status.size;
    }

    void folder(const FileURL& url) {
        auto stream = POSIX::openDirectory(url, POSIX::Links::refuse);
        if (!stream) {
            ++contents_.unreadable;
            return;
        }
        while (!stop_->stop_requested()) {
            const auto entry = POSIX::readEntry(*stream);
            if (!entry) ++contents_.unreadable;
            if (!entry || !*entry) return;
            look(url, *stream, **entry);
            report();
        }
    }

    void look(const FileURL& parent, const DirectoryStream& stream, const POSIX::DirectoryEntry& entry) {
        const auto status = POSIX::lstat(POSIX::Place{stream.fd(), entry.name.data()});
        if (!status) {
            ++contents_.unreadable;
            return;
        }
        if (!status->isDirectory()) return add(*status);
        ++contents_.folders;
        if (status->mountID == mount_)
            folders_.push_back(parent.appending(entry.name, FileURL::Mark::directory));
    }

    void report() {
        if (!*told_ || Clock::now() - reported_ < betweenReports) return;
        reported_ = Clock::now();
        (*told_)(contents_);
    }

    const std::stop_token* stop_;
    const std::function<void(const Contents&)>* told_;
    Contents contents_;
    std::vector<FileURL> folders_; // still to be read
    std::uint64_t mount_ = 0;
    Clock::time_point reported_ = Clock::now();
};

} // namespace

Contents Contents::of(const std::vector<FileURL>& items, const std::stop_token& stop,
                      const std::function<void(const Contents&)>& told) {
    Walk walk(stop, told);
    for (const auto& item : items)
        walk.item(item);
    return walk.finish();
}

void ContentsCount::start(std::vector<FileURL> items) {
    const std::uint64_t ticket = ++ticket_;
    contents_ = {};
    isCounting_ = true;
    try {
        worker_ = Worker("ombrel-count", [self = QPointer(this), ticket,
                                          items = std::move(items)](const std::stop_token& stop) {
            const auto tell = [&](const Contents& contents, bool isLast) {
                MainThread::post([self, ticket, contents, isLast] {
                    if (self) self->take(ticket, contents, isLast);
                });
            };
            const auto all = Contents::of(items, stop, [&](const Contents& some) { tell(some, false); });
            tell(all, true);
        });
    } catch (const std::system_error&) {
        // What there is stays "at least" nothing.
        isCounting_ = false;
    }
    Q_EMIT changed();
}

void ContentsCount::stop() {
    ++ticket_;
    worker_ = Worker();
    isCounting_ = false;
}

void ContentsCount::take(std::uint64_t ticket, const Contents& contents, bool isLast) {
    if (ticket != ticket_) return;
    contents_ = contents;
    isCounting_ = !isLast;
    Q_EMIT changed();
}

} // namespace ombrel
