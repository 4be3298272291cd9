#include "phone/Commands.h"

#include "phone/History.h"
#include "phone/Messages.h"
#include "phone/Numbers.h"
#include "phone/Words.h"

#include <boost/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

namespace velloway::phone {

namespace {

/// The words after the command's name, read one by one.
class Arguments {
public:
    Arguments(std::string_view line, const World& world)
        : line_(line), words_(splitWords(line)), world_(world) {}

    const World& world() const { return world_; }
    bool isEmpty() const { return next_ >= words_.size(); }
    std::string name() const { return words_.empty() ? std::string() : words_[0].text; }

    std::string text(const char* what) {
        if (isEmpty()) {
            throw std::invalid_argument(std::string(what) + " is missing");
        }
        return words_[next_++].text;
    }

    std::string textOr(std::string otherwise) { return isEmpty() ? otherwise : words_[next_++].text; }

    double number(const char* what) {
        const std::string word = text(what);
        const auto value = readNumber(word);
        if (!value) {
            throw std::invalid_argument(std::string(what) + " is not a number: " + word);
        }
        return *value;
    }

    double numberOr(const char* what, double otherwise) { return isEmpty() ? otherwise : number(what); }

    std::int64_t integer(const char* what) {
        const double value = number(what);
        if (value != std::floor(value) || std::abs(value) > 9e15) {
            throw std::invalid_argument(std::string(what) + " is not a whole number");
        }
        return static_cast<std::int64_t>(value);
    }

    std::size_t count(const char* what) {
        const std::int64_t value = integer(what);
        if (value < 0) {
            throw std::invalid_argument(std::string(what) + " is negative");
        }
        return static_cast<std::size_t>(value);
    }

    /// All that is left of the line, as it stands: quotes are not looked at.
    std::string rest() {
        if (isEmpty()) {
            return {};
        }
        const std::size_t begin = words_[next_].begin;
        next_ = words_.size();
        return std::string(line_.substr(begin));
    }

