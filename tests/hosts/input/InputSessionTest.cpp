#include "hosts/linux/input/InputBackend.h"
#include "hosts/linux/input/LinuxAccessibility.h"
#include "hosts/linux/input/LinuxInputEvents.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <string>

namespace velloway::test {

namespace {

using Variables = std::map<std::string, std::string>;

/// Sets these variables and unsets the other two that tell a session's kind; puts all back at the end.
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

TEST(InputSession, WithTheXServerOfThisTestIsReady) {
    EXPECT_TRUE(makeInputBackend()->isReady());
}

TEST(InputSession, OnWaylandIsNotReadyThoughAnXServerIsThere) {
    const SessionVariables variables(
        Variables{{"XDG_SESSION_TYPE", "wayland"}, {"DISPLAY", std::getenv("DISPLAY")}});
    EXPECT_FALSE(makeInputBackend()->isReady());
}

TEST(InputSession, WithoutADisplayMakesNoEvents) {
    const SessionVariables variables(Variables{});
    const auto backend = makeInputBackend();
    LinuxAccessibility accessibility(*backend);
    LinuxInputEvents events(*backend);
    EXPECT_FALSE(accessibility.isTrustedWithPrompt());
    EXPECT_EQ(events.makeSource(EventSourceState::hidSystemState), nullptr);
    EXPECT_EQ(events.makeEvent(), nullptr);
}

TEST(InputSession, WithADeadXServerMakesNoEvents) {
    const SessionVariables variables(Variables{{"DISPLAY", ":9999"}});
    const auto backend = makeInputBackend();
    LinuxInputEvents events(*backend);
    EXPECT_FALSE(backend->isReady());
    EXPECT_EQ(events.makeSource(EventSourceState::hidSystemState), nullptr);
    EXPECT_EQ(events.makeEvent(), nullptr);
}

} // namespace

} // namespace velloway::test
