#pragma once

#include "base/FileURL.h"
#include "operations/TrashBackend.h"

#include <chrono>

namespace ombrel {

/// Clears a folder of what jobs that came to a sudden end left in it.
///
/// Goes: every staging item that no live job holds and that was neither written nor changed for longer than
/// `minimumAge` before `now`. An item that had been set aside for a new one is never removed: it gets its
/// name back where that is free; otherwise it goes to the trash, and stays where it is when no trash takes
/// it. Failures are ignored; what was removed is counted in the log. Blocking.
void sweepStaleStaging(const FileURL& folder, std::chrono::seconds minimumAge,
                       std::chrono::system_clock::time_point now, TrashBackend& trash);

} // namespace ombrel
