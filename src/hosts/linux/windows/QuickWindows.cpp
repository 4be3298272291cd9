#include "hosts/linux/windows/QuickWindows.h"

#include "bridge/Views.h"
#include "hosts/linux/windows/Compositing.h"
#include "hosts/linux/windows/ScreenHeight.h"
#include "hosts/linux/windows/WindowSpaces.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPainterPath>
#include <QPixmapCache>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QScreen>
#include <QStyleHints>
#include <QTimer>

#include <chrono>
#include <malloc.h>
#include <optional>
#include <utility>

namespace velloway {

namespace {

constexpr double cornerRadius = 12;
/// How far two clicks on one button of a panel can be apart.
constexpr double sameButton = 32;
/// How long the main window keeps its view after it was closed, and how long all else that the view held then
/// takes to go.
constexpr std::chrono::seconds viewRest{30};
constexpr std::chrono::seconds memoryRest{1};

QSize pixels(const Size& size) {
    return {static_cast<int>(size.width), static_cast<int>(size.height)};
}

/// The main window: closing it only hides it.
class MainView : public ContentView {
public:
    MainView(QQmlEngine& engine, std::shared_ptr<WindowContent> content, std::function<void()> onClose)
        : ContentView(engine, std::move(content)), onClose_(std::move(onClose)) {}

protected:
    bool event(QEvent* event) override {
        if (event->type() == QEvent::Close) {
            event->ignore();
            hide();
            onClose_();
            return true;
        }
        return ContentView::event(event);
    }

private:
    std::function<void()> onClose_;
};

/// A panel: what no control of it takes drags it.
class PanelView : public ContentView {
public:
    using ContentView::ContentView;

protected:
    bool event(QEvent* event) override {
        if (isMeantForAnother(*event)) {
            return true;
        }
        const bool answer = ContentView::event(event);
        // The views have had it by now; they answer the same whether or not a control took it.
        switch (event->type()) {
        case QEvent::MouseButtonPress:
            pressed(static_cast<QMouseEvent&>(*event));
            break;
        case QEvent::MouseMove:
            moved(static_cast<QMouseEvent&>(*event));
            break;
        case QEvent::MouseButtonRelease:
            grip_.reset();
            isMoving_ = false;
            break;
        default:
            break;
        }
        return answer;
    }

private:
    /// Panels take each other's place: the second click of a double click hits a panel that the first one
    /// brought.
    bool isMeantForAnother(const QEvent& event) {
        static struct {
            int panel;
            ulong time;
            QPointF place;
        } last{};
        if (event.type() != QEvent::MouseButtonPress && event.type() != QEvent::MouseButtonDblClick) {
            return false;
        }
        const auto& press = static_cast<const QMouseEvent&>(event);
        const auto elapsed = press.timestamp() - last.time;
        const bool isAnother =
            last.panel != 0 && last.panel != number_ &&
            elapsed <= static_cast<ulong>(QGuiApplication::styleHints()->mouseDoubleClickInterval()) &&
            (press.globalPosition() - last.place).manhattanLength() <= sameButton;
        last = {isAnother ? last.panel : number_, press.timestamp(), press.globalPosition()};
        return isAnother;
    }
    void pressed(QMouseEvent& event) {
        const bool isTaken = event.exclusiveGrabber(event.point(0)) != nullptr;
        if (!isTaken && event.button() == Qt::LeftButton) {
            grip_ = event.globalPosition().toPoint() - position();
        }
    }
    void moved(const QMouseEvent& event) {
        if (!grip_) {
            return;
        }
        if (!std::exchange(isMoving_, true) && canSystemMove(*this) && startSystemMove()) {
            grip_.reset();
            isMoving_ = false;
            return;
        }
        setPosition(event.globalPosition().toPoint() - *grip_);
    }

    static inline int made_ = 0;

