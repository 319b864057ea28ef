#include "browser/SelectionMemory.h"

#include "base/Worker.h"

#include <algorithm>
#include <string_view>
#include <system_error>
#include <unordered_map>
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

std::shared_ptr<const SelectionMemory> SelectionMemory::of(std::vector<FileURL> urls) {
    std::ranges::sort(urls);
    const auto again = std::ranges::unique(urls);
    urls.erase(again.begin(), again.end());
    if (!urls.empty() && urls.front().isRoot()) urls.erase(urls.begin());
    return std::shared_ptr<const SelectionMemory>(new SelectionMemory(urls));
}

SelectionMemory::SelectionMemory(const std::vector<FileURL>& urls) : count_(urls.size()) {
    std::unordered_map<FileURL, std::vector<std::string>> groups;
    for (const FileURL& url : urls)
        groups[url.parent()].emplace_back(url.name());
    for (auto& [folder, names] : groups)
        groups_.push_back({folder, std::move(names)});
}

void SelectionMemory::writeDown() const {
    const std::scoped_lock lock(mutex_);
    std::unordered_map<const FileURL*, std::size_t> known; // by the folders of the blocks
    unwritten_.set().forEach([&](ItemRef ref) {
        const FileItemView item = unwritten_.list().view(ref);
        const auto [place, isNew] = known.try_emplace(&item.folder(), groups_.size());
        if (isNew && !groups_.empty() && groups_.back().folder == item.folder())
            place->second = groups_.size() - 1;
        else if (isNew)
            groups_.push_back({item.folder(), {}});
        groups_[place->second].names.emplace_back(item.name());
    });
    unwritten_ = {};
}

ItemSet SelectionMemory::find(const FileItemList& items) const {
    ItemSet found;
    if (empty()) return found;
    writeDown();
    const std::scoped_lock lock(mutex_);
    using Names = std::unordered_set<std::string_view>;
    std::unordered_map<std::string_view, Names> wanted; // by the path of the folder
    for (const Group& group : groups_)
        wanted[group.folder.path()].insert(group.names.begin(), group.names.end());
    const FileURL* folder = nullptr;
    const Names* names = nullptr;
    for (const ItemRef ref : items.order()) {
        const FileItemView item = items.view(ref);
        if (folder != &item.folder()) {
            folder = &item.folder();
            const auto group = wanted.find(folder->path());
            names = group == wanted.end() ? nullptr : &group->second;
        }
        if (names && names->contains(item.name())) found.insert(ref);
    }
    return found;
}

} // namespace ombrel
