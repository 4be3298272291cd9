#include "phone/Options.h"

#include "phone/Numbers.h"

#include <charconv>
#include <stdexcept>

namespace velloway::phone {

namespace {

double seconds(const std::string& option, const std::string& word) {
    const auto value = readNumber(word);
    if (!value || *value <= 0) {
        throw std::invalid_argument(option + " takes a number of seconds, not \"" + word + "\"");
    }
    return *value;
}

template <typename Number> Number number(const std::string& option, const std::string& word) {
    Number value{};
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error != std::errc() || end != word.data() + word.size()) {
        throw std::invalid_argument(option + " takes a number, not \"" + word + "\"");
    }
    return value;
}

void readAddress(Options& options, std::string address) {
    constexpr std::string_view scheme = "ws://";
    if (address.compare(0, scheme.size(), scheme) != 0) {
        throw std::invalid_argument("an address looks like ws://192.168.1.20:8765, not " + address);
    }
    address = address.substr(scheme.size());
    if (!address.empty() && address.back() == '/') {
        address.pop_back();
    }
    const std::size_t colon = address.rfind(':');
    if (colon != std::string::npos && address.find(']', colon) == std::string::npos) {
        options.port = number<std::uint16_t>("the address", address.substr(colon + 1));
        address.resize(colon);
    }
    if (address.size() > 2 && address.front() == '[' && address.back() == ']') {
        address = address.substr(1, address.size() - 2);
    }
    if (address.empty()) {
        throw std::invalid_argument("the address names no host");
    }
    options.host = address;
}

} // namespace

Options parseOptions(const std::vector<std::string>& words) {
    Options options;
    for (std::size_t at = 0; at < words.size(); ++at) {
        const std::string& word = words[at];
        const auto value = [&]() -> const std::string& {
            if (at + 1 == words.size()) {
                throw std::invalid_argument(word + " takes a value");
            }
            return words[++at];
        };
        if (word == "--host") {
            options.host = value();
        } else if (word == "--port") {
            options.port = number<std::uint16_t>(word, value());
        } else if (word == "--script") {
            options.script = value();
        } else if (word == "--exec") {
            options.commands = value();
        } else if (word == "--save-to") {
            options.saveTo = value();
        } else if (word == "--stay") {
            options.stay = true;
        } else if (word == "--json") {
            options.rawOutput = true;
        } else if (word == "--no-answers") {
            options.answers = false;
        } else if (word == "--once") {
            options.reconnects = false;
        } else if (word == "--connect-timeout") {
            options.connectTimeout = seconds(word, value());
        } else if (word == "--threads") {
            options.world.smsThreads = number<std::size_t>(word, value());
        } else if (word == "--messages") {
            options.world.smsMessages = number<std::size_t>(word, value());
        } else if (word == "--calls") {
            options.world.calls = number<std::size_t>(word, value());
        } else if (word == "--device") {
            options.isDevice = true;
            options.stay = true;
            options.world.isDevice = true;
        } else if (word == "--name") {
            options.device.name = value();
        } else if (word == "--poll") {
            options.device.pollInterval = seconds(word, value());
        } else if (word == "--command-limit") {
            options.device.commandLimit = seconds(word, value());
        } else if (word == "--help" || word == "-h") {
            options.wantsHelp = true;
        } else if (!word.empty() && word.front() != '-') {
            readAddress(options, word);
        } else {
            throw std::invalid_argument("no such option: " + word);
        }
    }
    return options;
}

std::string optionHelp() {
    return R"(velloway-phone: a phone for Velloway, simulated or, with --device, the one that this runs on.

  velloway-phone [ws://HOST:PORT] [options]

  --host HOST, --port PORT   where the computer listens (127.0.0.1, 8765)
  --exec "COMMAND; COMMAND"  does these, then leaves
  --script FILE              plays timed JSON lines, then leaves
  --stay                     does not leave after --exec, --script or the end of the input
  --json                     prints received messages as they came, and nothing else, on standard output
  --save-to FOLDER           keeps received files there and checks their sizes
  --no-answers               does not answer get_sms_history, get_call_history and the call commands
  --once                     does not dial in again when the connection ends
  --connect-timeout SECONDS  how long --exec and --script wait for the first connection (10)
  --threads N, --messages N, --calls N
                             how much there is in the generated logs (8, 60, 20)

  --device                   this is a phone: its termux-* commands give the logs, notifications, battery and
                             clipboard, and do what the computer asks for; stays, and keeps received files
  --name NAME                what the computer calls this phone (its model)
  --poll SECONDS             between two looks for new notifications and messages (10)
  --command-limit SECONDS    how long one of the phone's commands may take (20)

Leaves with 0 when all went well, 1 when an expectation was not met or a received file was broken, and 2 when
there was no connection or the words above were not understood.
)";
}

} // namespace velloway::phone
