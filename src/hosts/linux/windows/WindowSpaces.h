#pragma once

class QWindow;

namespace velloway {

/// Lets a window that is not yet shown stand on every desktop of the user, full-screen ones included where the
/// window system allows it.
void joinAllSpaces(QWindow& window);

} // namespace velloway
