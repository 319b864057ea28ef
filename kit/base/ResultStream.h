#pragma once

#include "base/Stopped.h"
#include "base/Worker.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <expected>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <utility>

namespace ombrel {

/// Values that a worker makes one after another, taken one after another by a consumer on another thread.
///
/// The stream buffers without bound and keeps the order. It ends well, or with an error of type `E`, or
/// cancelled. Destroying the stream asks the producer to stop; what it still makes is dropped. One consumer
/// at a time.
template <typename T, typename E>
class ResultStream {
    struct Channel;

public:
    using Ending = std::expected<void, Stopped<E>>;

    /// What the producer writes to. Shared with the producer's thread; keeps nothing of the consumer alive.
    class Sink {
    public:
        void yield(T value) const {
            const std::scoped_lock lock(channel_->mutex);
            if (channel_->isAbandoned) return;
            channel_->values.push_back(std::move(value));
            channel_->changed.notify_one();
        }

    private:
        friend class ResultStream;
        explicit Sink(std::shared_ptr<Channel> channel) : channel_(std::move(channel)) {}
        std::shared_ptr<Channel> channel_;
    };

    /// Starts `produce(sink, stop) -> Ending` on a worker called `name`. Throws as `Worker` does.
    template <typename Produce>
    ResultStream(const char* name, Produce produce) : channel_(std::make_shared<Channel>()) {
        worker_ =
            Worker(name, [channel = channel_, produce = std::move(produce)](std::stop_token stop) mutable {
                channel->finish(produce(Sink(channel), std::move(stop)));
            });
    }
    /// A stream that has ended before it began.
    [[nodiscard]] static ResultStream ended(Ending how) {
        ResultStream stream;
        stream.channel_->ending = std::move(how);
        return stream;
    }
    ResultStream(ResultStream&&) noexcept = default;
    ResultStream& operator=(ResultStream&&) = delete;
    ~ResultStream() {
        if (channel_) channel_->abandon();
    }

    /// The next value, waiting for it; nothing when the stream has ended well; the reason when it ended
    /// otherwise. `stop` ends the waiting with `cancelled` and leaves the stream as it is.
    [[nodiscard]] std::expected<std::optional<T>, Stopped<E>> next(std::stop_token stop = {}) {
        std::unique_lock lock(channel_->mutex);
        const bool ready = channel_->changed.wait(
            lock, stop, [&] { return !channel_->values.empty() || channel_->ending.has_value(); });
        if (!ready) return std::unexpected(Stopped<E>::cancelled());
        return channel_->take();
    }

    /// The newest value that waits, the older ones dropped; otherwise as `next`. For a consumer that shows
    /// states and must not fall behind.
    [[nodiscard]] std::expected<std::optional<T>, Stopped<E>> newest(std::stop_token stop = {}) {
        std::deque<T> outdated; // freed after the lock is
        std::unique_lock lock(channel_->mutex);
        const bool ready = channel_->changed.wait(
            lock, stop, [&] { return !channel_->values.empty() || channel_->ending.has_value(); });
        if (!ready) return std::unexpected(Stopped<E>::cancelled());
        while (channel_->values.size() > 1) {
            outdated.push_back(std::move(channel_->values.front()));
            channel_->values.pop_front();
        }
        return channel_->take();
    }

    /// Waits for something that `next` or `newest` would answer with, but not beyond `until`. False when
    /// nothing came.
    [[nodiscard]] bool waitUntil(std::chrono::steady_clock::time_point until, std::stop_token stop = {}) {
        std::unique_lock lock(channel_->mutex);
        return channel_->changed.wait_until(
            lock, stop, until, [&] { return !channel_->values.empty() || channel_->ending.has_value(); });
    }

private:
    ResultStream() : channel_(std::make_shared<Channel>()) {}

    struct Channel {
        std::mutex mutex; // guards everything below
        std::condition_variable_any changed;
        std::deque<T> values;
        std::optional<Ending> ending;
        bool isAbandoned = false;

        void finish(Ending how) {
            const std::scoped_lock lock(mutex);
            ending = std::move(how);
            changed.notify_one();
        }

        void abandon() {
            std::deque<T> dropped; // freed after the lock is
            const std::scoped_lock lock(mutex);
            isAbandoned = true;
            dropped.swap(values);
        }

        std::expected<std::optional<T>, Stopped<E>> take() {
            if (values.empty()) {
                if (!*ending) return std::unexpected(ending->error());
                return std::nullopt;
            }
            std::optional<T> value(std::move(values.front()));
            values.pop_front();
            return value;
        }
    };

    std::shared_ptr<Channel> channel_;
    Worker worker_;
};

} // namespace ombrel
