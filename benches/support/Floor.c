#define _GNU_SOURCE
#include "Floor.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

long floor_examine(const char* path) {
    DIR* stream = opendir(path);
    if (!stream) return -1;
    long seen = 0;
    volatile long long sum = 0;
    for (struct dirent* entry = readdir(stream); entry; entry = readdir(stream)) {
        struct stat facts;
        if (fstatat(dirfd(stream), entry->d_name, &facts, AT_SYMLINK_NOFOLLOW) == 0) sum += facts.st_size;
        ++seen;
    }
    closedir(stream);
    return seen;
}

long floor_names(const char* path) {
    DIR* stream = opendir(path);
    if (!stream) return -1;
    long seen = 0;
    volatile long long sum = 0;
    for (struct dirent* entry = readdir(stream); entry; entry = readdir(stream)) {
        sum += entry->d_type;
        ++seen;
    }
    closedir(stream);
    return seen;
}
