#pragma once

#include "phone/Handset.h"
#include "phone/device/Adapters.h"
#include "phone/device/DeviceOptions.h"

#include <chrono>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velloway::phone::device {

/// The real phone, behind its commands. Each adapter does one thing; this decides when.
class DeviceHandset : public Handset {
public:
    DeviceHandset(Services services, CommandRunner& runner, const DeviceOptions& options);

    void linkIsUp() override;
    void linkIsDown() override;

    void sendIntroduction() override;
    void sendSmsHistory() override;
    void sendCallHistory() override;
    void sendClipboard() override;
    void sendBattery() override;

    void setClipboard(const std::string& text) override;
    void sendSms(const std::string& number, const std::string& body, std::int64_t simSlot) override;
    void makeCall(const std::string& number, std::int64_t simSlot) override;
    void answerCall() override;
    void hangUpCall() override;
    void toggleSpeaker(bool isEnabled) override;
    void toggleMute(bool isEnabled) override;
    void reply(const std::string& key, const std::string& message) override;
    void find() override;
    void pressMediaKey(const std::string& command) override;
    void navigate(const std::string& command) override;
    void fileIsReceived(const std::string& path) override;
    void ring(const std::string& number, const std::string& name) override;

private:
    void sendName();
    void say(std::string message);
    void poll();
    void pollSms(std::optional<boost::json::value> notifications);
    void pollBattery();
    void pollCalls();
    void pollLater();
    void showNewSms(const std::vector<Sms>& list);
    void showNewNotifications(const boost::json::value& answer);
    bool isBodyOfNewSms(const std::string& body) const;
    void cannot(const std::string& what);
    std::vector<Sms> readSms(const boost::json::value& answer);
    std::string asOnPhone(const std::string& number) const;

    DeviceOptions options_;
    Caller caller_;
    Contacts contacts_;
    NotificationList notifications_;
    Battery battery_;
    bool isUp_ = false;
    bool isPolling_ = false;
    std::shared_ptr<void> timer_;
    int round_ = 0;
    std::optional<std::int64_t> newestSms_;
    std::string callMark_;
    /// The texts of messages that have just been shown, which the phone's own notifications repeat.
    std::deque<std::pair<std::chrono::steady_clock::time_point, std::string>> shownSms_;
    std::shared_ptr<void> findTimer_;
    std::set<std::string> reported_;
    /// By their digits: the computer sends numbers back without their `+`.
    std::map<std::string, std::string> numbers_;
};

/// What the phone's commands cannot do, and what is missing of them, one line each, to be shown at the start.
/// `isInstalled` says whether a command is on the PATH.
std::vector<std::string> limits(const std::function<bool(const std::string& command)>& isInstalled,
                                const DeviceOptions& options);

} // namespace velloway::phone::device
