#pragma once

#include "base/FileURL.h"
#include "base/RawValue.h"
#include "listing/FileReference.h"
#include "operations/FolderRecord.h"
#include "operations/ItemStamp.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace ombrel {

/// A file operation that was done, as the undo history keeps it: what it is called, and what undoes it. Plain
/// values; any thread.
struct FileUndoStep {
    /// The operation that the step undoes, for the menu.
    enum class Kind : std::uint8_t { copy, move, rename, delete_, new_ };

    /// An item that has been somewhere else.
    struct Moved {
        FileReference item; ///< as it is now
        FileURL original;   ///< where it was before
        std::optional<ItemStamp> stamp = std::nullopt;
    };
    /// An item that was not there before.
    struct Made {
        FileReference item;
        /// Without one nobody can tell whether it was changed since.
        std::optional<ItemStamp> stamp = std::nullopt;

        Made(FileReference reference, std::optional<ItemStamp> itsStamp = std::nullopt)
            : item(std::move(reference)), stamp(itsStamp) {}
    };

    struct Action;
    struct MoveBack {
        std::vector<Moved> items;
    };
    struct Trash {
        std::vector<Made> items;
    };
    /// Out of the trash.
    struct PutBack {
        std::vector<Moved> items;
    };
    struct RenameBack {
        FileReference item;
        std::string name; ///< bytes
        std::optional<ItemStamp> stamp = std::nullopt;
    };
    /// Folders whose contents were moved away and which then were removed are made again, the last one first.
    struct MakeFolders {
        std::vector<FolderRecord> folders;
    };
    /// The opposite, as far as they are empty.
    struct RemoveFolders {
        std::vector<FolderRecord> folders;
    };
    /// In the order in which things were done: carried out from the last to the first.
    struct Sequence {
        std::vector<Action> actions;
    };

    struct Action {
        using Any = std::variant<MoveBack, Trash, PutBack, RenameBack, MakeFolders, RemoveFolders, Sequence>;
        Any what = Sequence{};

        Action() = default;
        template <typename One>
            requires std::constructible_from<Any, One>
        Action(One one) : what(std::move(one)) {}

        /// Whether there is nothing to do: no items, or a sequence of such.
        [[nodiscard]] bool isEmpty() const;
    };

    Kind kind = Kind::copy;
    Action action = {};

    /// Calls `use` with each item that the action is about, and its stamp.
    static void eachItem(Action& action,
                         const std::function<void(FileReference&, const std::optional<ItemStamp>&)>& use);
    static void eachItem(const Action& action, const std::function<void(const FileReference&)>& use);
};

template <>
struct RawValues<FileUndoStep::Kind> {
    static constexpr std::string_view names[] = {"copy", "move", "rename", "delete", "new"};
};

} // namespace ombrel
