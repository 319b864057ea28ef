#include "support/TestMount.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <system_error>

namespace ombrel::testing {
namespace {

std::string reason(const std::string& what) {
    return what + ": " + std::generic_category().message(errno);
}

bool run(const std::string& command) {
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

std::string outputOf(const std::string& command) {
    std::string text;
    FILE* pipe = ::popen((command + " 2>/dev/null").c_str(), "r");
    if (!pipe) return text;
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe))
        if (c != '\n') text.push_back(static_cast<char>(c));
    return ::pclose(pipe) == 0 ? text : std::string();
}

struct Format {
    std::string make;  // the command that formats, the label follows, then the image
    std::string label; // its option for the label
    std::string mount; // the type for mount -t
};

const std::map<std::string, Format> formats = {
    {"ext4", {"mkfs.ext4 -q -F", "-L", "ext4"}},
    {"ext2", {"mkfs.ext2 -q -F", "-L", "ext2"}},
    {"ext4-casefold", {"mkfs.ext4 -q -F -O casefold", "-L", "ext4"}},
    {"btrfs", {"mkfs.btrfs -q -f", "-L", "btrfs"}},
    {"xfs", {"mkfs.xfs -q -f", "-L", "xfs"}},
    {"vfat", {"mkfs.vfat -F 32", "-n", "vfat"}},
    {"exfat", {"mkfs.exfat", "-n", "exfat-fuse"}},
    {"ntfs", {"mkfs.ntfs -q -Q -F", "-L", "ntfs-3g"}},
};

} // namespace

bool TestMount::makePoint(const std::string& at) {
    std::string path = at;
    if (at.empty()) {
        path = (std::filesystem::temp_directory_path() / "ombrel-mount-XXXXXX").string();
        if (!::mkdtemp(path.data())) return false;
    } else if (::mkdir(at.c_str(), 0755) != 0) {
        return false;
    }
    url_ = *FileURL::fromPath(path, FileURL::Mark::directory);
    return true;
}

TestMount::Made TestMount::tmpfs(const std::string& at, const std::string& options) {
    std::unique_ptr<TestMount> made(new TestMount);
    if (!made->makePoint(at)) return std::unexpected(reason("mount point"));
    made->isMounted_ = ::mount("tmpfs", made->path().c_str(), "tmpfs", 0, options.c_str()) == 0;
    if (!made->isMounted_) return std::unexpected(reason("tmpfs"));
    return made;
}

TestMount::Made TestMount::bind(const std::string& what, const std::string& at) {
    std::unique_ptr<TestMount> made(new TestMount);
    if (!made->makePoint(at)) return std::unexpected(reason("mount point"));
    made->isMounted_ = ::mount(what.c_str(), made->path().c_str(), nullptr, MS_BIND, nullptr) == 0;
    if (!made->isMounted_) return std::unexpected(reason("bind mount"));
    return made;
}

TestMount::Made TestMount::limited(const std::string& backing, const std::string& options,
                                   const std::string& at) {
#ifdef OMBREL_LIMITED_FS
    std::unique_ptr<TestMount> made(new TestMount);
    if (!made->makePoint(at)) return std::unexpected(reason("mount point"));
    const std::string more = options.empty() ? "" : "," + options;
    made->isMounted_ = run(OMBREL_LIMITED_FS " '" + made->path() +
                           "' -o subtype=limited,fsname=limited,backing='" + backing + "'" + more);
    if (!made->isMounted_) return std::unexpected("no FUSE mounts here");
    return made;
#else
    (void)backing, (void)options, (void)at;
    return std::unexpected("built without libfuse");
#endif
}

TestMount::Made TestMount::image(const std::string& format, const std::string& at, const std::string& label) {
    const auto found = formats.find(format);
    if (found == formats.end()) return std::unexpected("no such format: " + format);
    std::unique_ptr<TestMount> made(new TestMount);
    made->type_ = found->second.mount;
    made->image_ = (std::filesystem::temp_directory_path() / "ombrel-image-XXXXXX").string();
    const int fd = ::mkstemp(made->image_.data());
    if (fd < 0) return std::unexpected(reason("image"));
    // The smallest sizes that the tools accept; the files are sparse.
    const off_t megabytes = format == "xfs" ? 320 : format == "btrfs" ? 128 : format == "vfat" ? 40 : 24;
    const bool isSized = ::ftruncate(fd, megabytes << 20) == 0;
    ::close(fd);
    const std::string labelled = label.empty() ? "" : " " + found->second.label + " '" + label + "'";
    if (!isSized || !run(found->second.make + labelled + " " + made->image_))
        return std::unexpected("cannot format " + format);
    made->device_ = outputOf("losetup -f --show " + made->image_);
    if (made->device_.empty()) return std::unexpected("no loop device");
    if (!made->makePoint(at)) return std::unexpected(reason("mount point"));
    if (!made->attach()) return std::unexpected("cannot mount " + format);
    return made;
}

bool TestMount::attach() {
    isMounted_ = run("mount -t " + type_ + " " + device_ + " '" + path() + "'");
    return isMounted_;
}

bool TestMount::unmount() {
    if (!isMounted_ || !run("umount '" + path() + "'")) return false;
    isMounted_ = false;
    return true;
}

bool TestMount::remount(const std::string& at) {
    if (isMounted_ || device_.empty()) return false;
    if (!at.empty()) {
        ::rmdir(path().c_str());
        if (!makePoint(at)) return false;
    }
    return attach();
}

bool TestMount::setReadOnly(bool readOnly) {
    return run(std::string("mount -o remount,") + (readOnly ? "ro '" : "rw '") + path() + "'");
}

bool TestMount::moveTo(const std::string& at) {
    const std::string old = path();
    if (!makePoint(at)) return false;
    if (::mount(old.c_str(), at.c_str(), nullptr, MS_MOVE, nullptr) != 0) return false;
    ::rmdir(old.c_str());
    return true;
}

TestMount::~TestMount() {
    if (isMounted_) ::umount2(path().c_str(), MNT_DETACH);
    if (!url_.isRoot()) ::rmdir(path().c_str());
    if (!device_.empty()) run("losetup -d " + device_);
    if (!image_.empty()) ::unlink(image_.c_str());
}

} // namespace ombrel::testing
