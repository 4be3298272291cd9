#pragma once

#include "shell/CallPanelContent.h"

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <memory>

namespace velloway {

struct CallPanelState {
    Q_GADGET
    QML_ANONYMOUS
    Q_PROPERTY(bool isRinging MEMBER isRinging)
    Q_PROPERTY(bool isMuted MEMBER isMuted)
    Q_PROPERTY(QString iconSymbol MEMBER iconSymbol)
    Q_PROPERTY(QString firstLine MEMBER firstLine)
    /// Empty: no such line.
    Q_PROPERTY(QString secondLine MEMBER secondLine)
    Q_PROPERTY(QString lastLine MEMBER lastLine)
    Q_PROPERTY(QString leftSymbol MEMBER leftSymbol)
    Q_PROPERTY(QString leftTooltip MEMBER leftTooltip)
    Q_PROPERTY(QString leftName MEMBER leftName)
    Q_PROPERTY(QString rightSymbol MEMBER rightSymbol)
    Q_PROPERTY(QString rightTooltip MEMBER rightTooltip)
    Q_PROPERTY(QString rightName MEMBER rightName)

public:
    bool isRinging = false;
    bool isMuted = false;
    QString iconSymbol, firstLine, secondLine, lastLine;
    QString leftSymbol, leftTooltip, leftName, rightSymbol, rightTooltip, rightName;
};

/// Shows the value of a call panel to QML. Main thread only.
class CallPanelBridge : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window has it.")
    Q_PROPERTY(velloway::CallPanelState panel READ panel NOTIFY panelChanged)

public:
    explicit CallPanelBridge(std::shared_ptr<CallPanelContent> content);

    void setContent(std::shared_ptr<CallPanelContent> content);
    CallPanelState panel() const { return panel_; }

    Q_INVOKABLE void pressLeft();
    Q_INVOKABLE void pressRight();

signals:
    void panelChanged();

private:
    void read();

    std::shared_ptr<CallPanelContent> content_;
    CallPanelState panel_;
    Subscription changes_;
};

} // namespace velloway