    const int number_ = ++made_;
    std::optional<QPoint> grip_;
    bool isMoving_ = false;
};

/// The engine of the views. It outlives every view.
class Engine {
public:
    Engine() {
        // These views are text on plain grounds, which the processor draws fast enough without a graphics
        // driver in the process.
        static const bool isBackendSet = [] {
            QQuickStyle::setStyle(QStringLiteral("Basic"));
            QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
            return true;
        }();
        static_cast<void>(isBackendSet);
        prepareEngine(qml);
        useFontsForEveryScript();
    }

    QQmlEngine qml;
};

/// Where the engine is kept from one view to the next; it comes with the first.
class EnginePlace {
public:
    std::shared_ptr<Engine> engine() {
        if (!engine_) {
            engine_ = std::make_shared<Engine>();
        }
        return engine_;
    }
    /// It goes with the last view that has it.
    void release() { engine_.reset(); }

private:
    std::shared_ptr<Engine> engine_;
};

/// One window of the port over one view. The engine is held so that it outlives the view.
class QuickWindow : public Window {
public:
    QuickWindow(std::shared_ptr<Engine> engine, std::unique_ptr<ContentView> view)
        : engine_(std::move(engine)), view_(std::move(view)) {}
    ~QuickWindow() override {
        // A press on one of its own buttons can end a window; its view must outlive the handling of the press.
        view_->hide();
        QObject::connect(view_.get(), &QObject::destroyed, [engine = engine_] {});
        view_.release()->deleteLater();
    }

    bool isVisible() const override { return view_->isVisible(); }
    void center() override {
        const QRect usable = QGuiApplication::primaryScreen()->availableGeometry();
        view_->setPosition(usable.center() - QPoint(view_->width() / 2, view_->height() / 2));
    }
    void makeKeyAndOrderFront() override {
        if (view_->windowStates() & Qt::WindowMinimized) {
            view_->setWindowStates(view_->windowStates() & ~Qt::WindowMinimized);
        }
        show();
        if (!(view_->flags() & Qt::WindowDoesNotAcceptFocus)) {
            bringToUser(*view_);
        }
    }
    void orderFrontRegardless() override { show(); }
    void orderOut() override { view_->hide(); }
    void setIsVisible(bool visible) override { view_->setVisible(visible); }
    void setFrameOrigin(double x, double y) override {
        view_->setPosition(static_cast<int>(x), flipped(y, view_->height()));
    }
    void setContent(std::shared_ptr<WindowContent> content) override { view_->setContent(std::move(content)); }

    ContentView& view() { return *view_; }

private:
    void show() {
        view_->show();
        view_->raise();
    }

    std::shared_ptr<Engine> engine_;
    std::unique_ptr<ContentView> view_;
};

/// Rounded corners: by what shines through where windows can be see-through, by a mask elsewhere.
void roundCorners(ContentView& view) {
    const bool translucent = isCompositing();
    if (auto* root = view.rootObject()) {
        root->setProperty("translucent", translucent);
    }
    if (translucent) {
        view.setColor(Qt::transparent);
        return;
    }
    QPainterPath outline;
    outline.addRoundedRect(QRectF(QPointF(), QSizeF(view.size())), cornerRadius, cornerRadius);
    view.setMask(QRegion(outline.toFillPolygon().toPolygon()));
}

/// The main window. When it has been closed for a while its view goes, with the engine if no panel has it, and
/// all the memory they take. The next showing brings them back: what the view shows is the core's.
class MainWindow : public Window {
public:
    MainWindow(std::shared_ptr<EnginePlace> engines, const MainWindowProperties& properties,
               std::shared_ptr<WindowContent> content, std::function<void()> onClose)
        : engines_(std::move(engines)),
          properties_(properties),
          content_(std::move(content)),
          onClose_(std::move(onClose)) {
        rest_.setSingleShot(true);
        rest_.setInterval(viewRest);
        QObject::connect(&rest_, &QTimer::timeout, &rest_, [this] { dropView(); });
        make();
    }

