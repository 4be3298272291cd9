#pragma once

#include "phone/device/Caller.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

/// One small adapter per command of the phone: it knows the command's words and how to read what comes back,
/// and nothing else. Times that commands write are local times, as text.
namespace velloway::phone::device {

/// Milliseconds since 1970 for "2024-05-01 18:30:07", the seconds being optional. Absent for anything else.
std::optional<std::int64_t> readTime(const std::string& text);

/// A telephone number as commands take it: digits, `*`, `#` and a leading `+`. Empty when the text holds
/// letters or no digit, so that nothing else ever reaches a command as a number.
std::string plainNumber(std::string_view text);

/// termux-contact-list
class Contacts {
public:
    /// Reads the address book once; `done` comes in any case.
    void load(Caller& caller, std::function<void()> done);
    /// Empty when unknown. Numbers are compared by their last nine digits.
    std::string nameOf(std::string_view number) const;
    static std::map<std::string, std::string> read(const boost::json::value& answer);

private:
    std::map<std::string, std::string> names_;
    bool isLoaded_ = false;
};

struct Sms {
    std::string address;
    /// Empty when the number is not in the address book.
    std::string name;
    std::string body;
    /// Milliseconds since 1970, different for any two messages of the same second.
    std::int64_t date = 0;
    bool isSent = false;
};

/// termux-sms-list
class SmsList {
public:
    static std::vector<std::string> words(int limit);
    /// Drafts and whatever could not be sent are left out; the newest stand last.
    static std::vector<Sms> read(const boost::json::value& answer, const Contacts& contacts);
    /// The whole message `sms_history`.
    static std::string message(const std::vector<Sms>& list);
};

/// termux-sms-send
class SmsSend {
public:
    /// `simSlot` is absent for the phone's own choice.
    static void send(Caller& caller, const std::string& number, const std::string& body,
                     std::optional<std::int64_t> simSlot);
};

/// termux-call-log
class CallLog {
public:
    static std::vector<std::string> words(int limit);
    /// The whole message `call_history`.
    static std::string message(const boost::json::value& answer, const Contacts& contacts);
    /// Tells two states of the log apart.
    static std::string mark(const boost::json::value& answer);
};

/// termux-telephony-call
class TelephonyCall {
public:
    static void dial(Caller& caller, const std::string& number);
};

/// termux-notification-list
class NotificationList {
public:
    struct Entry {
        std::string key;
        std::string app;
        std::string title;
        std::string body;
        std::optional<std::int64_t> time;
    };
    static std::vector<std::string> words() { return {"termux-notification-list"}; }
    /// Those that were not there at the last look, oldest first. The first look gives none: what was on the
    /// phone before is not new. A change of nothing but digits, such as a progress, is not new either.
    std::vector<Entry> takeNew(const boost::json::value& answer);

private:
    std::optional<std::set<std::string>> seen_;
};

/// termux-battery-status
class Battery {
public:
    static std::vector<std::string> words() { return {"termux-battery-status"}; }
    /// The message `battery_status`; absent when nothing has changed since the last one.
    std::optional<std::string> messageIfChanged(const boost::json::value& answer);
    void forget() { last_.clear(); }

private:
    std::string last_;
};

/// termux-clipboard-get and termux-clipboard-set
class Clipboard {
public:
    static void get(Caller& caller, std::function<void(std::string text)> done);
    static void set(Caller& caller, const std::string& text);
};

/// termux-volume
class Volume {
public:
    struct Level {
        std::int64_t now = 0;
        std::int64_t most = 0;
    };
    static void ask(Caller& caller, std::function<void(Level)> done);
    static void set(Caller& caller, std::int64_t level);
    static std::optional<Level> read(const boost::json::value& answer);
};

/// termux-media-player: plays what this program gave it, and no other application's music.
class MediaPlayer {
public:
    static void playOrPause(Caller& caller);
    static void play(Caller& caller, const std::string& path);
    static void stop(Caller& caller);
};

/// termux-torch and termux-vibrate
class Signals {
public:
    static void torch(Caller& caller, bool isOn);
    static void vibrate(Caller& caller, int milliseconds);
};

/// termux-telephony-deviceinfo
class DeviceInfo {
public:
    static std::vector<std::string> words() { return {"termux-telephony-deviceinfo"}; }
    /// The carrier of the SIM; empty when there is none.
    static std::string carrier(const boost::json::value& answer);
};

/// termux-wifi-connectioninfo
class WifiInfo {
public:
    static std::vector<std::string> words() { return {"termux-wifi-connectioninfo"}; }
    /// Empty when there is none, or when the phone does not give it away.
    static std::string name(const boost::json::value& answer);
};

/// termux-media-scan, termux-notification and termux-share
class Storage {
public:
    /// Makes a received file known to the phone's other applications, and shows a notification that opens it.
    static void announce(Caller& caller, const std::string& path);
};

} // namespace velloway::phone::device
