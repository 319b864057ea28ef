#pragma once

#include "base/POSIXFailure.h"
#include "listing/StoreFile.h"

#include <QJsonObject>

#include <cstdint>
#include <expected>
#include <functional>
#include <span>

namespace ombrel {

/// A JSON object (RFC 8259) in a file that people may read and edit and that several processes change. All
/// calls block; any thread.
class SettingsFile {
public:
    enum class Fault : std::uint8_t {
        unreadable, ///< it is there and cannot be read, so it is not written either
        damaged,    ///< its contents are no JSON object
        unwritable, ///< the change did not reach the disk; the file is as it was
    };
    struct Failure {
        Fault fault;
        POSIXFailure reason = {};
    };

    /// Changes the members it is about and leaves the others alone, whatever they are.
    using Edit = std::function<void(QJsonObject&)>;

    explicit SettingsFile(FileURL url) : file_(std::move(url)) {}

    /// "$XDG_CONFIG_HOME/HalvaneOmbrel/settings.json".
    [[nodiscard]] static SettingsFile standard();

    [[nodiscard]] const FileURL& url() const noexcept { return file_.url(); }

    /// Empty when there is no file.
    [[nodiscard]] std::expected<QJsonObject, Failure> read() const;

    /// Applies `edits` in order to what the file holds now, not to what was read earlier, while no other
    /// process does; answers with the result. A damaged file is set aside first. Nothing is written when
    /// nothing differs.
    [[nodiscard]] std::expected<QJsonObject, Failure> change(std::span<const Edit> edits) const;

private:
    StoreFile file_;
};

} // namespace ombrel
