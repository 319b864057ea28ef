#pragma once

#include "base/Worker.h"
#include "browser/BrowserModel.h"
#include "browser/ContentsCount.h"
#include "browser/ItemValues.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace ombrel {

/// What the details pane says of the selection of a pane: of one item what is known and cheap to find out, of
/// several their number and size, without a selection of the folder itself.
///
/// Main thread only. Changes once the selection has been quiet for a while; the old content stays until then.
/// What has to be read follows as it comes.
class DetailsValues final : public QObject {
    Q_OBJECT

public:
    static constexpr std::size_t mostPreviews = 3;

    /// What is the same of several items; the rest is left out.
    struct Common {
        std::string type; ///< in words
        std::optional<FileURL> folder;
        std::optional<FileTime> firstModified;
        std::optional<FileTime> lastModified;

        [[nodiscard]] static Common of(const std::vector<FileItem>& items, const std::stop_token& stop);
    };

    struct Content {
        /// 0 where there is nothing to say anything about.
        std::size_t count = 0;
        /// The item, or the first ones of several.
        std::vector<FileItem> previews;
        /// Of the one item.
        ItemValues facts;
        /// How many items the one folder holds, as far as the pane would show them.
        std::optional<std::int64_t> items;
        /// Of several items, folders with all they hold.
        std::optional<std::int64_t> totalSize;
        bool isTotalKnown = false; ///< otherwise it is at least that
        /// What several items have in common.
        Common common;
    };

    /// `quiet` is that while.
    explicit DetailsValues(std::chrono::milliseconds quiet, QObject* parent = nullptr);

    /// From now on it is about `pane`; its content comes at once.
    void follow(BrowserModel& pane);
    /// While it is off nothing is read. Off at first.
    void setActive(bool active);

    [[nodiscard]] const Content& content() const noexcept { return content_; }
    [[nodiscard]] BrowserModel* pane() const noexcept { return pane_; }
    /// Whether a worker still looks at what the content is about; what it adds is not there yet.
    [[nodiscard]] bool isReading() const noexcept { return isReading_; }
    /// Whether the content stays as it is, as long as nobody does anything.
    [[nodiscard]] bool isSettled() const;

Q_SIGNALS:
    void changed();

private:
    struct Found;

    void wait();
    void load();
    void read(bool isCountedHere, std::optional<std::int64_t> counted);
    void take(std::uint64_t ticket, Found found);
    void takeContents();

    QPointer<BrowserModel> pane_;
    bool isActive_ = false;
    QTimer timer_;
    Content content_;
    std::vector<FileItem> shown_; ///< the selected items it is about; none of a large selection
    bool isReading_ = false;
    std::uint64_t ticket_ = 0; ///< of the newest reading; older answers are dropped
    Worker reader_;
    ContentsCount contents_;
};

} // namespace ombrel
