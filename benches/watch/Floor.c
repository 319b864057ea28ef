#include "watch/Floor.h"

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

long floor_watch(const char* folder, long enough, int patience, void (*ready)(void* context), void* context) {
    static char buffer[64 << 10] __attribute__((aligned(8)));
    const int queue = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (queue < 0 || inotify_add_watch(queue, folder, IN_CREATE | IN_DELETE | IN_CLOSE_WRITE) < 0) return -1;
    ready(context);
    long count = 0;
    struct pollfd source = {queue, POLLIN, 0};
    while (count < enough && poll(&source, 1, patience) > 0) {
        const ssize_t filled = read(queue, buffer, sizeof buffer);
        for (ssize_t at = 0; at < filled; ++count)
            at +=
                (ssize_t)sizeof(struct inotify_event) + (ssize_t)((struct inotify_event*)(buffer + at))->len;
    }
    close(queue);
    return count;
}
