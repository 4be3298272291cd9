#include "app/Program.h"

#include "platform/Host.h"

#include <utility>

namespace velloway {

Program::Program(const Platform& on, std::function<void()> terminate)
    : notificationManager_(on.notificationCenter, on.host, on.log), launchAtLogin_(on.loginItem, on.log),
      server_(WebSocketServer::make({
          .main = on.mainQueue,
          .queue = on.serverQueue,
          .network = on.network,
          .userDefaults = on.userDefaults,
          .pasteboard = on.pasteboard,
          .input = on.inputEvents,
          .scripts = on.scripts,
          .accessibility = on.accessibility,
          .host = on.host,
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
          .terminate = std::move(terminate),
      })) {}

Program::~Program() = default;

} // namespace velloway
