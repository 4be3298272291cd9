#include "hosts/mac/QtSurface.h"

#include "bridge/Views.h"
#include "hosts/mac/MacSystemImages.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickStyle>

#include <utility>

namespace velloway {

namespace {

/// A view that tells of presses which none of its controls takes.
class SurfaceView : public ContentView {
public:
    using ContentView::ContentView;

    std::function<void()> backgroundPressed;

protected:
    void mousePressEvent(QMouseEvent* event) override {
        ContentView::mousePressEvent(event);
        // The event answers the same whether or not a control took it; whoever took it holds its point.
        const bool isTaken = event->exclusiveGrabber(event->point(0)) != nullptr;
        if (!isTaken && event->button() == Qt::LeftButton && backgroundPressed) {
            backgroundPressed();
        }
    }
};

template <class Engine> class QtSurface final : public ContentSurface {
public:
    QtSurface(std::shared_ptr<Engine> engine, std::unique_ptr<SurfaceView> view)
        : engine_(std::move(engine)), view_(std::move(view)) {}
    ~QtSurface() override {
        // A press on one of its own buttons can end a window; its view must outlive the handling of the press,
        // and the engine the view.
        view_->hide();
        view_.release()->deleteLater();
        QMetaObject::invokeMethod(
            qApp, [engine = engine_] {}, Qt::QueuedConnection);
    }

    void* nativeView() override { return reinterpret_cast<void*>(view_->winId()); }
    void setContent(std::shared_ptr<WindowContent> content) override { view_->setContent(std::move(content)); }
    void setShown(bool isShown) override { view_->setVisible(isShown); }
    void setBackgroundPressed(std::function<void()> pressed) override {
        view_->backgroundPressed = std::move(pressed);
    }

private:
    std::shared_ptr<Engine> engine_;
    std::unique_ptr<SurfaceView> view_;
};

} // namespace

/// The engine of the views, which follow the colours of the desktop by themselves. It lives as long as any
/// window.
class QtSurfaces::Engine {
public:
    Engine() {
        QQuickStyle::setStyle(QStringLiteral("Basic"));
        prepareEngine(qml, std::make_shared<MacSystemImages>());
    }

    QQmlEngine qml;
};

QtSurfaces::QtSurfaces() = default;

QtSurfaces::~QtSurfaces() = default;

std::unique_ptr<ContentSurface> QtSurfaces::make(std::shared_ptr<WindowContent> content,
                                                 MacWindows::Look look) {
    if (!engine_) {
        engine_ = std::make_shared<Engine>();
    }
    auto view = std::make_unique<SurfaceView>(engine_->qml, std::move(content));
    if (look == MacWindows::Look::translucent) {
        view->setColor(Qt::transparent);
        if (auto* root = view->rootObject()) {
            root->setProperty("translucent", true);
        }
    }
    return std::make_unique<QtSurface<Engine>>(engine_, std::move(view));
}

} // namespace velloway
