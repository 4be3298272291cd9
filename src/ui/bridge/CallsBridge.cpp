#include "bridge/CallsBridge.h"

namespace velloway {

namespace {

/// In the smallest letters, the pad has room for fewer digits.
constexpr std::size_t numberBytes = 64;

/// What the symbol and its colour say, in words.
QString directionOf(const RecentCallRow& row) {
    return row.color == ColorRole::red            ? QStringLiteral("Missed call")
           : row.symbol == "phone.arrow.up.right" ? QStringLiteral("Outgoing call")
                                                  : QStringLiteral("Incoming call");
}

} // namespace

CallsBridge::CallsBridge(CallsModel& model, PhoneState& phone)
    : TabBridge(QStringLiteral("CallsTab.qml")),
      model_(model),
      phone_(phone),
      dialButtons_(this, &DialButton::digit,
                   {{"digit", &DialButton::digit}, {"letters", &DialButton::letters}}),
      simSegments_(this, &SimSegment::slot,
                   {{"title", &SimSegment::title},
                    {"simSlot", [](const SimSegment& row) { return static_cast<double>(row.slot); }}}),
      recentCalls_(this, &RecentCallRow::id,
                   {{"number", cutTo(lineBytes, &RecentCallRow::number)},
                    {"name", cutTo(lineBytes, &RecentCallRow::name)},
                    {"date", &RecentCallRow::date},
                    {"symbol", &RecentCallRow::symbol},
                    {"colorRole", &RecentCallRow::color},
                    {"direction", &directionOf}}) {
    simSegments_.assign({velloway::simSegments.begin(), velloway::simSegments.end()});
    dialButtons_.assign({CallsModel::dialButtons.begin(), CallsModel::dialButtons.end()});
    follow(phone.selectedSimSlot, &CallsBridge::selectedSimSlotChanged);
    follow(model.dialPad, [this] { readPad(); });
    follow(model.recentCalls, [this] { recentCalls_.assign(model_.recentCalls.get()); });
}

void CallsBridge::readPad() {
    const DialPad pad = model_.dialPad.get();
    show(pad_,
         {.numberText = cutHead(pad.numberText, numberBytes),
          .canCall = pad.canCall,
          .showsDelete = pad.showsDelete,
          .showsSimPicker = pad.showsSimPicker},
         &CallsBridge::padChanged);
}

void CallsBridge::callBack(int row) {
    if (row >= 0 && row < recentCalls_.rowCount()) {
        // The list can change meanwhile.
        const RecentCallRow pressed = recentCalls_.rows()[static_cast<std::size_t>(row)];
        model_.callBack(pressed);
    }
}

bool CallsBridge::pressKey(int key, const QString& text, bool isRepeat) {
    KeyPress press{.phase = isRepeat ? KeyPress::Phase::repeat : KeyPress::Phase::down,
                   .characters = fromQt(text)};
    switch (key) {
    case Qt::Key_Backspace:
        press = {.key = KeyPress::Key::deleteKey, .phase = press.phase};
        break;
    case Qt::Key_Delete:
        press = {.key = KeyPress::Key::deleteForward, .phase = press.phase};
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        press = {.key = KeyPress::Key::returnKey, .phase = press.phase};
        break;
    default:
        break;
    }
    return model_.pressKey(press) == KeyPressResult::handled;
}

} // namespace velloway
