#include "hosts/HostRuntime.h"
#include "hosts/linux/desktop/LinuxDesktop.h"
#include "hosts/linux/desktop/LinuxMemory.h"
#include "hosts/linux/desktop/LinuxScripts.h"
#include "hosts/linux/desktop/MediaControls.h"
#include "hosts/linux/desktop/ThreadSchedule.h"
#include "hosts/linux/input/InputSession.h"
#include "hosts/linux/input/PermissionWorkspace.h"
#include "hosts/linux/network/AsioQueue.h"
#include "hosts/linux/network/LinuxNetwork.h"
#include "hosts/linux/notifications/LinuxUserNotificationCenter.h"
#include "hosts/linux/windows/QtWindows.h"
#include "hosts/linux/windows/SessionPlatform.h"
#include "hosts/linux/windows/ViewsLibrary.h"
#include "hosts/posix/PosixFiles.h"
#include "remote/SystemScripts.h"

#include <xcb/xcb.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace velloway {

namespace {

/// How long the end of the program waits for the running jobs of the queues for reading and for messages, and
/// after them for what has come for files.
constexpr std::chrono::milliseconds longestLastJob{250};
constexpr std::chrono::milliseconds longestLastFiles{500};

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

/// Every port of this host.
struct LinuxPorts : LinuxDesktop {
    using LinuxDesktop::LinuxDesktop;

    LinuxUserNotificationCenter notificationCenter{mainQueue};
    MediaControls mediaControls{[this](const std::string& error) { logScriptError(log, error); }};
    std::unique_ptr<LinuxInput> input = makeLinuxInput({
        .settings = LinuxUserDefaults::defaultFile(),
        .warn =
            [this](std::string_view warning) {
                log.line({"[Input] ", warning});
            },
        .pressUnclaimed =
            [this](MediaKey key, InputNeeds::MediaKeyDone done) {
                QMetaObject::invokeMethod(
                    &mediaControls, [this, key, done = std::move(done)] { mediaControls.press(key, done); });
            },
    });
    InputEvents& inputEvents = *input;
    Accessibility& accessibility = *input;
    PermissionWorkspace workspace{LinuxDesktop::workspace, *input};
    LinuxScripts scripts{[this](const std::string& error) { logScriptError(log, error); }};
    PosixFiles files;
    LinuxMemory memory;
    AsioQueue readingQueue{"ws.reading"};
    QtWindows windows{[this] { return loadViewsLibrary(log); }};
    // Last, because their jobs may use everything above. What a job of the file queue leaves for others goes at
    // once: the next one may take long.
    AsioQueue fileQueue{"ws.files", {.began = letOthersGoFirst}};
    AsioQueue serverQueue{"ws.server",
                          {.began =
                               [] {
                                   StandardOutputLog::gatherOnThisThread();
                                   QtMainQueue::gatherOnThisThread();
                               },
                           .ended =
                               [this] {
                                   // Lines keep their place before those of the jobs that begin now.
                                   mainQueue.flush();
                                   log.flush();
                               }}};
    LinuxNetwork network{serverQueue};
};

class LinuxHostRuntime : public HostRuntime {
public:
    LinuxHostRuntime(int& argc, char** argv) : ports_(argc, argv) {
        platform_.withdraw();
        takeShortTurns();
    }

    SingleInstance::Outcome claimSession() { return ports_.claimSession(); }

    Platform platform() override { return platformOf(ports_); }
    int run(ApplicationDelegate& delegate) override {
        const int exitCode = ports_.run(delegate);
        const bool isReadingDone = ports_.readingQueue.end(longestLastJob);
        const bool isServerDone = ports_.serverQueue.end(longestLastJob);
        const bool areFilesDone = ports_.fileQueue.finish(longestLastFiles);
        if (!isReadingDone || !isServerDone || !areFilesDone) {
            // A file may lie on a disk that does not answer.
            ports_.log.flush();
            std::_Exit(exitCode);
        }
        ports_.mainQueue.end();
        return exitCode;
    }
    void terminate() override { ports_.terminate(); }

private:
    SessionPlatform platform_;
    LinuxPorts ports_;
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
