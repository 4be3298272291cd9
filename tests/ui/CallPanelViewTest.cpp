#include "ui/ViewTest.h"

#include "hosts/linux/windows/RoundedRegion.h"

#include <QStyleHints>

#include <cstdlib>
#include <xcb/xcb.h>

namespace velloway::test {
namespace {

/// Looks at windows as any other program of the desktop would.
class Onlooker {
public:
    Onlooker() : connection_(xcb_connect(nullptr, nullptr)) {}
    ~Onlooker() { xcb_disconnect(connection_); }
    Onlooker(const Onlooker&) = delete;
    Onlooker& operator=(const Onlooker&) = delete;

    xcb_atom_t atom(std::string_view name) {
        auto* reply = xcb_intern_atom_reply(
            connection_, xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data()),
            nullptr);
        const xcb_atom_t found = reply->atom;
        std::free(reply);
        return found;
    }
    std::vector<std::uint32_t> property(const QWindow& window, std::string_view name) {
        auto* reply =
            xcb_get_property_reply(connection_,
                                   xcb_get_property(connection_, 0, static_cast<xcb_window_t>(window.winId()),
                                                    atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, 64),
                                   nullptr);
        std::vector<std::uint32_t> values;
        if (reply && reply->format == 32) {
            const auto* data = static_cast<const std::uint32_t*>(xcb_get_property_value(reply));
            values.assign(data, data + reply->value_len);
        }
        std::free(reply);
        return values;
    }
    xcb_window_t focus() {
        auto* reply = xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr);
        const xcb_window_t found = reply->focus;
        std::free(reply);
        return found;
    }
    /// Announces a compositing manager, as far as anybody can tell.
    void becomeCompositor() {
        const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
        const xcb_window_t window = xcb_generate_id(connection_);
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(connection_, window, atom("_NET_WM_CM_S0"), XCB_CURRENT_TIME);
        focus(); // Has arrived when this has been answered.
    }

private:
    xcb_connection_t* connection_;
};

class CallPanelViewTest : public ViewTest {
protected:
    ContentView* ring(const char* number, std::optional<std::string> name = std::nullopt) {
        program.historyStore().incomingCallInfo.set(IncomingCallInfo{number, std::move(name)});
        settle();
        return &drawnPanel();
    }
    ContentView* begin(const char* number, const char* name) {
        program.notifications().post(AppNotification::prepareActiveCall,
                                     std::map<std::string, std::string>{{"number", number}, {"name", name}});
        settle();
        return &drawnPanel();
    }
    void tellDuration(std::int64_t seconds) {
        program.notifications().post(AppNotification::callDurationUpdated, seconds);
        settle();
    }
    std::vector<std::string> lines() {
        std::vector<std::string> texts;
        for (const char* name : {"firstLine", "secondLine", "lastLine"}) {
            if (shows(name, panel())) {
                texts.push_back(text(name, panel()).toStdString());
            }
        }
        return texts;
    }
    /// At a time in milliseconds of the window system's clock.
    void pressAndRelease(QWindow& window, QPoint at, ulong time) {
        for (const auto kind : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            const auto held = kind == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
            QMouseEvent event(kind, at, at, window.mapToGlobal(at), Qt::LeftButton, held, Qt::NoModifier);
            event.setTimestamp(time);
            QCoreApplication::sendEvent(&window, &event);
        }
    }
    void drag(QWindow& window, QPoint from, QPoint by) {
        QTest::mousePress(&window, Qt::LeftButton, {}, from);
        for (int step = 1; step <= 4; ++step) {
            // The window moves along under the pointer.
            QTest::mouseMove(&window, from + by / 4);
            settle();
        }
        QTest::mouseRelease(&window, Qt::LeftButton, {}, from);
        settle();
    }
};

TEST_F(CallPanelViewTest, TheRingingPanelShowsNameAndNumber) {
    ring("123", " Bob ");
    EXPECT_THAT(lines(), ElementsAre("Bob", "123", "Incoming Call"));
    ring("123", "123");
    EXPECT_THAT(lines(), ElementsAre("123", "Incoming Call"));
    ring("123", "Unknown");
    EXPECT_THAT(lines(), ElementsAre("123", "Incoming Call"));
    ring("UNKNOWN");
    EXPECT_THAT(lines(), ElementsAre("Unknown Caller", "Incoming Call"));
}

