#include "hosts/linux/windows/WindowSpaces.h"
#include "desktop/WaitFor.h"
#include "hosts/linux/windows/Compositing.h"
#include "hosts/windows/XClient.h"

#include <gtest/gtest.h>

#include <QEvent>
#include <QTest>

namespace velloway::test {
namespace {

using Data = std::vector<std::uint32_t>;
constexpr std::uint32_t everyDesktop = 0xffffffff;

class WindowSpacesTest : public testing::Test {
protected:
    WindowSpacesTest() {
        window_.setGeometry(200, 200, 100, 80);
        other_.setGeometry(600, 200, 100, 80);
        window_.create();
        client_.takeMessages();
    }
    ~WindowSpacesTest() override {
        for (const char* name : {"_NET_SUPPORTING_WM_CHECK", "_NET_CURRENT_DESKTOP", "_NET_ACTIVE_WINDOW",
                                 "_NET_CLIENT_LIST_STACKING"}) {
            client_.deleteProperty(client_.root(), name);
        }
        qunsetenv("WAYLAND_DISPLAY");
    }

    /// As behind a compositor of that family.
    void actAsWlroots(const std::string& name = "wlroots wm") {
        const xcb_window_t check = client_.makeWindow(0, 0, 1, 1);
        client_.setText(check, "_NET_WM_NAME", name);
        client_.setProperty(client_.root(), "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW, check);
    }
    void show(QWindow& window) {
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    }
    /// What the toolkit has asked for leaves with its next turn.
    bool hasType(const std::string& type) {
        return waitFor([&] { return client_.nameIn(window_, "_NET_WM_WINDOW_TYPE") == type; });
    }
    bool hasDesktop(QWindow& window, std::uint32_t desktop) {
        return waitFor(
            [&] { return client_.property(XClient::idOf(window), "_NET_WM_DESKTOP") == Data{desktop}; });
    }
    bool isUnmanaged() const { return window_.flags() & Qt::BypassWindowManagerHint; }
    /// The data of all messages of this type that the window has sent.
    std::vector<Data> asked(const std::string& type) {
        // Whatever is on its way has been sent once the server has answered.
        QTest::qWait(0);
        std::vector<Data> found;
        for (const auto& message : client_.takeMessages()) {
            if (message.type == type) {
                EXPECT_EQ(message.window, XClient::idOf(window_));
                found.push_back(message.data);
            }
        }
        return found;
    }

    XClient client_;
    QWindow window_;
    QWindow other_;
};

TEST_F(WindowSpacesTest, AWindowOverEverythingIsNoneOfTheManagersBusiness) {
    EXPECT_TRUE(canSystemMove(window_));
    floatOverEverything(window_);
    EXPECT_TRUE(isUnmanaged());
    EXPECT_FALSE(canSystemMove(window_));
    EXPECT_TRUE(hasType("_NET_WM_WINDOW_TYPE_NOTIFICATION"));
}

TEST_F(WindowSpacesTest, ItComesBackUpWheneverTheManagerChangesTheOrder) {
    floatOverEverything(window_);
    show(window_);
    const xcb_window_t above = client_.makeWindow(150, 150, 300, 300);
    for (const char* property : {"_NET_CLIENT_LIST_STACKING", "_NET_ACTIVE_WINDOW"}) {
        client_.show(above);
        ASSERT_EQ(client_.topWindow(), above);
        client_.setProperty(client_.root(), property, XCB_ATOM_WINDOW, above);
        EXPECT_TRUE(waitFor([&] { return client_.topWindow() == XClient::idOf(window_); })) << property;
        // A manager may say so before it does it.
        client_.show(above);
        EXPECT_TRUE(waitFor([&] { return client_.topWindow() == XClient::idOf(window_); })) << property;
    }
    client_.show(above);
    client_.setProperty(client_.root(), "_NET_CURRENT_DESKTOP", XCB_ATOM_CARDINAL, 0);
    QTest::qWait(150);
    EXPECT_EQ(client_.topWindow(), above);
    client_.deleteProperty(client_.root(), "_NET_ACTIVE_WINDOW");
    xcb_destroy_window(client_.get(), above);
}

TEST_F(WindowSpacesTest, AWindowOnAllDesktopsAsksForThemEachTimeThatItIsShown) {
    joinAllSpaces(window_);
    EXPECT_FALSE(isUnmanaged());
    EXPECT_TRUE(hasDesktop(window_, everyDesktop));
    EXPECT_TRUE(client_.takeMessages().empty());
    for (int time = 0; time < 2; ++time) {
        show(window_);
        std::vector<XClient::Message> messages;
        ASSERT_TRUE(waitFor([&] {
            for (auto& message : client_.takeMessages()) {
                messages.push_back(std::move(message));
            }
            return messages.size() >= 2;
        }));
        EXPECT_EQ(messages[0].type, "_NET_WM_STATE");
        EXPECT_EQ(messages[0].window, XClient::idOf(window_));
        EXPECT_EQ(messages[0].data, (Data{1, client_.atom("_NET_WM_STATE_STICKY"), 0, 1, 0}));
        EXPECT_EQ(messages[1].type, "_NET_WM_DESKTOP");
        EXPECT_EQ(messages[1].data, (Data{everyDesktop, 1, 0, 0, 0}));
        // Once, however often it is painted.
        QExposeEvent again(QRect(0, 0, 1, 1));
        QCoreApplication::sendEvent(&window_, &again);
        EXPECT_TRUE(asked("_NET_WM_STATE").empty());
        window_.hide();
        processPending();
        client_.takeMessages();
    }
}

TEST_F(WindowSpacesTest, TheUserIsNamedWhereAWindowIsToBeActive) {
    show(window_);
    client_.takeMessages();
    activateForUser(window_);
    const auto data = asked("_NET_ACTIVE_WINDOW");
    ASSERT_FALSE(data.empty());
    EXPECT_EQ(data.back(), (Data{2, 0, 0, 0, 0}));
}

TEST_F(WindowSpacesTest, AWindowOfAnotherDesktopComesToThatOfTheUser) {
    struct Case {
        std::optional<std::uint32_t> own;
        std::optional<std::uint32_t> current;
        bool isFetched;
    };
    show(window_);
    for (const auto& [own, current, isFetched] : {Case{1, 3, true},
                                                  {3, 3, false},
                                                  {everyDesktop, 3, false},
                                                  {std::nullopt, 3, false},
                                                  {1, std::nullopt, false}}) {
        for (const auto& [window, name, value] : {std::tuple(XClient::idOf(window_), "_NET_WM_DESKTOP", own),
                                                  {client_.root(), "_NET_CURRENT_DESKTOP", current}}) {
            if (value) {
                client_.setProperty(window, name, XCB_ATOM_CARDINAL, *value);
            } else {
                client_.deleteProperty(window, name);
            }
        }
        client_.takeMessages();
        bringToUser(window_);
        std::vector<Data> fetched;
        std::vector<Data> activated;
        for (const auto& message : client_.takeMessages()) {
            (message.type == "_NET_WM_DESKTOP" ? fetched : activated).push_back(message.data);
        }
        const std::vector<Data> expected(isFetched ? 1 : 0, Data{3, 2, 0, 0, 0});
        EXPECT_EQ(fetched, expected);
        ASSERT_FALSE(activated.empty());
        EXPECT_EQ(activated.back()[0], 2u);
        EXPECT_TRUE(window_.isVisible());
    }
}

TEST_F(WindowSpacesTest, TheKeyboardComesToAWindowThatAsksForIt) {
    show(other_);
    other_.requestActivate();
    floatOverEverything(window_);
    show(window_);
    requestKeyboard(window_);
    EXPECT_TRUE(waitFor([&] { return window_.isActive(); }));
    EXPECT_TRUE(isUnmanaged());
    EXPECT_FALSE(client_.isKeyboardGrabbed());
}

TEST_F(WindowSpacesTest, BehindOtherCompositorsTheManagerGetsAWindowThatNeedsTheKeyboard) {
    floatOverEverything(window_);
    show(window_);
    qputenv("WAYLAND_DISPLAY", "wayland-0");
    requestKeyboard(window_);
    EXPECT_TRUE(isUnmanaged()) << "not before the click is over";
    EXPECT_TRUE(waitFor([&] { return !isUnmanaged(); }));
    EXPECT_TRUE(window_.isVisible());
    EXPECT_TRUE(hasType("_NET_WM_WINDOW_TYPE_DIALOG"));
    EXPECT_FALSE(asked("_NET_ACTIVE_WINDOW").empty());
    EXPECT_TRUE(canSystemMove(window_));
}

TEST_F(WindowSpacesTest, BehindWlrootsAWindowOnAllDesktopsHoldsTheKeyboardFromTheStart) {
    actAsWlroots();
    joinAllSpaces(window_);
    EXPECT_TRUE(isUnmanaged());
    EXPECT_TRUE(hasType("_NET_WM_WINDOW_TYPE_DIALOG"));
    EXPECT_TRUE(client_.property(XClient::idOf(window_), "_NET_WM_DESKTOP").empty());
    EXPECT_FALSE(client_.isKeyboardGrabbed());
    show(window_);
    EXPECT_TRUE(waitFor([&] { return client_.isKeyboardGrabbed(); }));
    qputenv("WAYLAND_DISPLAY", "wayland-0");
    client_.takeMessages();
    requestKeyboard(window_);
    processPending();
    EXPECT_TRUE(isUnmanaged());
    // Until a managed window becomes active.
    client_.setProperty(client_.root(), "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW, XCB_WINDOW_NONE);
    processPending();
    EXPECT_TRUE(client_.isKeyboardGrabbed());
    client_.setProperty(client_.root(), "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW, 77);
    EXPECT_TRUE(waitFor([&] { return !client_.isKeyboardGrabbed(); }));
}

TEST_F(WindowSpacesTest, BehindWlrootsAClickGivesTheKeyboardToAWindowOverEverything) {
    actAsWlroots();
    floatOverEverything(window_);
    acceptKeyboardOnClick(window_);
    EXPECT_TRUE(hasType("_NET_WM_WINDOW_TYPE_NOTIFICATION"));
    show(window_);
    processPending();
    EXPECT_FALSE(client_.isKeyboardGrabbed());
    QEnterEvent enters(QPointF(1, 1), QPointF(1, 1), QPointF(201, 201));
    QCoreApplication::sendEvent(&window_, &enters);
    EXPECT_TRUE(hasType("_NET_WM_WINDOW_TYPE_DIALOG"));
    EXPECT_FALSE(client_.isKeyboardGrabbed());
    QTest::mousePress(&window_, Qt::LeftButton, {}, {5, 5});
    EXPECT_TRUE(waitFor([&] { return client_.isKeyboardGrabbed(); }));
    window_.hide();
    EXPECT_TRUE(waitFor([&] { return !client_.isKeyboardGrabbed(); }));
    EXPECT_TRUE(hasType("_NET_WM_WINDOW_TYPE_NOTIFICATION"));
}

TEST_F(WindowSpacesTest, AnotherManagerIsNotWlroots) {
    for (const char* name : {"", "wlroots", "Xfwm4", "wlroots wm 2"}) {
        actAsWlroots(name);
        QWindow window;
        window.create();
        joinAllSpaces(window);
        acceptKeyboardOnClick(window);
        EXPECT_FALSE(window.flags() & Qt::BypassWindowManagerHint) << name;
        EXPECT_TRUE(hasDesktop(window, everyDesktop)) << name;
    }
}

TEST(CompositingTest, IsThereWhileAManagerOwnsItsSelection) {
    EXPECT_FALSE(isCompositing());
    XClient client;
    const xcb_window_t owner = client.makeWindow(0, 0, 1, 1);
    xcb_set_selection_owner(client.get(), owner, client.atom("_NET_WM_CM_S1"), XCB_CURRENT_TIME);
    client.sync();
    EXPECT_FALSE(isCompositing());
    const CompositingManager manager;
    EXPECT_TRUE(isCompositing());
}

} // namespace
} // namespace velloway::test
