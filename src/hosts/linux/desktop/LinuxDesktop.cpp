#include "hosts/linux/desktop/LinuxDesktop.h"

#include "hosts/linux/desktop/FileUris.h"
#include "hosts/linux/desktop/StatusIcons.h"
#include "hosts/linux/desktop/TraylessWindow.h"
#include "hosts/linux/windows/IdleMemory.h"

#include <QIcon>
#include <QTimer>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <utility>

namespace velloway {

namespace {

/// The actions of the desktop entry, and the operation of the status menu that each is.
constexpr std::array<std::pair<std::string_view, std::string_view>, 9> actions{{
    {"send-clipboard", "onMenuSendClipboard"},
    {"call", "onMenuCall"},
    {"sms", "onMenuSms"},
    {"file-drop", "onMenuFileDrop"},
    {"notifications", "onMenuHistory"},
    {"remote", "onMenuRemote"},
    {"clipboard", "onMenuClipboardHistory"},
    {"settings", "onMenuSettings"},
    {"info", "onMenuInfo"},
}};

/// How long after the launch what only the start needed is given back: most of the code of the toolkit that has
/// run until then does not run again.
constexpr std::chrono::seconds startRest{3};

} // namespace

LinuxDesktop::LinuxDesktop(int& argc, char** argv) : qtApplication(argc, argv) {
    // The toolkit appends a display name of its own to every window's title; without one it displays this name.
    QCoreApplication::setApplicationName(QStringLiteral("Velloway"));
    QGuiApplication::setDesktopFileName(QStringLiteral("org.velloway.Velloway"));
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/icon/velloway.svg")));

    std::error_code error;
    const std::filesystem::path workingDirectory = std::filesystem::current_path(error);
    ownRequest_ = SingleInstance::requestFrom({argv + std::min(1, argc), argv + argc}, workingDirectory);
    ownRequest_.isUnattended = launchEnvironment.isUnattended;
    ownRequest_.token = launchEnvironment.token;

    QObject::connect(&statusItem, &LinuxStatusItem::activated, &application, [this] { reopen(); });
    QObject::connect(&statusItem, &LinuxStatusItem::trayWaitEnded, &application, [this] {
        isSettled_ = true;
        attend();
    });
    QObject::connect(&statusItem, &LinuxStatusItem::reachabilityChanged, &application, [this] {
        if (traylessWindow_ && statusItem.isReachable()) {
            traylessWindow_->close();
        }
    });
}

LinuxDesktop::~LinuxDesktop() = default;

SingleInstance::Outcome LinuxDesktop::claimSession() {
    return instance_.claim(ownRequest_);
}

int LinuxDesktop::run(ApplicationDelegate& delegate) {
    delegate_ = &delegate;
    application.setDelegate(&delegate);
    QGuiApplication::setQuitOnLastWindowClosed(delegate.applicationShouldTerminateAfterLastWindowClosed());
    mainQueue.async([this] { launch(); });
    const int answer = QApplication::exec();
    instance_.setHandler(nullptr);
    application.setDelegate(nullptr);
    delegate_ = nullptr;
    return answer;
}

void LinuxDesktop::terminate() {
    QCoreApplication::quit();
}

void LinuxDesktop::launch() {
    useActivationToken(ownRequest_.token);
    delegate_->applicationDidFinishLaunching();
    // Requests of other starts that came meanwhile have waited for this.
    instance_.setHandler([this](const SingleInstance::Request& request) { handle(request); });
    if (!ownRequest_.isReopen()) {
        open(ownRequest_.uris);
    }
    QTimer::singleShot(startRest, &qtApplication, [] { giveBackIdleMemory(); });
}

void LinuxDesktop::handle(const SingleInstance::Request& request) {
    useActivationToken(request.token);
    if (isStartByBus(request)) {
        ownRequest_.isUnattended = false;
        attend();
    } else if (!request.action.empty()) {
        choose(request.action);
    } else if (request.isReopen()) {
        reopen();
    } else {
        open(request.uris);
    }
}

/// The bus starts the program to deliver a message. When that asks for no more than to come forward, the user
/// has started the program from a menu, and it shows what every start shows.
bool LinuxDesktop::isStartByBus(const SingleInstance::Request& request) const {
    return ownRequest_.isUnattended && !isSettled_ && request.isReopen();
}

/// Without a tray, the menu comes as a window to a user who has started the program; at login it stays away.
void LinuxDesktop::attend() {
    if (isSettled_ && !ownRequest_.isUnattended && !statusItem.isReachable()) {
        showTraylessWindow();
    }
}

void LinuxDesktop::open(const std::vector<std::string>& uris) {
    std::vector<std::string> links;
    std::vector<std::string> files;
    for (const std::string& uri : uris) {
        (pathOfFileUri(uri) ? files : links).push_back(uri);
    }
    if (!files.empty() || links.empty()) {
        handOver(files);
    }
    if (!links.empty()) {
        delegate_->applicationOpenLinks(links);
    }
}

void LinuxDesktop::choose(std::string_view action) {
    const auto known =
        std::find_if(actions.begin(), actions.end(), [&](const auto& each) { return each.first == action; });
    const auto& items = statusItem.items();
    const auto item = std::find_if(items.begin(), items.end(), [&](const MenuItem& each) {
        return known != actions.end() && each.operation == known->second;
    });
    if (item != items.end()) {
        LinuxStatusItem::choose(*item);
    }
}

void LinuxDesktop::handOver(const std::vector<std::string>& uris) {
    ServicePasteboard given{.hasTypes = true, .urls = std::vector<std::filesystem::path>()};
    for (const std::string& uri : uris) {
        if (auto path = pathOfFileUri(uri)) {
            given.urls->push_back(std::move(*path));
        }
    }
    given.hasFileUrls = !given.urls->empty();
    if (ServicesProvider* provider = application.servicesProvider()) {
        provider->handleSendToAndroidService(given);
    }
}

void LinuxDesktop::reopen() {
    const bool hasVisibleWindows = LinuxApplication::hasVisibleWindows();
    if (!statusItem.isReachable()) {
        showTraylessWindow();
    }
    if (delegate_ != nullptr) {
        delegate_->applicationShouldHandleReopen(hasVisibleWindows);
    }
    if (hasVisibleWindows) {
        LinuxApplication::bringForward();
    }
}

void LinuxDesktop::showTraylessWindow() {
    if (!traylessWindow_) {
        traylessWindow_ = std::make_unique<TraylessWindow>(statusItem);
    }
    traylessWindow_->bringForward();
}

} // namespace velloway
