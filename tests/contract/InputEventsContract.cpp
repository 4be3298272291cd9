#include "fakes/FakeInput.h"
#include "hosts/linux/input/InputBackend.h"
#include "hosts/linux/input/LinuxInputEvents.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace velloway::test {

namespace {

/// One implementation of the port, ready for use.
struct World {
    virtual ~World() = default;
    virtual InputEvents& events() = 0;
};

struct FakeWorld : World {
    InputEvents& events() override { return fake; }
    FakeInputEvents fake;
};

/// The X server of this test.
struct LinuxWorld : World {
    InputEvents& events() override { return adapter; }
    std::unique_ptr<InputBackend> backend = makeInputBackend();
    LinuxInputEvents adapter{*backend};
};

struct WorldCase {
    const char* name;
    std::unique_ptr<World> (*make)();
    friend void PrintTo(const WorldCase& value, std::ostream* out) { *out << value.name; }
};

class InputEventsContract : public ::testing::TestWithParam<WorldCase> {
protected:
    Point here() {
        const auto event = events_.makeEvent();
        EXPECT_TRUE(event);
        return event ? event->location() : Point{-1, -1};
    }
    void moveTo(Point position) {
        const auto event = events_.makeMouseEvent(MouseEventType::moved, position, MouseButton::left);
        ASSERT_TRUE(event);
        events_.post(*event);
    }

    std::unique_ptr<World> world_ = GetParam().make();
    InputEvents& events_ = world_->events();
};

TEST_P(InputEventsContract, EmptyEventShowsWhereThePointerWasMoved) {
    moveTo({300, 200});
    EXPECT_EQ(here(), (Point{300, 200}));
    moveTo({10, 20});
    EXPECT_EQ(here(), (Point{10, 20}));
}

TEST_P(InputEventsContract, PointerKeepsFractions) {
    moveTo({50.25, 60.75});
    EXPECT_EQ(here(), (Point{50.25, 60.75}));
}

TEST_P(InputEventsContract, LocationIsThatOfTheMomentWhenTheEventWasMade) {
    moveTo({100, 100});
    const auto event = events_.makeEvent();
    ASSERT_TRUE(event);
    moveTo({200, 200});
    EXPECT_EQ(event->location(), (Point{100, 100}));
}

TEST_P(InputEventsContract, PostingAnEmptyEventMovesNothing) {
    moveTo({70, 80});
    const auto event = events_.makeEvent();
    ASSERT_TRUE(event);
    moveTo({90, 90});
    events_.post(*event);
    EXPECT_EQ(here(), (Point{90, 90}));
}

TEST_P(InputEventsContract, ClicksLeaveThePointerWhereItIs) {
    moveTo({120, 130});
    for (const auto type : {MouseEventType::leftDown, MouseEventType::leftUp}) {
        const auto event = events_.makeMouseEvent(type, {120, 130}, MouseButton::left);
        ASSERT_TRUE(event);
        events_.post(*event);
    }
    EXPECT_EQ(here(), (Point{120, 130}));
}

TEST_P(InputEventsContract, EveryEventThatTheProgramNeedsCanBeMade) {
    const auto source = events_.makeSource(EventSourceState::hidSystemState);
    ASSERT_TRUE(source);
    for (const int key : {0, 36, 51, 53, 55, 58, 59, 123, 124, 125, 126}) {
        for (const bool isDown : {true, false}) {
            const auto event = events_.makeKeyboardEvent(*source, static_cast<std::uint16_t>(key), isDown);
            ASSERT_TRUE(event);
            event->setFlags(eventFlags::shift);
        }
    }
    for (const int key : {0, 1, 2, 3, 7, 16, 17, 18, 21, 22}) {
        EXPECT_TRUE(events_.makeSystemDefinedEvent(0xA00, 8, key << 16 | 0xA00, -1));
        EXPECT_TRUE(events_.makeSystemDefinedEvent(0xB00, 8, key << 16 | 0xB00, -1));
    }
}

TEST_P(InputEventsContract, EventsOutliveTheirSource) {
    auto source = events_.makeSource(EventSourceState::hidSystemState);
    ASSERT_TRUE(source);
    const auto event = events_.makeKeyboardEvent(*source, 0, true);
    ASSERT_TRUE(event);
    source.reset();
    event->setUnicodeString(u"");
    events_.post(*event);
}

INSTANTIATE_TEST_SUITE_P(
    Each, InputEventsContract,
    ::testing::Values(WorldCase{"Fake", [] { return std::unique_ptr<World>(std::make_unique<FakeWorld>()); }},
                      WorldCase{"Linux",
                                [] { return std::unique_ptr<World>(std::make_unique<LinuxWorld>()); }}),
    [](const auto& each) { return std::string(each.param.name); });

} // namespace

} // namespace velloway::test
