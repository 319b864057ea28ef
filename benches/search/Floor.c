#define _GNU_SOURCE
#include "search/Floor.h"

#include <dirent.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

static char buffer[1 << 16];

/* Sub-folders are kept as bytes, one name after another, and entered once the folder has been read. */
static long walk(int folder, const char* text) {
    long found = 0;
    char* names = NULL;
    size_t used = 0, room = 0;
    for (;;) {
        const ssize_t count = getdents64(folder, buffer, sizeof buffer);
        if (count <= 0) break;
        for (ssize_t at = 0; at < count;) {
            const struct dirent64* entry = (const struct dirent64*)(buffer + at);
            at += entry->d_reclen;
            const char* name = entry->d_name;
            if (name[0] == '.' && (!name[1] || (name[1] == '.' && !name[2]))) continue;
            if (strcasestr(name, text)) ++found;
            if (entry->d_type != DT_DIR) continue;
            const size_t length = strlen(name) + 1;
            if (used + length > room) {
                room = room * 2 + length + 256;
                names = realloc(names, room);
                if (!names) abort();
            }
            memcpy(names + used, name, length);
            used += length;
        }
    }
    for (size_t at = 0; at < used; at += strlen(names + at) + 1) {
        const int inner = openat(folder, names + at, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (inner < 0) continue;
        found += walk(inner, text);
        close(inner);
    }
    free(names);
    return found;
}

long floor_search(const char* path, const char* text) {
    const int folder = open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) return -1;
    const long found = walk(folder, text);
    close(folder);
    return found;
}
