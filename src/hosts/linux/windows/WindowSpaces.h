#pragma once

class QWindow;

namespace velloway {

/// Puts a window that is not yet shown over everything else on every desktop of the user, full-screen windows
/// included, as far as the window system allows a program to ask for it. The user may drag it, but no window
/// manager looks after it: `requestKeyboard` is all that gives it the keyboard. Main thread only.
void floatOverEverything(QWindow& window);

/// Lets a window that floats over everything have the keyboard when the user clicks it, on desktops that give
/// it to such windows only then. Before the window is first shown; main thread only.
void acceptKeyboardOnClick(QWindow& window);

/// The same for a window that takes the keyboard, which must stay in the care of the window manager: it is on
/// every desktop each time that it is shown. Main thread only.
void joinAllSpaces(QWindow& window);

/// Asks for the keyboard for a window that the user has just clicked and that no window manager looks after.
/// Main thread only.
void requestKeyboard(QWindow& window);

/// Gives the keyboard to a window that the user has just asked for in another program, which the window manager
/// cannot know. Main thread only.
void activateForUser(QWindow& window);

/// The same for a window that may be on another desktop: it comes to the one that the user is on. Main thread
/// only.
void bringToUser(QWindow& window);

/// The name of the windows that banners make room for.
inline constexpr const char* callPanelName = "CallPanel";

/// Whether the window system moves this window when it is asked to.
bool canSystemMove(const QWindow& window);

} // namespace velloway
