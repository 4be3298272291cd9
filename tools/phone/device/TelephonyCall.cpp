#include "phone/device/Adapters.h"

namespace velloway::phone::device {

void TelephonyCall::dial(Caller& caller, const std::string& number) {
    const std::string plain = plainNumber(number);
    if (plain.empty()) {
        caller.note("\"" + number + "\" is not dialled: it is not a telephone number");
        return;
    }
    caller.call({"termux-telephony-call", plain},
                [&caller, plain](const std::string&) { caller.note("dialled " + plain); });
}

} // namespace velloway::phone::device
