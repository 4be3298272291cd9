#include "hosts/linux/input/InputSession.h"
#include "hosts/linux/windows/SessionPlatform.h"

#include <gtest/gtest.h>

#include <QByteArray>

#include <cstdlib>
#include <map>
#include <string>

namespace velloway::test {

namespace {

using Variables = std::map<std::string, std::string>;

/// Sets these variables and unsets the others that say of what kind a session is; puts all back at the end.
class SessionVariables {
public:
    explicit SessionVariables(Variables values) {
        for (const char* name : {"XDG_SESSION_TYPE", "WAYLAND_DISPLAY", "DISPLAY"}) {
            const char* old = std::getenv(name);
            before_[name] = old ? old : "";
            put(name, values[name]);
        }
    }
    ~SessionVariables() {
        for (const auto& [name, value] : before_) {
            put(name, value);
        }
    }

private:
    static void put(const std::string& name, const std::string& value) {
        if (value.empty()) {
            ::unsetenv(name.c_str());
        } else {
            ::setenv(name.c_str(), value.c_str(), 1);
        }
    }
    Variables before_;
};

TEST(InputSession, FollowsTheTypeOfTheSessionAndNotThePresenceOfAnXServer) {
    struct {
        Variables variables;
        InputSession expected;
    } const cases[] = {
        {{{"XDG_SESSION_TYPE", "x11"}, {"DISPLAY", ":0"}}, InputSession::x11},
        {{{"XDG_SESSION_TYPE", "wayland"}, {"WAYLAND_DISPLAY", "wayland-0"}, {"DISPLAY", ":0"}},
         InputSession::wayland},
        {{{"XDG_SESSION_TYPE", "wayland"}, {"DISPLAY", ":0"}}, InputSession::wayland},
        {{{"WAYLAND_DISPLAY", "wayland-0"}, {"DISPLAY", ":0"}}, InputSession::wayland},
        {{{"XDG_SESSION_TYPE", "x11"}, {"WAYLAND_DISPLAY", "nested"}, {"DISPLAY", ":0"}}, InputSession::x11},
        {{{"XDG_SESSION_TYPE", "tty"}, {"DISPLAY", ":0"}}, InputSession::x11},
        {{{"XDG_SESSION_TYPE", "tty"}, {"WAYLAND_DISPLAY", "wayland-0"}}, InputSession::wayland},
        {{{"DISPLAY", ":0"}}, InputSession::x11},
        {{{"XDG_SESSION_TYPE", "tty"}}, InputSession::none},
        {{{"XDG_SESSION_TYPE", "x11"}}, InputSession::none},
        {{}, InputSession::none},
    };
    for (const auto& each : cases) {
        const SessionVariables variables(each.variables);
        EXPECT_EQ(currentInputSession(), each.expected);
    }
}

TEST(InputSession, WithTheXServerOfThisTestIsTrusted) {
    EXPECT_TRUE(makeLinuxInput()->isTrusted());
}

TEST(InputSession, OnWaylandIsNotTrustedThoughAnXServerIsThere) {
    const SessionVariables variables(
        Variables{{"XDG_SESSION_TYPE", "wayland"}, {"DISPLAY", std::getenv("DISPLAY")}});
    EXPECT_FALSE(makeLinuxInput()->isTrusted());
}

TEST(SessionPlatform, PrefersTheXServerOfAWaylandSessionUnlessTheUserChooses) {
    const std::string here = std::getenv("DISPLAY");
    const std::string dead = ":9999";
    struct {
        Variables variables;
        const char* chosen;
        const char* expected;
    } const cases[] = {
        {{{"WAYLAND_DISPLAY", "wayland-0"}, {"DISPLAY", here}}, "", "xcb;wayland"},
        {{{"XDG_SESSION_TYPE", "wayland"}, {"DISPLAY", here}}, "", "xcb;wayland"},
        {{{"WAYLAND_DISPLAY", "wayland-0"}, {"DISPLAY", here}}, "wayland", "wayland"},
        {{{"WAYLAND_DISPLAY", "wayland-0"}, {"DISPLAY", dead}}, "", ""},
        {{{"WAYLAND_DISPLAY", "wayland-0"}}, "", ""},
        {{{"XDG_SESSION_TYPE", "x11"}, {"DISPLAY", here}}, "", ""},
    };
    const QByteArray before = qgetenv("QT_QPA_PLATFORM");
    for (const auto& each : cases) {
        const SessionVariables variables(each.variables);
        qputenv("QT_QPA_PLATFORM", each.chosen);
        SessionPlatform platform;
        EXPECT_EQ(qgetenv("QT_QPA_PLATFORM").toStdString(), each.expected);
        platform.withdraw();
        EXPECT_EQ(qgetenv("QT_QPA_PLATFORM").toStdString(), each.chosen);
    }
    qputenv("QT_QPA_PLATFORM", before);
}

/// Every operation, none of which may do any harm.
void useAll(LinuxInput& input) {
    input.pressKey(Key::escape, {.command = true});
    input.typeText("a");
    input.pressMediaKey(MediaKey::mute);
    input.movePointer(1, 1);
    input.click(MouseButton::left);
}

TEST(InputSession, WithoutADisplayDropsEverything) {
    const SessionVariables variables(Variables{});
    const auto input = makeLinuxInput();
    EXPECT_FALSE(input->isTrusted());
    EXPECT_FALSE(input->isTrustedWithPrompt());
    useAll(*input);
}

TEST(InputSession, WithADeadXServerDropsEverything) {
    const SessionVariables variables(Variables{{"DISPLAY", ":9999"}});
    const auto input = makeLinuxInput();
    EXPECT_FALSE(input->isTrusted());
    EXPECT_FALSE(input->isTrustedWithPrompt());
    useAll(*input);
}

} // namespace

} // namespace velloway::test
