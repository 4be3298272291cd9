#include "remote/InputInjection.h"

#include "fakes/FakeInput.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velloway::test {

namespace {

using Kind = FakeInputEvents::Posted::Kind;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Rig {
    FakeInputEvents events;
    InputInjection injection{events};

    void press(std::uint16_t keyCode, std::vector<std::string_view> modifiers) {
        injection.sendCGKey(keyCode, modifiers);
    }
};

TEST(SendCGKey, PostsDownThenUpWithTheSameFlags) {
    Rig rig;
    rig.press(123, {"cmd", "shift"});
    EXPECT_THAT(rig.events.sourceStates, ElementsAre(EventSourceState::hidSystemState));
    ASSERT_EQ(rig.events.posted.size(), 2U);
    EXPECT_TRUE(rig.events.posted[0].keyDown);
    EXPECT_FALSE(rig.events.posted[1].keyDown);
    for (const auto& event : rig.events.posted) {
        EXPECT_EQ(event.kind, Kind::keyboard);
        EXPECT_EQ(event.virtualKey, 123);
        EXPECT_EQ(event.flags, 0x120000U);
    }
}

TEST(SendCGKey, SetsEmptyFlagsWithoutModifiers) {
    Rig rig;
    rig.press(55, {});
    ASSERT_EQ(rig.events.posted.size(), 2U);
    EXPECT_TRUE(rig.events.posted[0].flagsWereSet);
    EXPECT_TRUE(rig.events.posted[1].flagsWereSet);
    EXPECT_EQ(rig.events.posted[0].flags, 0U);
}

struct FlagCase {
    std::vector<std::string_view> modifiers;
    std::uint64_t flags;
};

TEST(SendCGKey, KnowsFourModifierNamesAndIgnoresAllOthers) {
    const FlagCase cases[] = {
        {{"cmd"}, 0x100000},
        {{"ctrl"}, 0x40000},
        {{"option"}, 0x80000},
        {{"shift"}, 0x20000},
        {{"shift", "option", "ctrl", "cmd"}, 0x1E0000},
        {{"cmd", "cmd", "hyper"}, 0x100000},
        {{"command", "alt", "control", "Shift", "fn", ""}, 0},
    };
    for (const FlagCase& each : cases) {
        Rig rig;
        rig.press(36, each.modifiers);
        ASSERT_EQ(rig.events.posted.size(), 2U);
        EXPECT_EQ(rig.events.posted[0].flags, each.flags);
        EXPECT_EQ(rig.events.posted[1].flags, each.flags);
    }
}

TEST(SendCGKey, PostsNothingWhenAnyCreationFails) {
    for (int failAt = 1; failAt <= 3; ++failAt) {
        Rig rig;
        rig.events.failAt = failAt;
        rig.press(36, {});
        EXPECT_EQ(rig.events.failAt, 0) << "creation " << failAt << " was never tried";
        EXPECT_THAT(rig.events.posted, IsEmpty()) << "creation " << failAt;
    }
}

TEST(SendUnicodeText, PostsTheTextOnTheDownEventOnly) {
    Rig rig;
    rig.injection.sendUnicodeText("h\u00E9");
    EXPECT_THAT(rig.events.sourceStates, ElementsAre(EventSourceState::hidSystemState));
    ASSERT_EQ(rig.events.posted.size(), 2U);
    EXPECT_TRUE(rig.events.posted[0].keyDown);
    EXPECT_EQ(rig.events.posted[0].virtualKey, 0);
    EXPECT_EQ(rig.events.posted[0].text, u"h\u00E9");
    EXPECT_FALSE(rig.events.posted[0].flagsWereSet);
    EXPECT_FALSE(rig.events.posted[1].keyDown);
    EXPECT_EQ(rig.events.posted[1].virtualKey, 0);
    EXPECT_FALSE(rig.events.posted[1].text);
    EXPECT_FALSE(rig.events.posted[1].flagsWereSet);
}

TEST(SendUnicodeText, PassesAnEmojiAsTwoUnits) {
    Rig rig;
    rig.injection.sendUnicodeText("\U0001F600");
    ASSERT_EQ(rig.events.posted.size(), 2U);
    EXPECT_EQ(rig.events.posted[0].text, (std::u16string{0xD83D, 0xDE00}));
}

TEST(SendUnicodeText, PostsBothEventsForAnEmptyText) {
    Rig rig;
    rig.injection.sendUnicodeText("");
    ASSERT_EQ(rig.events.posted.size(), 2U);
    EXPECT_EQ(rig.events.posted[0].text, u"");
}

TEST(SendUnicodeText, PostsALongTextInOneEvent) {
    Rig rig;
    rig.injection.sendUnicodeText(std::string(10'000, 'x'));
    ASSERT_EQ(rig.events.posted.size(), 2U);
    EXPECT_EQ(rig.events.posted[0].text, std::u16string(10'000, u'x'));
}

TEST(SendUnicodeText, TurnsEveryLengthOfUtf8IntoUtf16) {
    struct {
        std::string_view utf8;
        std::u16string units;
    } const cases[] = {
        {std::string_view("a\0b", 3), std::u16string(u"a\0b", 3)},
        {"\x7F\u0080\u07FF\u0800\uFFFF", u"\u007F\u0080\u07FF\u0800\uFFFF"},
        {"\U00010000\U0010FFFF", {0xD800, 0xDC00, 0xDBFF, 0xDFFF}},
        {"\uD7FF\uE000", {0xD7FF, 0xE000}},
    };
    for (const auto& each : cases) {
        Rig rig;
        rig.injection.sendUnicodeText(each.utf8);
        ASSERT_FALSE(rig.events.posted.empty());
        EXPECT_EQ(rig.events.posted[0].text, each.units);
    }
}

TEST(SendUnicodeText, ReplacesBytesThatAreNoUtf8) {
    struct {
        std::string_view bytes;
        std::u16string units;
    } const cases[] = {
        {"\x80", u"\uFFFD"},
        {"a\xC3", u"a\uFFFD"},
        {"\xF0\x9F\x98", u"\uFFFD\uFFFD\uFFFD"},
        {"\xC3(", u"\uFFFD("},
        {"\xC0\xAF", u"\uFFFD\uFFFD"},
        {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
        {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"\xFF\xFE\xF8z", u"\uFFFD\uFFFD\uFFFDz"},
    };
    for (const auto& each : cases) {
        Rig rig;
        rig.injection.sendUnicodeText(each.bytes);
        ASSERT_FALSE(rig.events.posted.empty());
        EXPECT_EQ(rig.events.posted[0].text, each.units);
    }
}

TEST(SendUnicodeText, EndsWhereACreationFails) {
    const std::size_t postedUntilThen[] = {0, 0, 1};
    for (int failAt = 1; failAt <= 3; ++failAt) {
        Rig rig;
        rig.events.failAt = failAt;
        rig.injection.sendUnicodeText("abc");
        EXPECT_EQ(rig.events.failAt, 0) << "creation " << failAt << " was never tried";
        EXPECT_EQ(rig.events.posted.size(), postedUntilThen[failAt - 1]) << "creation " << failAt;
    }
}

class SystemMediaKey : public ::testing::TestWithParam<int> {};

TEST_P(SystemMediaKey, PostsDownThenUp) {
    Rig rig;
    rig.injection.sendSystemMediaKey(GetParam());
    ASSERT_EQ(rig.events.posted.size(), 2U);
    for (const auto& event : rig.events.posted) {
        EXPECT_EQ(event.kind, Kind::systemDefined);
        EXPECT_EQ(event.subtype, 8);
        EXPECT_EQ(event.data2, -1);
    }
    EXPECT_EQ(rig.events.posted[0].modifierFlags, 0xA00U);
    EXPECT_EQ(rig.events.posted[0].data1, GetParam() * 65536 + 0xA00);
    EXPECT_EQ(rig.events.posted[1].modifierFlags, 0xB00U);
    EXPECT_EQ(rig.events.posted[1].data1, GetParam() * 65536 + 0xB00);
    EXPECT_THAT(rig.events.sourceStates, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(EachKey, SystemMediaKey, ::testing::Values(0, 1, 2, 3, 7, 16, 17, 18, 21, 22));

TEST(SystemMediaKey, HasTheDataOfThePlayKey) {
    Rig rig;
    rig.injection.sendSystemMediaKey(16);
    ASSERT_EQ(rig.events.posted.size(), 2U);
    EXPECT_EQ(rig.events.posted[0].data1, 0x100A00);
    EXPECT_EQ(rig.events.posted[1].data1, 0x100B00);
}

TEST(SystemMediaKey, WidensTheDataWithItsSign) {
    Rig rig;
    rig.injection.sendSystemMediaKey(0x8000);
    ASSERT_EQ(rig.events.posted.size(), 2U);
    EXPECT_EQ(rig.events.posted[0].data1, -0x7FFFF600LL);
}

TEST(SystemMediaKey, StillTriesTheUpEventWhenTheDownEventFails) {
    for (int failAt = 1; failAt <= 2; ++failAt) {
        Rig rig;
        rig.events.failAt = failAt;
        rig.injection.sendSystemMediaKey(7);
        ASSERT_EQ(rig.events.posted.size(), 1U);
        EXPECT_EQ(rig.events.posted[0].modifierFlags, failAt == 1 ? 0xB00U : 0xA00U);
    }
}

TEST(MovePointer, AddsTheDeltasUnrounded) {
    Rig rig;
    rig.events.pointer = {10.25, 20};
    rig.injection.movePointer(1.5, -0.4);
    ASSERT_EQ(rig.events.posted.size(), 1U);
    EXPECT_EQ(rig.events.posted[0].kind, Kind::mouse);
    EXPECT_EQ(rig.events.posted[0].mouseType, MouseEventType::moved);
    EXPECT_EQ(rig.events.posted[0].button, MouseButton::left);
    EXPECT_EQ(rig.events.posted[0].position, (Point{11.75, 19.6}));
    EXPECT_THAT(rig.events.sourceStates, IsEmpty());
}

TEST(MovePointer, LeadsBeyondTheScreenAsComputed) {
    Rig rig;
    rig.injection.movePointer(-5000, 1e6);
    ASSERT_EQ(rig.events.posted.size(), 1U);
    EXPECT_EQ(rig.events.posted[0].position, (Point{-4900, 1'000'200}));
}

TEST(MovePointer, PostsNothingWhenAnyCreationFails) {
    for (int failAt = 1; failAt <= 2; ++failAt) {
        Rig rig;
        rig.events.failAt = failAt;
        rig.injection.movePointer(1, 1);
        EXPECT_EQ(rig.events.failAt, 0) << "creation " << failAt << " was never tried";
        EXPECT_THAT(rig.events.posted, IsEmpty()) << "creation " << failAt;
    }
}

TEST(Click, PressesAndReleasesTheLeftButtonUnlessItIsExactlyRight) {
    for (const std::string_view button : {"left", "", "Right", "middle", "right "}) {
        Rig rig;
        rig.injection.click(button);
        ASSERT_EQ(rig.events.posted.size(), 2U) << button;
        EXPECT_EQ(rig.events.posted[0].mouseType, MouseEventType::leftDown) << button;
        EXPECT_EQ(rig.events.posted[1].mouseType, MouseEventType::leftUp) << button;
        for (const auto& event : rig.events.posted) {
            EXPECT_EQ(event.kind, Kind::mouse);
            EXPECT_EQ(event.button, MouseButton::left) << button;
            EXPECT_EQ(event.position, (Point{100, 200}));
        }
    }
}

TEST(Click, PressesAndReleasesTheRightButton) {
    Rig rig;
    rig.injection.click("right");
    ASSERT_EQ(rig.events.posted.size(), 2U);
    EXPECT_EQ(rig.events.posted[0].mouseType, MouseEventType::rightDown);
    EXPECT_EQ(rig.events.posted[1].mouseType, MouseEventType::rightUp);
    EXPECT_EQ(rig.events.posted[0].button, MouseButton::right);
    EXPECT_EQ(rig.events.posted[1].button, MouseButton::right);
}

TEST(Click, PostsNothingWhenAnyCreationFails) {
    for (int failAt = 1; failAt <= 3; ++failAt) {
        Rig rig;
        rig.events.failAt = failAt;
        rig.injection.click("right");
        EXPECT_EQ(rig.events.failAt, 0) << "creation " << failAt << " was never tried";
        EXPECT_THAT(rig.events.posted, IsEmpty()) << "creation " << failAt;
    }
}

} // namespace

} // namespace velloway::test
