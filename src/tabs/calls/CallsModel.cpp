#include "tabs/calls/CallsModel.h"

#include "text/Graphemes.h"
#include "text/Utf8.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <utility>
#include <variant>

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

DialPad dialPadOf(const std::string& dialpadNumber, std::size_t simCount) {
    const bool hasNumber = !dialpadNumber.empty();
    return {.numberText = hasNumber ? std::string(tail(dialpadNumber, rowBytes)) : " ",
            .canCall = hasNumber,
            .showsDelete = hasNumber,
            .showsSimPicker = simCount >= simSegments.size()};
}

} // namespace

CallsModel::CallsModel(const TabDependencies& dependencies, PhoneState& phone)
    : dialPad([this] { return dialPadOf(dialpadNumber.get(), with_.history->availableSIMs.get().size()); },
              dialpadNumber, dependencies.history->availableSIMs),
      recentCalls([this] { return recentCallRows(); }, phone.phoneCallLog),
      with_(dependencies),
      phone_(phone),
      prepared_(dependencies.notifications.observe(
          AppNotification::prepareActiveCall, [this](const AppNotificationObject& object) {
              if (const auto* number = std::get_if<std::string>(&object)) {
                  dialpadNumber.set(*number);
              }
          })) {}

std::vector<RecentCallRow> CallsModel::recentCallRows() const {
    const std::vector<CallRecord>& callLog = phone_.phoneCallLog.get();
    std::vector<RecentCallRow> rows;
    rows.reserve(callLog.size());
    const RelativeDates dates(with_.host);
    for (const CallRecord& call : callLog) {
        rows.push_back(
            {.id = call.id(),
             .number = std::string(head(call.number, rowBytes)),
             .name = std::string(head(phone_.callNames().shownName(call.number, call.name), rowBytes)),
             .date = dates.text(call.date),
             .symbol = directionSymbol(call.type),
             .color = call.type == missedType ? ColorRole::red : ColorRole::primary});
    }
    return rows;
}

void CallsModel::pressDialButton(std::size_t index) {
    dialpadNumber.modify([&](std::string& number) { number.append(dialButtons.at(index).digit); });
}

void CallsModel::deleteLastDigit() {
    dialpadNumber.set(std::string(withoutLastGrapheme(dialpadNumber.get())));
}

void CallsModel::callBack(const std::string& number) {
    dialpadNumber.set(number);
    startCall();
}

void CallsModel::callBack(const RecentCallRow& row) {
    const std::vector<CallRecord>& log = phone_.phoneCallLog.get();
    const auto call = std::find_if(log.begin(), log.end(), [&](const CallRecord& record) {
        return record.id() == row.id && head(record.number, rowBytes) == row.number;
    });
    // The log may have changed since.
    callBack(call == log.end() ? row.number : std::string(call->number));
}

void CallsModel::startCall() {
    const std::string number = dialpadNumber.get();
    if (number.empty()) {
        return;
    }
    with_.server.makeCall(number, phone_.selectedSimSlot.get());
    with_.notifications.post(AppNotification::prepareActiveCall,
                             std::map<std::string, std::string>{
                                 {"number", number}, {"name", phone_.callNames().contactName(number)}});
}

void CallsModel::endCall() {
    with_.server.hangupCall();
    with_.history->incomingCallInfo.set(std::nullopt);
    isSpeakerOn.set(false);
    isMuted.set(false);
}

KeyPressResult CallsModel::pressKey(const KeyPress& press) {
    const DialerKeyHandler handler{
        .get = [this] { return dialpadNumber.get(); },
        .set = [this](std::string number) { dialpadNumber.set(std::move(number)); },
        .isCallActive = false,
        .onReturn = [this] { startCall(); },
    };
    return handler.handle(press);
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
