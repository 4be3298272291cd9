#include "hosts/linux/input/VirtualDevices.h"
#include "desktop/FakeCompositor.h"
#include "desktop/WaitFor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include <wayland-server.h>

extern "C" {
extern const wl_interface zwp_virtual_keyboard_manager_v1_interface;
extern const wl_interface zwlr_virtual_pointer_manager_v1_interface;
}

namespace velloway::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::vector<const wl_interface*> allGlobals{
    &wl_seat_interface, &zwp_virtual_keyboard_manager_v1_interface, &zwlr_virtual_pointer_manager_v1_interface};

/// One request, with the time that it names apart.
struct Request {
    std::string text;
    std::uint32_t time = 0;
};

/// "key 42 1" of "zwp_virtual_keyboard_v1.key 123456 42 1".
Request request(const std::string& line) {
    std::istringstream words(line.substr(line.find('.') + 1));
    Request request;
    words >> request.text;
    if (request.text == "key" || request.text == "motion" || request.text == "button") {
        words >> request.time;
    }
    for (std::string word; words >> word;) {
        request.text += ' ' + word;
    }
    return request;
}

class VirtualDevicesTest : public testing::Test {
protected:
    /// Waits for so many requests, and returns them.
    std::vector<Request> requests(std::size_t count) {
        std::vector<Request> found;
        waitFor([&] {
            for (const std::string& line : compositor_.take()) {
                found.push_back(request(line));
            }
            return found.size() >= count;
        });
        return found;
    }
    std::vector<std::string> texts(std::size_t count) {
        std::vector<std::string> found;
        for (const Request& each : requests(count)) {
            found.push_back(each.text);
        }
        return found;
    }
    /// The requests of the next presses of keys, without the keymaps between them.
    std::vector<Request> keys(std::size_t count) {
        std::vector<Request> found;
        waitFor([&] {
            for (const std::string& line : compositor_.take()) {
                if (const Request each = request(line); each.text.starts_with("key ")) {
                    found.push_back(each);
                }
            }
            return found.size() >= count;
        });
        return found;
    }

    FakeCompositor compositor_{allGlobals};
};

TEST_F(VirtualDevicesTest, AddsAKeyboardWithItsKeymapAndAPointerToTheSeatAndTakesThemAway) {
    auto devices = VirtualDevices::connect();
    ASSERT_TRUE(devices);
    EXPECT_TRUE(devices->isTrusted());
    EXPECT_TRUE(devices->isTrustedWithPrompt());
    const std::string keymap = compositor_.keymap();
    EXPECT_THAT(texts(3), ElementsAre("create_virtual_keyboard object new", "create_virtual_pointer object new",
                                      "keymap 1 file " + std::to_string(keymap.size())));
    ASSERT_FALSE(keymap.empty());
    EXPECT_EQ(keymap.back(), '\0');
    VirtualKeymap expected;
    expected.provide({});
    EXPECT_EQ(keymap.c_str(), expected.text());
    devices.reset();
    EXPECT_TRUE(waitFor([this] {
        bool isGone = false;
        compositor_.perform([&] { isGone = !compositor_.latest("zwp_virtual_keyboard_v1"); });
        return isGone;
    }));
}

TEST_F(VirtualDevicesTest, KeysAreHeldTogetherWithTheirModifiers) {
    const auto devices = VirtualDevices::connect();
    texts(3);
    devices->pressKey(Key::left, {.command = true, .shift = true});
    EXPECT_THAT(texts(10),
                ElementsAre("key 125 1", "modifiers 64 0 0 0", "key 42 1", "modifiers 65 0 0 0", "key 105 1",
                            "key 105 0", "key 42 0", "modifiers 64 0 0 0", "key 125 0", "modifiers 0 0 0 0"));
    devices->pressMediaKey(MediaKey::mute);
    EXPECT_THAT(texts(2), ElementsAre("key 113 1", "key 113 0"));
}

TEST_F(VirtualDevicesTest, TextIsTypedByKeysThatAreMadeForIt) {
    const auto devices = VirtualDevices::connect();
    texts(3);
    devices->typeText("aba");
    const auto typed = texts(7);
    ASSERT_EQ(typed.size(), 7u);
    EXPECT_EQ(typed[0], "keymap 1 file " + std::to_string(compositor_.keymap().size()));
    EXPECT_THAT(std::vector(typed.begin() + 1, typed.end()),
                ElementsAre("key 128 1", "key 128 0", "key 129 1", "key 129 0", "key 128 1", "key 128 0"));
    devices->typeText("b\n");
    EXPECT_THAT(texts(4), ElementsAre("key 129 1", "key 129 0", "key 28 1", "key 28 0"));
    devices->typeText("");
    devices->pressKey(Key::escape, {});
    EXPECT_THAT(texts(2), ElementsAre("key 1 1", "key 1 0"));
}

TEST_F(VirtualDevicesTest, LongTextsComeInPiecesWithAPause) {
    const auto devices = VirtualDevices::connect();
    texts(3);
    devices->typeText(std::string(70, 'x'));
    const auto typed = keys(140);
    ASSERT_EQ(typed.size(), 140u);
    for (const std::size_t end : {32u, 64u}) {
        EXPECT_GE(typed[2 * end].time - typed[2 * end - 1].time, 19u) << end;
    }
    EXPECT_LT(typed[139].time - typed[0].time, 3000u);
}

