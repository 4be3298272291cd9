#pragma once

#include "server/WebSocketServer.h"
#include "shell/CallPanelContent.h"
#include "state/AppNotificationCenter.h"
#include "state/Observable.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace velloway {

/// What the panel of a running call shows and does. It follows the time that the phone reports for as long as
/// it lives. Main thread.
class ActiveCallBanner : public CallPanelContent {
public:
    /// The server and the notifications must outlive the banner.
    ActiveCallBanner(std::string callName, std::string callNumber, WebSocketServer& server,
                     AppNotificationCenter& notifications);

    /// May be empty.
    const std::string name;
    const std::string number;
    /// Seconds, as the phone last reported.
    Observable<std::int64_t> duration{0};
    /// What the user last chose on this panel; the phone is not asked.
    Observable<bool> isMuted{false};

    BannerText text() const;
    CallPanel panel() const override;
    [[nodiscard]] Subscription observe(std::function<void()> changed) override;
    void pressLeft() override { toggleMute(); }
    void pressRight() override { hangup(); }

    std::string_view muteSymbol() const { return isMuted.get() ? "mic.slash.fill" : "mic.fill"; }

    static constexpr std::string_view iconSymbol = "phone.fill";
    static constexpr std::string_view hangupSymbol = "phone.down.fill";

    void toggleMute();
    /// The panel stays until the phone reports that the call is over.
    void hangup();

private:
    WebSocketServer& server_;
    Subscription durationUpdates_;
};

} // namespace velloway
