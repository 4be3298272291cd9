#include "hosts/linux/desktop/LinuxDesktop.h"

#include <QPalette>
#include <QSocketNotifier>
#include <QWindow>

#include <iostream>
#include <string>
#include <unistd.h>
#include <vector>

namespace velloway::test {
namespace {

/// Writes down what the desktop asks of the program, one line each.
class ProbeDelegate : public ApplicationDelegate, public ServicesProvider {
public:
    explicit ProbeDelegate(LinuxDesktop& desktop) : desktop_(desktop) {}

    void applicationDidFinishLaunching() override {
        desktop_.statusItem.create();
        desktop_.statusItem.setImage({.kind = StatusImage::Kind::asset, .name = "StatusIcon"});
        desktop_.statusItem.setMenu({
            {.title = "Velloway", .isEnabled = false},
            {.isSeparator = true},
            {.title = "Server: starting…", .tag = 1, .isEnabled = false},
            {.isSeparator = true},
            entry("Call…", "c", "onMenuCall"),
            entry("Send SMS…", "s", "onMenuSms"),
            entry("File Drop…", "f", "onMenuFileDrop"),
            entry("Notifications…", "y", "onMenuHistory"),
            entry("Remote Control…", "r", "onMenuRemote"),
            entry("Send Clipboard", "v", "onMenuSendClipboard"),
            entry("Clipboard History…", "h", "onMenuClipboardHistory"),
            entry("Settings…", ",", "onMenuSettings"),
            entry("Info…", "i", "onMenuInfo"),
            {.isSeparator = true},
            {.title = "Quit Velloway", .keyEquivalent = "q", .action = MenuItem::Action::terminate},
        });
        desktop_.application.setServicesProvider(this);
        desktop_.log.line({"launched"});
    }
    bool applicationShouldTerminateAfterLastWindowClosed() override { return false; }
    bool applicationShouldHandleReopen(bool hasVisibleWindows) override {
        desktop_.log.line({"reopen ", hasVisibleWindows ? "with windows" : "without windows"});
        return true;
    }
    void applicationOpenLinks(const std::vector<std::string>& addresses) override {
        std::string line = "links";
        for (const std::string& address : addresses) {
            line += " [" + address + "]";
        }
        desktop_.log.line({line});
    }
    void applicationDidBecomeActive() override { desktop_.log.line({"active"}); }
    void handleSendToAndroidService(const ServicePasteboard& pasteboard) override {
        std::string line = pasteboard.hasFileUrls ? "files" : "no files";
        for (const std::filesystem::path& file : *pasteboard.urls) {
            line += " [" + file.string() + "]";
        }
        desktop_.log.line({line});
    }

private:
    MenuItem entry(const char* title, const char* key, const char* operation) {
        return {.title = title,
                .keyEquivalent = key,
                .action = MenuItem::Action::call,
                .operation = operation,
                .onChosen = [this, title] {
                    desktop_.log.line({"chosen ", title});
                }};
    }

    LinuxDesktop& desktop_;
};

/// Commands on standard input; its end ends the program.
void obey(LinuxDesktop& desktop) {
    std::string line;
    if (!std::getline(std::cin, line) || line == "quit") {
        desktop.terminate();
    } else if (line == "close") {
        QApplication::closeAllWindows();
    } else if (line == "window") {
        auto* window = new QWindow;
        window->setTitle(QStringLiteral("Probe"));
        window->setGeometry(100, 100, 200, 100);
        window->show();
    } else if (line == "dark") {
        QPalette dark(QColor(0x35, 0x35, 0x35), QColor(0x2a, 0x2a, 0x2a));
        dark.setColor(QPalette::Highlight, QColor(0x3d, 0xae, 0xe9));
        QApplication::setPalette(dark);
    } else if (line.starts_with("status ")) {
        desktop.statusItem.setItemTitle(1, line.substr(7));
    }
}

} // namespace
} // namespace velloway::test

int main(int argc, char** argv) {
    using namespace velloway;
    LinuxDesktop desktop(argc, argv);
    switch (desktop.claimSession()) {
    case SingleInstance::Outcome::first:
        break;
    case SingleInstance::Outcome::handedOver:
        desktop.log.line({"handed over"});
        return 0;
    case SingleInstance::Outcome::notAnswered:
        desktop.log.line({"not answered"});
        return 1;
    }
    test::ProbeDelegate delegate(desktop);
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&desktop] { test::obey(desktop); });
    return desktop.run(delegate);
}
