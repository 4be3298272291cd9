#include "phone/Handset.h"

#include "phone/Members.h"

#include <array>
#include <string_view>

namespace velloway::phone {

namespace {

namespace json = boost::json;

struct Request {
    std::string_view action;
    void (*obey)(Handset&, const json::object&);
};

constexpr std::array requests{
    Request{"get_sms_history", [](Handset& h, const json::object&) { h.sendSmsHistory(); }},
    Request{"get_call_history", [](Handset& h, const json::object&) { h.sendCallHistory(); }},
    Request{"clipboard", [](Handset& h, const json::object& m) { h.setClipboard(textUnder(m, "text")); }},
    Request{"send_sms",
            [](Handset& h, const json::object& m) {
                h.sendSms(textUnder(m, "number"), textUnder(m, "body"), integerUnder(m, "simSlot").value_or(0));
            }},
    Request{"make_call",
            [](Handset& h, const json::object& m) {
                h.makeCall(textUnder(m, "number"), integerUnder(m, "simSlot").value_or(0));
            }},
    Request{"answer_call", [](Handset& h, const json::object&) { h.answerCall(); }},
    Request{"hangup_call", [](Handset& h, const json::object&) { h.hangUpCall(); }},
    Request{"toggle_speaker",
            [](Handset& h, const json::object& m) { h.toggleSpeaker(isTrueUnder(m, "enabled")); }},
    Request{"toggle_mute", [](Handset& h, const json::object& m) { h.toggleMute(isTrueUnder(m, "enabled")); }},
    Request{"reply",
            [](Handset& h, const json::object& m) { h.reply(textUnder(m, "key"), textUnder(m, "message")); }},
    Request{"find_device", [](Handset& h, const json::object&) { h.find(); }},
    Request{"media_command",
            [](Handset& h, const json::object& m) { h.pressMediaKey(textUnder(m, "command")); }},
    Request{"nav_command", [](Handset& h, const json::object& m) { h.navigate(textUnder(m, "command")); }},
};

} // namespace

void obey(Handset& handset, const json::object& message) {
    const std::string action = textUnder(message, "action");
    for (const Request& request : requests) {
        if (request.action == action) {
            request.obey(handset, message);
        }
    }
}

} // namespace velloway::phone
