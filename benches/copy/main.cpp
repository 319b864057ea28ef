// File operations, beside bare loops of the same calls and the tools that people use for them.

#include <cstdlib>

#include "copy/Deletion.h"

int main() {
    using namespace ombrel::bench;
    Report report("copy");
    measureDeletion(report);
    return report.print() == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
