#pragma once

#include "listing/POSIX.h"
#include "operations/TreeManifest.h"

/// What the switches of FileOperationFaults.h do to the disk. Failures are ignored.
namespace ombrel::TransferFaults {

/// Overwrites the first regular file in the copy of a tree.
void corrupt(POSIX::Place copy, const TreeManifest& manifest);

/// Adds a file to a folder, or data to a file.
void mutate(POSIX::Place source);

} // namespace ombrel::TransferFaults
