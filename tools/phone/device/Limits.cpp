#include "phone/device/DeviceHandset.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <unistd.h>

namespace velloway::phone::device {

namespace {

struct Need {
    const char* command;
    const char* without;
};

constexpr std::array needs{
    Need{"termux-sms-list", "no message log, and no new messages with a reply"},
    Need{"termux-sms-send", "no messages are sent"},
    Need{"termux-call-log", "no call log"},
    Need{"termux-telephony-call", "no numbers are dialled"},
    Need{"termux-notification-list", "no notifications"},
    Need{"termux-contact-list", "fewer names beside numbers"},
    Need{"termux-battery-status", "no battery level"},
    Need{"termux-clipboard-get", "the phone's clipboard is not sent"},
    Need{"termux-clipboard-set", "the computer's clipboard does not arrive"},
    Need{"termux-volume", "the volume cannot be changed"},
    Need{"termux-media-player", "no sound to find the phone by"},
    Need{"termux-vibrate", "no vibration to find the phone by"},
    Need{"termux-torch", "no light to find the phone by"},
    Need{"termux-telephony-deviceinfo", "no name of the carrier"},
    Need{"termux-wifi-connectioninfo", "no name of the network"},
    Need{"termux-media-scan", "other applications learn late of received files"},
    Need{"termux-notification", "no notification for a received file"},
};

} // namespace

bool isOnPath(const std::string& program) {
    const char* path = std::getenv("PATH");
    std::stringstream folders(path == nullptr ? "" : path);
    for (std::string folder; std::getline(folders, folder, ':');) {
        if (access((folder + "/" + program).c_str(), X_OK) == 0) {
            return true;
        }
    }
    return false;
}

std::vector<std::string> limits(const std::function<bool(const std::string&)>& isInstalled,
                                const DeviceOptions& options) {
    char interval[96];
    std::snprintf(interval, sizeof interval, "%g s; the battery and the call log every %g s",
                  options.pollInterval, options.pollInterval * 6);
    std::vector<std::string> lines{
        std::string("new notifications and messages are looked for every ") + interval,
        "the phone's commands cannot answer or end calls, switch the speaker or the microphone of a call, see "
        "a "
        "call that rings, choose the SIM of a call, press Home, Back or other keys, or control the music of "
        "other "
        "applications",
        "a reply can be sent to messages (SMS) only; other applications' notifications take none"};
    std::size_t missing = 0;
    for (const Need& need : needs) {
        if (!isInstalled(need.command)) {
            ++missing;
            lines.push_back(std::string(need.command) + " is not installed: " + need.without);
        }
    }
    if (missing == needs.size()) {
        lines.emplace_back("none of the phone's commands is there; `pkg install termux-api` brings them");
    }
    return lines;
}

} // namespace velloway::phone::device
