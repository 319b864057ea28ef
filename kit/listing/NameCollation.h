#pragma once

#include <string>
#include <string_view>

/// The locale's order of names: case-insensitive, runs of digits by their value ("file2" before "file10"), by
/// the rules of the Unicode collation algorithm with the locale's tailoring (ICU; numeric ordering, secondary
/// strength). The root order stands in for the locales C and POSIX. Any thread.
namespace ombrel::NameCollation {

/// Chooses the locale for keys made from now on, as a BCP 47 or POSIX locale name. Keys of different locales
/// must not be compared, so a program calls this once, before its first listing.
void setLocale(std::string_view locale);

/// ICU's name of the locale in force; empty for the root.
[[nodiscard]] std::string locale();

/// Makes ready what the first keys would otherwise wait for (some 10 ms) and what makes later ones fast. Not
/// for the main thread: the collator's data is read from the disk.
void prepare();

/// Appends the key of `name` to `keys`. Keys compare by their bytes as the names do; bytes that are not UTF-8
/// count as U+FFFD. Keys longer than 65,535 bytes are cut.
void appendKey(std::string_view name, std::string& keys);

/// Negative, zero or positive, as `a` sorts before, with or after `b`.
[[nodiscard]] int compare(std::string_view a, std::string_view b);

} // namespace ombrel::NameCollation
