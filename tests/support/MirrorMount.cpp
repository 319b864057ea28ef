#include "support/MirrorMount.h"

#include "listing/MountTable.h"
#include "listing/SystemCall.h"

#include <spawn.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <thread>

extern char** environ;

namespace ombrel::testing {
namespace {

[[maybe_unused]] bool isMounted(const FileURL& url) {
    const SystemCall::Allowed allowed;
    const auto table = MountTable::current();
    const Mount* mount = table.containing(url);
    return mount && mount->point == url && mount->type == "fuse.mirror";
}

} // namespace

MirrorMount::Made MirrorMount::of(const std::string& folder, const std::vector<std::string>& options,
                                  const std::string& at) {
#ifndef OMBREL_MIRROR_FS
    (void)folder, (void)options, (void)at;
    return std::unexpected("built without libfuse");
#else
    std::unique_ptr<MirrorMount> made(new MirrorMount);
    std::string point =
        at.empty() ? (std::filesystem::temp_directory_path() / "ombrel-mirror-XXXXXX").string() : at;
    if (at.empty() ? !::mkdtemp(point.data()) : ::mkdir(point.c_str(), 0755) != 0)
        return std::unexpected("mount point: " + std::generic_category().message(errno));
    made->url_ = *FileURL::fromPath(point, FileURL::Mark::directory);
    std::vector<std::string> words = {OMBREL_MIRROR_FS, folder, point};
    words.insert(words.end(), options.begin(), options.end());
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    if (::posix_spawn(&made->process_, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0)
        return std::unexpected("cannot start " + words[0]);
    for (int tries = 0; tries < 500; ++tries) {
        if (isMounted(made->url_)) return made;
        if (::waitpid(made->process_, nullptr, WNOHANG) == made->process_) {
            made->process_ = -1;
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return std::unexpected("no FUSE mount is possible here");
#endif
}

void MirrorMount::hang() const {
    ::kill(process_, SIGUSR1);
}

void MirrorMount::answer() const {
    ::kill(process_, SIGUSR2);
}

MirrorMount::~MirrorMount() {
    // Only the end of its process frees callers that wait inside the mount.
    if (process_ > 0) {
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }
    if (url_.isRoot()) return;
    ::umount2(path().c_str(), MNT_DETACH | UMOUNT_NOFOLLOW);
    ::rmdir(path().c_str());
}

} // namespace ombrel::testing
