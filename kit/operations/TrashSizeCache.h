#pragma once

#include "listing/POSIX.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

namespace ombrel {

/// The file "directorysizes" of a trash: how much room its folders take, so that nobody has to count them
/// again (the desktop's trash convention 1.0). An entry counts only while the folder's record has the time it
/// had then. It is a cache: two programs that write at once lose nothing that cannot be counted again.
class TrashSizeCache {
public:
    /// Reads the file in the trash that `root` stands for; empty when there is none.
    [[nodiscard]] static TrashSizeCache load(int root);

    /// Bytes on the medium. `recorded` is the modification time of the item's record, in whole seconds.
    [[nodiscard]] std::optional<std::int64_t> find(const std::string& name, std::int64_t recorded) const;
    void set(const std::string& name, std::int64_t recorded, std::int64_t bytes);

    /// Drops what the predicate does not hold for.
    void keepOnly(const std::function<bool(const std::string&)>& isThere);
    /// Writes the file anew, through another name, when something has changed. Failures are ignored.
    void save(int root);

private:
    struct Entry {
        std::int64_t bytes;
        std::int64_t recorded;
    };
    std::map<std::string, Entry> entries_;
    bool isChanged_ = false;
};

/// How much room a folder and everything in it takes on the medium, in bytes; other mounts in it do not
/// count. Nothing when it cannot be read as a whole or counting was stopped.
[[nodiscard]] std::optional<std::int64_t> roomTakenBy(POSIX::Place folder, const std::stop_token& stop);

} // namespace ombrel
