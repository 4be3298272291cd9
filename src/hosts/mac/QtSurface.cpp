#include "hosts/mac/QtSurface.h"

#include "bridge/Views.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickStyle>

#include <bit>
#include <utility>

namespace velloway {

namespace {

/// A view that tells of presses which none of its controls takes.
class SurfaceView : public ContentView {
public:
    using ContentView::ContentView;

    std::function<void()> backgroundPressed;

protected:
    bool event(QEvent* event) override {
        const bool answer = ContentView::event(event);
        // Only here have the controls had it. The answer is the same whether or not one of them took it;
        // whoever took it holds its point.
        if (event->type() == QEvent::MouseButtonPress) {
            pressed(static_cast<QMouseEvent&>(*event));
        }
        return answer;
    }

private:
    void pressed(QMouseEvent& event) {
        const bool isTaken = event.exclusiveGrabber(event.point(0)) != nullptr;
        if (!isTaken && event.button() == Qt::LeftButton && backgroundPressed) {
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
        // and the engine the view, also when a nested event loop puts off the end of the view.
        view_->hide();
        QObject::connect(view_.get(), &QObject::destroyed, [engine = engine_] {});
        view_.release()->deleteLater();
    }

    void* nativeView() override { return std::bit_cast<void*>(view_->winId()); }
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

/// The engine of the views, which follow the colours of the desktop by themselves.
class QtSurfaces::Engine {
public:
    explicit Engine(std::shared_ptr<const SystemImages> images) {
        QQuickStyle::setStyle(QStringLiteral("Basic"));
        prepareEngine(qml, std::move(images));
    }

    QQmlEngine qml;
};

QtSurfaces::QtSurfaces(std::shared_ptr<const SystemImages> images) : images_(std::move(images)) {}

QtSurfaces::~QtSurfaces() {
    // No event loop may come after this that would delete the views of surfaces that have gone.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

std::unique_ptr<ContentSurface> QtSurfaces::make(std::shared_ptr<WindowContent> content,
                                                 MacWindows::Look look) {
    auto engine = engine_.lock();
    if (!engine) {
        engine = std::make_shared<Engine>(images_);
        engine_ = engine;
    }
    auto view = std::make_unique<SurfaceView>(engine->qml, std::move(content));
    if (look == MacWindows::Look::translucent) {
        // A panel can't become key; without this a press in it would still take the toolkit's focus, and with
        // it the keys, from the main window.
        view->setFlag(Qt::WindowDoesNotAcceptFocus);
        view->setColor(Qt::transparent);
        if (auto* root = view->rootObject()) {
            root->setProperty("translucent", true);
        }
    }
    return std::make_unique<QtSurface<Engine>>(std::move(engine), std::move(view));
}

} // namespace velloway
