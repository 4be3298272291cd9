#pragma once

#include <boost/json/object.hpp>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace velloway::phone {

/// The phone behind the link: what it knows and what it can be made to do. The made-up phone and the real one
/// are two of these. Everything runs on the loop; an answer may come any time after the question.
class Handset {
public:
    struct Services {
        /// Sends a message to the computer.
        std::function<void(std::string message)> say;
        /// Shows the user a line.
        std::function<void(const std::string& line)> note;
        /// Runs `work` after a while, unless what is returned is dropped first.
        std::function<std::shared_ptr<void>(double seconds, std::function<void()> work)> after;
    };

    explicit Handset(Services services) : services_(std::move(services)) {}
    virtual ~Handset() = default;
    Handset(const Handset&) = delete;
    Handset& operator=(const Handset&) = delete;

    // The link has come up, or has gone.
    virtual void linkIsUp() {}
    virtual void linkIsDown() {}

    // Each sends what it is named after.
    virtual void sendIntroduction() = 0;
    virtual void sendSmsHistory() = 0;
    virtual void sendCallHistory() = 0;
    virtual void sendClipboard() = 0;
    virtual void sendBattery() = 0;

    // What the computer asks for.
    virtual void setClipboard(const std::string& text) = 0;
    virtual void sendSms(const std::string& number, const std::string& body, std::int64_t simSlot) = 0;
    virtual void makeCall(const std::string& number, std::int64_t simSlot) = 0;
    virtual void answerCall() = 0;
    virtual void hangUpCall() = 0;
    virtual void toggleSpeaker(bool isEnabled) = 0;
    virtual void toggleMute(bool isEnabled) = 0;
    virtual void reply(const std::string& key, const std::string& message) = 0;
    virtual void find() = 0;
    virtual void pressMediaKey(const std::string& command) = 0;
    virtual void navigate(const std::string& command) = 0;

    /// A file from the computer is whole and lies at `path`.
    virtual void fileIsReceived(const std::string& path) = 0;

    /// The user of the terminal wants a ringing call shown on the computer.
    virtual void ring(const std::string& number, const std::string& name) = 0;

protected:
    void say(std::string message) const { services_.say(std::move(message)); }
    void note(const std::string& line) const { services_.note(line); }

    Services services_;
};

/// Does what the computer's message asks for. Messages about files, and unknown ones, have no effect here.
void obey(Handset& handset, const boost::json::object& message);

} // namespace velloway::phone