TEST_F(CallPanelViewTest, StandsTopRightOfTheUsableScreenAndIs350By80) {
    ContentView* window = ring("123");
    const QRect usable = window->screen()->availableGeometry();
    EXPECT_EQ(window->geometry(), QRect(usable.x() + usable.width() - 370, usable.y() + 20, 350, 80));
}

TEST_F(CallPanelViewTest, AcceptTellsThePhoneAndOpensTheInCallPanelInTheSamePlace) {
    const QRect place = ring("123", "Bob")->geometry();
    EXPECT_EQ(part("right", panel())->property("tip").toString(), "Accept");
    click(part("right", panel()));
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"answer_call"})"));
    drawnPanel();
    EXPECT_EQ(windowsOnScreen(true).size(), 1u);
    EXPECT_THAT(lines(), ElementsAre("Bob", "123", "00:00"));
    EXPECT_EQ(panel()->geometry(), place);
}

TEST_F(CallPanelViewTest, DeclineTellsThePhoneAndClosesThePanel) {
    ring("123", "Bob");
    EXPECT_EQ(part("left", panel())->property("tip").toString(), "Decline");
    click(part("left", panel()));
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"hangup_call"})"));
    EXPECT_EQ(panel(), nullptr);
}

TEST_F(CallPanelViewTest, ANewTextComesInPlaceAndKeepsThePlaceOfTheUser) {
    ContentView* window = ring("123");
    window->setPosition(100, 200);
    ASSERT_TRUE(wait([&] { return window->position() == QPoint(100, 200); }));
    EXPECT_EQ(ring("123", "Bob"), window);
    EXPECT_EQ(window->position(), QPoint(100, 200));
    EXPECT_THAT(lines(), ElementsAre("Bob", "123", "Incoming Call"));
}

TEST_F(CallPanelViewTest, IsDraggedByItsBackground) {
    ContentView* window = ring("123", "Bob");
    const QPoint before = window->position();
    drag(*window, {200, 10}, {-40, 24});
    EXPECT_TRUE(wait([&] { return window->position() != before; }));
    EXPECT_LT(window->x(), before.x());
    EXPECT_GT(window->y(), before.y());
    EXPECT_THAT(takeSent(), IsEmpty());
}

TEST_F(CallPanelViewTest, APressOnAButtonDoesNotDragIt) {
    ContentView* window = ring("123", "Bob");
    const QPoint before = window->position();
    const QPoint button = part("right", window)->mapToScene({16, 16}).toPoint();
    QTest::mousePress(window, Qt::LeftButton, {}, button);
    QTest::mouseMove(window, button + QPoint(-80, 30));
    QTest::mouseRelease(window, Qt::LeftButton, {}, button + QPoint(-80, 30));
    settle();
    EXPECT_EQ(window->position(), before);
    EXPECT_THAT(takeSent(), IsEmpty());
}

TEST_F(CallPanelViewTest, TakesNoFocusAndHasNoFrame) {
    ContentView& main = open(4);
    Onlooker onlooker;
    const xcb_window_t before = onlooker.focus();
    ContentView* window = ring("123", "Bob");
    EXPECT_EQ(onlooker.focus(), before);
    EXPECT_TRUE(main.isActive());
    type("7");
    EXPECT_EQ(text("number"), "7");
    EXPECT_TRUE(window->flags() & Qt::WindowDoesNotAcceptFocus);
    // No frame.
    const auto hints = onlooker.property(*window, "_MOTIF_WM_HINTS");
    ASSERT_GE(hints.size(), 3u);
    EXPECT_EQ(hints[2], 0u);
}

TEST_F(CallPanelViewTest, TheSecondClickOfADoubleClickDoesNotReachThePanelThatTakesThePlace) {
    ring("123", "Bob");
    const QPoint button = part("right", panel())->mapToScene({16, 16}).toPoint();
    const auto interval = static_cast<ulong>(QGuiApplication::styleHints()->mouseDoubleClickInterval());
    pressAndRelease(*panel(), button, 1'000'000);
    settle();
    ASSERT_THAT(takeSent(), ElementsAre(R"({"action":"answer_call"})"));
    ASSERT_TRUE(wait([] { return panel() && panel()->isExposed(); }));
    pressAndRelease(*panel(), button + QPoint(3, 2), 1'000'180);
    pressAndRelease(*panel(), button, 1'000'360);
    settle();
    EXPECT_THAT(takeSent(), IsEmpty()) << "nor that of a triple click";
    pressAndRelease(*panel(), button, 1'000'361 + interval * 2);
    settle();
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"hangup_call"})"));
}

