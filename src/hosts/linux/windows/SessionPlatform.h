#pragma once

namespace velloway {

/// Chooses, before the toolkit starts, how its windows reach the screen, and takes the choice out of the
/// environment again, so that programs started from here choose for themselves.
///
/// On Wayland a program can neither say where its windows stand nor keep them above the others without taking
/// the keyboard; through the X server that compositors start for older programs it can do both. So that server
/// is preferred wherever it answers, and Wayland itself serves otherwise. The toolkit's own variable,
/// QT_QPA_PLATFORM, overrides the choice.
class SessionPlatform {
public:
    SessionPlatform();
    /// To be called once the toolkit has read the choice.
    void withdraw();

private:
    bool isChosenHere_ = false;
};

} // namespace velloway
