#pragma once

#include "base/Text.h"
#include "listing/FileItem.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ombrel {

class AppSettings;

/// The rules by which one item is renamed in place, from the text that the editor begins with to the name
/// that is given: nothing but text, neither widget nor disk. A plain value; any thread.
///
/// Texts are UTF-8 and read as people read names; names are bytes. What a text cannot show of a name (bytes
/// that are not UTF-8, control characters) stays in it wherever the user has not touched it.
class RenameRules {
public:
    enum class Shape : std::uint8_t { file, folder };

    /// What an edited text comes to.
    struct Verdict {
        enum class Case : std::uint8_t {
            nothing, ///< it is the name the item has, or none at all
            refused, ///< see `reason`
            rename,  ///< to `name`
        };
        Case which = Case::nothing;
        std::string name = {};
        std::optional<Text> reason = std::nullopt;
    };

    /// `shown` is the part of `name`, from its start, that the user sees: the rest is a hidden ending, which
    /// stays out of the editor and is put back.
    RenameRules(std::string_view name, std::string_view shown, Shape shape);
    [[nodiscard]] static RenameRules of(FileItemView item, const AppSettings& settings);

    /// What the editor begins with.
    [[nodiscard]] const std::string& text() const noexcept { return text_; }
    /// How many bytes of `text`, from its start, are selected: all but the ending; everything for folders and
    /// for names that are nothing else. An archive's double ending (".tar.gz") counts as one.
    [[nodiscard]] std::size_t stemLength(std::string_view text) const;

    /// Whether something typed or pasted may stand in a name at all; a slash may not.
    [[nodiscard]] static bool accepts(std::string_view typed) noexcept;
    [[nodiscard]] Verdict judge(std::string_view text) const;
    /// What the user may want to know although it forbids nothing: that Windows cannot use the name.
    [[nodiscard]] std::optional<Text> hint(std::string_view text) const;

private:
    [[nodiscard]] std::string nameOf(std::string_view text) const;

    std::string name_;
    std::string ending_; // hidden
    Shape shape_;
    std::string text_;
};

} // namespace ombrel
