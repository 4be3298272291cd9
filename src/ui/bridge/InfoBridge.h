#pragma once

#include "bridge/TabBridge.h"
#include "tabs/info/InfoModel.h"

namespace velloway {

class InfoBridge : public TabBridge {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window has it.")

public:
    explicit InfoBridge(InfoModel& model) : TabBridge(QStringLiteral("InfoTab.qml")), model_(model) {}

    Q_INVOKABLE void openProfile() { model_.openProfile(); }

private:
    InfoModel& model_;
};

} // namespace velloway
