#pragma once

#include "support/Report.h"

#include "copy/Workshop.h"

namespace ombrel::bench {

/// Permanent deletion beside rm -rf.
void measureDeletion(Report& report, Workshop& workshop);

} // namespace ombrel::bench
