#include "hosts/linux/input/PortalInput.h"

#include "FakePortal.h"
#include "desktop/WaitFor.h"
#include "hosts/linux/input/PermissionWorkspace.h"

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>

#include <string>
#include <thread>
#include <vector>

namespace velloway::test {

namespace {

class Portal : public ::testing::Test {
protected:
    bool asks() {
        input_.isTrustedWithPrompt();
        return waitFor([this] { return portal_.isAsking(); });
    }
    bool becomesTrusted(bool expected) {
        return waitFor([&] { return input_.isTrusted() == expected; });
    }
    bool opensSession() {
        if (!asks()) {
            return false;
        }
        portal_.answer(0);
        return becomesTrusted(true);
    }
    void expectInput(const QStringList& expected) {
        waitFor([&] { return portal_.input.size() >= expected.size(); });
        EXPECT_EQ(portal_.input.join('\n').toStdString(), expected.join('\n').toStdString());
    }

    FakePortal portal_;
    PortalInput input_;
};

TEST_F(Portal, IsNotAskedUntilAPromptIsWanted) {
    EXPECT_FALSE(input_.isTrusted());
    input_.movePointer(1, 1);
    input_.typeText("a");
    // Whatever had been asked for by now would come before this question.
    ASSERT_TRUE(asks());
    EXPECT_EQ(portal_.calls, QStringList({"CreateSession", "SelectDevices", "Start"}));
    EXPECT_TRUE(portal_.input.isEmpty());
}

TEST_F(Portal, TrustComesOnceTheUserHasAgreed) {
    ASSERT_TRUE(asks());
    EXPECT_FALSE(input_.isTrusted());
    portal_.answer(0);
    EXPECT_TRUE(becomesTrusted(true));
    EXPECT_EQ(portal_.selectOptions.value("types").toUInt(), 3U);
    EXPECT_EQ(portal_.selectOptions.value("persist_mode").toUInt(), 2U);
    EXPECT_FALSE(portal_.selectOptions.contains("restore_token"));
}

TEST_F(Portal, SessionIsCreatedOnce) {
    ASSERT_TRUE(asks());
    input_.isTrustedWithPrompt();
    input_.isTrustedWithPrompt();
    portal_.answer(0);
    ASSERT_TRUE(becomesTrusted(true));
    input_.isTrustedWithPrompt();
    input_.click(MouseButton::left);
    expectInput({"PointerButton 272 1", "PointerButton 272 0"});
    EXPECT_EQ(portal_.calls, QStringList({"CreateSession", "SelectDevices", "Start"}));
}

TEST_F(Portal, DenialLeavesItUntrustedUntilTheUserIsAskedAgain) {
    ASSERT_TRUE(asks());
    portal_.answer(1);
    // Denied sessions are closed by us.
    ASSERT_TRUE(waitFor([this] { return portal_.calls.contains("Close"); }));
    EXPECT_FALSE(input_.isTrusted());
    EXPECT_TRUE(opensSession());
}

TEST_F(Portal, SessionClosedByTheUserEndsTrustAndInput) {
    ASSERT_TRUE(opensSession());
    portal_.closeSession();
    ASSERT_TRUE(becomesTrusted(false));
    input_.typeText("lost");
    input_.movePointer(1, 1);
    input_.click(MouseButton::left);

    ASSERT_TRUE(opensSession());
    input_.typeText("b");
    expectInput({"KeyboardKeysym 98 1", "KeyboardKeysym 98 0"});
    EXPECT_EQ(portal_.selectOptions.value("restore_token").toString(), QString("token1"));
}

TEST_F(Portal, ASessionThatHasEndedCannotEndTheNextOne) {
    ASSERT_TRUE(opensSession());
    const QString former = portal_.session();
    portal_.closeSession();
    ASSERT_TRUE(becomesTrusted(false));
    ASSERT_TRUE(opensSession());
    portal_.closeSession(former);
    // Brings the news to our side, by the connection of the portal and by our own.
    portal_.takeHeld();
    QDBusConnection::sessionBus().interface()->isServiceRegistered("org.freedesktop.portal.Desktop");
    processPending();
    EXPECT_TRUE(input_.isTrusted());
    portal_.closeSession();
    EXPECT_TRUE(becomesTrusted(false));
}

TEST_F(Portal, ADesktopThatGoesAwayEndsTrust) {
    ASSERT_TRUE(opensSession());
    portal_.leaveTheBus();
    EXPECT_TRUE(becomesTrusted(false));
}

TEST_F(Portal, ADesktopWithoutSuchSessionsIsNotTrusted) {
    portal_.refusesSessions = true;
    input_.isTrustedWithPrompt();
    ASSERT_TRUE(waitFor([this] { return !portal_.calls.isEmpty(); }));
    EXPECT_FALSE(input_.isTrusted());
    portal_.refusesSessions = false;
    // The refusal may still be on its way; the prompt works again once it has come.
    EXPECT_TRUE(waitFor([this] {
        input_.isTrustedWithPrompt();
        return portal_.isAsking();
    }));
}

TEST_F(Portal, OldDesktopsMayChooseTheirOwnRequestPaths) {
    portal_.choosesItsOwnPaths = true;
    const auto answerHeld = [this] {
        const auto held = portal_.takeHeld();
        // Brings the replies that name the paths to our side before the answers.
        QDBusConnection::sessionBus().interface()->isServiceRegistered("org.freedesktop.portal.Desktop");
        processPending();
        for (const auto& send : held) {
            send();
        }
    };
    input_.isTrustedWithPrompt();
    ASSERT_TRUE(waitFor([&] {
        answerHeld();
        return portal_.isAsking();
    }));
    portal_.answer(0);
    answerHeld();
    EXPECT_TRUE(becomesTrusted(true));
}

TEST_F(Portal, PointerMovesByFractionsAreHandedOnUnrounded) {
    ASSERT_TRUE(opensSession());
    input_.movePointer(1.5, -0.25);
    input_.movePointer(-2000, 4);
    input_.movePointer(0, 0);
    expectInput({"PointerMotion 1.5 -0.25", "PointerMotion -2000 4", "PointerMotion 0 0"});
}

TEST_F(Portal, ClicksPressAndReleaseTheButton) {
    ASSERT_TRUE(opensSession());
    input_.click(MouseButton::right);
    expectInput({"PointerButton 273 1", "PointerButton 273 0"});
}

TEST_F(Portal, KeysFromAnotherThreadKeepTheirOrderAndTheirModifiers) {
    ASSERT_TRUE(opensSession());
    std::thread server([this] {
        input_.pressKey(Key::left, {.command = true, .shift = true});
        input_.pressMediaKey(MediaKey::playPause);
    });
    server.join();
    expectInput({"KeyboardKeysym 65515 1", "KeyboardKeysym 65505 1", "KeyboardKeysym 65361 1",
                 "KeyboardKeysym 65361 0", "KeyboardKeysym 65505 0", "KeyboardKeysym 65515 0",
                 "KeyboardKeysym 269025044 1", "KeyboardKeysym 269025044 0"});
}

TEST_F(Portal, InputKeepsItsOrderThoughThePortalHandlesCallsSideBySide) {
    ASSERT_TRUE(opensSession());
    input_.typeText("abcdefgh");
    input_.click(MouseButton::left);
    QStringList expected;
    for (int character = 'a'; character <= 'h'; ++character) {
        expected +=
            {QString("KeyboardKeysym %1 1").arg(character), QString("KeyboardKeysym %1 0").arg(character)};
    }
    expectInput(expected + QStringList{"PointerButton 272 1", "PointerButton 272 0"});
}

TEST_F(Portal, InputThatWaitsForItsTurnIsDroppedWhenTheSessionEnds) {
    ASSERT_TRUE(opensSession());
    input_.typeText(std::string(100, 'x'));
    ASSERT_TRUE(waitFor([this] { return !portal_.input.isEmpty(); }));
    portal_.closeSession();
    ASSERT_TRUE(becomesTrusted(false));
    ASSERT_TRUE(opensSession());
    const auto typed = portal_.input.count("KeyboardKeysym 120 1");
    EXPECT_LT(typed, 100);
    input_.click(MouseButton::left);
    ASSERT_TRUE(waitFor([this] { return portal_.input.contains("PointerButton 272 0"); }));
    EXPECT_EQ(portal_.input.count("KeyboardKeysym 120 1"), typed);
}

/// Notes which settings were opened.
class NotingWorkspace : public Workspace {
public:
    void open(std::string_view) override {}
    void openSettings(SettingsPane pane) override { opened.push_back(pane); }
    void activateFileViewerSelecting(const std::filesystem::path&) override {}

