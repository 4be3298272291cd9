#include "hosts/linux/windows/QuickWindows.h"

#include "bridge/Views.h"
#include "hosts/linux/windows/Compositing.h"
#include "hosts/linux/windows/IdleMemory.h"
#include "hosts/linux/windows/RoundedRegion.h"
#include "hosts/linux/windows/ScreenHeight.h"
#include "hosts/linux/windows/WindowSpaces.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPixmapCache>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QScreen>
#include <QStyleHints>
#include <QTimer>

#include <chrono>
#include <utility>

namespace velloway {

namespace {

constexpr int cornerRadius = 12;
/// How far two clicks on one button of a panel can be apart.
constexpr double sameButton = 32;
/// How long the main window stays open until what only its opening needed is given back, and closed until all
/// is that it can do without.
constexpr std::chrono::seconds openRest{5};
constexpr std::chrono::seconds closedRest{30};

QSize pixels(const Size& size) {
    return {static_cast<int>(size.width), static_cast<int>(size.height)};
}

/// The main window: closing it only hides it. When it has been open for a while, what only its opening needed
/// is given back; when it has been closed for a while, everything that it does not need for coming back at
/// once.
class MainView : public ContentView {
public:
    MainView(QQmlEngine& engine, std::shared_ptr<WindowContent> content, std::function<void()> onClose)
        : ContentView(engine, std::move(content)), onClose_(std::move(onClose)) {
        setPersistentSceneGraph(false);
        rest_.setSingleShot(true);
        connect(&rest_, &QTimer::timeout, this, [this] { giveBack(); });
    }

protected:
    bool event(QEvent* event) override {
        if (event->type() == QEvent::Close) {
            event->ignore();
            hide();
            rest_.start(closedRest);
            onClose_();
            return true;
        }
        if (event->type() == QEvent::Show) {
            rest_.start(openRest);
        }
        return ContentView::event(event);
    }

private:
    void giveBack() {
        if (!isVisible()) {
            releaseResources();
            engine()->collectGarbage();
            QPixmapCache::clear();
        }
        giveBackIdleMemory();
    }

    std::function<void()> onClose_;
    QTimer rest_;
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

/// The engine of the views. It lives as long as any window.
class Engine {
public:
    explicit Engine(const std::function<void(QQmlEngine&)>& prepare) {
        QQuickStyle::setStyle(QStringLiteral("Basic"));
        // These views are text on plain grounds, which the processor draws fast enough without a graphics
        // driver in the process.
        static const bool isBackendSet = [] {
            QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
            return true;
        }();
        static_cast<void>(isBackendSet);
        prepareEngine(qml);
        useFontsForEveryScript();
        if (prepare) {
            prepare(qml);
        }
    }

    QQmlEngine qml;
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
    view.setMask(roundedRegion(view.size(), cornerRadius));
}

/// Makes windows over one engine, which comes with the first of them.
class QuickWindows : public ViewWindows {
public:
    explicit QuickWindows(std::function<void(QQmlEngine&)> prepare) : prepare_(std::move(prepare)) {}
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
    const std::shared_ptr<Engine>& engine() {
        if (!engine_) {
            engine_ = std::make_shared<Engine>(prepare_);
        }
        return engine_;
    }

    std::function<void(QQmlEngine&)> prepare_;
    std::shared_ptr<Engine> engine_;
};

std::shared_ptr<Window> QuickWindows::makeMainWindow(const MainWindowProperties& properties,
                                                     std::shared_ptr<WindowContent> content,
                                                     std::function<void()> onClose) {
    auto view = std::make_unique<MainView>(engine()->qml, std::move(content), std::move(onClose));
    view->setTitle(QString::fromStdString(properties.title));
    view->setFlags(Qt::Window);
    view->setMinimumSize(pixels(properties.minimumSize));
    view->resize(pixels(properties.size));
    return std::make_shared<QuickWindow>(engine(), std::move(view));
}

std::shared_ptr<Window> QuickWindows::makePanel(const PanelProperties& properties,
                                                std::shared_ptr<WindowContent> content) {
    auto view = std::make_unique<PanelView>(engine()->qml, std::move(content));
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
    return std::make_shared<QuickWindow>(engine(), std::move(view));
}

} // namespace

std::unique_ptr<ViewWindows> makeQuickWindows() {
    return makeQuickWindowsOver({});
}

std::unique_ptr<ViewWindows> makeQuickWindowsOver(std::function<void(QQmlEngine&)> prepare) {
    return std::make_unique<QuickWindows>(std::move(prepare));
}

} // namespace velloway
