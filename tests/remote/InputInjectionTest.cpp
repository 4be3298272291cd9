#include "remote/InputInjection.h"

#include "fakes/FakeInput.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velloway::test {

namespace {

using ::testing::ElementsAre;

struct Rig {
    FakeInputEvents events;
    InputInjection injection{events};
};

TEST(SendCGKey, KnowsFourModifierNamesAndIgnoresAllOthers) {
    const std::pair<std::vector<std::string_view>, Modifiers> cases[] = {
        {{}, {}},
        {{"cmd"}, {.command = true}},
        {{"ctrl"}, {.control = true}},
        {{"option"}, {.option = true}},
        {{"shift"}, {.shift = true}},
        {{"cmd", "shift"}, {.command = true, .shift = true}},
        {{"shift", "option", "ctrl", "cmd"}, {.command = true, .control = true, .option = true, .shift = true}},
        {{"cmd", "cmd", "hyper"}, {.command = true}},
        {{"command", "alt", "control", "Shift", "fn", ""}, {}},
    };
    for (const auto& [names, modifiers] : cases) {
        Rig rig;
        rig.injection.sendCGKey(Key::returnKey, names);
        EXPECT_THAT(rig.events.posted, ElementsAre(Input(PressedKey{Key::returnKey, modifiers})));
    }
}

TEST(SendUnicodeText, TypesEveryTextWholeInOnePiece) {
    for (const std::string& text :
         {std::string("h\u00E9"), std::string(), std::string("a\0b", 3), std::string("\U0001F600"),
          std::string("a\u00A0b\u00A0"), std::string(" \t\n"), std::string(10'000, 'x')}) {
        Rig rig;
        rig.injection.sendUnicodeText(text);
        EXPECT_THAT(rig.events.posted, ElementsAre(Input(TypedText{text})));
    }
}

TEST(SendSystemMediaKey, PressesTheKey) {
    Rig rig;
    rig.injection.sendSystemMediaKey(MediaKey::playPause);
    EXPECT_THAT(rig.events.posted, ElementsAre(Input(MediaKey::playPause)));
}

TEST(MovePointer, PassesTheDeltasOnAsTheyCame) {
    Rig rig;
    rig.injection.movePointer(1.5, -0.4);
    rig.injection.movePointer(-5000, 1e6);
    EXPECT_THAT(rig.events.posted,
                ElementsAre(Input(MovedPointer{1.5, -0.4}), Input(MovedPointer{-5000, 1e6})));
}

TEST(Click, TakesTheLeftButtonUnlessTheTextIsExactlyRight) {
    for (const std::string_view button : {"left", "", "Right", "middle", "right "}) {
        Rig rig;
        rig.injection.click(button);
        EXPECT_THAT(rig.events.posted, ElementsAre(Input(MouseButton::left))) << button;
    }
    Rig rig;
    rig.injection.click("right");
    EXPECT_THAT(rig.events.posted, ElementsAre(Input(MouseButton::right)));
}

} // namespace

} // namespace velloway::test
