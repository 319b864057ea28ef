#pragma once

#include "base/FileURL.h"
#include "base/Worker.h"

#include <QObject>

#include <cstdint>
#include <functional>
#include <stop_token>
#include <vector>

namespace ombrel {

/// What some items hold together, all folders' contents included.
struct Contents {
    std::int64_t files = 0;   ///< everything that is no folder
    std::int64_t folders = 0; ///< the counted items themselves left out
    std::int64_t bytes = 0;   ///< of regular files
    std::int64_t unreadable = 0;
    bool isComplete = false;

    /// Links are not followed, and other file systems that are mounted below are not entered. `told` is
    /// called now and then with what there is so far. Blocking; gives up when it is asked to stop.
    [[nodiscard]] static Contents of(const std::vector<FileURL>& items, const std::stop_token& stop,
                                     const std::function<void(const Contents&)>& told = {});

    friend bool operator==(const Contents&, const Contents&) = default;
};

/// Counts in the background, for the main thread. Nothing of a count arrives once another was started or the
/// counter has gone.
class ContentsCount final : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    void start(std::vector<FileURL> items);
    void stop();
    /// So far; all is 0 before the first report.
    [[nodiscard]] const Contents& contents() const noexcept { return contents_; }
    [[nodiscard]] bool isCounting() const noexcept { return isCounting_; }

Q_SIGNALS:
    void changed();

private:
    void take(std::uint64_t ticket, const Contents& contents, bool isLast);

    Contents contents_;
    bool isCounting_ = false;
    std::uint64_t ticket_ = 0;
    Worker worker_;
};

} // namespace ombrel
