#pragma once

#include "platform/Windows.h"
#include "state/Observable.h"

#include <QObject>
#include <QString>

#include <memory>
#include <vector>

namespace velloway {

/// Shows the value of a call panel to QML. Main thread only.
class CallPanelBridge : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString kind READ kind NOTIFY changed)
    Q_PROPERTY(QString iconSymbol READ iconSymbol NOTIFY changed)
    Q_PROPERTY(QString firstLine READ firstLine NOTIFY changed)
    Q_PROPERTY(QString secondLine READ secondLine NOTIFY changed)
    Q_PROPERTY(QString lastLine READ lastLine NOTIFY changed)
    Q_PROPERTY(bool leftIsMute READ leftIsMute NOTIFY changed)
    Q_PROPERTY(bool isMuted READ isMuted NOTIFY changed)
    Q_PROPERTY(QString leftSymbol READ leftSymbol NOTIFY changed)
    Q_PROPERTY(QString leftTooltip READ leftTooltip NOTIFY changed)
    Q_PROPERTY(QString leftName READ leftName NOTIFY changed)
    Q_PROPERTY(QString rightSymbol READ rightSymbol NOTIFY changed)
    Q_PROPERTY(QString rightTooltip READ rightTooltip NOTIFY changed)
    Q_PROPERTY(QString rightName READ rightName NOTIFY changed)

public:
    explicit CallPanelBridge(std::shared_ptr<WindowContent> content, QObject* parent = nullptr);
    ~CallPanelBridge() override;

    void setContent(std::shared_ptr<WindowContent> content);

    QString kind() const { return kind_; }
    QString iconSymbol() const { return iconSymbol_; }
    QString firstLine() const { return firstLine_; }
    QString secondLine() const { return secondLine_; }
    QString lastLine() const { return lastLine_; }
    bool leftIsMute() const { return leftIsMute_; }
    bool isMuted() const { return isMuted_; }
    QString leftSymbol() const { return leftSymbol_; }
    QString leftTooltip() const { return leftTooltip_; }
    QString leftName() const { return leftName_; }
    QString rightSymbol() const { return rightSymbol_; }
    QString rightTooltip() const { return rightTooltip_; }
    QString rightName() const { return rightName_; }

    Q_INVOKABLE void pressLeft();
    Q_INVOKABLE void pressRight();

signals:
    void changed();

private:
    void read();

    std::shared_ptr<WindowContent> content_;
    std::vector<Subscription> subscriptions_;
    QString kind_, iconSymbol_, firstLine_, secondLine_, lastLine_;
    bool leftIsMute_ = false;
    bool isMuted_ = false;
    QString leftSymbol_, leftTooltip_, leftName_, rightSymbol_, rightTooltip_, rightName_;
};

} // namespace velloway
