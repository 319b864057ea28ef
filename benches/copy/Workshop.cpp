#include "copy/Workshop.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

namespace ombrel::bench {
namespace {

constexpr off_t imageBytes = off_t{16} << 30;

/// Those there are, for an end by way of exit.
std::vector<std::string>& standing() {
    static std::vector<std::string> paths;
    return paths;
}

bool mayMount() {
    return ::geteuid() == 0;
}

std::string imageOf(const std::string& path) {
    return path + ".ext4";
}

void remove(const std::string& path) {
    if (mayMount()) (void)::umount2(path.c_str(), 0);
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
    (void)::unlink(imageOf(path).c_str());
}

void removeAll() {
    for (const auto& path : standing())
        remove(path);
}

/// For an end by a signal: only what needs no memory and no lock. A mount goes with all that is in it.
void removeMounts(int number) {
    for (const auto& path : standing()) {
        (void)::umount2(path.c_str(), MNT_DETACH);
        (void)::rmdir(path.c_str());
        char image[PATH_MAX];
        if (path.size() + sizeof ".ext4" > sizeof image) continue;
        std::memcpy(image, path.data(), path.size());
        std::memcpy(image + path.size(), ".ext4", sizeof ".ext4");
        (void)::unlink(image);
    }
    ::_exit(128 + number);
}

void removeAtTheEnd() {
    std::atexit(removeAll);
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        (void)std::signal(number, removeMounts);
}

std::string firstLineOf(const std::string& command) {
    std::string line;
    FILE* const child = ::popen(command.c_str(), "r");
    if (!child) return line;
    for (int c = std::fgetc(child); c != EOF && c != '\n'; c = std::fgetc(child))
        line.push_back(static_cast<char>(c));
    return ::pclose(child) == 0 ? line : std::string();
}

bool run(const std::string& command) {
    return std::system(command.c_str()) == 0;
}

} // namespace

void fail(const std::string& what) {
    std::fprintf(stderr, "bench: %s\n", what.c_str());
    std::exit(1);
}

Workshop::Workshop(const std::string& base, Kind kind) : path_(base + "/ombrel-bench-XXXXXX"), kind_(kind) {
    if (!::mkdtemp(path_.data())) fail("no folder can be made in " + base);
    if (static bool isFirst = true; std::exchange(isFirst, false)) removeAtTheEnd();
    standing().push_back(path_);
    if (kind == Kind::memory && mayMount()) mountMemory();
    if (kind == Kind::ownDisk) mountImage();
}

Workshop Workshop::onOwnDisk(const std::string& base) {
    return {base, mayMount() ? Kind::ownDisk : Kind::disk};
}

Workshop Workshop::inMemory() {
    return {mayMount() ? "/tmp" : "/dev/shm", Kind::memory};
}

void Workshop::mountMemory() {
    if (::mount("tmpfs", path_.c_str(), "tmpfs", 0, "size=12g,nr_inodes=0,mode=755") != 0)
        fail("no tmpfs can be mounted");
}

void Workshop::mountImage() {
    const auto image = imageOf(path_);
    const int fd = ::open(image.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    // In one piece, so that it is written to, and goes again, as a disk would.
    if (fd < 0 || ::posix_fallocate(fd, 0, imageBytes) != 0) fail("no room for " + image);
    ::close(fd);
    if (!run("mkfs.ext4 -q -F -N 3000000 -E nodiscard,assume_storage_prezeroed=1 '" + image + "'"))
        fail("formatting " + image);
    const auto device = firstLineOf("losetup --direct-io=on -f --show '" + image + "'");
    if (device.empty()) fail("no loop device for " + image);
    const bool isMounted = ::mount(device.c_str(), path_.c_str(), "ext4", MS_RELATIME, nullptr) == 0;
    // The device stays until it is unmounted, and goes then by itself.
    (void)run("losetup -d " + device);
    if (!isMounted) fail("mounting " + image);
}

Workshop::~Workshop() {
    remove(path_);
    std::erase(standing(), path_);
}

std::string Workshop::freshFolder() {
    auto folder = fresh();
    if (::mkdir(folder.c_str(), 0755) != 0) fail("making " + folder);
    return folder;
}

void Workshop::quieten() const {
    if (!isDisk()) return;
    const int fd = ::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0 || ::syncfs(fd) != 0) fail("flushing " + path_);
    ::close(fd);
}

} // namespace ombrel::bench
