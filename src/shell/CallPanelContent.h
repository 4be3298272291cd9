#pragma once

#include "platform/Subscription.h"
#include "platform/Windows.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace velloway {

/// The lines of a call panel, top to bottom.
struct BannerText {
    std::string firstLine;
    std::optional<std::string> secondLine;
    std::string lastLine;

    bool operator==(const BannerText&) const = default;
};

struct CallPanelButton {
    std::string_view symbol;
    /// What a screen reader says.
    std::string_view name;
    /// May be empty.
    std::string_view tooltip;
};

/// All that a call panel shows. The left button declines a ringing call and mutes a running one.
struct CallPanel {
    bool isRinging = false;
    std::string_view iconSymbol;
    BannerText text;
    bool isMuted = false;
    CallPanelButton left;
    CallPanelButton right;
};

/// What the window of a call panel holds. Main thread only.
class CallPanelContent : public WindowContent {
public:
    virtual CallPanel panel() const = 0;
    /// Calls back after each change of `panel`.
    [[nodiscard]] virtual Subscription observe(std::function<void()> changed) = 0;
    virtual void pressLeft() = 0;
    virtual void pressRight() = 0;
};

} // namespace velloway
