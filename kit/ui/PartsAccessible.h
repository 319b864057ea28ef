#pragma once

namespace ombrel {

class JobBar;

/// What screen readers are told of the small painted widgets: bars, graphs, pills and labels.
namespace PartsAccessible {

/// To be called before one of them is asked about; again does nothing.
void install();
/// The bar's share is another one.
void tellShare(JobBar& bar);

} // namespace PartsAccessible
} // namespace ombrel
