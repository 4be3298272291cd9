#include "app/CommandLine.h"

namespace velloway {

namespace {

constexpr const char* help =
    "Usage: velloway [FILE | tel:NUMBER | sms:NUMBER[?body=TEXT]]...\n"
    "Bridge between this computer and an Android phone.\n"
    "\n"
    "Without arguments the program starts, or comes forward if it is running already.\n"
    "Files are sent to the connected phone. A tel: address fills the dial pad and an\n"
    "sms: address the message field; nothing is dialled or sent.\n"
    "\n"
    "  --help     print this and end\n"
    "  --version  print the version and end\n";

} // namespace

std::optional<std::string> answerTo(const std::vector<std::string_view>& arguments) {
    for (const std::string_view argument : arguments) {
        if (argument == "--") {
            break;
        }
        if (argument == "--version") {
            return "velloway " VELLOWAY_VERSION "\n";
        }
        if (argument == "--help") {
            return help;
        }
    }
    return std::nullopt;
}

} // namespace velloway
