#pragma once

namespace velloway {

/// Whether this process may inject input. Any thread may ask.
class Accessibility {
public:
    virtual ~Accessibility() = default;

    /// Only asks.
    virtual bool isTrusted() = 0;
    /// Brings up the system's own question when the process isn't trusted; waits for no answer.
    virtual bool isTrustedWithPrompt() = 0;
};

} // namespace velloway
