/* A FUSE file system for tests: passes everything to a backing folder, and refuses what less able drivers and
 * dying media refuse.
 *
 *   ombrel_limited_fs MOUNTPOINT -o
 * backing=FOLDER[,nolinks][,noattributes][,older=SECONDS][,uncounted][,fail=CALL,number=ERRNO[,after=N]]
 *
 * Renames with a flag (RENAME_NOREPLACE, RENAME_EXCHANGE) always answer EINVAL. `nolinks` refuses hard links
 * with EPERM, `noattributes` extended attributes with EOPNOTSUPP. `uncounted` knows of no space, used or
 * free. `older` tells of what was written or changed within so many seconds that it was so much earlier, as
 * if that time had passed. `fail` names a call below that answers ERRNO from the (N+1)-th time on. */
#define FUSE_USE_VERSION 31
#define _GNU_SOURCE

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <fuse3/fuse.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/xattr.h>
#include <time.h>
#include <unistd.h>

struct options {
    char* backing;
    int noLinks;
    int noAttributes;
    int older;
    int uncounted;
    char* fail;
    int number;
    int after;
};

static struct options options;
static int seen;

static const struct fuse_opt description[] = {
    {"backing=%s", offsetof(struct options, backing), 0},
    {"nolinks", offsetof(struct options, noLinks), 1},
    {"noattributes", offsetof(struct options, noAttributes), 1},
    {"older=%d", offsetof(struct options, older), 0},
    {"uncounted", offsetof(struct options, uncounted), 1},
    {"fail=%s", offsetof(struct options, fail), 0},
    {"number=%d", offsetof(struct options, number), 0},
    {"after=%d", offsetof(struct options, after), 0},
    FUSE_OPT_END,
};

/* The backing path of one in the mount, in a buffer of the caller's. */
#define BACKED(path)                                                                                         \
    char backed[PATH_MAX];                                                                                   \
    if (snprintf(backed, sizeof backed, "%s%s", options.backing, path) >= (int)sizeof backed)                \
    return -ENAMETOOLONG

#define ANSWER(call) return (call) < 0 ? -errno : 0

/* Leaves with the chosen error when it is this call's turn. One thread serves the mount. */
#define TURN(call)                                                                                           \
    do {                                                                                                     \
        if (options.fail && strcmp(options.fail, call) == 0 && ++seen > options.after)                       \
            return -options.number;                                                                          \
    } while (0)

static void* start(struct fuse_conn_info* connection, struct fuse_config* config) {
    (void)connection;
    config->use_ino = 1;
    config->nullpath_ok = 0;
    config->hard_remove = 1; /* a file that is removed while it is open gets no name of the library's */
    config->attr_timeout = 0;
    config->entry_timeout = 0;
    return NULL;
}

static void age(struct stat* status) {
    const time_t recent = time(NULL) - options.older;
    if (status->st_mtim.tv_sec > recent) status->st_mtim.tv_sec -= options.older;
    if (status->st_ctim.tv_sec > recent) status->st_ctim.tv_sec -= options.older;
}

static int readStatus(const char* path, struct stat* status, struct fuse_file_info* file) {
    TURN("status");
    if (file) {
        if (fstat((int)file->fh, status) != 0) return -errno;
    } else {
        BACKED(path);
        if (lstat(backed, status) != 0) return -errno;
    }
    age(status);
    return 0;
}

static int readTarget(const char* path, char* buffer, size_t size) {
    BACKED(path);
    const ssize_t length = readlink(backed, buffer, size - 1);
    if (length < 0) return -errno;
    buffer[length] = '\0';
    return 0;
}

static int readFolder(const char* path, void* buffer, fuse_fill_dir_t fill, off_t offset,
                      struct fuse_file_info* file, enum fuse_readdir_flags flags) {
    (void)offset, (void)file, (void)flags;
    TURN("readdir");
    BACKED(path);
    DIR* stream = opendir(backed);
    if (!stream) return -errno;
    for (const struct dirent* entry = readdir(stream); entry; entry = readdir(stream)) {
        struct stat status;
        memset(&status, 0, sizeof status);
        status.st_ino = entry->d_ino;
        status.st_mode = (mode_t)entry->d_type << 12;
        if (fill(buffer, entry->d_name, &status, 0, 0)) break;
    }
    closedir(stream);
    return 0;
}

static int makeNode(const char* path, mode_t mode, dev_t device) {
    BACKED(path);
    ANSWER(mknod(backed, mode, device));
}

static int makeFolder(const char* path, mode_t mode) {
    TURN("mkdir");
    BACKED(path);
    ANSWER(mkdir(backed, mode));
}

static int makeLink(const char* target, const char* path) {
    TURN("symlink");
    BACKED(path);
    ANSWER(symlink(target, backed));
}

static int removeFile(const char* path) {
    TURN("unlink");
    BACKED(path);
    ANSWER(unlink(backed));
}

static int removeFolder(const char* path) {
    TURN("rmdir");
    BACKED(path);
    ANSWER(rmdir(backed));
}

static int renameItem(const char* path, const char* to, unsigned flags) {
    if (flags) return -EINVAL;
    TURN("rename");
    BACKED(path);
    char target[PATH_MAX];
    if (snprintf(target, sizeof target, "%s%s", options.backing, to) >= (int)sizeof target)
        return -ENAMETOOLONG;
    ANSWER(rename(backed, target));
}

