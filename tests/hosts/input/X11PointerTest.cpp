#include "XServer.h"
#include "desktop/WaitFor.h"
#include "hosts/linux/input/X11Input.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velloway::test {

namespace {

using ::testing::ElementsAre;
using Position = XServer::Position;

class X11PointerMoves : public ::testing::Test {
protected:
    X11PointerMoves() { server_.warpPointer(100, 200); }

    void move(double dx, double dy) { input_.movePointer(dx, dy); }
    void expectPointer(Position expected) {
        waitFor([&] { return server_.pointer() == expected; }, std::chrono::seconds(2));
        EXPECT_EQ(server_.pointer(), expected);
    }

    XServer server_;
    X11Input input_;
};

TEST_F(X11PointerMoves, AddUp) {
    move(10, -20);
    expectPointer({110, 180});
    move(-10.0, 20.0);
    expectPointer({100, 200});
}

TEST_F(X11PointerMoves, KeepTheirFractions) {
    move(0.4, -0.4);
    expectPointer({100, 200});
    move(0.4, -0.4);
    move(0.4, -0.4);
    expectPointer({101, 199});
    for (int count = 0; count < 97; ++count) {
        move(0.4, -0.4);
    }
    expectPointer({140, 160});
}

TEST_F(X11PointerMoves, StartFromWhereSomebodyElseHasMovedThePointer) {
    X11Pointer pointer;
    pointer.moveBy(0.4, 0.4);
    // Asking brings the move to the server before the other client's.
    EXPECT_EQ(pointer.position(), (X11Pointer::Point{100.4, 200.4}));
    server_.warpPointer(300, 300);
    pointer.moveBy(0.4, 0.4);
    expectPointer({300, 300});
    EXPECT_EQ(pointer.position(), (X11Pointer::Point{300.4, 300.4}));
}

TEST_F(X11PointerMoves, StopAtTheEdgeAndComeBackAtOnce) {
    move(1e6, 0);
    expectPointer({1279, 200});
    move(-1, 0);
    expectPointer({1278, 200});
    move(-1e300, -1e300);
    expectPointer({0, 0});
    move(5, 5);
    expectPointer({5, 5});
}

TEST_F(X11PointerMoves, ByNothingStayThere) {
    move(0, 0);
    move(3, 0);
    expectPointer({103, 200});
}

TEST_F(X11PointerMoves, ClicksComeWhereThePointerIs) {
    XRecorder recorder;
    move(20, 30);
    input_.click(MouseButton::left);
    input_.click(MouseButton::right);
    ASSERT_TRUE(waitFor([&] {
        recorder.read();
        return recorder.events().size() >= 4;
    }));
    for (const auto& event : recorder.events()) {
        EXPECT_EQ((Position{event.x, event.y}), (Position{120, 230}));
    }
    EXPECT_THAT(recorder.take(), ElementsAre("+button1", "-button1", "+button3", "-button3"));
    expectPointer({120, 230});
}

} // namespace

} // namespace velloway::test
