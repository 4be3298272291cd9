#include "phone/TouchpadKeys.h"

#include "phone/Messages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velloway::phone {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(TouchpadKeys, ArrowsMoveThePointerAndShiftMovesItFurther) {
    TouchpadKeys keys;
    EXPECT_THAT(keys.read("\x1b[A\x1b[B\x1b[C\x1b[D"),
                ElementsAre(messages::pointerMove(0, -12), messages::pointerMove(0, 12),
                            messages::pointerMove(12, 0), messages::pointerMove(-12, 0)));
    EXPECT_THAT(keys.read("\x1bOA\x1b[1;2C"),
                ElementsAre(messages::pointerMove(0, -12), messages::pointerMove(60, 0)));
    EXPECT_FALSE(keys.isOver());
}

TEST(TouchpadKeys, LettersAreTypedTogetherAndEnterAndTabClick) {
    TouchpadKeys keys;
    EXPECT_THAT(keys.read("grüß dich\r\t"),
                ElementsAre(messages::typedText("grüß dich"), messages::pointerClick("left"),
                            messages::pointerClick("right")));
}

TEST(TouchpadKeys, BackspaceDeletes) {
    TouchpadKeys keys;
    EXPECT_THAT(keys.read("a\x7f"),
                ElementsAre(messages::typedText("a"), messages::remoteControl("key_delete", "remote")));
}

TEST(TouchpadKeys, EscapeAloneLeaves) {
    TouchpadKeys keys;
    EXPECT_THAT(keys.read("\x1b"), IsEmpty());
    EXPECT_TRUE(keys.isOver());
}

TEST(TouchpadKeys, ATildeLeavesOnlyBeforeAFullStop) {
    TouchpadKeys keys;
    EXPECT_THAT(keys.read("~"), IsEmpty());
    EXPECT_THAT(keys.read("a"), ElementsAre(messages::typedText("~a")));
    EXPECT_THAT(keys.read("~~"), ElementsAre(messages::typedText("~")));
    EXPECT_FALSE(keys.isOver());
    keys.read(".");
    EXPECT_TRUE(keys.isOver());
}

TEST(TouchpadKeys, UnknownSequencesDoNothing) {
    TouchpadKeys keys;
    EXPECT_THAT(keys.read("\x1b[5~\x1b[Z"), IsEmpty());
    EXPECT_FALSE(keys.isOver());
}

} // namespace
} // namespace velloway::phone
