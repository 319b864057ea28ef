#include "operations/FileUndoStep.h"

#include <algorithm>
#include <type_traits>

namespace ombrel {
namespace {

template <typename One>
constexpr bool holdsFolders =
    std::is_same_v<One, FileUndoStep::MakeFolders> || std::is_same_v<One, FileUndoStep::RemoveFolders>;

template <typename Action, typename Use>
void visitItems(Action& action, const Use& use) {
    std::visit(
        [&]<typename One>(One& one) {
            using Plain = std::remove_const_t<One>;
            if constexpr (std::is_same_v<Plain, FileUndoStep::RenameBack>)
                use(one.item, one.stamp);
            else if constexpr (std::is_same_v<Plain, FileUndoStep::Sequence>)
                for (auto& each : one.actions)
                    visitItems(each, use);
            else if constexpr (!holdsFolders<Plain>)
                for (auto& item : one.items)
                    use(item.item, item.stamp);
        },
        action.what);
}

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
    visitItems(action, use);
}

void FileUndoStep::eachItem(const Action& action, const std::function<void(const FileReference&)>& use) {
    visitItems(action, [&](const FileReference& item, const std::optional<ItemStamp>&) { use(item); });
}

} // namespace ombrel
