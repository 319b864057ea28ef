#pragma once

#include "listing/StoreFile.h"
#include "services/BookmarkStore.h"

#include <vector>

namespace ombrel {

/// The records in a binary property list: an array of dictionaries with "id" (string, an upper-case UUID),
/// "bookmark" (data), "displayName" (string) and "addedAt" (date). Other members of a dictionary are kept.
///
/// Saving changes what differs from what was last loaded or saved here: records that another program added
/// meanwhile stay, and those that it removed stay away. A file that is damaged is set aside before a new one
/// is written; one that cannot be read is left alone, and saving fails.
class FileBookmarkStore final : public BookmarkStore {
public:
    explicit FileBookmarkStore(FileURL fileURL = standardURL()) : file_(std::move(fileURL)) {}

    /// "$XDG_DATA_HOME/HalvaneOmbrel/Locations.plist".
    [[nodiscard]] static FileURL standardURL();

    [[nodiscard]] const FileURL& fileURL() const noexcept { return file_.url(); }

    [[nodiscard]] std::expected<std::vector<BookmarkRecord>, Failure> load() override;
    [[nodiscard]] std::expected<void, Failure> save(const std::vector<BookmarkRecord>& records) override;

private:
    StoreFile file_;
    std::vector<BookmarkRecord> known_; // as last loaded or saved
};

} // namespace ombrel
