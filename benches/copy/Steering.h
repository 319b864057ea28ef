#pragma once

#include "support/Report.h"

#include "copy/Workshop.h"

namespace ombrel::bench {

/// How soon a running copy obeys: from a pause until no bytes move, from its end until they do again, from a
/// cancellation until no bytes move.
void measureSteering(Report& report, Workshop& workshop);

} // namespace ombrel::bench
