#pragma once

#include "app/Program.h"
#include "bridge/MainBridge.h"
#include "bridge/Views.h"
#include "desktop/WaitFor.h"
#include "fakes/FakePlatform.h"
#include "hosts/linux/windows/QtWindows.h"
#include "ui/ChangedViews.h"

#include <QFont>
#include <QGuiApplication>
#include <QPointer>
#include <QQuickItem>
#include <QTest>

#include <algorithm>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace velloway::test {

/// The parts of a view, by the names that it gives them. A list's rows share a name; `row` tells them apart.
inline void collect(QQuickItem* from, const QString& name, std::vector<QQuickItem*>& found) {
    if (from->objectName() == name) {
        found.push_back(from);
    }
    for (QQuickItem* child : from->childItems()) {
        collect(child, name, found);
    }
}

inline bool isShown(const QQuickItem* item) {
    return item->isVisible() && item->width() > 0 && item->height() > 0;
}

inline bool isOnShow(const QWindow& window) {
    return window.isVisible() && !(window.windowStates() & Qt::WindowMinimized);
}

/// A window reports a size that it was given at once; its view has it when the X server has answered.
inline bool viewHasSizeOf(const QQuickWindow& window) {
    return window.contentItem()->size().toSize() == window.size();
}

/// Waits with `wait` until a window is exposed, its view has its size and a frame was drawn after that. Only an
/// exposed window gives its view a size, and lists make their rows for a frame. Throws when that takes too
/// long; a window that is hidden, minimised or destroyed meanwhile has nothing to wait for.
template <class Wait> void waitForFrame(ContentView& of, Wait wait) {
    const QPointer<ContentView> window(&of);
    const auto isGone = [&] { return !window || !isOnShow(*window); };
    if (!wait([&] { return isGone() || (window->isExposed() && viewHasSizeOf(*window)); })) {
        throw std::runtime_error("a window was not exposed in its size");
    }
    if (isGone()) {
        return;
    }
    bool isDrawn = false;
    const auto connection =
        QObject::connect(window, &QQuickWindow::frameSwapped, [&isDrawn] { isDrawn = true; });
    window->update();
    const bool isInTime = wait([&] { return isGone() || isDrawn; });
    QObject::disconnect(connection);
    if (!isInTime) {
        throw std::runtime_error("a window was not drawn");
    }
}

/// The whole program on fakes, but for the windows, which are real ones with the real views. A phone is
/// connected from the start.
class ViewHarness {
public:
    ViewHarness() : program(on.platform(windows), [] {}) {
        program.delegate().applicationDidFinishLaunching();
        on.drain();
        on.network.listener().report(ListenerState::ready);
        phone = std::make_shared<FakeConnection>(
            Endpoint{.host = "192.168.1.20", .description = "192.168.1.20:50000"}, &on.journal);
        on.network.listener().connect(phone);
        phone->report(ConnectionState::ready);
        on.drain();
        takeSent();
    }

    ~ViewHarness() {
        // A ringing panel keeps what made it, so that it would outlive the program.
        program.historyStore().incomingCallInfo.set(std::nullopt);
        program.notifications().post(AppNotification::callDurationUpdated, std::int64_t{-1});
        on.drain();
        phone->report(ConnectionState::cancelled);
    }
    ViewHarness(const ViewHarness&) = delete;
    ViewHarness& operator=(const ViewHarness&) = delete;

    /// Lets both the program and its windows do what they have to do. Every window on show has then drawn it.
    void settle() {
        for (int turn = 0; turn < 4; ++turn) {
            on.drain();
            processPending();
        }
        std::vector<QPointer<ContentView>> onScreen;
        for (const bool panels : {false, true}) {
            const auto found = windowsOnScreen(panels);
            onScreen.insert(onScreen.end(), found.begin(), found.end());
        }
        for (const QPointer<ContentView>& window : onScreen) {
            if (window) {
                waitForFrame(*window, [this](auto condition) { return wait(condition); });
            }
        }
    }

    template <class Condition> bool wait(Condition condition) {
        return waitFor([&] {
            on.drain();
            return condition();
        });
    }

    /// As `wait`, for what a test cannot go on without.
    template <class Condition> void require(const char* what, Condition condition) {
        if (!wait(condition)) {
            throw std::runtime_error(std::string("waited in vain: ") + what);
        }
    }

    /// Opens the main window on a tab and waits until it is drawn and takes keys.
    ContentView& open(int tab) {
        program.delegate().showSettings(tab);
        require("a main window", [] { return mainWindow() != nullptr; });
        settle();
        ContentView& window = openWindow();
        window.requestActivate();
        require("an active main window", [&] { return window.isActive(); });
        settle();
        return window;
    }
    /// Waits until a call panel is drawn.
    ContentView& drawnPanel() {
        require("a panel", [] { return panel() != nullptr; });
        settle();
        return given(panel());
    }

