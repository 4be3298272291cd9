#include "hosts/HostRuntime.h"
#include "hosts/mac/MacAccessibility.h"
#include "hosts/mac/MacActivity.h"
#include "hosts/mac/MacApplication.h"
#include "hosts/mac/MacDispatchQueue.h"
#include "hosts/mac/MacHost.h"
#include "hosts/mac/MacInputEvents.h"
#include "hosts/mac/MacLoginItem.h"
#include "hosts/mac/MacMemory.h"
#include "hosts/mac/MacNetwork.h"
#include "hosts/mac/MacPasteboard.h"
#include "hosts/mac/MacScripts.h"
#include "hosts/mac/MacStatusItem.h"
#include "hosts/mac/MacSystemImages.h"
#include "hosts/mac/MacUserDefaults.h"
#include "hosts/mac/MacUserNotificationCenter.h"
#include "hosts/mac/MacWindows.h"
#include "hosts/mac/MacWorkspace.h"
#include "hosts/mac/QtSurface.h"
#include "hosts/posix/PosixFiles.h"
#include "hosts/qt/QtMainQueue.h"
#include "hosts/qt/StandardOutputLog.h"

#include <QApplication>
#include <QEvent>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <future>
#include <memory>

namespace velloway {

namespace {

/// What must be settled before the toolkit's application object is made: it would take this process for one
/// with a place in the Dock, and bring it to the front.
struct BackgroundStart {
    BackgroundStart() { qputenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM", "1"); }
};

/// `terminate:` ends the process there and then. The toolkit would turn it down, close every window and come
/// back from its event loop, for which a running alert would have to be answered first.
class EndingApplication final : public QApplication {
public:
    using QApplication::QApplication;

    /// Called before the process ends.
    std::function<void()> onEnd;

protected:
    bool event(QEvent* event) override {
        if (event->type() == QEvent::Quit) {
            if (onEnd) {
                onEnd();
            }
            // Nothing else is to be run down: other threads are still at work.
            std::_Exit(EXIT_SUCCESS);
        }
        return QApplication::event(event);
    }
};

/// A busy main queue runs many jobs in one turn of the event loop; what they leave to the pool goes after each.
void runInPool(DispatchQueue::Job& job) {
    @autoreleasepool {
        job();
        job = nullptr;
    }
}

/// How long the end of the program waits for what has come for files.
constexpr std::chrono::milliseconds longestLastFiles{500};

/// Waits until the jobs that `queue` has by now are done, but no longer than `limit`.
void waitForJobs(DispatchQueue& queue, std::chrono::milliseconds limit) {
    const auto last = std::make_shared<std::promise<void>>();
    queue.async([last] { last->set_value(); });
    last->get_future().wait_for(limit);
}

/// Every port of this host, in the order in which they must come to be.
struct MacPorts {
    MacPorts(int& argc, char** argv) : qtApplication(argc, argv) {
        QCoreApplication::setApplicationName(QStringLiteral("Velloway"));
        QGuiApplication::setQuitOnLastWindowClosed(false);
    }

    StandardOutputLog log;
    BackgroundStart backgroundStart;
    MacDelegate delegate;
    MacApplication application{delegate};
    EndingApplication qtApplication;
    QtMainQueue mainQueue{runInPool};
    MacHost host;
    PosixFiles files;
    MacMemory memory;
    MacUserDefaults userDefaults;
    MacUserNotificationCenter notificationCenter{delegate};
    MacPasteboard pasteboard;
    MacInputEvents inputEvents;
    MacScripts scripts;
    MacAccessibility accessibility;
    MacLoginItem loginItem;
    MacStatusItem statusItem{delegate};
    QtSurfaces surfaces{std::make_shared<MacSystemImages>()};
    MacWindows windows{delegate, [this](std::shared_ptr<WindowContent> content, MacWindows::Look look) {
                           return surfaces.make(std::move(content), look);
                       }};
    MacWorkspace workspace;
    MacDispatchQueue fileQueue{"ws.files"};
    MacDispatchQueue serverQueue{"ws.server"};
    MacDispatchQueue readingQueue{"ws.reading"};
    MacNetwork network{beginConnectedActivity};
};

class MacHostRuntime final : public HostRuntime {
public:
    MacHostRuntime(int& argc, char** argv) : ports_(argc, argv) {
        ports_.qtApplication.onEnd = [this] { waitForJobs(ports_.fileQueue, longestLastFiles); };
    }

    Platform platform() override { return platformOf(ports_); }
    int run(ApplicationDelegate& delegate) override {
        ports_.delegate.application = &delegate;
        const int answer = QApplication::exec();
        ports_.delegate.application = nullptr;
        return answer;
    }
    void terminate() override { ports_.application.terminate(); }

private:
    MacPorts ports_;
};

} // namespace

/// There is never a second instance in a session: the system hands another start to the one that runs.
HostStart makeHost(int& argc, char** argv) {
    return {.host = std::make_unique<MacHostRuntime>(argc, argv)};
}

} // namespace velloway
