#pragma once

#include "platform/DispatchQueue.h"
#include "platform/Log.h"
#include "platform/Windows.h"
#include "server/WebSocketServer.h"
#include "shell/ActiveCallBanner.h"
#include "shell/IncomingCallBanner.h"
#include "state/AppNotificationCenter.h"
#include "state/HistoryStore.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velloway {

/// The two panels that float over everything during a call: one while it rings, one while it runs. They follow
/// the store's ringing call and the application notifications.
///
/// Main thread only. Changes are followed one turn of the main queue after they were made, in their order.
class CallWindows : public std::enable_shared_from_this<CallWindows> {
public:
    /// All of it must outlive the panels.
    struct Dependencies {
        DispatchQueue& main;
        std::shared_ptr<HistoryStore> historyStore;
        AppNotificationCenter& notifications;
        WebSocketServer& server;
        Windows& windows;
        Log& log;
    };

    using Caller = std::shared_ptr<const IncomingCallInfo>;

    static std::shared_ptr<CallWindows> make(const Dependencies& dependencies);
    CallWindows(const CallWindows&) = delete;
    CallWindows& operator=(const CallWindows&) = delete;

    // Called once each, at launch, in this order.
    void setupIncomingCallObservation();
    void setupActiveCallObservation();
    void setupCallEndObservation();

    /// Updates the open panel in place, or opens one.
    void showIncomingCallBanner(const Caller& info);
    void closeIncomingCallBanner();
    /// The callbacks keep these windows alive.
    std::shared_ptr<IncomingCallBanner> createBannerView(const Caller& info);

    /// An open panel stays as it is.
    void showActiveCallWindow(const std::string& name, const std::string& number);
    void closeActiveCallWindow();

private:
    explicit CallWindows(const Dependencies& dependencies) : on_(dependencies) {}

    template <class Step> void followLater(AppNotification notification, Step step);
    /// Null: no call rings.
    void incomingCallChanged(const Caller& info);
    void prepareActiveCall(const AppNotificationObject& object);
    void durationUpdated(const AppNotificationObject& object);
    void place(Window& panel);

    Dependencies on_;
    std::shared_ptr<Window> incomingCallWindow_;
    std::shared_ptr<Window> activeCallWindow_;
    std::vector<Subscription> cancellables_;
};

} // namespace velloway
