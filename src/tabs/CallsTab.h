#pragma once

#include "tabs/Conversations.h"
#include "tabs/Style.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace velloway {

struct DialButton {
    std::string_view digit;
    /// The caption under the digit; may be empty.
    std::string_view letters;
};

/// Three to a row.
using DialButtons = std::array<DialButton, 12>;
inline constexpr DialButtons dialPadButtons{{
    {"1", ""},
    {"2", "A B C"},
    {"3", "D E F"},
    {"4", "G H I"},
    {"5", "J K L"},
    {"6", "M N O"},
    {"7", "P Q R S"},
    {"8", "T U V"},
    {"9", "W X Y Z"},
    {"*", ""},
    {"0", "+"},
    {"#", ""},
}};

struct SimSegment {
    std::string_view title;
    std::int64_t slot;
};

/// The pad's picker offers these two slots, whatever slots the phone has named.
inline constexpr std::array<SimSegment, 2> simSegments{{{"1", 0}, {"2", 1}}};

struct DialPad {
    /// A blank when there is no number, so that the line keeps its height.
    std::string numberText;
    bool canCall = false;
    bool showsDelete = false;
    bool showsSimPicker = false;

    bool operator==(const DialPad&) const = default;
};

DialPad dialPad(const std::string& dialpadNumber, std::size_t simCount);

/// One row of the recent calls, identified by `id`; calls of the same millisecond share one.
struct RecentCallRow {
    double id = 0;
    std::string number;
    std::string name;
    std::string date;
    std::string_view symbol;
    ColorRole color = ColorRole::primary;

    bool operator==(const RecentCallRow&) const = default;
};

/// In the order of the log.
std::vector<RecentCallRow> recentCallRows(const std::vector<CallRecord>& callLog, const CallNames& names,
                                          const Host& host);

/// One key event as the pad gets it.
struct KeyPress {
    enum class Key { character, deleteKey, deleteForward, returnKey };
    enum class Phase { down, repeat, up };
    Key key = Key::character;
    Phase phase = Phase::down;
    /// What the key types; may be empty.
    std::string characters;
};

enum class KeyPressResult { handled, ignored };

/// The keyboard of the dial pad.
struct DialerKeyHandler {
    /// The number being edited.
    std::function<std::string()> get;
    std::function<void(std::string)> set;
    /// Suspends all handling.
    bool isCallActive = false;
    std::function<void()> onReturn;

    /// An ignored key press belongs to whoever comes next.
    KeyPressResult handle(const KeyPress& press) const;
};

/// Minutes and seconds, with no hours.
std::string formatDuration(std::int64_t seconds);

namespace callsTexts {
inline constexpr std::string_view callSymbol = "phone.fill";
inline constexpr std::string_view deleteSymbol = "delete.left.fill";
inline constexpr std::string_view recentCalls = "Recent Calls";
inline constexpr std::string_view noRecentCalls = "No recent calls";
} // namespace callsTexts

} // namespace velloway
