#include "support/TreeSnapshot.h"

#include "base/OwnedFd.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <functional>
#include <memory>
#include <string_view>

namespace ombrel::testing {
namespace {

constexpr std::string_view accessLists = "system.posix_acl_";

/// Entries of an access list that name nobody carry an id that means nothing and that file systems fill as
/// they like; see linux/posix_acl_xattr.h for the form.
std::string comparable(std::string list) {
    for (std::size_t entry = 4; entry + 8 <= list.size(); entry += 8)
        if (list[entry] != 2 && list[entry] != 8) list.replace(entry + 4, 4, 4, '\0');
    return list;
}

/// What the system itself keeps there (security labels) is not counted.
std::map<std::string, std::string> attributesOf(const std::string& path) {
    std::array<char, 65536> names, value;
    std::map<std::string, std::string> found;
    const ssize_t length = ::llistxattr(path.c_str(), names.data(), names.size());
    for (const char* name = names.data(); name < names.data() + length;
         name += std::string_view(name).size() + 1) {
        const bool isAccessList = std::string_view(name).starts_with(accessLists);
        if (!isAccessList && !std::string_view(name).starts_with("user.")) continue;
        const ssize_t size = ::lgetxattr(path.c_str(), name, value.data(), value.size());
        const std::string bytes =
            size < 0 ? "unreadable" : std::string(value.data(), static_cast<std::size_t>(size));
        found[name] = isAccessList ? comparable(bytes) : bytes;
    }
    return found;
}

void readContents(const std::string& path, EntrySnapshot& entry) {
    const OwnedFd file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    std::string bytes;
    std::array<char, 65536> buffer;
    for (ssize_t count; (count = ::read(file.get(), buffer.data(), buffer.size())) > 0;) {
        // A running hash, so that large files need no room.
        const std::string_view piece(buffer.data(), static_cast<std::size_t>(count));
        entry.contents = (entry.contents ^ std::hash<std::string_view>{}(piece)) * 0x9E3779B97F4A7C15U;
    }
    entry.hasHole = entry.size > 0 && ::lseek(file.get(), 0, SEEK_HOLE) < entry.size;
}

EntrySnapshot entryAt(const std::string& path, const struct stat& facts) {
    EntrySnapshot entry;
    entry.mode = facts.st_mode;
    entry.owner = facts.st_uid;
    entry.group = facts.st_gid;
    entry.modifiedSeconds = facts.st_mtim.tv_sec;
    entry.modifiedNanoseconds = facts.st_mtim.tv_nsec;
    entry.attributes = attributesOf(path);
    if (S_ISREG(facts.st_mode)) {
        entry.size = facts.st_size;
        readContents(path, entry);
    } else if (S_ISLNK(facts.st_mode)) {
        std::array<char, 4096> target;
        const ssize_t length = ::readlink(path.c_str(), target.data(), target.size());
        if (length > 0) entry.target.assign(target.data(), static_cast<std::size_t>(length));
    }
    return entry;
}

void walk(const std::string& path, const std::string& relative, TreeSnapshot& into) {
    struct stat facts;
    if (::lstat(path.c_str(), &facts) != 0) return;
    into[relative] = entryAt(path, facts);
    if (!S_ISDIR(facts.st_mode)) return;
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(path.c_str()), ::closedir);
    if (!stream) return;
    while (const auto* entry = ::readdir(stream.get())) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..")
            walk(path + "/" + name, relative.empty() ? name : relative + "/" + name, into);
    }
}

std::string difference(EntrySnapshot a, EntrySnapshot b, Compare compare) {
    if ((a.mode ^ b.mode) & S_IFMT) return "type";
    if (a.size != b.size) return "size " + std::to_string(a.size) + " and " + std::to_string(b.size);
    if (a.contents != b.contents) return "contents";
    if (a.target != b.target) return "target " + a.target + " and " + b.target;
    if (compare == Compare::data) return {};
    if (a.mode != b.mode && !S_ISLNK(a.mode)) return "mode";
    if (a.attributes != b.attributes) return "attributes";
    if (compare == Compare::everything || !S_ISDIR(a.mode))
        if (a.modifiedSeconds != b.modifiedSeconds || a.modifiedNanoseconds != b.modifiedNanoseconds)
            return "time";
    if (compare == Compare::metadata) return {};
    if (a.owner != b.owner || a.group != b.group) return "owner";
    return a.hasHole != b.hasHole ? "holes" : "";
}

} // namespace

TreeSnapshot snapshotOf(const std::string& path) {
    TreeSnapshot tree;
    walk(path, "", tree);
    return tree;
}

TreeSnapshot partOf(const TreeSnapshot& tree, const std::string& path) {
    TreeSnapshot part;
    for (const auto& [name, entry] : tree)
        if (path.empty() || name == path)
            part[path.empty() ? name : ""] = entry;
        else if (name.starts_with(path + "/"))
            part[name.substr(path.size() + 1)] = entry;
    return part;
}

std::vector<std::string> differences(const TreeSnapshot& expected, const TreeSnapshot& found,
                                     Compare compare) {
    std::vector<std::string> lines;
    for (const auto& [name, entry] : expected) {
        const auto other = found.find(name);
        if (other == found.end())
            lines.push_back(name + ": missing");
        else if (const auto what = difference(entry, other->second, compare); !what.empty())
            lines.push_back(name + ": " + what);
    }
    for (const auto& [name, entry] : found)
        if (!expected.contains(name)) lines.push_back(name + ": too many");
    return lines;
}

} // namespace ombrel::testing
