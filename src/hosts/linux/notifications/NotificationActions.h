#pragma once

namespace velloway::notificationActions {

/// What the delegate receives as action identifier for a plain click.
inline constexpr const char* clicked = "default";
/// The same for a notification that the user closed.
inline constexpr const char* dismissed = "dismiss";

} // namespace velloway::notificationActions
