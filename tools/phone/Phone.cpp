#include "phone/Phone.h"

#include "phone/MadeUpHandset.h"
#include "phone/Members.h"
#include "phone/Numbers.h"
#include "phone/Script.h"
#include "phone/Show.h"
#include "phone/Words.h"
#include "phone/device/DeviceHandset.h"

#include <boost/json.hpp>

#include <cstdio>
#include <stdexcept>

namespace velloway::phone {

namespace {

namespace json = boost::json;

template <typename... Handlers> struct Overloaded : Handlers... { using Handlers::operator()...; };
template <typename... Handlers> Overloaded(Handlers...) -> Overloaded<Handlers...>;

} // namespace

Phone::Phone(const Options& options, std::vector<Step> steps)
    : options_(options),
      output_(options.rawOutput),
      link_(loop_, options.host, options.port, {options.reconnects, options.isDevice},
            {[this] { onUp(); }, [this](const std::string& reason) { onDown(reason); },
             [this](std::string message) { onMessage(std::move(message)); }, [this] { onDrained(); }}),
      steps_(steps.begin(), steps.end()),
      receiver_(options.saveTo,
                options.isDevice ? FileReceiver::Present::isKept : FileReceiver::Present::isReplaced),
      runner_(loop_),
      handset_(makeHandset()) {}

int Phone::run() {
    std::shared_ptr<void> limit;
    if (options_.isScripted()) {
        limit = loop_.after(options_.connectTimeout, [this] {
            if (!hasBeenUp_) {
                note("no connection in time");
                leave(2);
            }
        });
    } else {
        note("help lists the commands");
    }
    std::shared_ptr<void> interrupt;
    if (options_.isDevice) {
        introduceDevice();
        // The phone's commands are ended with the program.
        interrupt = loop_.onInterrupt([this] { leave(exitCode_); });
    }
    if (!options_.isScripted() || options_.stay) {
        terminal_ = std::make_unique<Terminal>(
            loop_, [this](const std::string& bytes) { onInput(bytes); }, [this] { onInputEnd(); });
    }
    link_.dial();
    loop_.run();
    terminal_.reset();
    return exitCode_ == 0 && receiver_.faults() > 0 ? 1 : exitCode_;
}

void Phone::introduceDevice() const {
    note("files from the computer go to " + options_.saveTo);
    for (const std::string& line : device::limits(device::isOnPath, options_.device)) {
        note(line);
    }
}

// ---- The link

void Phone::onUp() {
    note("connected to " + options_.host + ":" + std::to_string(options_.port));
    if (!hasBeenUp_) {
        hasBeenUp_ = true;
        firstUp_ = std::chrono::steady_clock::now();
    }
    handset_->linkIsUp();
    advance();
}

void Phone::onDown(const std::string& reason) {
    note(reason);
    handset_->linkIsDown();
    if (options_.isDevice) {
        for (const std::string& line : receiver_.giveUp()) {
            note(line);
        }
    }
    if (file_) {
        note("the rest of " + file_->name() + " is not sent");
        file_.reset();
        actions_.clear();
    }
    if (!options_.reconnects && !isLeaving_) {
        leave(hasBeenUp_ ? exitCode_ : 2);
        return;
    }
    advance();
}

void Phone::onMessage(std::string message) {
    if (options_.rawOutput) {
        output_.write(message);
    } else {
        output_.show('<', pretty(message));
    }
    read(message);
    expectations_.add(message);
    if (expectations_.areMet()) {
        pause_.reset();
        advance();
    }
}

void Phone::read(const std::string& message) {
    boost::system::error_code error;
    const json::value value = json::parse(message, error);
    if (error || !value.is_object()) {
        if (message.find("file_transfer_start") != std::string::npos) {
            receiver_.expectUnannounced();
        }
        return;
    }
    const json::object& object = value.get_object();
    const std::string action = textUnder(object, "action");
    if (action == "file_transfer_start" || action == "file_chunk") {
        if (!options_.saveTo.empty()) {
            receiveFile(object);
        }
    } else if (options_.answers) {
        obey(*handset_, object);
    }
}

void Phone::onDrained() {
    if (file_) {
        continueFile();
    } else {
        advance();
    }
}

bool Phone::say(std::string message, bool isBinary) {
    if (!options_.rawOutput) {
        output_.show('>', pretty(message));
    }
    if (!link_.send(std::move(message), isBinary)) {
        note("not sent: there is no connection");
        return false;
    }
    return true;
}

// ---- What a phone does by itself

std::unique_ptr<Handset> Phone::makeHandset() {
    Handset::Services services{
        [this](std::string message) { say(std::move(message)); },
        [this](const std::string& line) { note(line); },
        [this](double seconds, std::function<void()> work) { return loop_.after(seconds, std::move(work)); }};
    if (options_.isDevice) {
        return std::make_unique<device::DeviceHandset>(std::move(services), runner_, options_.device);
    }
    return std::make_unique<MadeUpHandset>(std::move(services), options_.world);
}

void Phone::ask(Ask::What what) {
    switch (what) {
    case Ask::What::introduction:
        return handset_->sendIntroduction();
    case Ask::What::smsHistory:
        return handset_->sendSmsHistory();
    case Ask::What::callHistory:
        return handset_->sendCallHistory();
    case Ask::What::clipboard:
        return handset_->sendClipboard();
    case Ask::What::battery:
        return handset_->sendBattery();
    }
}

void Phone::receiveFile(const json::object& message) {
    const std::string name = textUnder(message, "fileName");
    const auto size = integerUnder(message, "fileSize");
    const std::string line =
        size ? receiver_.start(name, *size)
             : receiver_.chunk(name, textUnder(message, "fileData"), isTrueUnder(message, "isLast"));
    if (!line.empty()) {
        note(line);
    }
    if (const auto path = receiver_.takeReceived()) {
        handset_->fileIsReceived(*path);
    }
}

// ---- Steps

World Phone::world() const {
    World world = options_.world;
    world.now = millisecondsNow();
    return world;
}

/// Works off what there is to do, as far as it goes without waiting.
void Phone::advance() {
    if (options_.isScripted() && !hasBeenUp_) {
        return;
    }
    while (!isLeaving_ && !pause_ && !expectations_.areOpen() && !file_ && !touchpad_) {
        if (!actions_.empty()) {
            if (!mayPerform(actions_.front())) {
                return;
            }
            const Action action = std::move(actions_.front());
            actions_.pop_front();
            perform(action);
        } else if (!steps_.empty()) {
            const Step step = std::move(steps_.front());
            steps_.pop_front();
            begin(step);
        } else {
            leaveWhenDone();
            return;
        }
    }
}

/// What is to be sent waits for the next connection.
bool Phone::mayPerform(const Action& action) const {
    const bool needsLink = std::holds_alternative<SendText>(action) ||
                           std::holds_alternative<SendBinary>(action) ||
                           std::holds_alternative<SendFile>(action) || std::holds_alternative<Ring>(action) ||
                           std::holds_alternative<Ask>(action) || std::holds_alternative<Cut>(action) ||
                           std::holds_alternative<Touchpad>(action);
    return !needsLink || link_.isUp();
}

void Phone::begin(const Step& step) {
    actions_.assign(step.actions.begin(), step.actions.end());
    const std::chrono::duration<double> age = std::chrono::steady_clock::now() - firstUp_;
    const double pause = step.at ? *step.at - age.count() : step.after.value_or(0);
    if (pause > 0) {
        wait(pause);
    }
}

void Phone::wait(double seconds) {
    pause_ = loop_.after(seconds, [this] {
        pause_.reset();
        advance();
    });
}

void Phone::perform(const Action& action) {
    std::visit(Overloaded{
                   [this](const SendText& send) { say(send.text); },
                   [this](const SendBinary& send) { say(send.bytes, true); },
                   [this](const Sleep& sleep) { wait(sleep.seconds); },
                   [this](const SendFile& send) { beginFile(send.options); },
                   [this](const Ring& ring) { handset_->ring(ring.number, ring.name); },
                   [this](const Ask& question) { ask(question.what); },
                   [this](const Expect& expect) { beginExpecting(expect); },
                   [this](const Cut&) { link_.cut(); },
                   [this](const Touchpad&) {
                       touchpad_.emplace();
                       if (terminal_) {
                           terminal_->setRaw(true);
                       }
                       note("arrows move, Enter clicks, letters are typed; Escape or ~. leaves");
                   },
                   [this](const Help&) { note(commandHelp()); },
                   [this](const Quit&) { leave(exitCode_); },
               },
               action);
}

/// Leaves once nothing is left to do and all has been said.
void Phone::leaveWhenDone() {
    if (!options_.stay && (options_.isScripted() || inputHasEnded_)) {
        leave(exitCode_);
    }
}

void Phone::leave(int code) {
    exitCode_ = code;
    if (!isLeaving_) {
        isLeaving_ = true;
        link_.close([this] { loop_.stop(); });
        // A computer that takes nothing more must not hold the phone for ever.
        leaveLimit_ = loop_.after(10, [this] { loop_.stop(); });
    }
}

// ---- Files

void Phone::beginFile(const FileSendOptions& options) {
    try {
        file_.emplace(options);
    } catch (const std::exception& error) {
        note(error.what());
        exitCode_ = 1;
        return;
    }
    filePart_ = 0;
    continueFile();
}

void Phone::continueFile() {
    if (file_->mustCut()) {
        note("cut after " + std::to_string(file_->sent()) + " bytes of " + file_->name());
        file_.reset();
        link_.cut();
        return;
    }
    auto message = file_->next();
    if (!message) {
        note("sent " + file_->name() + ", " + std::to_string(file_->sent()) + " bytes");
        file_.reset();
        advance();
        return;
    }
    const int part = file_->size() == 0 ? 0 : static_cast<int>(file_->sent() * 10 / file_->size());
    if (part != filePart_) {
        filePart_ = part;
        note(file_->name() + ": " + std::to_string(part * 10) + " %");
    }
    if (!link_.send(std::move(*message))) {
        note("not sent: there is no connection");
        file_.reset();
    }
}

// ---- Expectations

void Phone::beginExpecting(const Expect& expect) {
    expectations_.begin(expect.pattern);
    if (expectations_.areMet()) {
        return;
    }
    pause_ = loop_.after(expect.within, [this, expect] {
        pause_.reset();
        char limit[32];
        std::snprintf(limit, sizeof limit, "%g", expect.within);
        note("FAILED: nothing matched " + expect.pattern + " within " + limit + " s");
        expectations_.giveUp();
        leave(1);
    });
}

// ---- The keyboard

void Phone::onInput(const std::string& bytes) {
    if (touchpad_) {
        for (const std::string& message : touchpad_->read(bytes)) {
            say(message);
        }
        if (touchpad_->isOver()) {
            leaveTouchpad();
        }
        return;
    }
    inputLine_ += bytes;
    std::size_t end = 0;
    while ((end = inputLine_.find('\n')) != std::string::npos) {
        const std::string line = inputLine_.substr(0, end);
        inputLine_.erase(0, end + 1);
        try {
            for (const std::string& command : splitCommands(line)) {
                steps_.push_back({std::nullopt, std::nullopt, parseCommand(command, world())});
            }
        } catch (const std::exception& error) {
            note(error.what());
        }
    }
    advance();
}

void Phone::onInputEnd() {
    inputHasEnded_ = true;
    if (touchpad_) {
        leaveTouchpad();
    }
    advance();
}

void Phone::leaveTouchpad() {
    touchpad_.reset();
    if (terminal_) {
        terminal_->setRaw(false);
    }
    note("the keyboard gives commands again");
    advance();
}

} // namespace velloway::phone
