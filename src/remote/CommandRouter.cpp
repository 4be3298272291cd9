#include "remote/CommandRouter.h"

#include "remote/SystemScripts.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace velloway {

namespace {

using Script = SystemScript::Action;
using Effect = std::variant<Key, MediaKey, Script>;

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

/// Every command that the phone knows. The guards are uneven and stay so: keys are guarded, media keys and most
/// scripts are not.
constexpr std::array<CommandRow, 24> commandTable{{
    {{"vol_up"}, open, Script::volumeUp},
    {{"vol_down"}, open, Script::volumeDown},
    {{"mute_mac"}, open, MediaKey::mute},
    // The mute key is a toggle and has no separate off.
    {{"unmute_mac"}, open, MediaKey::mute},
    {{"open_url"}, open, Script::openLocation},
    {{"empty_trash"}, open, Script::emptyTrash},
    {{"key_escape"}, guarded, Key::escape},
    {{"key_right"}, guarded, Key::right},
    {{"key_left"}, guarded, Key::left},
    {{"key_up"}, guarded, Key::up},
    {{"key_down"}, guarded, Key::down},
    {{"key_return"}, guarded, Key::returnKey},
    {{"key_delete"}, guarded, Key::deleteBackward},
    {{"key_control"}, guarded, Key::control},
    {{"key_option"}, guarded, Key::option},
    {{"key_command"}, guarded, Key::command},
    {{"next", "slide_next", "presentation_next", "seek_forward"}, guarded, Key::right},
    {{"prev", "slide_prev", "presentation_prev", "seek_backward"}, guarded, Key::left},
    // The plain brightness commands light the keyboard, not the screen.
    {{"brightness_up"}, open, MediaKey::keyboardLightUp},
    {{"brightness_down"}, open, MediaKey::keyboardLightDown},
    {{"screen_brightness_up"}, open, MediaKey::screenBrightnessUp},
    {{"screen_brightness_down"}, open, MediaKey::screenBrightnessDown},
    {{"lock_mac"}, guarded, Script::lockScreen},
    {{"sleep_mac"}, guarded, Script::sleep},
}};

constexpr std::array<std::pair<std::string_view, MediaKey>, 5> mediaTable{{
    {"play_pause", MediaKey::playPause},
    {"next", MediaKey::nextTrack},
    {"prev", MediaKey::previousTrack},
    {"vol_up", MediaKey::soundUp},
    {"vol_down", MediaKey::soundDown},
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

/// Whether the command ended here. A name that is not a media key goes on to the other commands.
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
    if (const auto* key = std::get_if<Key>(&row->effect)) {
        injection_.sendCGKey(*key, normalized.modifiers);
    } else if (const auto* mediaKey = std::get_if<MediaKey>(&row->effect)) {
        injection_.sendSystemMediaKey(*mediaKey);
    } else if (const auto action = std::get<Script>(row->effect); action != Script::openLocation) {
        postScript({.action = action});
    } else if (url) {
        postScript({.action = action, .address = std::string(*url)});
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
