#pragma once

#include "base/FileURL.h"
#include "listing/FileReference.h"
#include "services/ClipboardFormats.h"
#include "services/Pasteboard.h"

#include <QObject>

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace ombrel {

/// The one place where files are put on the clipboard and taken from it. Main thread only.
///
/// A cut is a marking: nothing on disk changes until it is pasted, and it ends as soon as anyone writes
/// something else. That it is still ours shows by a token among what was offered, because clipboard managers
/// take contents over without changing them.
class ClipboardService final : public QObject {
    Q_OBJECT

public:
    /// What a paste would do now.
    struct PasteIntent {
        enum class Case : std::uint8_t { copy, move, none };

        Case which = Case::none;
        std::vector<FileURL> urls = {};        ///< for `copy`
        std::vector<FileReference> items = {}; ///< for `move`: what was cut in this program

        friend bool operator==(const PasteIntent&, const PasteIntent&) = default;
    };

    /// `pasteboard` must outlive the service.
    explicit ClipboardService(Pasteboard& pasteboard, QObject* parent = nullptr);

    /// Writes the items; an empty list changes nothing. A copy ends a cut.
    void copy(const std::vector<FileReference>& items);
    void cut(const std::vector<FileReference>& items);
    /// Writes the paths as text, one a line; ends a cut. An empty list changes nothing.
    void copyPaths(const std::vector<FileURL>& urls);
    void copyText(const std::vector<std::string>& lines);

    /// The items that are marked as cut, which views show faded.
    [[nodiscard]] const std::unordered_set<FileURL>& cutURLs() const noexcept { return cutURLs_; }

    [[nodiscard]] PasteIntent currentIntent();
    /// The same, and ends a cut that is no move any more.
    PasteIntent refresh();
    /// The files on the clipboard, whoever wrote them, in their order.
    [[nodiscard]] const std::vector<FileURL>& fileURLs();

    /// Ends the cut if anyone has written since.
    void revalidateCut();
    /// The user gave the cut up: what it put on the clipboard goes too, so that it does not stay there as a
    /// copy.
    void cancelCut();
    /// The cut of `moved` has been pasted, which can be done once: what it put on the clipboard goes. A cut
    /// that was made meanwhile stays.
    void finishMove(const std::vector<FileReference>& moved);
    /// Ends the marking alone.
    void clearCut();

Q_SIGNALS:
    void cutURLsChanged();
    /// `currentIntent` may answer otherwise than before.
    void intentChanged();

private:
    struct CutState {
        std::vector<FileReference> items;
        std::int64_t changeCount;
        std::string token;
    };

    [[nodiscard]] std::optional<std::string> write(const std::vector<FileReference>& items,
                                                   ClipboardFormats::Marking marking);
    void replaceContents(std::vector<Pasteboard::Entry> entries);
    void noteChange();
    void noteRegained();
    /// Whether the clipboard still holds what the cut wrote.
    [[nodiscard]] bool holdsCut();

    Pasteboard& pasteboard_;
    std::optional<CutState> cut_;
    std::unordered_set<FileURL> cutURLs_;
    std::optional<std::vector<FileURL>> fileURLs_; // as read since the last change
    std::int64_t changeCount_ = 0;                 // of all writes that were told, our own included
    bool isWriting_ = false;
};

} // namespace ombrel
