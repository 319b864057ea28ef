#include "listing/FileItemList.h"

namespace ombrel {
namespace {

const std::shared_ptr<const FileItemList::Blocks>& noBlocks() {
    static const auto blocks = std::make_shared<const FileItemList::Blocks>();
    return blocks;
}

const std::shared_ptr<const std::vector<ItemRef>>& noOrder() {
    static const auto order = std::make_shared<const std::vector<ItemRef>>();
    return order;
}

} // namespace

FileItemList::FileItemList() : blocks_(noBlocks()), order_(noOrder()) {}

FileItemList::FileItemList(std::shared_ptr<const Blocks> blocks, std::vector<ItemRef> order)
    : blocks_(std::move(blocks)), order_(std::make_shared<const std::vector<ItemRef>>(std::move(order))) {}

FileItem FileItemList::item(std::size_t row) const {
    const ItemRef ref = (*order_)[row];
    return {(*blocks_)[ref >> ItemBlock::slotBits], ref & (ItemBlock::capacity - 1)};
}

} // namespace ombrel
