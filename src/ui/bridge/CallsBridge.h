#pragma once

#include "bridge/RowModel.h"
#include "bridge/TabBridge.h"
#include "tabs/PhoneState.h"
#include "tabs/calls/CallsModel.h"

#include <string>

namespace velloway {

struct DialPadState {
    Q_GADGET
    QML_ANONYMOUS
    Q_PROPERTY(QString numberText MEMBER numberText)
    Q_PROPERTY(bool canCall MEMBER canCall)
    Q_PROPERTY(bool showsDelete MEMBER showsDelete)
    Q_PROPERTY(bool showsSimPicker MEMBER showsSimPicker)

public:
    QString numberText;
    bool canCall = false;
    bool showsDelete = false;
    bool showsSimPicker = false;

    bool operator==(const DialPadState&) const = default;
};

class CallsBridge : public TabBridge {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window has it.")
    Q_PROPERTY(
        double selectedSimSlot READ selectedSimSlot WRITE setSelectedSimSlot NOTIFY selectedSimSlotChanged)
    Q_PROPERTY(velloway::DialPadState pad READ pad NOTIFY padChanged)
    Q_PROPERTY(QAbstractItemModel* dialButtons READ dialButtons CONSTANT)
    Q_PROPERTY(QAbstractItemModel* simSegments READ simSegments CONSTANT)
    Q_PROPERTY(QAbstractItemModel* recentCalls READ recentCalls CONSTANT)

public:
    CallsBridge(CallsModel& model, PhoneState& phone);

    double selectedSimSlot() const { return static_cast<double>(phone_.selectedSimSlot.get()); }
    void setSelectedSimSlot(double slot) { phone_.selectedSimSlot.set(static_cast<std::int64_t>(slot)); }
    DialPadState pad() const { return pad_; }
    QAbstractItemModel* dialButtons() { return &dialButtons_; }
    QAbstractItemModel* simSegments() { return &simSegments_; }
    QAbstractItemModel* recentCalls() { return &recentCalls_; }

    Q_INVOKABLE void pressDialButton(int index) { model_.pressDialButton(static_cast<std::size_t>(index)); }
    Q_INVOKABLE void deleteLastDigit() { model_.deleteLastDigit(); }
    /// `row` is a position in the recent calls; one outside of them is ignored.
    Q_INVOKABLE void callBack(int row);
    Q_INVOKABLE void startCall() { model_.startCall(); }
    /// A key on the dial pad; true when it was handled.
    Q_INVOKABLE bool pressKey(int key, const QString& text, bool isRepeat);

signals:
    void selectedSimSlotChanged();
    void padChanged();

private:
    void readPad();

    CallsModel& model_;
    PhoneState& phone_;
    DialPadState pad_;
    RowModel<DialButton, std::string_view> dialButtons_;
    RowModel<SimSegment, std::int64_t> simSegments_;
    RowModel<RecentCallRow, double> recentCalls_;
};

} // namespace velloway
