#include "support/NamedTree.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace ombrel::bench {
namespace {

constexpr const char* words[] = {"report", "holiday", "Screenshot", "notes",   "invoice",
                                 "draft",  "final",   "Backup",     "music",   "track",
                                 "data",   "config",  "readme",     "Project", "übersicht",
                                 "Café",   "写真",    "photo",      "scan",    "Протокол"};
constexpr const char* endings[] = {"txt", "pdf", "jpg", "png",  "cpp",    "h",
                                   "odt", "mp3", "zip", "json", "tar.gz", "MOV"};

std::string freshFolder(const std::string& base) {
    std::string pattern = base + "/ombrel-bench-XXXXXX";
    if (::mkdtemp(pattern.data())) return pattern;
    std::perror(("bench: " + base).c_str());
    std::exit(1);
}

} // namespace

std::string usualName(long number, std::mt19937& random) {
    const std::string first = words[random() % std::size(words)], second = words[random() % std::size(words)];
    const std::string ending = endings[random() % std::size(endings)];
    char digits[32];
    switch (random() % 5) {
    case 0:
        std::snprintf(digits, sizeof digits, "%07ld", number);
        return "IMG_" + std::string(digits) + "." + ending;
    case 1: return first + " " + second + " " + std::to_string(number) + "." + ending;
    case 2:
        std::snprintf(digits, sizeof digits, "%08lx%lx", static_cast<unsigned long>(random()), number);
        return std::string(digits) + "." + ending;
    case 3:
        return first + "_" + second + "_" + std::to_string(random() % 100) + "_" + std::to_string(number) +
               "." + ending;
    default: return first + " " + std::to_string(number);
    }
}

NamedTree::NamedTree(const std::string& base, long count) : path_(freshFolder(base)) {
    const int folder = ::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    std::mt19937 random(20);
    for (long i = 0; i < count; ++i) {
        const auto name = usualName(i, random);
        const auto share = random() % 100;
        int made = 0;
        if (share < 5) {
            made = ::mkdirat(folder, name.c_str(), 0755);
        } else if (share < 7) {
            made = ::symlinkat(share == 5 ? "." : "nowhere", folder, name.c_str());
        } else {
            made = ::openat(folder, name.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0644);
            if (made >= 0) ::close(made);
        }
        if (made < 0) {
            std::perror("bench: making the tree");
            std::exit(1);
        }
    }
    ::close(folder);
}

NamedTree::~NamedTree() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

MountedTmpfs::MountedTmpfs(const std::string& base) : path_(freshFolder(base)) {
    if (::mount("tmpfs", path_.c_str(), "tmpfs", 0, "size=75%,nr_inodes=0") == 0) return;
    ::rmdir(path_.c_str());
    path_.clear();
}

MountedTmpfs::~MountedTmpfs() {
    if (path_.empty()) return;
    ::umount2(path_.c_str(), MNT_DETACH);
    ::rmdir(path_.c_str());
}

} // namespace ombrel::bench
