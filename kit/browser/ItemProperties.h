#pragma once

#include "base/Worker.h"
#include "browser/ContentsCount.h"
#include "browser/FileSelection.h"
#include "browser/ItemValues.h"
#include "listing/VolumeInfo.h"

#include <QObject>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

namespace ombrel {

/// The values that the properties of one item, of several, or of a volume show. Read once, on a worker, with
/// the contents of folders counted after that. Main thread only; all work ends with it.
class ItemProperties final : public QObject {
    Q_OBJECT

public:
    /// The selected items of a pane, one location, or a volume.
    using Subject = std::variant<FileSelection, FileURL, VolumeInfo>;
    /// Whether both are about the same things, even when the folder was read again in between. Of two large
    /// selections only those of one listing are.
    [[nodiscard]] static bool areSame(const Subject& a, const Subject& b);

    static constexpr std::size_t mostPreviews = 3;

    /// Reading begins at once. `subject` is not empty.
    explicit ItemProperties(Subject subject, QObject* parent = nullptr);

    [[nodiscard]] const Subject& subject() const noexcept { return subject_; }
    /// False until the values have been read.
    [[nodiscard]] bool isRead() const noexcept { return isRead_; }
    [[nodiscard]] std::size_t count() const noexcept { return count_; }
    /// The item, or the first ones of several; none of a volume.
    [[nodiscard]] const std::vector<FileItem>& previews() const noexcept { return previews_; }
    /// How many of several items are folders; links are none.
    [[nodiscard]] std::int64_t folderCount() const noexcept { return folderCount_; }
    /// Of the one item.
    [[nodiscard]] const ItemValues& facts() const noexcept { return facts_; }
    /// The folder that several items all are in, if there is one.
    [[nodiscard]] const std::optional<FileURL>& commonFolder() const noexcept { return commonFolder_; }
    /// What the items hold; of one file nothing is counted.
    [[nodiscard]] const ContentsCount& contents() const noexcept { return contents_; }
    [[nodiscard]] const VolumeInfo* volume() const noexcept { return std::get_if<VolumeInfo>(&subject_); }

Q_SIGNALS:
    void changed();

private:
    struct Found;
    void take(Found found);

    Subject subject_;
    bool isRead_ = false;
    std::size_t count_ = 1;
    std::int64_t folderCount_ = 0;
    std::vector<FileItem> previews_;
    ItemValues facts_;
    std::optional<FileURL> commonFolder_;
    ContentsCount contents_;
    Worker reader_;
};

} // namespace ombrel
