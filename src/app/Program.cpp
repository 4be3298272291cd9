#include "app/Program.h"

#include "hosts/HostRuntime.h"
#include "platform/Host.h"
#include "shell/LocalIP.h"

#include <utility>

namespace velloway {

Program::Program(const Platform& on, std::function<void()> terminate)
    : notificationManager_(on.notificationCenter, on.host, on.log),
      launchAtLogin_(on.loginItem, on.log),
      server_(WebSocketServer::make({
          .main = on.mainQueue,
          .queue = on.serverQueue,
          .fileQueue = on.fileQueue,
          .readingQueue = on.readingQueue,
          .network = on.network,
          .userDefaults = on.userDefaults,
          .pasteboard = on.pasteboard,
          .input = on.inputEvents,
          .scripts = on.scripts,
          .accessibility = on.accessibility,
          .host = on.host,
          .files = on.files,
          .memory = on.memory,
          .log = on.log,
          .notificationManager = notificationManager_,
          .notifications = notifications_,
      })),
      historyStore_(std::make_shared<HistoryStore>(on.host)),
      delegate_(AppDelegate::make({
          .main = on.mainQueue,
          .userDefaults = on.userDefaults,
          .notificationCenter = on.notificationCenter,
          .pasteboard = on.pasteboard,
          .accessibility = on.accessibility,
          .statusItem = on.statusItem,
          .application = on.application,
          .windows = on.windows,
          .workspace = on.workspace,
          .log = on.log,
          .server = *server_,
          .notifications = notifications_,
          .historyStore = historyStore_,
          .makeSettingsView = [this, on] { return makeSettingsView(on); },
          .terminate = std::move(terminate),
      })) {}

Program::~Program() = default;

std::shared_ptr<SettingsView> Program::makeSettingsView(const Platform& on) {
    return SettingsView::make({
        .history = historyStore_,
        .server = *server_,
        .userDefaults = on.userDefaults,
        .notificationCenter = on.notificationCenter,
        .accessibility = on.accessibility,
        .pasteboard = on.pasteboard,
        .workspace = on.workspace,
        .windows = on.windows,
        .host = on.host,
        .notifications = notifications_,
        .main = on.mainQueue,
        .localIP = [&host = on.host] { return LocalIPAddress::current(host); },
        .isLaunchAtLoginEnabled = [this] { return launchAtLogin_.isEnabled(); },
        .setLaunchAtLogin = [this](bool enabled) { launchAtLogin_.setEnabled(enabled); },
    });
}

int runProgram(HostRuntime& host) {
    Program program(host.platform(), [&host] { host.terminate(); });
    WebSocketServer::setShared(program.sharedServer());
    AppDelegate::setShared(program.sharedDelegate());
    const int exitCode = host.run(program.delegate());
    AppDelegate::setShared(nullptr);
    WebSocketServer::setShared(nullptr);
    return exitCode;
}

} // namespace velloway
