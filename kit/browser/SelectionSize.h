#pragma once

#include "base/Worker.h"
#include "browser/BrowserModel.h"

#include <QObject>

#include <cstdint>
#include <optional>

namespace ombrel {

/// How many bytes the selected files of a pane take together. A large selection is added up on a worker. Main
/// thread only.
class SelectionSize final : public QObject {
    Q_OBJECT

public:
    /// `model` must outlive it.
    explicit SelectionSize(BrowserModel& model, QObject* parent = nullptr);

    /// Nothing while it is being added up, and when no selected item has a size that counts (folders have
    /// none).
    [[nodiscard]] std::optional<std::int64_t> bytes() const noexcept { return bytes_; }

Q_SIGNALS:
    void changed();

private:
    void recount();
    void publish(std::optional<std::int64_t> bytes);

    BrowserModel* model_;
    std::optional<std::int64_t> bytes_;
    Worker sum_;
    std::uint64_t ticket_ = 0; ///< of the newest sum; older answers are dropped
};

} // namespace ombrel
