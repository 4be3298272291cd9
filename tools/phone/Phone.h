#pragma once

#include "phone/Expectations.h"
#include "phone/FileReceiver.h"
#include "phone/FileSender.h"
#include "phone/Handset.h"
#include "phone/Link.h"
#include "phone/Loop.h"
#include "phone/Options.h"
#include "phone/Output.h"
#include "phone/Terminal.h"
#include "phone/TouchpadKeys.h"
#include "phone/device/ProcessRunner.h"

#include <chrono>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velloway::phone {

/// Plays the phone: works off steps, from a script, the command line or the keyboard, one after the other, and
/// answers what a phone answers by itself.
class Phone {
public:
    Phone(const Options& options, std::vector<Step> steps);

    /// Returns the exit code.
    int run();

private:
    void onUp();
    void onDown(const std::string& reason);
    void onMessage(std::string message);
    void onDrained();
    void onInput(const std::string& bytes);
    void onInputEnd();

    void advance();
    bool mayPerform(const Action& action) const;
    void begin(const Step& step);
    void perform(const Action& action);
    void wait(double seconds);
    void leaveWhenDone();
    void leave(int code);

    std::unique_ptr<Handset> makeHandset();
    void introduceDevice() const;
    void ask(Ask::What what);
    void read(const std::string& message);
    void receiveFile(const boost::json::object& message);
    bool say(std::string message, bool isBinary = false);

    void beginFile(const FileSendOptions& options);
    void continueFile();
    void beginExpecting(const Expect& expect);
    void leaveTouchpad();

    void note(const std::string& line) const { output_.note(line); }
    World world() const;

    const Options& options_;
    Output output_;
    Loop loop_;
    Link link_;
    std::unique_ptr<Terminal> terminal_;

    std::deque<Step> steps_;
    std::deque<Action> actions_;
    std::shared_ptr<void> pause_;
    std::chrono::steady_clock::time_point firstUp_;
    bool hasBeenUp_ = false;
    bool inputHasEnded_ = false;
    bool isLeaving_ = false;
    std::shared_ptr<void> leaveLimit_;
    int exitCode_ = 0;

    Expectations expectations_;
    std::optional<FileSender> file_;
    int filePart_ = 0;
    FileReceiver receiver_;
    device::ProcessRunner runner_;
    std::unique_ptr<Handset> handset_;
    std::optional<TouchpadKeys> touchpad_;
    std::string inputLine_;
};

} // namespace velloway::phone
