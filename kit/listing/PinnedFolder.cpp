#include "listing/PinnedFolder.h"

#include "base/FileName.h"
#include "base/Text.h"

namespace ombrel {
namespace {

constexpr std::string_view knownPrefix = "known:";

} // namespace

std::vector<PinnedFolder> PinnedFolder::defaults() {
    const auto all = allKnownFolders();
    return {all.begin(), all.end()};
}

std::optional<KnownFolder> PinnedFolder::known() const noexcept {
    const auto* folder = std::get_if<KnownFolder>(&place_);
    return folder ? std::optional(*folder) : std::nullopt;
}

const FileURL& PinnedFolder::url(const KnownFolders& folders) const noexcept {
    if (const auto* folder = std::get_if<KnownFolder>(&place_)) return folders.url(*folder);
    return std::get<FileURL>(place_);
}

std::string PinnedFolder::title() const {
    if (const auto folder = known()) return Texts::localized(titleKey(*folder));
    const auto& url = std::get<FileURL>(place_);
    return FileName::displayText(url.title());
}

std::string PinnedFolder::stored() const {
    if (const auto folder = known()) return std::string(knownPrefix).append(rawValue(*folder));
    return PathText::of(std::get<FileURL>(place_));
}

std::optional<PinnedFolder> PinnedFolder::fromStored(std::string_view text) {
    if (text.starts_with(knownPrefix)) {
        const auto folder = fromRawValue<KnownFolder>(text.substr(knownPrefix.size()));
        return folder ? std::optional<PinnedFolder>(*folder) : std::nullopt;
    }
    auto url = PathText::parse(text);
    return url ? std::optional<PinnedFolder>(std::move(*url)) : std::nullopt;
}

std::string PathText::of(const FileURL& url) {
    return FileName::isValidUTF8(url.path()) ? url.path() : url.uri();
}

std::optional<FileURL> PathText::parse(std::string_view text) {
    auto url = text.starts_with('/') ? FileURL::fromPath(text) : FileURL::fromURI(text);
    return url ? std::optional(std::move(*url)) : std::nullopt;
}

} // namespace ombrel
