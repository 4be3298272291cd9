#pragma once

#include "phone/FileSender.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace velloway::phone {

struct SendText {
    std::string text;
};
struct SendBinary {
    std::string bytes;
};
struct Sleep {
    double seconds = 0;
};
struct SendFile {
    FileSendOptions options;
};
/// A call comes in; the phone then reacts to being answered or hung up.
struct Ring {
    std::string number;
    std::string name;
};
/// Sends what the phone itself knows.
struct Ask {
    enum class What { introduction, smsHistory, callHistory, clipboard, battery };
    What what = What::introduction;
};
/// Waits for a message that holds at least what the pattern holds.
struct Expect {
    std::string pattern;
    double within = 5;
};
/// Ends the connection without a goodbye; a new one follows by itself.
struct Cut {};
struct Touchpad {};
struct Help {};
struct Quit {};

using Action =
    std::variant<SendText, SendBinary, Sleep, SendFile, Ring, Ask, Expect, Cut, Touchpad, Help, Quit>;

/// Actions to be done one after the other, begun at a certain time.
struct Step {
    /// Seconds after the first connection.
    std::optional<double> at;
    /// Seconds after the end of the step before.
    std::optional<double> after;
    std::vector<Action> actions;
};

} // namespace velloway::phone
