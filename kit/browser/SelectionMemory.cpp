#include "browser/SelectionMemory.h"

#include "base/Worker.h"

#include <string_view>
#include <system_error>
#include <unordered_set>
#include <utility>

namespace ombrel {
namespace {

/// Up to here writing names down costs the main thread less than a worker would.
constexpr std::size_t fewNames = 500;

} // namespace

std::shared_ptr<const SelectionMemory> SelectionMemory::of(FileSelection selection) {
    const std::size_t count = selection.count();
    const std::shared_ptr<const SelectionMemory> memory(new SelectionMemory(std::move(selection)));
    if (count <= fewNames) {
        memory->writeDown();
        return memory;
    }
    try {
        Worker("ombrel-memory", [memory](const std::stop_token&) { memory->writeDown(); }).detach();
    } catch (const std::system_error&) {
        // It is written down when it is first asked.
    }
    return memory;
}

std::shared_ptr<const SelectionMemory> SelectionMemory::of(const std::vector<FileURL>& urls,
                                                           const FileURL& folder) {
    std::vector<std::string> names;
    for (const FileURL& url : urls)
        if (!url.isRoot() && url.parent() == folder) names.emplace_back(url.name());
    return std::shared_ptr<const SelectionMemory>(new SelectionMemory(std::move(names)));
}

void SelectionMemory::writeDown() const {
    const std::scoped_lock lock(mutex_);
    names_.reserve(unwritten_.count());
    unwritten_.set().forEach([&](ItemRef ref) { names_.emplace_back(unwritten_.list().view(ref).name()); });
    unwritten_ = {};
}

ItemSet SelectionMemory::find(const FileItemList& items) const {
    ItemSet found;
    if (isEmpty_) return found;
    writeDown();
    const std::scoped_lock lock(mutex_);
    const std::unordered_set<std::string_view> wanted(names_.begin(), names_.end());
    for (const ItemRef ref : items.order())
        if (wanted.contains(items.view(ref).name())) found.insert(ref);
    return found;
}

} // namespace ombrel
