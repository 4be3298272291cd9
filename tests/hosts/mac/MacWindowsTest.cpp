#include "hosts/mac/MacWindows.h"
#include "hosts/mac/FakeMac.h"
#include "hosts/mac/FakeSurface.h"
#include "hosts/mac/MacApplication.h"
#include "runtime/ObjectiveC.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velloway::test {
namespace {

using testing::ElementsAre;

class MacWindowsTest : public testing::Test {
protected:
    MacWindowsTest() { resetFakeMac(); }
    ~MacWindowsTest() override { objc_autoreleasePoolPop(pool); }

    std::vector<std::string> calls() { return std::exchange(fakeMac.calls, {}); }

    std::shared_ptr<Window> makePanel(PanelKind kind = PanelKind::runningCall) {
        return windows.makePanel({.kind = kind, .size = {350, 80}}, nullptr);
    }

    void* pool = objc_autoreleasePoolPush();
    MacDelegate delegate;
    MacWindows windows{delegate, makeFakeSurface};
};

TEST_F(MacWindowsTest, TheRingingPanelGetsEachPropertyInOrder) {
    const auto panel = makePanel(PanelKind::ringingCall);
    EXPECT_THAT(calls(),
                ElementsAre("panel 0 0 350 80, style 32896, backing 2", "floating = 1", "level = 25",
                            "key only if needed = 1", "collection behavior = 257", "movable by background = 1",
                            "shadow = 1", "clear background", "opaque = 0", "transparent title bar = 1",
                            "title visibility = 1", "released when closed = 0", "hides on deactivate = 0",
                            "translucent surface", "material = 13", "blending mode = 0", "effect state = 1",
                            "corner radius = 12", "masks to bounds = 1", "subview 0 0 350 80, resizes 18",
                            "content view"));
}

TEST_F(MacWindowsTest, ThePanelOfARunningCallLeavesTwoPropertiesAlone) {
    const auto ringing = makePanel(PanelKind::ringingCall);
    std::vector<std::string> expected = calls();
    EXPECT_EQ(std::erase(expected, "key only if needed = 1"), 1u);
    EXPECT_EQ(std::erase(expected, "hides on deactivate = 0"), 1u);
    const auto running = makePanel(PanelKind::runningCall);
    EXPECT_EQ(calls(), expected);
}

TEST_F(MacWindowsTest, APanelIsPlacedShownGivenOtherContentAndTakenAway) {
    auto panel = makePanel();
    calls();
    EXPECT_FALSE(panel->isVisible());
    panel->setFrameOrigin(1070, 775);
    panel->setIsVisible(true);
    panel->makeKeyAndOrderFront();
    panel->orderFrontRegardless();
    EXPECT_TRUE(panel->isVisible());
    panel->setContent(nullptr);
    panel->setIsVisible(false);
    EXPECT_FALSE(panel->isVisible());
    panel.reset();
    EXPECT_THAT(calls(), ElementsAre("origin 1070 775", "surface shown", "visible", "surface shown",
                                     "make key and order front", "surface shown", "order front regardless",
                                     "surface shows something else", "surface hidden", "not visible",
                                     "order out", "surface hidden", "view taken out", "surface gone"));
}

TEST_F(MacWindowsTest, APressBesideTheControlsDragsThePanel) {
    const auto panel = makePanel();
    calls();
    pressFakeBackground();
    // Handled when the button has moved already, is up again, and when the system brings up something else.
    for (const unsigned long type : {6, 2, 14}) {
        fakeMac.currentEvent = type;
        pressFakeBackground();
    }
    fakeMac.currentEvent.reset();
    pressFakeBackground();
    EXPECT_THAT(calls(), ElementsAre("drag", "drag"));
}

TEST_F(MacWindowsTest, APanelGoesWithItsLastOwner) {
    const auto makeAndDrop = [&] {
        void* const inner = objc_autoreleasePoolPush();
        makePanel();
        objc_autoreleasePoolPop(inner);
    };
    makeAndDrop();
    const int before = runtimeObjectsAlive();
    makeAndDrop();
    EXPECT_EQ(runtimeObjectsAlive(), before);
}

TEST_F(MacWindowsTest, TheMainWindowIsMadeWithItsStyleAndClosingItIsTold) {
    int closed = 0;
    const auto window =
        windows.makeMainWindow({.title = "Velloway Settings", .size = {850, 550}, .minimumSize = {800, 500}},
                               nullptr, [&] { ++closed; });
    window->center();
    window->makeKeyAndOrderFront();
    EXPECT_THAT(calls(), ElementsAre("window 0 0 850 550, style 15, backing 2", "title Velloway Settings",
                                     "opaque surface", "subview 0 0 850 550, resizes 18", "delegate",
                                     "released when closed = 0", "minimum size 800 500", "center",
                                     "surface shown", "first responder", "make key and order front"));
    EXPECT_TRUE(window->isVisible());
    fakeCloseMainWindow();
    EXPECT_EQ(closed, 1);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(MacWindowsTest, AClosedWindowDrawsNoMoreAndTakesTheKeysAgainWhenItComesBack) {
    int closed = 0;
    auto window = windows.makeMainWindow({.size = {850, 550}}, nullptr, [&] { ++closed; });
    window->makeKeyAndOrderFront();
    calls();
    fakeCloseMainWindow();
    EXPECT_THAT(calls(), ElementsAre("order out", "surface hidden"));
    window->makeKeyAndOrderFront();
    EXPECT_THAT(calls(), ElementsAre("surface shown", "first responder", "make key and order front"));
    window.reset();
    delegate.windowWillClose();
    EXPECT_EQ(closed, 2);
}

TEST_F(MacWindowsTest, TheUsablePartOfTheScreenIsKnownWhenThereIsAScreen) {
    EXPECT_EQ(windows.mainScreenVisibleFrame(), (Rect{0, 50, 1440, 825}));
    fakeMac.hasScreen = false;
    EXPECT_FALSE(windows.mainScreenVisibleFrame());
}

TEST_F(MacWindowsTest, TheOpenPanelGivesTheFilesInOrderOrNothing) {
    std::optional<std::vector<std::filesystem::path>> chosen;
    const auto ask = [&] {
        windows.beginOpenPanel({.allowsMultipleSelection = true}, [&](auto files) { chosen = files; });
        EXPECT_THAT(fakeMac.calls.back(), "open panel, several");
        fakeMac.runLater();
    };
    fakeMac.chosenFiles = {"/b", "/a"};
    ask();
    ASSERT_TRUE(chosen);
    EXPECT_THAT(*chosen, ElementsAre("/b", "/a"));
    fakeMac.chosenFiles.reset();
    ask();
    EXPECT_FALSE(chosen);
}

} // namespace
} // namespace velloway::test
