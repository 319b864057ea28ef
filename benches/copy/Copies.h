#pragma once

#include "support/Report.h"

#include "copy/Workshop.h"

namespace ombrel::bench {

/// Copies of data, verified, beside bare loops of the same calls and the tools that people use. The source
/// stands in the same workshop as its copies.

void measureLargeFile(Report& report, Workshop& workshop);
void measureSmallFiles(Report& report, Workshop& workshop);
void measureMixedTree(Report& report, Workshop& workshop);

} // namespace ombrel::bench