    std::vector<SettingsPane> opened;
};

TEST_F(Portal, SettingsAskAgainAfterARefusalAndAfterTheSessionWasClosed) {
    NotingWorkspace settings;
    PermissionWorkspace workspace(settings, input_);
    ASSERT_TRUE(asks());
    portal_.answer(1);
    ASSERT_TRUE(waitFor([this] { return portal_.calls.contains("Close"); }));
    for (int time = 0; time < 2; ++time) {
        workspace.openSettings(SettingsPane::accessibility);
        ASSERT_TRUE(waitFor([this] { return portal_.isAsking(); }));
        portal_.answer(0);
        ASSERT_TRUE(becomesTrusted(true));
        portal_.closeSession();
        ASSERT_TRUE(becomesTrusted(false));
    }
    EXPECT_TRUE(settings.opened.empty());
    workspace.openSettings(SettingsPane::notifications);
    portal_.leaveTheBus();
    workspace.openSettings(SettingsPane::accessibility);
    EXPECT_EQ(settings.opened, std::vector({SettingsPane::notifications, SettingsPane::accessibility}));
}

TEST(PortalPermission, IsRememberedAndHandedInAtTheNextStart) {
    const QTemporaryDir folder;
    const InputNeeds needs{.settings = folder.filePath("velloway.conf").toStdString()};
    QSettings(folder.filePath("velloway.conf"), QSettings::IniFormat).setValue("port", 9999);
    FakePortal portal;
    const auto opens = [&](PortalInput& input) {
        input.isTrustedWithPrompt();
        ASSERT_TRUE(waitFor([&] { return portal.isAsking(); }));
        portal.answer(0);
        ASSERT_TRUE(waitFor([&] { return input.isTrusted(); }));
    };
    for (const char* expected : {"", "token1", "token2"}) {
        PortalInput input(needs);
        opens(input);
        EXPECT_EQ(portal.selectOptions.value("restore_token").toString().toStdString(), expected);
    }
    QSettings settings(folder.filePath("velloway.conf"), QSettings::IniFormat);
    EXPECT_EQ(settings.value("inputPermission").toString().toStdString(), "token3");
    EXPECT_EQ(settings.value("port").toInt(), 9999);
}

TEST(PortalText, CharactersThatTheLayoutLacksAreMentionedOnceForEachText) {
    FakePortal portal;
    std::vector<std::string> warnings;
    PortalInput input({.warn = [&](std::string_view warning) { warnings.emplace_back(warning); }});
    input.isTrustedWithPrompt();
    ASSERT_TRUE(waitFor([&] { return portal.isAsking(); }));
    portal.answer(0);
    ASSERT_TRUE(waitFor([&] { return input.isTrusted(); }));

    input.typeText("all on the keyboard\n");
    input.typeText("gr\u00fc\u00dfe \u65e5 \U0001F600");
    EXPECT_EQ(warnings,
              std::vector<std::string>({"The keyboard layout has no key for these characters, so that the "
                                        "desktop may leave them out: \u00fc\u00df\u65e5\U0001F600"}));
    ASSERT_EQ(QProcess::execute("setxkbmap", {"de"}), 0);
    input.typeText("gr\u00fc\u00dfe f\u00fcr 5 \u20ac");
    input.typeText("\u65e5");
    ASSERT_EQ(warnings.size(), 2U);
    EXPECT_TRUE(warnings[1].ends_with(": \u65e5"));
    // They are handed over all the same: other desktops type them.
    EXPECT_TRUE(waitFor([&] { return portal.input.contains("KeyboardKeysym 252 1"); }));
}

TEST_F(Portal, TextIsTypedByUnicodeKeysyms) {
    ASSERT_TRUE(opensSession());
    input_.typeText("é\U0001F44D\n");
    expectInput({"KeyboardKeysym 233 1", "KeyboardKeysym 233 0", "KeyboardKeysym 16905293 1",
                 "KeyboardKeysym 16905293 0", "KeyboardKeysym 65293 1", "KeyboardKeysym 65293 0"});
}

TEST_F(Portal, OnlyTheDevicesThatTheUserGrantedAreUsed) {
    portal_.devices = 1;
    ASSERT_TRUE(opensSession());
    input_.movePointer(1, 1);
    input_.click(MouseButton::left);
    input_.typeText("k");
    expectInput({"KeyboardKeysym 107 1", "KeyboardKeysym 107 0"});
}

} // namespace

} // namespace velloway::test
