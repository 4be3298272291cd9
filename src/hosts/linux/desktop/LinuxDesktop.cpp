#include "hosts/linux/desktop/LinuxDesktop.h"

#include "hosts/linux/desktop/FileUris.h"
#include "hosts/linux/desktop/StatusIcons.h"
#include "hosts/linux/desktop/TraylessWindow.h"

#include <QIcon>
#include <QTimer>

#include <filesystem>

namespace velloway {

LinuxDesktop::LinuxDesktop(int& argc, char** argv) : qtApplication(argc, argv) {
    // The toolkit appends a display name of its own to every window's title; without one it displays this name.
    QCoreApplication::setApplicationName(QStringLiteral("Velloway"));
    QGuiApplication::setDesktopFileName(QStringLiteral("org.velloway.Velloway"));
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/icon/velloway.svg")));

    std::error_code error;
    const std::filesystem::path workingDirectory = std::filesystem::current_path(error);
    ownRequest_ = SingleInstance::requestFrom({argv + std::min(1, argc), argv + argc}, workingDirectory);

    QObject::connect(&statusItem, &LinuxStatusItem::activated, &application, [this] { reopen(); });
    QObject::connect(&statusItem, &LinuxStatusItem::patienceOver, &application, [this] {
        if (!statusItem.isReachable()) {
            showTraylessWindow();
        }
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
    delegate_->applicationDidFinishLaunching();
    // Requests of other starts that came meanwhile have waited for this.
    instance_.setHandler([this](const SingleInstance::Request& request) { handle(request); });
    if (!ownRequest_.isReopen()) {
        handOver(ownRequest_.uris);
    }
}

void LinuxDesktop::handle(const SingleInstance::Request& request) {
    if (request.isReopen()) {
        reopen();
    } else {
        handOver(request.uris);
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
}

void LinuxDesktop::showTraylessWindow() {
    if (!traylessWindow_) {
        traylessWindow_ = std::make_unique<TraylessWindow>(statusItem);
    }
    traylessWindow_->bringForward();
}

} // namespace velloway
