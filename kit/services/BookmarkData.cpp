#include "services/PropertyList.h"
#include "services/SystemSecurityScope.h"

#include <bit>
#include <utility>

namespace ombrel {
namespace {

using namespace PropertyList;

constexpr std::uint64_t version = 1;

// The format's numbers have no sign.
std::uint64_t unsignedOf(std::int64_t number) {
    return std::bit_cast<std::uint64_t>(number);
}

Root dictionaryOf(const FolderBookmark::Step& step) {
    Root dictionary(plist_new_dict());
    setData(dictionary.get(), "name", step.name);
    setNumber(dictionary.get(), "inode", step.inode);
    setNumber(dictionary.get(), "bornSeconds", unsignedOf(step.born.seconds));
    setNumber(dictionary.get(), "bornNanoseconds", static_cast<std::uint64_t>(step.born.nanoseconds));
    return dictionary;
}

std::optional<FolderBookmark::Step> stepOf(plist_t dictionary) {
    auto name = dataAt(dictionary, "name");
    const auto inode = numberAt(dictionary, "inode");
    const auto seconds = numberAt(dictionary, "bornSeconds");
    const auto nanoseconds = numberAt(dictionary, "bornNanoseconds");
    if (!name || name->find('/') != std::string::npos || name->find('\0') != std::string::npos)
        return std::nullopt;
    if (!inode || !seconds || !nanoseconds || *nanoseconds >= 1'000'000'000) return std::nullopt;
    FolderBookmark::Step step{*std::move(name), *inode};
    step.born.seconds = std::bit_cast<std::int64_t>(*seconds);
    step.born.nanoseconds = static_cast<decltype(step.born.nanoseconds)>(*nanoseconds);
    return step;
}

std::optional<std::vector<FolderBookmark::Step>> stepsOf(plist_t dictionary) {
    const plist_t array = plist_dict_get_item(dictionary, "steps");
    if (!array || plist_get_node_type(array) != PLIST_ARRAY) return std::nullopt;
    std::vector<FolderBookmark::Step> steps;
    for (std::uint32_t i = 0; i < plist_array_get_size(array); ++i) {
        auto step = stepOf(plist_array_get_item(array, i));
        // Only the root has no name, and it comes first.
        if (!step || step->name.empty() != (i == 0)) return std::nullopt;
        steps.push_back(*std::move(step));
    }
    return steps.empty() ? std::nullopt : std::optional(std::move(steps));
}

} // namespace

std::string BookmarkData::encoded(const FolderBookmark& bookmark) {
    const Root root(plist_new_dict());
    setNumber(root.get(), "version", version);
    setData(root.get(), "path", bookmark.path.path());
    setString(root.get(), "volumeUUID", bookmark.volume.uuid);
    setString(root.get(), "volumeType", bookmark.volume.type);
    setData(root.get(), "volumeSource", bookmark.volume.source);
    setNumber(root.get(), "volumeDevice", bookmark.volume.device);
    setData(root.get(), "volumeRoot", bookmark.root);
    const plist_t steps = plist_new_array();
    for (const auto& step : bookmark.steps)
        plist_array_append_item(steps, dictionaryOf(step).release());
    plist_dict_set_item(root.get(), "steps", steps);
    return binary(root);
}

std::optional<FolderBookmark> BookmarkData::decoded(const std::string& bytes) {
    const auto root = parse(bytes);
    if (!root || plist_get_node_type(root.get()) != PLIST_DICT || numberAt(root.get(), "version") != version)
        return std::nullopt;
    const auto path = dataAt(root.get(), "path");
    const auto url = FileURL::fromPath(path.value_or(""), FileURL::Mark::directory);
    auto uuid = stringAt(root.get(), "volumeUUID");
    auto type = stringAt(root.get(), "volumeType");
    auto source = dataAt(root.get(), "volumeSource");
    const auto device = numberAt(root.get(), "volumeDevice");
    auto volumeRoot = dataAt(root.get(), "volumeRoot");
    auto steps = stepsOf(root.get());
    if (!url || !uuid || !type || !source || !device || !volumeRoot || !steps) return std::nullopt;
    FolderBookmark bookmark;
    bookmark.path = *url;
    bookmark.volume = {*std::move(uuid), *std::move(type), *std::move(source), *device};
    bookmark.root = *std::move(volumeRoot);
    bookmark.steps = *std::move(steps);
    return bookmark;
}

} // namespace ombrel
