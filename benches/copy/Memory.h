#pragma once

#include "support/Report.h"

#include <string>

#include "copy/Workshop.h"

namespace ombrel::bench {

/// What a process needs at most while it copies a tree of a million entries, above what it had at the start.
/// `self` is this program.
void measureMemory(Report& report, Workshop& workshop, const std::string& self);

/// The part of the fresh process: copies `source` into `folder` and prints the bytes.
int printMemoryOfCopy(const std::string& source, const std::string& folder);

} // namespace ombrel::bench
