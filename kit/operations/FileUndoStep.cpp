#include "operations/FileUndoStep.h"

#include <algorithm>
#include <type_traits>

namespace ombrel {
namespace {

template <typename One>
constexpr bool holdsFolders =
    std::is_same_v<One, FileUndoStep::MakeFolders> || std::is_same_v<One, FileUndoStep::RemoveFolders>;

} // namespace

bool FileUndoStep::Action::isEmpty() const {
    return std::visit(
        []<typename One>(const One& one) {
            if constexpr (std::is_same_v<One, RenameBack>)
                return false;
            else if constexpr (std::is_same_v<One, Sequence>)
                return std::ranges::all_of(one.actions, &Action::isEmpty);
            else if constexpr (holdsFolders<One>)
                return one.folders.empty();
            else
                return one.items.empty();
        },
        what);
}

void FileUndoStep::eachItem(Action& action,
                            const std::function<void(FileReference&, const std::optional<ItemStamp>&)>& use) {
    std::visit(
        [&]<typename One>(One& one) {
            if constexpr (std::is_same_v<One, RenameBack>)
                use(one.item, one.stamp);
            else if constexpr (std::is_same_v<One, Sequence>)
                for (auto& each : one.actions)
                    eachItem(each, use);
            else if constexpr (!holdsFolders<One>)
                for (auto& item : one.items)
                    use(item.item, item.stamp);
        },
        action.what);
}

} // namespace ombrel
