#include "phone/device/DeviceHandset.h"

#include "phone/Messages.h"
#include "phone/device/FindTone.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace velloway::phone::device {

namespace json = boost::json;

namespace {

constexpr int newestCount = 20;
constexpr int roundsPerSlowLook = 6;
constexpr double findSeconds = 6;
constexpr std::chrono::seconds repeatedWithin{60};
constexpr std::string_view smsKey = "sms:";

std::string ownName() {
    char name[256] = "";
    gethostname(name, sizeof name - 1);
    return name[0] == '\0' ? "Phone" : name;
}

std::string withoutLineEnd(std::string text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) {
        text.pop_back();
    }
    return text;
}

} // namespace

DeviceHandset::DeviceHandset(Services services, CommandRunner& runner, const DeviceOptions& options)
    : Handset(std::move(services)), options_(options), caller_(runner, services_.note, options.commandLimit) {}

void DeviceHandset::say(std::string message) {
    // An answer of a slow command may come when the computer has gone.
    if (isUp_) {
        services_.say(std::move(message));
    }
}

void DeviceHandset::cannot(const std::string& what) {
    if (reported_.insert(what).second) {
        note("the phone's commands cannot do this: " + what);
    }
}

// ---- The link

void DeviceHandset::linkIsUp() {
    isUp_ = true;
    battery_.forget();
    round_ = 0;
    sendIntroduction();
    if (!isPolling_) {
        isPolling_ = true;
        poll();
    }
}

void DeviceHandset::linkIsDown() {
    isUp_ = false;
}

// ---- What is sent

void DeviceHandset::sendIntroduction() {
    sendName();
    caller_.poll(
        WifiInfo::words(),
        [this](const json::value& answer) {
            if (const std::string name = WifiInfo::name(answer); !name.empty()) {
                say(messages::deviceInfo(name, std::nullopt));
            }
        },
        [] {});
    caller_.poll(
        DeviceInfo::words(),
        [this](const json::value& answer) {
            std::string carrier = DeviceInfo::carrier(answer);
            std::replace(carrier.begin(), carrier.end(), ',', ' ');
            if (!carrier.empty()) {
                say(messages::simInfo(carrier));
            }
        },
        [] {});
}

void DeviceHandset::sendName() {
    if (!options_.name.empty()) {
        say(messages::connected(options_.name));
        return;
    }
    caller_.call({"getprop", "ro.product.model"}, [this](const std::string& output) {
        if (const std::string model = withoutLineEnd(output); !model.empty()) {
            say(messages::connected(model));
        }
    });
    say(messages::connected(ownName()));
}

void DeviceHandset::sendSmsHistory() {
    contacts_.load(caller_, [this] {
        caller_.ask(SmsList::words(options_.logLength),
                    [this](const json::value& answer) { say(SmsList::message(readSms(answer))); });
    });
}

std::vector<Sms> DeviceHandset::readSms(const json::value& answer) {
    std::vector<Sms> list = SmsList::read(answer, contacts_);
    for (const Sms& sms : list) {
        if (const std::string number = plainNumber(sms.address); number.size() > 1 && number[0] == '+') {
            numbers_[number.substr(1)] = number;
        }
    }
    return list;
}

std::string DeviceHandset::asOnPhone(const std::string& number) const {
    const auto found = numbers_.find(number);
    return found == numbers_.end() ? number : found->second;
}

void DeviceHandset::sendCallHistory() {
    contacts_.load(caller_, [this] {
        caller_.ask(CallLog::words(options_.logLength),
                    [this](const json::value& answer) { say(CallLog::message(answer, contacts_)); });
    });
}

void DeviceHandset::sendClipboard() {
    Clipboard::get(caller_, [this](const std::string& text) { say(messages::clipboard(text)); });
}

void DeviceHandset::sendBattery() {
    battery_.forget();
    pollBattery();
}

// ---- What is new on the phone: one look after the other, then a pause

void DeviceHandset::poll() {
    if (!isUp_) {
        pollLater();
        return;
    }
    // A message is in the log before the phone notifies of it: read in this order, the log has every message
    // that the notifications repeat.
    caller_.poll(
        NotificationList::words(), [this](const json::value& answer) { pollSms(answer); },
        [this] { pollSms(std::nullopt); });
    if (round_++ % roundsPerSlowLook == 0) {
        pollBattery();
        pollCalls();
    }
}

void DeviceHandset::pollSms(std::optional<json::value> notifications) {
    const auto finish = [this, notifications = std::move(notifications)] {
        if (isUp_ && notifications) {
            showNewNotifications(*notifications);
        }
        pollLater();
    };
    caller_.poll(
        SmsList::words(newestCount),
        [this, finish](const json::value& answer) {
            if (isUp_) {
                showNewSms(readSms(answer));
            }
            finish();
        },
        finish);
}

