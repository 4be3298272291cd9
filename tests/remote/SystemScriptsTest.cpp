#include "remote/SystemScripts.h"

#include "fakes/FakeInput.h"
#include "fakes/FakeLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velloway::test {

namespace {

using Action = SystemScript::Action;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(RunScript, LogsNothingOnSuccess) {
    FakeScripts scripts;
    FakeLog log;
    runScript(scripts, log, {.action = Action::sleep});
    ASSERT_EQ(scripts.scripts.size(), 1U);
    EXPECT_EQ(scripts.scripts[0].action, Action::sleep);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(RunScript, LogsAnErrorInOneLine) {
    FakeScripts scripts;
    FakeLog log;
    scripts.error = "no such thing";
    runScript(scripts, log, {.action = Action::sleep});
    EXPECT_THAT(log.lines(), ElementsAre("[WebSocketServer] AppleScript Error: no such thing"));
}

} // namespace

} // namespace velloway::test
