#include "tabs/CallsTab.h"

#include "text/Graphemes.h"

#include <cstdio>
#include <utility>

namespace velloway {

namespace {

constexpr std::string_view dialCharacters = "0123456789*#";
constexpr std::int64_t outgoingType = 2;
constexpr std::int64_t missedType = 3;

std::string_view directionSymbol(std::int64_t type) {
    return type == outgoingType ? "phone.arrow.up.right" : "phone.arrow.down.left";
}

std::string twoDigits(std::int64_t number) {
    char text[24];
    const int length = std::snprintf(text, sizeof text, "%02lld", static_cast<long long>(number));
    return {text, static_cast<std::size_t>(length)};
}

} // namespace

DialPad dialPad(const std::string& dialpadNumber, std::size_t simCount) {
    const bool hasNumber = !dialpadNumber.empty();
    return {.numberText = hasNumber ? dialpadNumber : " ",
            .canCall = hasNumber,
            .showsDelete = hasNumber,
            .showsSimPicker = simCount >= simSegments.size()};
}

std::vector<RecentCallRow> recentCallRows(const std::vector<CallRecord>& callLog, const CallNames& names,
                                          const Host& host) {
    std::vector<RecentCallRow> rows;
    rows.reserve(callLog.size());
    const RelativeDates dates(host);
    for (const CallRecord& call : callLog) {
        rows.push_back({.id = call.id(),
                        .number = call.number,
                        .name = names.contactName(call.number, call.name),
                        .date = dates.text(call.date),
                        .symbol = directionSymbol(call.type),
                        .color = call.type == missedType ? ColorRole::red : ColorRole::primary});
    }
    return rows;
}

KeyPressResult DialerKeyHandler::handle(const KeyPress& press) const {
    if (isCallActive || press.phase == KeyPress::Phase::up) {
        return KeyPressResult::ignored;
    }
    if (!press.characters.empty() && dialCharacters.find(press.characters) != std::string_view::npos) {
        set(get() + press.characters);
        return KeyPressResult::handled;
    }
    switch (press.key) {
    case KeyPress::Key::deleteKey:
    case KeyPress::Key::deleteForward:
        set(std::string(withoutLastGrapheme(get())));
        return KeyPressResult::handled;
    case KeyPress::Key::returnKey:
        onReturn();
        return KeyPressResult::handled;
    case KeyPress::Key::character:
        break;
    }
    return KeyPressResult::ignored;
}

std::string formatDuration(std::int64_t seconds) {
    constexpr std::int64_t minute = 60;
    return twoDigits(seconds / minute) + ":" + twoDigits(seconds % minute);
}

} // namespace velloway