    static std::vector<ContentView*> windowsOnScreen(bool panels) {
        std::vector<ContentView*> found;
        for (QWindow* window : QGuiApplication::topLevelWindows()) {
            auto* view = qobject_cast<ContentView*>(window);
            if (view && view->rootObject() && (view->rootObject()->property("ringing").isValid()) == panels &&
                view->isVisible()) {
                found.push_back(view);
            }
        }
        return found;
    }
    /// Null when there is none.
    static ContentView* mainWindow() {
        const auto found = windowsOnScreen(false);
        return found.empty() ? nullptr : found.front();
    }
    /// The newest panel, null when there is none.
    static ContentView* panel() {
        const auto found = windowsOnScreen(true);
        return found.empty() ? nullptr : found.back();
    }

    static ContentView& openWindow() { return given(mainWindow()); }

    /// The state behind the main window.
    SettingsView& state() {
        auto* bridge = openWindow().rootObject()->property("bridge").value<QObject*>();
        return qobject_cast<MainBridge*>(bridge)->view();
    }

    /// Those that are visible, from top to bottom.
    static std::vector<QQuickItem*> all(const char* name, QQuickWindow* window = mainWindow()) {
        std::vector<QQuickItem*> found;
        collect(given(window).contentItem(), QString::fromLatin1(name), found);
        // Lists keep rows that they have taken away, unseen, for later use.
        std::erase_if(found, [](const QQuickItem* item) { return !item->isVisible(); });
        std::stable_sort(found.begin(), found.end(), [](const QQuickItem* a, const QQuickItem* b) {
            return a->mapToScene({}).y() < b->mapToScene({}).y();
        });
        return found;
    }
    /// The first part of that name that is on screen, or null.
    static QQuickItem* findPart(const char* name, QQuickWindow* window = mainWindow()) {
        for (QQuickItem* item : all(name, window)) {
            if (isShown(item)) {
                return item;
            }
        }
        return nullptr;
    }
    /// The same where it has to be on screen.
    static QQuickItem* part(const char* name, QQuickWindow* window = mainWindow()) {
        QQuickItem* item = findPart(name, window);
        if (!item) {
            throw std::runtime_error(std::string("not on screen: ") + name);
        }
        return item;
    }
    static bool shows(const char* name, QQuickWindow* window = mainWindow()) {
        return findPart(name, window) != nullptr;
    }
    static QString text(const char* name, QQuickWindow* window = mainWindow()) {
        QQuickItem* item = findPart(name, window);
        return item ? item->property("text").toString() : QStringLiteral("(not there)");
    }

    void click(QQuickItem* item) {
        if (!item || !isShown(item)) {
            throw std::runtime_error("there is nothing to click on");
        }
        const QPoint at = item->mapToScene(QPointF(item->width() / 2, item->height() / 2)).toPoint();
        if (!QRect(QPoint(), item->window()->size()).contains(at)) {
            throw std::runtime_error(item->objectName().toStdString() + " is out of sight");
        }
        QTest::mouseClick(item->window(), Qt::LeftButton, {}, at);
        settle();
    }
    void click(const char* name) { click(part(name)); }

    void key(int key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(&openWindow(), static_cast<Qt::Key>(key), modifiers);
        settle();
    }
    /// Key presses for every character; the toolkit's own helper has no text for some of them.
    void type(const QString& text) {
        for (const QChar c : text) {
            QKeyEvent press(QEvent::KeyPress, c.unicode() < 128 ? c.toUpper().unicode() : 0, Qt::NoModifier,
                            QString(c));
            QGuiApplication::sendEvent(&openWindow(), &press);
            QKeyEvent release(QEvent::KeyRelease, press.key(), Qt::NoModifier, QString(c));
            QGuiApplication::sendEvent(&openWindow(), &release);
        }
        settle();
    }
    void holdKey(int key, const QString& text, int repeats) {
        for (int i = 0; i <= repeats; ++i) {
            QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text, i > 0);
            QGuiApplication::sendEvent(&openWindow(), &press);
        }
        settle();
    }

    static int fontSize(const char* name, QQuickWindow* window = mainWindow()) {
        return part(name, window)->property("font").value<QFont>().pixelSize();
    }
    /// The texts of a tab that the user sees, from top to bottom.
    static std::vector<std::string> visibleTexts(QQuickWindow* window = mainWindow()) {
        std::vector<std::string> texts;
        const std::function<void(QQuickItem*)> visit = [&](QQuickItem* item) {
            if (!item->isVisible()) {
                return;
            }
            if (item->inherits("QQuickText") && !item->property("text").toString().isEmpty()) {
                texts.push_back(item->property("text").toString().toStdString());
            }
            for (QQuickItem* child : item->childItems()) {
                visit(child);
            }
        };
        visit(given(window).contentItem());
        return texts;
    }

    void receive(std::string_view message) {
        phone->deliver(message);
        settle();
    }

    /// What the phone has got since the last call.
    std::vector<std::string> takeSent() {
        on.drain();
        std::vector<std::string> texts;
        for (const auto& sent : std::exchange(phone->sent, {})) {
            texts.push_back(sent.text);
        }
        return texts;
    }

    FakePlatform on;
    QtWindows windows{&makeTestedWindows};
    Program program;
    std::shared_ptr<FakeConnection> phone;

private:
    template <class AWindow> static AWindow& given(AWindow* window) {
        if (!window) {
            throw std::runtime_error("the window is not open");
        }
        return *window;
    }
};

} // namespace velloway::test
