#pragma once

#include "base/FileURL.h"
#include "base/Worker.h"
#include "browser/ItemArrangement.h"
#include "listing/DirectoryError.h"

#include <QObject>

#include <cstdint>
#include <optional>

namespace ombrel {

/// The subfolders of one folder, for the list that a crumb opens. They are read on a worker, sorted by name,
/// and arrive whole. Main thread only.
class CrumbChildren final : public QObject {
    Q_OBJECT

public:
    enum class State : std::uint8_t { reading, ready, failed };

    explicit CrumbChildren(QObject* parent = nullptr);

    /// Begins to read, in place of what was read before.
    void read(const FileURL& folder, const ItemFilter& filter);

    [[nodiscard]] State state() const noexcept { return state_; }
    /// Folders and links to folders that the filter accepts; empty unless `ready`.
    [[nodiscard]] const FileItemList& folders() const noexcept { return folders_; }
    /// Only for `failed`.
    [[nodiscard]] DirectoryError error() const noexcept { return *error_; }

Q_SIGNALS:
    void changed();

private:
    struct Found;
    void take(Found found);

    State state_ = State::reading;
    FileItemList folders_;
    std::optional<DirectoryError> error_;
    std::uint64_t ticket_ = 0;
    Worker reader_;
};

} // namespace ombrel
