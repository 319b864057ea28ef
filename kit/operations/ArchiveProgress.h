#pragma once

#include "base/FileURL.h"
#include "operations/ArchiveProgressSource.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace ombrel {

/// The progress of a tool that names each entry, against totals that are known before it starts.
///
/// Bytes are those of the files outside the archive. Those of the current file come from what the tool says
/// while it works at it (zip a dot for each megabyte, bsdtar when it is asked), or else from the file itself
/// while it grows.
class ArchiveProgress final : public ArchiveProgressSource {
public:
    /// `zip`: "  adding: NAME (deflated 9%)", written once the entry is done, with dots before the
    /// parenthesis. `ditto`: bsdtar's "a NAME" and "x NAME", begun when the entry is; the lines of ditto
    /// itself ("copying symlink NAME", "linked NAME", "NAME: 12 bytes for ...") count one entry each.
    enum class Format : std::uint8_t { ditto, zip };
    struct Totals {
        std::int64_t items = 0;
        std::int64_t bytes = 0;
    };
    /// The bytes there are of the entry of that name (relative to `directory`, bytes); 0 where it is not
    /// known.
    using Written = std::function<std::int64_t(const FileURL& entry)>;

    ArchiveProgress(Format format, Totals totals, FileURL directory, Written written);

    [[nodiscard]] OperationProgress progress() override;
    bool consume(std::string_view line) override;
    void partial(std::string_view text) override;
    void finish() override;
    [[nodiscard]] int signalToAsk() const override;

    /// Entries that the tool is done with.
    [[nodiscard]] std::int64_t doneItems() const noexcept { return doneItems_; }

private:
    bool consumeZip(std::string_view line);
    bool consumeEntry(std::string_view line);
    bool consumeAnswer(std::string_view line);
    void nameEntry(std::string_view line);
    void begin(std::string_view path);
    void end();
    [[nodiscard]] std::int64_t writtenOf(const std::string& path) const;

    const Format format_;
    const Totals totals_;
    const FileURL directory_;
    const Written written_;
    std::int64_t doneItems_ = 0;
    std::int64_t doneBytes_ = 0;             // of the entries that are done
    std::optional<std::string> currentName_; // bytes of the path of the entry at work
    std::int64_t inFile_ = 0;                // bytes of the entry at work, as far as the tool tells
    std::int64_t reported_ = 0;              // the most that was ever answered
    bool isTentative_ = false;               // the line that names the entry is not complete
    bool isAdding_ = false;                  // bsdtar makes the archive rather than reading it
};

} // namespace ombrel
