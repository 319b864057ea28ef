#include "browser/ItemSuccession.h"

#include "browser/NameIndex.h"
#include "listing/FileStatus.h"

#include <map>
#include <tuple>

namespace ombrel {
namespace {

bool holds(const FileItemList& list, ItemRef ref) noexcept {
    const auto& blocks = *list.blocks();
    const std::size_t block = ref >> ItemBlock::slotBits;
    return block < blocks.size() && (ref & (ItemBlock::capacity - 1)) < blocks[block]->records.size();
}

/// What stays with an entry through a rename. Without a time of birth a reused inode would look like a
/// rename.
using Birth = std::tuple<FileIdentity, FileTime>;

std::optional<Birth> birthOf(FileItemView item) {
    const auto identity = item.identity();
    const auto born = item.creationDate();
    if (!identity || !born.hasValue()) return std::nullopt;
    return Birth{*identity, born.value()};
}

} // namespace

ItemSuccession::ItemSuccession(const FileItemList& before, const FileItemList& after)
    : successors_(before.blocks()->size() * ItemBlock::capacity, gone) {
    const ItemSet old = ItemSet::of(before), fresh = ItemSet::of(after);

    // A folder that did not change is read in the same order again.
    std::vector<ItemRef> departed;
    ItemSet arrived = fresh;
    old.forEach([&](ItemRef ref) {
        if (holds(after, ref) && fresh.contains(ref) && before.view(ref).name() == after.view(ref).name()) {
            successors_[ref] = ref;
            arrived.erase(ref);
        } else {
            departed.push_back(ref);
        }
    });
    if (departed.empty()) return;

    std::vector<ItemRef> candidates;
    arrived.forEach([&](ItemRef ref) { candidates.push_back(ref); });
    const NameIndex names(after, candidates);
    std::map<Birth, std::vector<ItemRef>> vanished;
    for (const ItemRef ref : departed) {
        if (const auto found = names.find(before.view(ref).name()))
            successors_[ref] = *found;
        else if (const auto birth = birthOf(before.view(ref)))
            vanished[*birth].push_back(ref);
    }
    if (vanished.empty()) return;

    std::map<Birth, std::optional<ItemRef>> single; // nothing when there are several
    fresh.forEach([&](ItemRef ref) {
        const auto birth = birthOf(after.view(ref));
        if (!birth || !vanished.contains(*birth)) return;
        const auto [place, isFirst] = single.try_emplace(*birth, ref);
        if (!isFirst) place->second.reset();
    });
    for (const auto& [birth, successor] : single)
        if (successor)
            for (const ItemRef ref : vanished[birth])
                successors_[ref] = *successor;
}

ItemSet ItemSuccession::successors(const ItemSet& before) const {
    ItemSet after;
    before.forEach([&](ItemRef ref) {
        if (const auto next = successor(ref)) after.insert(*next);
    });
    return after;
}

} // namespace ombrel