TEST_F(VirtualDevicesTest, MoreCharactersThanKeysWaitUntilProgramsHaveLookedUpTheFirst) {
    const auto devices = VirtualDevices::connect();
    texts(3);
    std::string text;
    for (int index = 0; index < 120; ++index) {
        const int character = 0x4E00 + index;
        text += {static_cast<char>(0xE0 | character >> 12), static_cast<char>(0x80 | (character >> 6 & 0x3F)),
                 static_cast<char>(0x80 | (character & 0x3F))};
    }
    devices->typeText(text);
    const auto typed = keys(240);
    ASSERT_EQ(typed.size(), 240u);
    EXPECT_EQ(typed[0].text, "key 128 1");
    EXPECT_EQ(typed[2 * 112].text, "key 247 1");
    EXPECT_EQ(typed[2 * 113].text, "key 128 1");
    EXPECT_GE(typed[2 * 113].time - typed[2 * 113 - 1].time, 399u);
    EXPECT_EQ(typed[239].text, "key 134 0");
}

TEST_F(VirtualDevicesTest, ThePointerMovesByFractionsWithinWhatTheWireCanCount) {
    const auto devices = VirtualDevices::connect();
    texts(3);
    devices->movePointer(1.5, -0.25);
    devices->movePointer(1e300, -1e300);
    devices->movePointer(std::nan(""), 2);
    EXPECT_THAT(texts(6), ElementsAre("motion 1.5 -0.25", "frame", "motion 8000000 -8000000", "frame",
                                      "motion 0 2", "frame"));
}

TEST_F(VirtualDevicesTest, ClicksPressAndReleaseTheButton) {
    const auto devices = VirtualDevices::connect();
    texts(3);
    devices->click(MouseButton::left);
    devices->click(MouseButton::right);
    EXPECT_THAT(texts(8), ElementsAre("button 272 1", "frame", "button 272 0", "frame", "button 273 1", "frame",
                                      "button 273 0", "frame"));
    const auto before = std::chrono::steady_clock::now().time_since_epoch();
    devices->click(MouseButton::left);
    const auto now = std::chrono::duration_cast<std::chrono::milliseconds>(before).count();
    EXPECT_LT(requests(4).at(0).time - static_cast<std::uint32_t>(now), 10'000u);
}

TEST_F(VirtualDevicesTest, WithoutTheConnectionNothingIsSentAndNobodyIsTrusted) {
    const auto devices = VirtualDevices::connect();
    texts(3);
    compositor_.perform([this] { compositor_.disconnectAll(); });
    // The library notices it with the next request that waits for an answer.
    devices->typeText("a");
    EXPECT_TRUE(waitFor([&] { return !devices->isTrusted(); }));
    devices->movePointer(1, 1);
    devices->click(MouseButton::left);
    devices->pressKey(Key::escape, {});
    EXPECT_THAT(compositor_.take(), IsEmpty());
}

TEST_F(VirtualDevicesTest, TheEndDropsWhatIsStillToBeTyped) {
    auto devices = VirtualDevices::connect();
    texts(3);
    devices->typeText(std::string(32 * 1000, 'x'));
    devices->pressKey(Key::escape, {});
    EXPECT_TRUE(waitFor([&] { return compositor_.count() > 0; }));
    const auto start = std::chrono::steady_clock::now();
    devices.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    for (const Request& each : keys(1)) {
        EXPECT_NE(each.text, "key 1 1");
    }
}

TEST(VirtualDevicesConnect, NeedsASeatAKeyboardAndAPointerToMake) {
    for (std::size_t missing = 0; missing < allGlobals.size(); ++missing) {
        auto globals = allGlobals;
        globals.erase(globals.begin() + static_cast<std::ptrdiff_t>(missing));
        FakeCompositor compositor(globals);
        EXPECT_EQ(VirtualDevices::connect(), nullptr) << missing;
    }
    EXPECT_EQ(VirtualDevices::connect(), nullptr);
}

TEST(VirtualDevicesConnect, TakesTheFirstOfSeveralSeats) {
    FakeCompositor compositor({&wl_seat_interface, &zwp_virtual_keyboard_manager_v1_interface,
                               &wl_seat_interface, &zwlr_virtual_pointer_manager_v1_interface});
    EXPECT_NE(VirtualDevices::connect(), nullptr);
}

TEST(VirtualDevicesConnect, ACompositorThatRefusesTheKeyboardHasNone) {
    FakeCompositor compositor(allGlobals);
    compositor.refusedRequest = "create_virtual_keyboard";
    EXPECT_EQ(VirtualDevices::connect(), nullptr);
}

TEST(VirtualDevicesConnect, AnInheritedConnectionIsNotOurs) {
    FakeCompositor compositor(allGlobals);
    setenv("WAYLAND_SOCKET", "77", 1);
    EXPECT_EQ(VirtualDevices::connect(), nullptr);
    unsetenv("WAYLAND_SOCKET");
    EXPECT_THAT(compositor.take(), IsEmpty());
}

} // namespace
} // namespace velloway::test
