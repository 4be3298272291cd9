#pragma once

namespace velloway {

/// Whether windows can be see-through now. Without it the corners of a rounded window would be black.
bool isCompositing();

} // namespace velloway