static int linkItem(const char* path, const char* to) {
    if (options.noLinks) return -EPERM;
    TURN("link");
    BACKED(path);
    char target[PATH_MAX];
    if (snprintf(target, sizeof target, "%s%s", options.backing, to) >= (int)sizeof target)
        return -ENAMETOOLONG;
    ANSWER(link(backed, target));
}

static int changeMode(const char* path, mode_t mode, struct fuse_file_info* file) {
    TURN("chmod");
    if (file) ANSWER(fchmod((int)file->fh, mode));
    BACKED(path);
    ANSWER(chmod(backed, mode));
}

static int changeOwner(const char* path, uid_t user, gid_t group, struct fuse_file_info* file) {
    TURN("chown");
    if (file) ANSWER(fchown((int)file->fh, user, group));
    BACKED(path);
    ANSWER(lchown(backed, user, group));
}

static int changeTimes(const char* path, const struct timespec times[2], struct fuse_file_info* file) {
    TURN("times");
    if (file) ANSWER(futimens((int)file->fh, times));
    BACKED(path);
    ANSWER(utimensat(AT_FDCWD, backed, times, AT_SYMLINK_NOFOLLOW));
}

static int changeSize(const char* path, off_t size, struct fuse_file_info* file) {
    TURN("truncate");
    if (file) ANSWER(ftruncate((int)file->fh, size));
    BACKED(path);
    ANSWER(truncate(backed, size));
}

static int openAs(const char* path, int flags, mode_t mode, struct fuse_file_info* file) {
    BACKED(path);
    const int fd = open(backed, flags, mode);
    if (fd < 0) return -errno;
    file->fh = (unsigned long)fd;
    return 0;
}

static int createFile(const char* path, mode_t mode, struct fuse_file_info* file) {
    TURN("create");
    return openAs(path, file->flags | O_CREAT, mode, file);
}

static int openFile(const char* path, struct fuse_file_info* file) {
    TURN("open");
    return openAs(path, file->flags & ~O_CREAT, 0, file);
}

static int readFile(const char* path, char* buffer, size_t size, off_t offset, struct fuse_file_info* file) {
    (void)path;
    TURN("read");
    const ssize_t count = pread((int)file->fh, buffer, size, offset);
    return count < 0 ? -errno : (int)count;
}

static int writeFile(const char* path, const char* buffer, size_t size, off_t offset,
                     struct fuse_file_info* file) {
    (void)path;
    TURN("write");
    const ssize_t count = pwrite((int)file->fh, buffer, size, offset);
    return count < 0 ? -errno : (int)count;
}

static int closeOnce(const char* path, struct fuse_file_info* file) {
    (void)path, (void)file;
    TURN("close");
    return 0;
}

static int release(const char* path, struct fuse_file_info* file) {
    (void)path;
    close((int)file->fh);
    return 0;
}

static int flushFile(const char* path, int dataOnly, struct fuse_file_info* file) {
    (void)path, (void)dataOnly;
    TURN("fsync");
    ANSWER(fsync((int)file->fh));
}

static int readVolume(const char* path, struct statvfs* facts) {
    BACKED(path);
    if (statvfs(backed, facts) != 0) return -errno;
    if (options.uncounted) facts->f_blocks = facts->f_bfree = facts->f_bavail = 0;
    return 0;
}

static int setAttribute(const char* path, const char* name, const char* value, size_t size, int flags) {
    if (options.noAttributes) return -EOPNOTSUPP;
    TURN("setxattr");
    BACKED(path);
    ANSWER(lsetxattr(backed, name, value, size, flags));
}

static int readAttribute(const char* path, const char* name, char* value, size_t size) {
    if (options.noAttributes) return -EOPNOTSUPP;
    BACKED(path);
    const ssize_t length = lgetxattr(backed, name, value, size);
    return length < 0 ? -errno : (int)length;
}

static int listAttributes(const char* path, char* names, size_t size) {
    if (options.noAttributes) return -EOPNOTSUPP;
    BACKED(path);
    const ssize_t length = llistxattr(backed, names, size);
    return length < 0 ? -errno : (int)length;
}

static int removeAttribute(const char* path, const char* name) {
    if (options.noAttributes) return -EOPNOTSUPP;
    BACKED(path);
    ANSWER(lremovexattr(backed, name));
}

int main(int count, char** words) {
    static const struct fuse_operations operations = {
        .init = start,
        .getattr = readStatus,
        .readlink = readTarget,
        .mknod = makeNode,
        .mkdir = makeFolder,
        .unlink = removeFile,
        .rmdir = removeFolder,
        .symlink = makeLink,
        .rename = renameItem,
        .link = linkItem,
        .chmod = changeMode,
        .chown = changeOwner,
        .truncate = changeSize,
        .open = openFile,
        .read = readFile,
        .write = writeFile,
        .statfs = readVolume,
        .flush = closeOnce,
        .release = release,
        .fsync = flushFile,
        .setxattr = setAttribute,
        .getxattr = readAttribute,
        .listxattr = listAttributes,
        .removexattr = removeAttribute,
        .readdir = readFolder,
        .create = createFile,
        .utimens = changeTimes,
    };
    struct fuse_args arguments = FUSE_ARGS_INIT(count, words);
    if (fuse_opt_parse(&arguments, &options, description, NULL) != 0 || !options.backing) return 2;
    fuse_opt_add_arg(&arguments, "-s");
    umask(0);
    return fuse_main(arguments.argc, arguments.argv, &operations, NULL);
}
