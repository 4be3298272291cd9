#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

// What the fake classes of AppKit, Foundation and their like answer, and what they were asked, in order. A test
// starts from a new one each.

namespace velloway::test {

struct FakeMenuItem {
    std::string title;
    std::string keyEquivalent;
    long tag = 0;
    bool isEnabled = false;
    bool isSeparator = false;
    std::string action;
    bool hasTarget = false;

    bool operator==(const FakeMenuItem&) const = default;
};

struct FakeMac {
    std::vector<std::string> calls;
    void note(std::string call) { calls.push_back(std::move(call)); }

    // Application
    int modalAnswer = 1001;
    /// The type of the event that is just being handled, by the platform's number, or absent when there is
    /// none.
    std::optional<unsigned long> currentEvent = 1;

    // Status bar
    bool hasButton = true;
    bool hasAsset = true;
    bool hasSymbol = true;
    /// Empty, or what the button shows.
    std::string buttonImage;
    bool isButtonImageTemplate = false;

    // Images
    /// Of a symbol, in shares of its point size.
    double symbolWidth = 1;
    double symbolHeight = 1;
    bool hasApplicationIcon = true;
    double iconWidth = 32;
    double iconHeight = 32;
    bool makesBitmaps = true;
    bool makesGraphicsContexts = true;
    bool bitmapsHaveBytes = true;

    // Pasteboard
    bool pasteboardHasTypes = true;
    std::optional<std::string> pasteboardText;
    /// Paths, or whole addresses of something else than files.
    std::optional<std::vector<std::string>> pasteboardFiles;
    bool pasteboardIsReadable = true;

    // Windows
    bool hasScreen = true;
    std::optional<std::vector<std::string>> chosenFiles;

    // Facts
    std::optional<std::string> hostName = "Studio";
    std::optional<std::string> downloads = "/Users/me/Downloads";
    std::map<std::string, long> defaults;

    // Activities
    /// How many last.
    int activities = 0;
    unsigned long activityOptions = 0;
    std::string activityReason;

    // Scripts and login item
    std::optional<std::string> scriptError;
    bool compilesScripts = true;
    long loginItemStatus = 0;
    std::optional<std::string> loginItemError;

    // Events
    bool makesEvents = true;
    /// Counts down to the one event that can't be made.
    int eventThatFails = -1;
    bool eventsHavePostableForm = true;

    // Notifications
    long authorizationStatus = 2;
    bool grantsAuthorization = true;
    std::optional<std::string> notificationError;
    /// What the system does later, on a thread of its own.
    std::vector<std::function<void()>> later;
    void runLater();
};
extern FakeMac fakeMac;

/// Without zeros that say nothing.
std::string number(double value);

/// What an image and a colour do to the bitmap that this thread draws into. An image covers its rectangle with
/// black, the lower half of it half as densely as the upper one.
void drawFakeImage(const std::string& name, double x, double y, double width, double height);
void setFakeColor(double red, double green, double blue, double alpha);
/// Whether this thread has a context to draw into.
bool hasFakeContext();

std::vector<FakeMenuItem> fakeMenu();
/// What a click on the item does; false when it has no target that answers to its action.
bool clickFakeMenuItem(std::size_t index);

// What the system does by itself.
void fakeLaunch();
bool fakeReopen(bool hasVisibleWindows);
bool fakeLastWindowClosed();
void fakeBecomeActive();
/// False when there is no provider with the selector that the bundle names.
bool fakeService();
void fakeCloseMainWindow();
/// Answers how often the completion ran.
int fakeAnswerNotification(const std::string& action, const std::string& identifier,
                           const std::optional<std::string>& text);
/// The options that the program wants it shown with.
unsigned long fakePresentNotification(const std::string& identifier);

bool fakeDelegateAnswers(const std::string& selector);

/// Lets go of the status item, windows and delegates that the fakes keep.
void resetFakeMac();

} // namespace velloway::test