TEST_F(CallPanelViewTest, AQuickClickOnAnotherButtonOfTheNextPanelCounts) {
    ring("123", "Bob");
    pressAndRelease(*panel(), part("right", panel())->mapToScene({16, 16}).toPoint(), 2'000'000);
    settle();
    ASSERT_TRUE(wait([] { return panel() && panel()->isExposed(); }));
    takeSent();
    pressAndRelease(*panel(), part("left", panel())->mapToScene({16, 16}).toPoint(), 2'000'180);
    settle();
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"toggle_mute","enabled":true})"));
}

TEST_F(CallPanelViewTest, WithoutACompositorTheCornersAreMasked) {
    ContentView* window = ring("123");
    EXPECT_FALSE(window->rootObject()->property("translucent").toBool());
    EXPECT_EQ(window->mask(), roundedRegion({350, 80}, 12));
}

TEST_F(CallPanelViewTest, WithACompositorTheCornersAreSeeThrough) {
    Onlooker compositor;
    compositor.becomeCompositor();
    ContentView* window = ring("123");
    EXPECT_TRUE(window->rootObject()->property("translucent").toBool());
    EXPECT_TRUE(window->mask().isEmpty());
    const QImage picture = window->grabWindow();
    EXPECT_EQ(qAlpha(picture.pixel(0, 0)), 0);
    EXPECT_GT(qAlpha(picture.pixel(175, 40)), 200);
}

TEST_F(CallPanelViewTest, TheInCallPanelFollowsTheTimeAndClosesWithTheCall) {
    begin("123", "");
    EXPECT_THAT(lines(), ElementsAre("123", "00:00"));
    for (const auto& [seconds, shown] : std::vector<std::pair<std::int64_t, std::string>>{
             {0, "00:00"}, {59, "00:59"}, {60, "01:00"}, {3600, "60:00"}, {3725, "62:05"}, {-2, "62:05"}}) {
        tellDuration(seconds);
        EXPECT_THAT(lines(), ElementsAre("123", shown));
    }
    tellDuration(-1);
    EXPECT_EQ(panel(), nullptr);
}

TEST_F(CallPanelViewTest, TheSecondPreparationLeavesTheFirstNameOnTheScreen) {
    begin("123", "Bob");
    begin("456", "Ada");
    EXPECT_EQ(windowsOnScreen(true).size(), 1u);
    EXPECT_THAT(lines(), ElementsAre("Bob", "123", "00:00"));
}

TEST_F(CallPanelViewTest, MuteFlipsFirstAndTellsTheNewValue) {
    begin("123", "Bob");
    QQuickItem* mute = part("left", panel());
    EXPECT_EQ(mute->property("symbol").toString(), "mic.fill");
    EXPECT_EQ(mute->property("tip").toString(), "");
    const QVariant plain = mute->property("fill");
    click(mute);
    EXPECT_EQ(mute->property("symbol").toString(), "mic.slash.fill");
    EXPECT_NE(mute->property("fill"), plain);
    click(mute);
    EXPECT_EQ(mute->property("symbol").toString(), "mic.fill");
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"toggle_mute","enabled":true})",
                                        R"({"action":"toggle_mute","enabled":false})"));
}

TEST_F(CallPanelViewTest, HangingUpLeavesThePanelUntilThePhoneSaysSo) {
    begin("123", "Bob");
    click(part("right", panel()));
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"hangup_call"})"));
    EXPECT_NE(panel(), nullptr);
    tellDuration(-1);
    EXPECT_EQ(panel(), nullptr);
}

TEST_F(CallPanelViewTest, PanelsLeaveTheApplicationsFaceAlone) {
    const auto before = on.application.policy;
    ring("123");
    click(part("left", panel()));
    EXPECT_EQ(on.application.policy, before);
}

} // namespace
} // namespace velloway::test
