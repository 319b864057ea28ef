#pragma once

#include "listing/FileItemList.h"

#include <QString>

#include <cstddef>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

namespace ombrel {

/// The beginning of a name as somebody types it: letter case and accents do not count. Any thread.
class NamePrefix {
public:
    explicit NamePrefix(const QString& typed);

    [[nodiscard]] bool begins(std::string_view name) const;
    /// The first row from `start` on, going round at the end, whose name begins so.
    [[nodiscard]] std::optional<std::size_t> find(const FileItemList& items, std::size_t start,
                                                  const std::stop_token& stop = {}) const;

private:
    QString folded_;
    std::string ascii_; ///< the same in bytes when it is plain ASCII
};

} // namespace ombrel
