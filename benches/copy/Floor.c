#define _GNU_SOURCE
#include "Floor.h"

#include <dirent.h>
#include <fcntl.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

enum { chunkBytes = 256 << 10 };
static char first[chunkBytes], second[chunkBytes];

static int copy_open(int from, int to) {
    for (;;) {
        const ssize_t count = read(from, first, chunkBytes);
        if (count <= 0) return (int)count;
        if (write(to, first, (size_t)count) != count) return -1;
        if (count < chunkBytes) return 0;
    }
}

static int compare_open(int from, int to) {
    for (;;) {
        const ssize_t count = read(from, first, chunkBytes);
        if (count < 0 || read(to, second, chunkBytes) != count) return -1;
        if (memcmp(first, second, (size_t)count) != 0) return -1;
        if (count < chunkBytes) return 0;
    }
}

static int copy_at(int fromFolder, int toFolder, const char* from, const char* to, int carries) {
    static const struct timespec times[2] = {{.tv_sec = 1600000000}, {.tv_sec = 1600000000}};
    const int source = openat(fromFolder, from, O_RDONLY | O_CLOEXEC);
    const int copy = openat(toFolder, to, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (source < 0 || copy < 0 || copy_open(source, copy) != 0) return -1;
    if (carries && (fchmod(copy, 0644) != 0 || futimens(copy, times) != 0)) return -1;
    close(source);
    return close(copy);
}

static int compare_at(int fromFolder, int toFolder, const char* from, const char* to, int dropsCache) {
    const int source = openat(fromFolder, from, O_RDONLY | O_CLOEXEC);
    const int copy = openat(toFolder, to, O_RDONLY | O_CLOEXEC);
    if (source < 0 || copy < 0) return -1;
    if (dropsCache) posix_fadvise(copy, 0, 0, POSIX_FADV_DONTNEED);
    const int result = compare_open(source, copy);
    close(source);
    close(copy);
    return result;
}

int floor_copy_file(const char* from, const char* to) {
    return copy_at(AT_FDCWD, AT_FDCWD, from, to, 0);
}

int floor_compare_files(const char* from, const char* to, int dropsCache) {
    return compare_at(AT_FDCWD, AT_FDCWD, from, to, dropsCache);
}

typedef int (*Body)(int fromFolder, int toFolder, const char* from, const char* to, int option);

static int for_files(DIR* source, int copy, Body body, int option) {
    for (struct dirent* file = readdir(source); file; file = readdir(source))
        if (file->d_type == DT_REG && body(dirfd(source), copy, file->d_name, file->d_name, option) != 0)
            return -1;
    return 0;
}

static int for_tree(const char* from, const char* to, int makes, Body body, int option) {
    if (makes && mkdir(to, 0755) != 0) return -1;
    DIR* source = opendir(from);
    const int copy = open(to, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (!source || copy < 0) return -1;
    int result = 0;
    for (struct dirent* folder = readdir(source); folder && result == 0; folder = readdir(source)) {
        if (folder->d_type != DT_DIR || folder->d_name[0] == '.') continue;
        if (makes && mkdirat(copy, folder->d_name, 0755) != 0) return -1;
        DIR* below = fdopendir(openat(dirfd(source), folder->d_name, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        const int copyBelow = openat(copy, folder->d_name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (!below || copyBelow < 0) return -1;
        result = for_files(below, copyBelow, body, option);
        closedir(below);
        close(copyBelow);
    }
    closedir(source);
    close(copy);
    return result;
}

int floor_copy_tree(const char* from, const char* to) {
    return for_tree(from, to, 1, copy_at, 1);
}

int floor_compare_tree(const char* from, const char* to, int dropsCache) {
    return for_tree(from, to, 0, compare_at, dropsCache);
}

int floor_flush(const char* path) {
    const int fd = open(path, O_RDONLY | O_CLOEXEC);
    if (fd < 0) return -1;
    const int result = syncfs(fd);
    close(fd);
    return result;
}
