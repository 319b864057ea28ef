#pragma once

#include "browser/ListingFeed.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace ombrel::testing {

/// Real listings that go on only when told: each folder is read in small batches, and a snapshot is handed
/// out for each `allow`ed step. So a test sees a listing grow at its own pace.
class SteppedListings {
public:
    explicit SteppedListings(std::int64_t firstBatchSize) : shared_(std::make_shared<Shared>()) {
        shared_->firstBatchSize = firstBatchSize;
    }

    /// Lets the listings that are under way or still to come hand out `count` snapshots more.
    void allow(int count) {
        const std::scoped_lock lock(shared_->mutex);
        shared_->allowed += count;
        shared_->changed.notify_all();
    }
    void allowAll() { allow(1'000'000); }

    /// From now on listings end with `error` after their last partial snapshot.
    void failWith(DirectoryError error) {
        const std::scoped_lock lock(shared_->mutex);
        shared_->error = error;
    }

    [[nodiscard]] ListingFeed::Source source() const {
        return [shared = shared_](const DirectoryRequest& request) {
            return DirectoryProvider::Stream("test-listing",
                                             [shared, request](const auto& sink, std::stop_token stop) {
                                                 return produce(*shared, request, sink, stop);
                                             });
        };
    }

private:
    struct Shared {
        std::mutex mutex; // guards everything below
        std::condition_variable_any changed;
        std::int64_t firstBatchSize = 1;
        int allowed = 0;
        std::optional<DirectoryError> error;
    };

    static DirectoryProvider::Ending produce(Shared& shared, DirectoryRequest request,
                                             const DirectoryProvider::Stream::Sink& sink,
                                             const std::stop_token& stop) {
        std::vector<DirectorySnapshot> snapshots;
        const bool isWhole = request.firstBatchSize > DirectoryProvider::largestBatch;
        if (!isWhole) request.firstBatchSize = shared.firstBatchSize;
        const auto ending = DirectoryProvider().read(
            request, [&](DirectorySnapshot snapshot) { snapshots.push_back(std::move(snapshot)); }, stop);
        if (!ending) return ending;
        for (auto& snapshot : snapshots) {
            std::unique_lock lock(shared.mutex);
            if (!shared.changed.wait(lock, stop, [&] { return shared.allowed > 0; }))
                return std::unexpected(Stopped<DirectoryError>::cancelled());
            if (snapshot.isComplete && shared.error) return std::unexpected(*shared.error);
            --shared.allowed;
            sink.yield(std::move(snapshot));
        }
        return {};
    }

    std::shared_ptr<Shared> shared_;
};

} // namespace ombrel::testing
