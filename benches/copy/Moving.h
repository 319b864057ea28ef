#pragma once

#include "support/Report.h"

#include "copy/Workshop.h"

namespace ombrel::bench {

/// Moves within a volume, and what the look for left-overs of earlier jobs costs in a large folder.
void measureMoving(Report& report, Workshop& workshop);

} // namespace ombrel::bench
