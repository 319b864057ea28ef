#pragma once

#include "support/Report.h"

namespace ombrel::bench {

/// Permanent deletion beside rm -rf, in memory and on the disk.
void measureDeletion(Report& report);

} // namespace ombrel::bench
