#include "hosts/mac/FakeCoreFoundation.h"
#include "hosts/mac/FakeCoreGraphics.h"
#include "hosts/mac/FakeObject.h"
#include "hosts/mac/MacAccessibility.h"
#include "hosts/mac/MacInputEvents.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace velloway::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// The whole sequence of what one operation posts.
std::vector<PostedEvent> postedBy(const std::function<void(InputEvents&)>& act, int failsAt = -1) {
    const int aliveBefore = FakeObject::alive;
    fakeCoreGraphics = {.failsAt = failsAt};
    {
        MacInputEvents events;
        act(events);
    }
    EXPECT_EQ(FakeObject::alive, aliveBefore) << "sources or events are leaked";
    return fakeCoreGraphics.posted;
}

PostedEvent key(const char* kind, int code, std::uint64_t flags = 0) {
    return {.kind = kind, .tap = 0, .sourceState = 1, .key = code, .flags = flags, .timesFlagsWereSet = 1};
}

/// Carries a text, or goes with a press that does, and has no flags of its own.
PostedEvent textKey(const char* kind) {
    return {.kind = kind, .tap = 0, .sourceState = 1, .key = 0};
}

PostedEvent mouse(int type, int button, double x, double y) {
    return {.kind = "mouse", .tap = 0, .mouseType = type, .button = button, .x = x, .y = y};
}

TEST(MacInputTest, AKeyIsAPressAndAReleaseWithTheSameFlagsAtTheHardwareTap) {
    EXPECT_THAT(postedBy([](auto& input) { input.pressKey(Key::left, {.command = true, .shift = true}); }),
                ElementsAre(key("key down", 123, 0x120000), key("key up", 123, 0x120000)));
}

TEST(MacInputTest, EachKeyHasItsCode) {
    const std::pair<Key, int> codes[] = {
        {Key::returnKey, 36}, {Key::deleteBackward, 51}, {Key::escape, 53},
        {Key::command, 55},   {Key::option, 58},         {Key::control, 59},
        {Key::left, 123},     {Key::right, 124},         {Key::down, 125},
        {Key::up, 126},
    };
    for (const auto& [each, code] : codes) {
        EXPECT_THAT(postedBy([each = each](auto& input) { input.pressKey(each, {}); }),
                    ElementsAre(key("key down", code), key("key up", code)));
    }
}

TEST(MacInputTest, EachModifierIsAFlag) {
    const std::pair<Modifiers, std::uint64_t> cases[] = {
        {{.command = true}, 0x100000},
        {{.control = true}, 0x40000},
        {{.option = true}, 0x80000},
        {{.shift = true}, 0x20000},
        {{.command = true, .control = true, .option = true, .shift = true}, 0x1E0000},
    };
    for (const auto& [modifiers, flags] : cases) {
        EXPECT_THAT(postedBy([held = modifiers](auto& input) { input.pressKey(Key::command, held); }),
                    ElementsAre(key("key down", 55, flags), key("key up", 55, flags)));
    }
}

TEST(MacInputTest, AKeyPostsNothingWhenAnyOfItsPartsCanNotBeMade) {
    for (int part = 0; part < 3; ++part) {
        EXPECT_THAT(postedBy([](auto& input) { input.pressKey(Key::returnKey, {}); }, part), IsEmpty()) << part;
    }
}

TEST(MacInputTest, ATextGoesWholeOntoThePressAloneAndSetsNoFlags) {
    PostedEvent down = textKey("key down");
    down.text = u"a\U0001F600";
    down.timesTextWasSet = 1;
    EXPECT_THAT(postedBy([](auto& input) { input.typeText("a\U0001F600"); }),
                ElementsAre(down, textKey("key up")));
}

TEST(MacInputTest, ALongTextAndAnEmptyOneAreOnePressAndOneReleaseToo) {
    const auto longText = postedBy([](auto& input) { input.typeText(std::string(10'000, 'x')); });
    ASSERT_THAT(longText, SizeIs(2));
    EXPECT_EQ(longText[0].text.size(), 10'000u);
    const auto emptyText = postedBy([](auto& input) { input.typeText(""); });
    ASSERT_THAT(emptyText, SizeIs(2));
    EXPECT_EQ(emptyText[0].timesTextWasSet, 1);
}

TEST(MacInputTest, ATextWhoseReleaseCanNotBeMadeLeavesItsPressPosted) {
    const auto type = [](InputEvents& input) { input.typeText("a"); };
    EXPECT_THAT(postedBy(type, 0), IsEmpty());
    EXPECT_THAT(postedBy(type, 1), IsEmpty());
    const auto posted = postedBy(type, 2);
    ASSERT_THAT(posted, SizeIs(1));
    EXPECT_EQ(posted[0].kind, "key down");
}

TEST(MacInputTest, ThePointerMovesFromWhereItIsByFractionsAndOffTheScreen) {
    EXPECT_THAT(postedBy([](auto& input) { input.movePointer(1.5, -300); }),
                ElementsAre(mouse(5, 0, 101.5, -100)));
    for (int part = 0; part < 2; ++part) {
        EXPECT_THAT(postedBy([](auto& input) { input.movePointer(1, 1); }, part), IsEmpty());
    }
}

TEST(MacInputTest, AClickIsPressedAndReleasedWhereThePointerIs) {
    EXPECT_THAT(postedBy([](auto& input) { input.click(MouseButton::right); }),
                ElementsAre(mouse(3, 1, 100, 200), mouse(4, 1, 100, 200)));
    EXPECT_THAT(postedBy([](auto& input) { input.click(MouseButton::left); }),
                ElementsAre(mouse(1, 0, 100, 200), mouse(2, 0, 100, 200)));
    for (int part = 0; part < 3; ++part) {
        EXPECT_THAT(postedBy([](auto& input) { input.click(MouseButton::left); }, part), IsEmpty()) << part;
    }
}

TEST(MacAccessibilityTest, AsksWithoutAPromptUnlessOneIsWanted) {
    const int aliveBefore = FakeObject::alive;
    fakeAccessibility = {};
    MacAccessibility accessibility;
    EXPECT_FALSE(accessibility.isTrusted());
    EXPECT_EQ(fakeAccessibility.questions, 1);
    EXPECT_EQ(fakeAccessibility.prompts, 0);
    EXPECT_FALSE(accessibility.isTrustedWithPrompt());
    EXPECT_EQ(fakeAccessibility.questions, 2);
    EXPECT_EQ(fakeAccessibility.prompts, 1);
    fakeAccessibility.isTrusted = true;
    EXPECT_TRUE(accessibility.isTrusted());
    EXPECT_TRUE(accessibility.isTrustedWithPrompt());
    EXPECT_EQ(FakeObject::alive, aliveBefore);
}

} // namespace
} // namespace velloway::test
