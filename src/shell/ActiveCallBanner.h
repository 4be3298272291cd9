#pragma once

#include "shell/IncomingCallBanner.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace velloway {

/// What the panel of a running call shows. Main thread.
struct ActiveCallBanner {
    /// May be empty.
    std::string name;
    std::string number;
    /// Seconds, as the phone last told.
    std::int64_t duration = 0;
    /// What the user last chose on this panel; the phone is not asked.
    bool isMuted = false;

    BannerText text() const;

    static constexpr std::string_view iconSymbol = "phone.fill";
    std::string_view muteSymbol() const { return isMuted ? "mic.slash.fill" : "mic.fill"; }
    static constexpr std::string_view hangupSymbol = "phone.down.fill";
};

} // namespace velloway
