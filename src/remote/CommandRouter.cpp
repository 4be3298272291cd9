#include "remote/CommandRouter.h"

#include "remote/SystemScripts.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace velloway {

namespace {

struct CGKey {
    std::uint16_t keyCode;
};
struct SystemKey {
    std::int32_t key;
};
using Script = SystemScript::Action;
using Effect = std::variant<CGKey, SystemKey, Script>;

enum class Access { open, guarded };
using enum Access;

struct CommandRow {
    /// Unused places are empty and match nothing.
    std::array<std::string_view, 4> names;
    Access access;
    Effect effect;

    bool matches(std::string_view command) const {
        return !command.empty() && std::find(names.begin(), names.end(), command) != names.end();
    }
};

/// Every command that the phone knows. The guards are uneven and stay so: keys are guarded, system keys and
/// most scripts are not.
constexpr std::array<CommandRow, 24> commandTable{{
    {{"vol_up"}, open, Script::volumeUp},
    {{"vol_down"}, open, Script::volumeDown},
    {{"mute_mac"}, open, SystemKey{7}},
    // The mute key is a toggle and has no separate off.
    {{"unmute_mac"}, open, SystemKey{7}},
    {{"open_url"}, open, Script::openLocation},
    {{"empty_trash"}, open, Script::emptyTrash},
    {{"key_escape"}, guarded, CGKey{53}},
    {{"key_right"}, guarded, CGKey{124}},
    {{"key_left"}, guarded, CGKey{123}},
    {{"key_up"}, guarded, CGKey{126}},
    {{"key_down"}, guarded, CGKey{125}},
    {{"key_return"}, guarded, CGKey{36}},
    {{"key_delete"}, guarded, CGKey{51}},
    {{"key_control"}, guarded, CGKey{59}},
    {{"key_option"}, guarded, CGKey{58}},
    {{"key_command"}, guarded, CGKey{55}},
    {{"next", "slide_next", "presentation_next", "seek_forward"}, guarded, CGKey{124}},
    {{"prev", "slide_prev", "presentation_prev", "seek_backward"}, guarded, CGKey{123}},
    // The plain brightness commands light the keyboard, not the screen.
    {{"brightness_up"}, open, SystemKey{21}},
    {{"brightness_down"}, open, SystemKey{22}},
    {{"screen_brightness_up"}, open, SystemKey{2}},
    {{"screen_brightness_down"}, open, SystemKey{3}},
    {{"lock_mac"}, guarded, Script::lockScreen},
    {{"sleep_mac"}, guarded, Script::sleep},
}};

constexpr std::array<std::pair<std::string_view, std::int32_t>, 5> mediaTable{{
    {"play_pause", 16},
    {"next", 17},
    {"prev", 18},
    {"vol_up", 0},
    {"vol_down", 1},
}};

struct NormalizedCommand {
    std::string_view name;
    std::vector<std::string_view> modifiers;
};

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    std::size_t start = 0;
    for (std::size_t end = text.find(separator); end != text.npos; end = text.find(separator, start)) {
        pieces.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    pieces.push_back(text.substr(start));
    return pieces;
}

/// Takes a prefix such as "cmd+shift_" off. Each marker begins with an underscore, so that a bare "key_left"
/// stays whole.
NormalizedCommand normalize(std::string_view command) {
    constexpr std::array<std::string_view, 3> markers{"_key_", "_slide_", "_presentation_"};
    const bool hasPrefix = std::any_of(markers.begin(), markers.end(), [&](std::string_view marker) {
        return command.find(marker) != command.npos;
    });
    if (!hasPrefix) {
        return {.name = command, .modifiers = {}};
    }
    const std::size_t end = command.find('_');
    return {.name = command.substr(end + 1), .modifiers = split(command.substr(0, end), '+')};
}

} // namespace

void CommandRouter::handle(const RemoteCommand& message) {
    if (!message.command) {
        return;
    }
    const std::string_view command = *message.command;
    const std::string_view type = message.type.value_or("remote");
    log_.line({"[WebSocketServer] Command received: ", command, " [Type: ", type, "]"});

    if (type == "keyboard_text") {
        if (message.text) {
            log_.line({"[WebSocketServer] Typing unicode text: ", *message.text});
            injection_.sendUnicodeText(*message.text);
        }
    } else if (type == "mouse_move") {
        main_.async([injection = injection_, dx = message.dx.value_or(0), dy = message.dy.value_or(0)] {
            injection.movePointer(dx, dy);
        });
    } else if (type == "mouse_click") {
        main_.async([injection = injection_, button = std::string(message.button.value_or("left"))] {
            injection.click(button);
        });
    } else if (type != "media" || !handleMedia(command)) {
        handleCommand(command, message.url);
    }
}

/// Whether the command ended here. A name that is no media key goes on to the other commands.
bool CommandRouter::handleMedia(std::string_view command) {
    if (!accessibility_.isTrusted()) {
        log_.line({"[WebSocketServer] Error: Media keys require Accessibility permissions."});
        return true;
    }
    for (const auto& [name, key] : mediaTable) {
        if (command == name) {
            injection_.sendSystemMediaKey(key);
            return true;
        }
    }
    return false;
}

void CommandRouter::handleCommand(std::string_view command, const std::optional<std::string_view>& url) {
    const NormalizedCommand normalized = normalize(command);
    const auto row = std::find_if(commandTable.begin(), commandTable.end(), [&](const CommandRow& candidate) {
        return candidate.matches(normalized.name);
    });
    if (row == commandTable.end() || (row->access == guarded && !checkAccess(command))) {
        return;
    }
    if (const auto* key = std::get_if<CGKey>(&row->effect)) {
        injection_.sendCGKey(key->keyCode, normalized.modifiers);
    } else if (const auto* systemKey = std::get_if<SystemKey>(&row->effect)) {
        injection_.sendSystemMediaKey(systemKey->key);
    } else if (const auto action = std::get<Script>(row->effect); action != Script::openLocation) {
        postScript(makeSystemScript(action));
    } else if (url) {
        postScript(makeSystemScript(action, *url));
    }
}

/// Names the command as it came, modifiers included.
bool CommandRouter::checkAccess(std::string_view command) {
    if (accessibility_.isTrusted()) {
        return true;
    }
    log_.line(
        {"[WebSocketServer] Error: Command '", command, "' failed. Accessibility permissions are missing."});
    return false;
}

void CommandRouter::postScript(SystemScript script) {
    main_.async(
        [&scripts = scripts_, &log = log_, script = std::move(script)] { runScript(scripts, log, script); });
}

} // namespace velloway
