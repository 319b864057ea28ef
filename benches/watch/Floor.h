#pragma once

#ifdef __cplusplus
extern "C" {
#endif

/* Takes the events of a folder as they come, with nothing done about them, until `enough` were taken or
 * `patience` milliseconds passed without any. Answers how many were taken, lost ones not counted; -1 when the
 * folder cannot be watched. `ready` is called with `context` once it is. */
long floor_watch(const char* folder, long enough, int patience, void (*ready)(void* context), void* context);

#ifdef __cplusplus
}
#endif
