#pragma once

#include "tabs/Computed.h"
#include "tabs/PhoneState.h"
#include "tabs/Style.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velloway {

struct DialButton {
    std::string_view digit;
    /// The caption under the digit; may be empty.
    std::string_view letters;

    bool operator==(const DialButton&) const = default;
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

    bool operator==(const SimSegment&) const = default;
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

/// A running clock of a call; none is ever started.
struct CallTimer {
    Instant started;
};

/// The dial pad and the recent calls. Main thread only.
class CallsModel {
public:
    CallsModel(const TabDependencies& dependencies, PhoneState& phone);

    Observable<std::string> dialpadNumber;
    Observable<bool> isSpeakerOn{false};
    Observable<bool> isMuted{false};
    Observable<std::optional<CallTimer>> timer;
    static constexpr DialButtons dialButtons = dialPadButtons;

    const Computed<DialPad> dialPad;
    /// In the order of the log. Empty: the text `noRecentCalls` as the only row.
    const Computed<std::vector<RecentCallRow>> recentCalls;

    /// `index` is a position in `dialButtons`.
    void pressDialButton(std::size_t index);
    void deleteLastDigit();
    /// A row of the recent calls was pressed.
    void callBack(const std::string& number);
    void callBack(const RecentCallRow& row);
    void startCall();
    void endCall();
    KeyPressResult pressKey(const KeyPress& press);

private:
    std::vector<RecentCallRow> recentCallRows() const;

    const TabDependencies& with_;
    PhoneState& phone_;
    Subscription prepared_;
};

} // namespace velloway
