#pragma once

#ifdef __cplusplus
extern "C" {
#endif

/** What a listing cannot do without, on one thread: readdir and one fstatat an entry. Returns the entries
 * seen. */
long floor_examine(const char* path);
/** The same without looking at the entries. */
long floor_names(const char* path);

#ifdef __cplusplus
}
#endif