    void end() const {
        if (!isEmpty()) {
            throw std::invalid_argument("too many words, from \"" + words_[next_].text + "\"");
        }
    }

private:
    std::string_view line_;
    std::vector<Word> words_;
    const World& world_;
    std::size_t next_ = 1;
};

using Actions = std::vector<Action>;

Actions say(std::string message) {
    return {SendText{std::move(message)}};
}

Actions hello(Arguments& words) {
    if (words.isEmpty() && words.world().isDevice) {
        return {Ask{Ask::What::introduction}};
    }
    const std::string name = words.textOr("Paper Phone");
    const std::string wifi = words.textOr("Home");
    return {SendText{messages::connected(name)}, SendText{messages::deviceInfo(wifi, name)},
            SendText{messages::simInfo("Blue Mobile,Nordnet")}};
}

Actions deviceInfo(Arguments& words) {
    const std::string wifi = words.text("WIFI");
    if (words.isEmpty()) {
        return say(messages::deviceInfo(wifi, std::nullopt));
    }
    return say(messages::deviceInfo(wifi, words.text("DEVICE")));
}

Actions notification(Arguments& words) {
    messages::Notification notification;
    notification.app = words.text("APP");
    notification.title = words.text("TITLE");
    notification.body = words.text("BODY");
    if (!words.isEmpty()) {
        notification.key = words.text("KEY");
    }
    if (!words.isEmpty()) {
        notification.time = words.number("TIME");
    }
    return say(messages::notification(notification));
}

bool isNumber(const std::string& word) {
    return !word.empty() && std::all_of(word.begin(), word.end(), [](char c) { return c >= '0' && c <= '9'; });
}

Actions smsHistory(Arguments& words) {
    const World& world = words.world();
    if (words.isEmpty() && world.isDevice) {
        return {Ask{Ask::What::smsHistory}};
    }
    if (words.isEmpty()) {
        return say(history::smsHistory(world.smsThreads, world.smsMessages, world.now));
    }
    const std::string first = words.text("FILE");
    if (!isNumber(first)) {
        return say(history::fromFile(first, "sms_history", "messages"));
    }
    return say(history::smsHistory(std::stoull(first), words.count("MESSAGES"), world.now));
}

Actions callHistory(Arguments& words) {
    const World& world = words.world();
    if (words.isEmpty() && world.isDevice) {
        return {Ask{Ask::What::callHistory}};
    }
    const std::string first = words.textOr(std::to_string(world.calls));
    if (!isNumber(first)) {
        return say(history::fromFile(first, "call_history", "calls"));
    }
    return say(history::callHistory(std::stoull(first), world.now));
}

Actions ring(Arguments& words) {
    const std::string number = words.text("NUMBER");
    return {Ring{number, words.textOr("")}};
}

Actions callState(const char* state, Arguments& words) {
    const std::string number = words.textOr("");
    return say(messages::callState(state, number, words.textOr("")));
}

bool readCharging(Arguments& words) {
    const std::string word = words.textOr("");
    if (!word.empty() && word != "charging") {
        throw std::invalid_argument("only \"charging\" may follow the level");
    }
    return !word.empty();
}

Actions clipboard(Arguments& words) {
    if (words.isEmpty()) {
        return {Ask{Ask::What::clipboard}};
    }
    return say(messages::clipboard(words.text("TEXT")));
}

Actions battery(Arguments& words) {
    if (words.isEmpty() && words.world().isDevice) {
        return {Ask{Ask::What::battery}};
    }
    const std::int64_t level = words.integer("LEVEL");
    return say(messages::batteryStatus(level, readCharging(words)));
}

Actions batteryFall(Arguments& words) {
    const std::int64_t from = words.integer("FROM");
    const std::int64_t to = words.integer("TO");
    const std::int64_t step = words.isEmpty() ? 1 : words.integer("STEP");
    const double seconds = words.numberOr("SECONDS", 1);
    if (step < 1 || from < to) {
        throw std::invalid_argument("the level is to fall, by steps of at least 1");
    }
    Actions actions;
    for (std::int64_t level = from; level >= to; level -= step) {
        if (level != from) {
            actions.emplace_back(Sleep{seconds});
        }
        actions.emplace_back(SendText{messages::batteryStatus(level, false)});
    }
    return actions;
}

Actions pointerMove(Arguments& words) {
    const double dx = words.number("DX");
    return say(messages::pointerMove(dx, words.number("DY")));
}

Actions remote(Arguments& words) {
    const std::string command = words.text("COMMAND");
    return say(messages::remoteControl(command, words.textOr("")));
}

Actions sendFile(Arguments& words) {
    FileSendOptions options;
    options.path = words.text("PATH");
    while (!words.isEmpty()) {
        const std::string option = words.text("OPTION");
        if (option == "--chunk") {
            options.chunkSize = words.count("BYTES");
        } else if (option == "--unescaped") {
            options.escaped = false;
        } else if (option == "--whole") {
            options.isWhole = true;
        } else if (option == "--name") {
            options.name = words.text("NAME");
        } else if (option == "--no-start") {
            options.withStart = false;
        } else if (option == "--first-chunk") {
            options.firstChunk = words.count("N");
        } else if (option == "--kill-after-chunks") {
            options.cutAfterChunks = words.count("N");
        } else {
            throw std::invalid_argument("no such option: " + option);
        }
    }
    if (options.chunkSize == 0) {
        throw std::invalid_argument("a chunk has at least one byte");
    }
    return {SendFile{std::move(options)}};
}

Actions expect(Arguments& words) {
    const std::string rest = words.rest();
    boost::json::stream_parser parser;
    boost::system::error_code error;
    const std::size_t used = parser.write_some(rest, error);
    if (error || !parser.done()) {
        throw std::invalid_argument("a JSON object is missing");
    }
    Expect expect{boost::json::serialize(parser.release()), 5};
    const std::string after = rest.substr(used);
    if (!splitWords(after).empty()) {
        Arguments seconds("expect " + after, words.world());
        expect.within = seconds.number("SECONDS");
        seconds.end();
    }
    return {expect};
}

struct Command {
    const char* name;
    const char* words;
    const char* meaning;
    Actions (*read)(Arguments&);
};

const std::array commands{
    Command{"hello", "[DEVICE [WIFI]]", "connected, device_info and sim_info at once", hello},
    Command{"connected", "DEVICE", "introduces the phone",
            [](Arguments& w) { return say(messages::connected(w.text("DEVICE"))); }},
    Command{"device_info", "WIFI [DEVICE]", "the phone's network and name", deviceInfo},
    Command{"sim_info", "CARRIER,CARRIER", "the SIM list, slot 0 first",
            [](Arguments& w) { return say(messages::simInfo(w.textOr(""))); }},
    Command{"notification", "APP TITLE BODY [KEY [TIME]]", "mirrors one; TIME in seconds since 1970",
            notification},
    Command{"sms_history", "[FILE | THREADS MESSAGES]", "the message log", smsHistory},
    Command{"call_history", "[FILE | CALLS]", "the call log", callHistory},
    Command{"incoming_call", "NUMBER [NAME]", "rings, and reacts to answer_call and hangup_call", ring},
    Command{"ringing", "[NUMBER [NAME]]", "call_state_changed to RINGING",
            [](Arguments& w) { return callState("RINGING", w); }},
    Command{"offhook", "[NUMBER [NAME]]", "call_state_changed to OFFHOOK",
            [](Arguments& w) { return callState("OFFHOOK", w); }},
    Command{"call_update", "SECONDS", "how long the call has run",
            [](Arguments& w) { return say(messages::callUpdate(w.integer("SECONDS"))); }},
    Command{"call_ended", "", "the call is over", [](Arguments&) { return say(messages::callEnded()); }},
    Command{"clipboard", "[TEXT]", "copies a text, or the phone's clipboard, to the computer", clipboard},
    Command{"battery", "LEVEL [charging]", "battery_status", battery},
    Command{"battery_fall", "FROM TO [STEP [SECONDS]]", "a battery that runs down", batteryFall},
    Command{"remote", "COMMAND [TYPE]", "a command for the computer, such as key_left", remote},
    Command{"move", "DX DY", "moves the pointer", pointerMove},
    Command{"click", "[BUTTON]", "clicks: left or right",
            [](Arguments& w) { return say(messages::pointerClick(w.textOr("left"))); }},
    Command{"type", "TEXT", "types a text",
            [](Arguments& w) { return say(messages::typedText(w.text("TEXT"))); }},
    Command{"open_url", "URL", "opens an address",
            [](Arguments& w) { return say(messages::openUrl(w.text("URL"))); }},
    Command{"touchpad", "", "the keyboard drives the computer until Escape or ~.",
            [](Arguments&) { return Actions{Touchpad{}}; }},
    Command{"file",
            "PATH [--chunk BYTES] [--unescaped] [--whole] [--name NAME] [--no-start] [--first-chunk N]\n"
            "      [--kill-after-chunks N]",
            "sends a file", sendFile},
    Command{"raw", "TEXT", "sends the rest of the line as it stands",
            [](Arguments& w) { return say(w.rest()); }},
    Command{"binary", "TEXT", "the same in a binary frame",
            [](Arguments& w) { return Actions{SendBinary{w.rest()}}; }},
    Command{"sleep", "SECONDS", "waits", [](Arguments& w) { return Actions{Sleep{w.number("SECONDS")}}; }},
    Command{"expect", "JSON [SECONDS]", "waits for a message that holds these members; \"*\" is any value",
            expect},
    Command{"cut", "", "drops the connection without a goodbye and dials in again",
            [](Arguments&) { return Actions{Cut{}}; }},
    Command{"help", "", "this list", [](Arguments&) { return Actions{Help{}}; }},
    Command{"quit", "", "leaves", [](Arguments&) { return Actions{Quit{}}; }},
};

} // namespace

std::vector<Action> parseCommand(std::string_view line, const World& world) {
    Arguments words(line, world);
    const std::string name = words.name();
    if (name.empty()) {
        return {};
    }
    const auto found =
        std::find_if(commands.begin(), commands.end(), [&](const Command& c) { return c.name == name; });
    if (found == commands.end()) {
        throw std::invalid_argument("no such command: " + name + " (help lists them)");
    }
    try {
        std::vector<Action> actions = found->read(words);
        words.end();
        return actions;
    } catch (const std::invalid_argument& error) {
        throw std::invalid_argument(std::string(error.what()) + "\n  " + found->name + " " + found->words);
    }
}

std::string commandHelp() {
    std::string help;
    for (const Command& command : commands) {
        std::string line = std::string("  ") + command.name + " " + command.words;
        if (line.size() < 46 && line.find('\n') == std::string::npos) {
            line.resize(46, ' ');
        } else {
            line += "\n" + std::string(46, ' ');
        }
        help += line + command.meaning + "\n";
    }
    return help + "Quotes hold words together; \\n, \\t and \\\" may stand in double quotes.\n";
}

} // namespace velloway::phone
