#include "operations/TrashSizeCache.h"

#include "base/PercentEncoding.h"
#include "listing/EntryReader.h"
#include "listing/POSIXEntries.h"
#include "operations/FolderTrail.h"

#include <fcntl.h>

#include <charconv>
#include <random>
#include <utility>
#include <vector>

namespace ombrel {
namespace {

constexpr const char* fileName = "directorysizes";
constexpr std::size_t largestFile = std::size_t{16} << 20;

/// Takes a number and the space after it off the line.
std::optional<std::int64_t> takeNumber(std::string_view& line) {
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
    const auto length = static_cast<std::size_t>(end - line.data());
    if (error != std::errc() || length >= line.size() || line[length] != ' ') return std::nullopt;
    line.remove_prefix(length + 1);
    return number;
}

} // namespace

TrashSizeCache TrashSizeCache::load(int root) {
    TrashSizeCache cache;
    const auto file = POSIX::open(POSIX::Place{root, fileName}, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
    if (!file) return cache;
    const auto text = POSIX::readAll(file->get(), largestFile);
    if (!text) return cache;
    for (std::string_view rest = *text; !rest.empty();) {
        const auto end = rest.find('\n');
        auto line = rest.substr(0, end);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        const auto bytes = takeNumber(line), recorded = bytes ? takeNumber(line) : std::nullopt;
        const auto name = recorded ? PercentEncoding::decoded(line) : std::nullopt;
        if (name && !name->empty() && name->find('/') == std::string::npos)
            cache.entries_.insert_or_assign(*name, Entry{*bytes, *recorded});
    }
    return cache;
}

std::optional<std::int64_t> TrashSizeCache::find(const std::string& name, std::int64_t recorded) const {
    const auto found = entries_.find(name);
    if (found == entries_.end() || found->second.recorded != recorded) return std::nullopt;
    return found->second.bytes;
}

void TrashSizeCache::set(const std::string& name, std::int64_t recorded, std::int64_t bytes) {
    entries_.insert_or_assign(name, Entry{bytes, recorded});
    isChanged_ = true;
}

void TrashSizeCache::keepOnly(const std::function<bool(const std::string&)>& isThere) {
    isChanged_ |= std::erase_if(entries_, [&](const auto& entry) { return !isThere(entry.first); }) > 0;
}

void TrashSizeCache::save(int root) {
    if (!std::exchange(isChanged_, false)) return;
    std::string text;
    for (const auto& [name, entry] : entries_)
        text += std::to_string(entry.bytes) + " " + std::to_string(entry.recorded) + " " +
                PercentEncoding::encoded(name, "-._~") + "\n";
    const std::string temporary = std::string(fileName) + "." + std::to_string(std::random_device{}());
    const POSIX::Place place{root, temporary.c_str()};
    auto file = POSIX::open(place, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
    if (!file) return;
    auto written = POSIX::writeAll(file->get(), text);
    if (written) written = file->close();
    if (written) written = POSIX::rename(place, POSIX::Place{root, fileName});
    if (!written) (void)POSIX::unlink(place);
}

std::optional<std::int64_t> roomTakenBy(POSIX::Place folder, const std::stop_token& stop) {
    constexpr std::int64_t blockBytes = 512;
    auto top = POSIX::open(folder, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK);
    if (!top) return std::nullopt;
    const auto status = POSIX::status(top->get());
    if (!status) return std::nullopt;
    std::int64_t blocks = status->blocks;
    FolderTrail trail(std::move(*top), *status);
    EntryReader reader;
    std::vector<std::vector<std::string>> below; // folders yet to be entered, for each step of the trail
    const auto readHere = [&] {
        below.emplace_back();
        reader.begin(trail.fd());
        for (;;) {
            const auto entry = reader.next();
            if (!entry || !*entry) return entry.has_value();
            const auto found = POSIX::lstat(POSIX::Place{trail.fd(), (*entry)->name.data()});
            if (!found) return false;
            if (!isSameMount(*found, trail.status())) continue;
            blocks += found->blocks;
            if (found->isDirectory()) below.back().emplace_back((*entry)->name);
        }
    };
    if (!readHere()) return std::nullopt;
    while (!below.empty()) {
        if (stop.stop_requested()) return std::nullopt;
        if (below.back().empty()) {
            below.pop_back();
            if (!below.empty() && !trail.leave()) return std::nullopt;
            continue;
        }
        const std::string name = std::move(below.back().back());
        below.back().pop_back();
        if (!trail.enter(name.c_str()) || !readHere()) return std::nullopt;
    }
    return blocks * blockBytes;
}

} // namespace ombrel
