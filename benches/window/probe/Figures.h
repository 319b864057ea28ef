#pragma once

#include <string>

/// What a probe answers to the bench that started it.
namespace ombrel::bench::Figures {

void tell(const std::string& name, double value);

} // namespace ombrel::bench::Figures
