#pragma once

#include "base/FileURL.h"
#include "listing/KnownFolder.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace ombrel {

/// An entry of the quick-access list: one of the known folders, wherever it stands, or any other folder.
class PinnedFolder {
public:
    PinnedFolder(KnownFolder folder) : place_(folder) {}
    PinnedFolder(FileURL folder) : place_(std::move(folder)) {}

    /// The list of someone who never changed it: the six known folders.
    [[nodiscard]] static std::vector<PinnedFolder> defaults();

    [[nodiscard]] std::optional<KnownFolder> known() const noexcept;
    [[nodiscard]] const FileURL& url(const KnownFolders& folders) const noexcept;
    /// For people: the known folder's title in the interface language, or the folder's name.
    [[nodiscard]] std::string title() const;

    /// "known:" and the raw value, or the path as `PathText` has it. UTF-8.
    [[nodiscard]] std::string stored() const;
    /// Nothing for text of any other form.
    [[nodiscard]] static std::optional<PinnedFolder> fromStored(std::string_view text);

    friend bool operator==(const PinnedFolder&, const PinnedFolder&) = default;

private:
    std::variant<KnownFolder, FileURL> place_;
};

/// A location as text for files that hold nothing but Unicode: its path, or its "file:" URI where the path is
/// not UTF-8.
namespace PathText {

[[nodiscard]] std::string of(const FileURL& url);
/// From either form; nothing for other text.
[[nodiscard]] std::optional<FileURL> parse(std::string_view text);

} // namespace PathText
} // namespace ombrel
