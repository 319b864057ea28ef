#pragma once

#ifdef __cplusplus
extern "C" {
#endif

/* Walks all folders below `path` with openat and getdents64 alone, follows no links, and counts the entries
 * whose name holds `text` (strcasestr). Answers -1 when `path` cannot be opened. */
long floor_search(const char* path, const char* text);

#ifdef __cplusplus
}
#endif
