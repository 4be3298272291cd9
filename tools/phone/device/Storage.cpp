#include "phone/device/Adapters.h"

#include <filesystem>

namespace velloway::phone::device {

namespace {

/// For a shell: in single quotes, whatever the folder is called. Names of received files hold no quotes.
std::string quoted(const std::string& text) {
    std::string out = "'";
    for (const char letter : text) {
        out += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
    }
    return out + "'";
}

} // namespace

void Storage::announce(Caller& caller, const std::string& path) {
    caller.call({"termux-media-scan", path}, [](const std::string&) {});
    caller.call({"termux-notification", "--id", "velloway-file", "--title",
                 std::filesystem::path(path).filename().string(), "--content",
                 "From the computer. Tap to open.", "--action",
                 "bash -l -c " + quoted("termux-share -a view " + quoted(path))},
                [](const std::string&) {});
}

} // namespace velloway::phone::device