void DeviceHandset::showNewSms(const std::vector<Sms>& list) {
    const std::int64_t newest = list.empty() ? 0 : list.back().date;
    if (newestSms_ && newest > *newestSms_) {
        for (const Sms& sms : list) {
            if (sms.date > *newestSms_ && !sms.isSent) {
                say(messages::notification({"Messages", sms.name.empty() ? sms.address : sms.name, sms.body,
                                            std::string(smsKey) + sms.address + "/" + std::to_string(sms.date),
                                            static_cast<double>(sms.date / 1000)}));
                shownSms_.emplace_back(std::chrono::steady_clock::now(), sms.body);
            }
        }
        sendSmsHistory();
    }
    newestSms_ = std::max(newest, newestSms_.value_or(0));
}

bool DeviceHandset::isBodyOfNewSms(const std::string& body) const {
    return std::any_of(shownSms_.begin(), shownSms_.end(),
                       [&](const auto& shown) { return shown.second == body; });
}

void DeviceHandset::showNewNotifications(const json::value& answer) {
    while (!shownSms_.empty() && std::chrono::steady_clock::now() - shownSms_.front().first > repeatedWithin) {
        shownSms_.pop_front();
    }
    for (const NotificationList::Entry& entry : notifications_.takeNew(answer)) {
        if (isBodyOfNewSms(entry.body)) {
            continue;
        }
        messages::Notification message{entry.app, entry.title, entry.body, std::nullopt, std::nullopt};
        if (!entry.key.empty()) {
            message.key = entry.key;
        }
        if (entry.time) {
            message.time = static_cast<double>(*entry.time / 1000);
        }
        say(messages::notification(message));
    }
}

void DeviceHandset::pollLater() {
    timer_ = services_.after(options_.pollInterval, [this] { poll(); });
}

void DeviceHandset::pollBattery() {
    caller_.poll(
        Battery::words(),
        [this](const json::value& answer) {
            if (!isUp_) {
                return;
            }
            if (const auto message = battery_.messageIfChanged(answer)) {
                say(*message);
            }
        },
        [] {});
}

void DeviceHandset::pollCalls() {
    caller_.poll(
        CallLog::words(1),
        [this](const json::value& answer) {
            const std::string mark = CallLog::mark(answer);
            if (!callMark_.empty() && mark != callMark_) {
                sendCallHistory();
            }
            callMark_ = mark;
        },
        [] {});
}

// ---- What the computer asks for

void DeviceHandset::setClipboard(const std::string& text) {
    Clipboard::set(caller_, text);
}

void DeviceHandset::sendSms(const std::string& number, const std::string& body, std::int64_t simSlot) {
    SmsSend::send(caller_, asOnPhone(number), body, simSlot);
}

void DeviceHandset::makeCall(const std::string& number, std::int64_t) {
    TelephonyCall::dial(caller_, asOnPhone(number));
}

void DeviceHandset::answerCall() {
    cannot("answering a call");
}

void DeviceHandset::hangUpCall() {
    cannot("ending a call");
}

void DeviceHandset::toggleSpeaker(bool) {
    cannot("switching the speaker of a call");
}

void DeviceHandset::toggleMute(bool) {
    cannot("muting a call");
}

void DeviceHandset::reply(const std::string& key, const std::string& message) {
    if (key.compare(0, smsKey.size(), smsKey) != 0) {
        note("not sent: the phone's commands cannot reply to this notification");
        return;
    }
    const std::size_t end = key.rfind('/');
    SmsSend::send(caller_, key.substr(smsKey.size(), end - smsKey.size()), message, std::nullopt);
}

void DeviceHandset::find() {
    if (findTimer_) {
        return;
    }
    note("the computer is looking for this phone");
    const auto path =
        std::filesystem::temp_directory_path() / ("velloway-find-" + std::to_string(getuid()) + ".wav");
    std::ofstream(path, std::ios::binary | std::ios::trunc) << findTone();
    const auto before = std::make_shared<std::optional<std::int64_t>>();
    Volume::ask(caller_, [this, before](Volume::Level level) {
        *before = level.now;
        Volume::set(caller_, level.most);
    });
    MediaPlayer::play(caller_, path.string());
    Signals::vibrate(caller_, static_cast<int>(findSeconds * 1000) - 1000);
    Signals::torch(caller_, true);
    findTimer_ = services_.after(findSeconds, [this, before, path] {
        Signals::torch(caller_, false);
        MediaPlayer::stop(caller_);
        if (*before) {
            Volume::set(caller_, **before);
        }
        findTimer_.reset();
    });
}

void DeviceHandset::pressMediaKey(const std::string& command) {
    if (command == "vol_up" || command == "vol_down") {
        const std::int64_t step = command == "vol_up" ? 1 : -1;
        Volume::ask(caller_, [this, step](Volume::Level level) {
            Volume::set(caller_, std::clamp<std::int64_t>(level.now + step, 0, level.most));
        });
    } else if (command == "play_pause") {
        MediaPlayer::playOrPause(caller_);
    } else {
        cannot("the media key " + command);
    }
}

void DeviceHandset::navigate(const std::string& command) {
    cannot("the key " + command);
}

void DeviceHandset::fileIsReceived(const std::string& path) {
    Storage::announce(caller_, path);
}

void DeviceHandset::ring(const std::string& number, const std::string& name) {
    services_.say(messages::incomingCall(number, name));
}

} // namespace velloway::phone::device
