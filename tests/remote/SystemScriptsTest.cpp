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

TEST(SystemScripts, HaveTheirSourceTexts) {
    EXPECT_EQ(makeSystemScript(Action::volumeUp).sourceText,
              "set volume output volume (output volume of (get volume settings) + 5)");
    EXPECT_EQ(makeSystemScript(Action::volumeDown).sourceText,
              "set volume output volume (output volume of (get volume settings) - 5)");
    EXPECT_EQ(makeSystemScript(Action::emptyTrash).sourceText, "tell application \"Finder\" to empty trash");
    EXPECT_EQ(makeSystemScript(Action::lockScreen).sourceText,
              "tell application \"System Events\" to lock screen");
    EXPECT_EQ(makeSystemScript(Action::sleep).sourceText, "tell application \"System Events\" to sleep");
}

TEST(SystemScripts, PutAnAddressBetweenTheQuotesAsItStands) {
    const SystemScript plain = makeSystemScript(Action::openLocation, "example.org/ä b\\n");
    EXPECT_EQ(plain.sourceText, "open location \"example.org/ä b\\n\"");
    EXPECT_EQ(plain.address, "example.org/ä b\\n");
    EXPECT_EQ(makeSystemScript(Action::openLocation, "").sourceText, "open location \"\"");
}

TEST(SystemScripts, LetAQuoteInAnAddressEndTheString) {
    const SystemScript script = makeSystemScript(Action::openLocation, "a\" & \"b");
    EXPECT_EQ(script.sourceText, "open location \"a\" & \"b\"");
    EXPECT_EQ(script.address, "a\" & \"b");
}

TEST(RunScript, LogsNothingOnSuccess) {
    FakeScripts scripts;
    FakeLog log;
    runScript(scripts, log, makeSystemScript(Action::sleep));
    ASSERT_EQ(scripts.scripts.size(), 1U);
    EXPECT_EQ(scripts.scripts[0].action, Action::sleep);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(RunScript, LogsAnErrorInOneLine) {
    FakeScripts scripts;
    FakeLog log;
    scripts.error = "no such thing";
    runScript(scripts, log, makeSystemScript(Action::sleep));
    EXPECT_THAT(log.lines(), ElementsAre("[WebSocketServer] AppleScript Error: no such thing"));
}

} // namespace

} // namespace velloway::test
