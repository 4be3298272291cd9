#include "phone/device/Adapters.h"

namespace velloway::phone::device {

void Clipboard::get(Caller& caller, std::function<void(std::string)> done) {
    caller.call({"termux-clipboard-get"}, std::move(done));
}

void Clipboard::set(Caller& caller, const std::string& text) {
    caller.call({"termux-clipboard-set"}, text,
                [&caller](const std::string&) { caller.note("the computer's text is on the clipboard"); });
}

} // namespace velloway::phone::device
