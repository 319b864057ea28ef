#include "window/probe/Figures.h"

#include <unistd.h>

#include <cstdio>

void ombrel::bench::Figures::tell(const std::string& name, double value) {
    constexpr int answer = 3;
    ::dprintf(answer, "%s %f\n", name.c_str(), value);
}
