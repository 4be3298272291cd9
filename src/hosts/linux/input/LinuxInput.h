#pragma once

#include "platform/Accessibility.h"
#include "platform/InputEvents.h"

#include <memory>

namespace velloway {

/// Input into this desktop together with the permission for it, which one session of the desktop answers for.
/// An X server with its test extension gives it to everybody, a Wayland desktop once the user has agreed. Input
/// without it is dropped.
class LinuxInput : public InputEvents, public Accessibility {};

enum class InputSession { x11, wayland, none };

/// The kind of the session that this process runs in. A Wayland session offers an X server too, through which
/// input would reach only some windows; it counts as Wayland all the same.
InputSession currentInputSession();

/// The input of this session. Main thread, after the QCoreApplication.
std::unique_ptr<LinuxInput> makeLinuxInput();

} // namespace velloway
