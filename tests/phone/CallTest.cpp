#include "phone/Call.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velloway::phone {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Call, ThatIsAnsweredCountsItsSecondsUntilItIsHungUp) {
    Call call;
    EXPECT_THAT(call.ring("5551", "Ada"),
                ElementsAre(R"({"action":"incoming_call","state":"RINGING","number":"5551","name":"Ada"})"));
    EXPECT_THAT(call.tick(), IsEmpty());
    EXPECT_THAT(call.answer(),
                ElementsAre(R"({"action":"call_state_changed","state":"OFFHOOK","number":"5551","name":"Ada"})",
                            R"({"action":"call_update","duration":0})"));
    EXPECT_THAT(call.tick(), ElementsAre(R"({"action":"call_update","duration":1})"));
    EXPECT_THAT(call.tick(), ElementsAre(R"({"action":"call_update","duration":2})"));
    EXPECT_THAT(call.hangUp(), ElementsAre(R"({"action":"call_ended","state":"IDLE"})"));
    EXPECT_THAT(call.tick(), IsEmpty());
}

TEST(Call, ThatRingsCanBeRefused) {
    Call call;
    call.ring("5551", "");
    EXPECT_THAT(call.hangUp(), ElementsAre(R"({"action":"call_ended","state":"IDLE"})"));
    EXPECT_EQ(call.state(), Call::State::idle);
}

TEST(Call, ThatIsNotThereIsNeitherAnsweredNorEnded) {
    Call call;
    EXPECT_THAT(call.answer(), IsEmpty());
    EXPECT_THAT(call.hangUp(), IsEmpty());
}

TEST(Call, DialledFromTheComputerRunsAtOnceAndCountsFromZero) {
    Call call;
    call.ring("1", "Ada");
    call.answer();
    call.tick();
    EXPECT_THAT(call.dial("5552"),
                ElementsAre(R"({"action":"call_state_changed","state":"OFFHOOK","number":"5552"})"));
    EXPECT_THAT(call.tick(), ElementsAre(R"({"action":"call_update","duration":1})"));
}

} // namespace
} // namespace velloway::phone
