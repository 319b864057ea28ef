#pragma once

#ifdef __cplusplus
extern "C" {
#endif

/* What a copy cannot do without, on one thread and without a look at anything else. All answer 0 when done
 * and -1 when something fails. */

/** Copies one file to a new one: open, then read and write until the end, then close. */
int floor_copy_file(const char* from, const char* to);
/** Reads two files side by side to their ends; -1 when they differ. With `dropsCache` the kernel is asked
 * first to let go of what it keeps of the second. */
int floor_compare_files(const char* from, const char* to, int dropsCache);

/** Copies the files of the folders of a folder: for each open, read, write, fchmod, futimens, close. Modes
 * and times are not looked up. */
int floor_copy_tree(const char* from, const char* to);
/** Compares the same files. */
int floor_compare_tree(const char* from, const char* to, int dropsCache);

/** Waits until the file system that holds `path` is on its medium. */
int floor_flush(const char* path);

#ifdef __cplusplus
}
#endif