    bool isVisible() const override { return window_ && window_->isVisible(); }
    void center() override { window().center(); }
    void makeKeyAndOrderFront() override { window().makeKeyAndOrderFront(); }
    void orderFrontRegardless() override { window().orderFrontRegardless(); }
    void orderOut() override { window().orderOut(); }
    void setIsVisible(bool visible) override { window().setIsVisible(visible); }
    void setFrameOrigin(double x, double y) override { window().setFrameOrigin(x, y); }
    void setContent(std::shared_ptr<WindowContent> content) override {
        content_ = content;
        window().setContent(std::move(content));
    }

private:
    void make() {
        auto engine = engines_->engine();
        auto view = std::make_unique<MainView>(engine->qml, content_, [this] {
            rest_.start();
            onClose_();
        });
        view->setTitle(QString::fromStdString(properties_.title));
        view->setFlags(Qt::Window);
        view->setMinimumSize(pixels(properties_.minimumSize));
        view->resize(pixels(properties_.size));
        window_.emplace(std::move(engine), std::move(view));
    }
    QuickWindow& window() {
        rest_.stop();
        if (!window_) {
            make();
            ContentView& view = window_->view();
            view.resize(size_);
            view.setFramePosition(place_);
            view.setWindowStates(states_);
        }
        return *window_;
    }
    void dropView() {
        if (!window_ || window_->isVisible()) {
            return;
        }
        const ContentView& view = window_->view();
        size_ = view.size();
        place_ = view.framePosition();
        states_ = view.windowStates() & ~Qt::WindowMinimized;
        window_.reset();
        engines_->release();
        QTimer::singleShot(memoryRest, &rest_, [] {
            QPixmapCache::clear();
            ::malloc_trim(0);
        });
    }

    const std::shared_ptr<EnginePlace> engines_;
    const MainWindowProperties properties_;
    std::shared_ptr<WindowContent> content_;
    const std::function<void()> onClose_;
    std::optional<QuickWindow> window_;
    QTimer rest_;
    // Of a view that has gone.
    QSize size_;
    QPoint place_;
    Qt::WindowStates states_;
};

/// Makes windows over one engine.
class QuickWindows : public ViewWindows {
public:
    ~QuickWindows() override {
        // No event loop may come after this that would delete the views of windows that have gone.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    std::shared_ptr<Window> makeMainWindow(const MainWindowProperties& properties,
                                           std::shared_ptr<WindowContent> content,
                                           std::function<void()> onClose) override;
    std::shared_ptr<Window> makePanel(const PanelProperties& properties,
                                      std::shared_ptr<WindowContent> content) override;

private:
    const std::shared_ptr<EnginePlace> engines_ = std::make_shared<EnginePlace>();
};

std::shared_ptr<Window> QuickWindows::makeMainWindow(const MainWindowProperties& properties,
                                                     std::shared_ptr<WindowContent> content,
                                                     std::function<void()> onClose) {
    return std::make_shared<MainWindow>(engines_, properties, std::move(content), std::move(onClose));
}

std::shared_ptr<Window> QuickWindows::makePanel(const PanelProperties& properties,
                                                std::shared_ptr<WindowContent> content) {
    auto engine = engines_->engine();
    auto view = std::make_unique<PanelView>(engine->qml, std::move(content));
    view->setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                   Qt::WindowDoesNotAcceptFocus);
    view->setObjectName(callPanelName);
    view->setTitle(QStringLiteral("Velloway"));
    const QSize size = pixels(properties.size);
    view->setMinimumSize(size);
    view->setMaximumSize(size);
    view->resize(size);
    roundCorners(*view);
    floatOverEverything(*view);
    return std::make_shared<QuickWindow>(std::move(engine), std::move(view));
}

} // namespace

std::unique_ptr<ViewWindows> makeQuickWindows() {
    return std::make_unique<QuickWindows>();
}

} // namespace velloway
