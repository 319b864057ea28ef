/* A file system for tests: shows a folder as it is at each look, with nothing cached, so that what changes there is seen
 * but never announced. SIGUSR1 makes it stop answering, SIGUSR2 answer again.
 *
 * usage: mirror_file_system FOLDER MOUNT-POINT [hanging] [untyped]
 *   hanging  does not answer from the start
 *   untyped  does not tell the types of entries when a folder is read */
#define _GNU_SOURCE
#define FUSE_USE_VERSION 31

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <fuse.h>
#include <limits.h>
#include <signal.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/statvfs.h>
#include <unistd.h>

static char folder[PATH_MAX];
static atomic_bool isHanging;
static int isUntyped;

static void onSignal(int number) {
    isHanging = number == SIGUSR1;
}

/* Every operation begins here: takes the request, and keeps it as long as the file system hangs. */
static const char* there(const char* path, char buffer[PATH_MAX]) {
    while (isHanging)
        usleep(10000);
    if (snprintf(buffer, PATH_MAX, "%s%s", folder, path) >= PATH_MAX) return "";
    return buffer;
}

static int result(int returned) {
    return returned < 0 ? -errno : 0;
}

static int getAttributes(const char* path, struct stat* facts, struct fuse_file_info* file) {
    (void)file;
    char buffer[PATH_MAX];
    return result(lstat(there(path, buffer), facts));
}

static int readFolder(const char* path, void* to, fuse_fill_dir_t fill, off_t offset, struct fuse_file_info* file,
                      enum fuse_readdir_flags flags) {
    (void)offset, (void)file, (void)flags;
    char buffer[PATH_MAX];
    DIR* stream = opendir(there(path, buffer));
    if (!stream) return -errno;
    for (const struct dirent* entry = readdir(stream); entry; entry = readdir(stream)) {
        const struct stat facts = {.st_ino = entry->d_ino, .st_mode = isUntyped ? 0 : DTTOIF(entry->d_type)};
        if (fill(to, entry->d_name, &facts, 0, 0) != 0) break;
    }
    closedir(stream);
    return 0;
}

static int readTarget(const char* path, char* target, size_t size) {
    char buffer[PATH_MAX];
    const ssize_t length = readlink(there(path, buffer), target, size - 1);
    if (length < 0) return -errno;
    target[length] = '\0';
    return 0;
}

static int openFile(const char* path, struct fuse_file_info* file) {
    char buffer[PATH_MAX];
    const int fd = open(there(path, buffer), file->flags | O_CLOEXEC);
    if (fd < 0) return -errno;
    file->fh = (uint64_t)fd;
    return 0;
}

static int readFile(const char* path, char* to, size_t size, off_t offset, struct fuse_file_info* file) {
    char buffer[PATH_MAX];
    (void)there(path, buffer);
    const ssize_t count = pread((int)file->fh, to, size, offset);
    return count < 0 ? -errno : (int)count;
}

static int closeFile(const char* path, struct fuse_file_info* file) {
    (void)path;
    return result(close((int)file->fh));
}

static int tellCapacity(const char* path, struct statvfs* facts) {
    char buffer[PATH_MAX];
    return result(statvfs(there(path, buffer), facts));
}

static void* begin(struct fuse_conn_info* connection, struct fuse_config* config) {
    (void)connection;
    config->attr_timeout = config->entry_timeout = config->negative_timeout = 0;
    config->use_ino = 1;
    return NULL;
}

int main(int count, char** words) {
    if (count < 3 || !realpath(words[1], folder)) {
        fprintf(stderr, "usage: %s FOLDER MOUNT-POINT [hanging] [untyped]\n", words[0]);
        return 2;
    }
    for (int i = 3; i < count; ++i) {
        if (strcmp(words[i], "hanging") == 0) isHanging = 1;
        if (strcmp(words[i], "untyped") == 0) isUntyped = 1;
    }
    prctl(PR_SET_PDEATHSIG, SIGKILL); /* no test that crashes leaves a hanging mount with its process */
    signal(SIGUSR1, onSignal);
    signal(SIGUSR2, onSignal);
    const struct fuse_operations operations = {.init = begin,
                                               .getattr = getAttributes,
                                               .readdir = readFolder,
                                               .readlink = readTarget,
                                               .open = openFile,
                                               .read = readFile,
                                               .release = closeFile,
                                               .statfs = tellCapacity};
    char allowed[] = "-oallow_other,fsname=mirror,subtype=mirror";
    char foreground[] = "-f";
    char* arguments[] = {words[0], foreground, allowed, words[2], NULL};
    return fuse_main(4, arguments, &operations, NULL);
}
