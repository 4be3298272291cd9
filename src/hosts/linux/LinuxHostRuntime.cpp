#include "hosts/HostRuntime.h"
#include "hosts/linux/desktop/LinuxDesktop.h"
#include "hosts/linux/desktop/LinuxScripts.h"
#include "hosts/linux/input/LinuxAccessibility.h"
#include "hosts/linux/input/LinuxInputEvents.h"
#include "hosts/linux/network/AsioQueue.h"
#include "hosts/linux/network/LinuxNetwork.h"
#include "hosts/linux/notifications/LinuxUserNotificationCenter.h"
#include "hosts/linux/windows/QtWindows.h"
#include "hosts/linux/windows/ViewsLibrary.h"

#include <xcb/xcb.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace velloway {

namespace {

/// How long the end of the program waits for the running job of the server queue.
constexpr std::chrono::milliseconds longestLastJob{250};

bool isSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

/// Without a display Qt would abort the process with advice for programmers.
bool hasScreen() {
    if (isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM")) {
        return true; // Qt knows better how to look there.
    }
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    const bool isThere = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return isThere;
}

class LinuxHostRuntime : public HostRuntime {
public:
    LinuxHostRuntime(int& argc, char** argv) : desktop_(argc, argv) {}

    SingleInstance::Outcome claimSession() { return desktop_.claimSession(); }

    Platform platform() override {
        return {.mainQueue = desktop_.mainQueue,
                .serverQueue = serverQueue_,
                .network = network_,
                .userDefaults = desktop_.userDefaults,
                .notificationCenter = notificationCenter_,
                .pasteboard = desktop_.pasteboard,
                .inputEvents = inputEvents_,
                .scripts = scripts_,
                .accessibility = accessibility_,
                .loginItem = desktop_.loginItem,
                .statusItem = desktop_.statusItem,
                .application = desktop_.application,
                .windows = windows_,
                .workspace = desktop_.workspace,
                .host = desktop_.host,
                .log = desktop_.log};
    }
    int run(ApplicationDelegate& delegate) override {
        const int exitCode = desktop_.run(delegate);
        if (!serverQueue_.end(longestLastJob)) {
            // The file that is being read may be large, or lie on a disk that does not answer.
            desktop_.log.flush();
            std::_Exit(exitCode);
        }
        desktop_.mainQueue.end();
        return exitCode;
    }
    void terminate() override { desktop_.terminate(); }

private:
    LinuxDesktop desktop_;
    LinuxUserNotificationCenter notificationCenter_{desktop_.mainQueue};
    std::unique_ptr<InputBackend> inputBackend_ = makeInputBackend();
    LinuxInputEvents inputEvents_{*inputBackend_};
    LinuxAccessibility accessibility_{*inputBackend_};
    LinuxScripts scripts_{[this](const std::string& error) {
        desktop_.log.line({"[WebSocketServer] AppleScript Error: ", error});
    }};
    QtWindows windows_{[this] { return loadViewsLibrary(desktop_.log); }};
    // Last, because its jobs may use everything above.
    AsioQueue serverQueue_{"ws.server",
                           {.began =
                                [] {
                                    StandardOutputLog::gatherOnThisThread();
                                    QtMainQueue::gatherOnThisThread();
                                },
                            .ended =
                                [this] {
                                    desktop_.log.flush();
                                    desktop_.mainQueue.flush();
                                }}};
    LinuxNetwork network_{serverQueue_};
};

} // namespace

HostStart makeHost(int& argc, char** argv) {
    if (!hasScreen()) {
        std::fputs("Velloway needs a desktop: neither DISPLAY nor WAYLAND_DISPLAY leads to one\n", stderr);
        return {.exitCode = 1};
    }
    auto runtime = std::make_unique<LinuxHostRuntime>(argc, argv);
    switch (runtime->claimSession()) {
    case SingleInstance::Outcome::first:
        return {.host = std::move(runtime)};
    case SingleInstance::Outcome::handedOver:
        return {};
    case SingleInstance::Outcome::notAnswered:
        break;
    }
    std::fputs("Velloway is already running but does not answer\n", stderr);
    return {.exitCode = 1};
}

} // namespace velloway
