#pragma once

#include "hosts/linux/desktop/DesktopColors.h"
#include "hosts/linux/desktop/LaunchEnvironment.h"
#include "hosts/linux/desktop/LinuxApplication.h"
#include "hosts/linux/desktop/LinuxHost.h"
#include "hosts/linux/desktop/LinuxLoginItem.h"
#include "hosts/linux/desktop/LinuxPasteboard.h"
#include "hosts/linux/desktop/LinuxStatusItem.h"
#include "hosts/linux/desktop/LinuxUserDefaults.h"
#include "hosts/linux/desktop/LinuxWorkspace.h"
#include "hosts/linux/desktop/SingleInstance.h"
#include "hosts/linux/desktop/TerminationSignals.h"
#include "hosts/qt/QtMainQueue.h"
#include "hosts/qt/StandardOutputLog.h"

#include <QApplication>

#include <memory>
#include <string_view>

namespace velloway {

class TraylessWindow;

/// The desktop's side of the Linux host: the Qt application, its event loop, and the ports that need nothing
/// but them. One per process. Main thread.
class LinuxDesktop {
public:
    LinuxDesktop(int& argc, char** argv);
    ~LinuxDesktop();

    /// To be asked once, before `run`.
    SingleInstance::Outcome claimSession();
    int run(ApplicationDelegate& delegate);
    void terminate();

    // In the order in which they must come to be; they go in the opposite one.
    StandardOutputLog log;
    LaunchEnvironment launchEnvironment = LaunchEnvironment::take();
    QApplication qtApplication;
    QtMainQueue mainQueue;
    LinuxHost host;
    LinuxUserDefaults userDefaults;
    LinuxPasteboard pasteboard;
    LinuxLoginItem loginItem;
    LinuxWorkspace workspace;
    LinuxApplication application;
    LinuxStatusItem statusItem;

private:
    void launch();
    void handle(const SingleInstance::Request& request);
    bool isStartByBus(const SingleInstance::Request& request) const;
    void attend();
    void open(const std::vector<std::string>& uris);
    void handOver(const std::vector<std::string>& uris);
    void choose(std::string_view action);
    void reopen();
    void showTraylessWindow();

    DesktopColors colors_;
    TerminationSignals terminationSignals_{[this] { terminate(); }};
    SingleInstance instance_;
    SingleInstance::Request ownRequest_;
    ApplicationDelegate* delegate_ = nullptr;
    /// A tray has had time to show up.
    bool isSettled_ = false;
    std::unique_ptr<TraylessWindow> traylessWindow_;
};

} // namespace velloway
