#include "hosts/mac/FakeCoreGraphics.h"
#include "hosts/mac/FakeInterfaces.h"
#include "hosts/mac/FakeMac.h"
#include "hosts/mac/FakeObject.h"
#include "hosts/mac/MacActivity.h"
#include "hosts/mac/MacApplication.h"
#include "hosts/mac/MacHost.h"
#include "hosts/mac/MacInputEvents.h"
#include "hosts/mac/MacLoginItem.h"
#include "hosts/mac/MacPasteboard.h"
#include "hosts/mac/MacScripts.h"
#include "hosts/mac/MacStatusItem.h"
#include "hosts/mac/MacUserDefaults.h"
#include "hosts/mac/MacUserNotificationCenter.h"
#include "hosts/mac/MacWorkspace.h"
#include "hosts/mac/SystemDefinedEvent.h"
#include "runtime/ObjectiveC.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <net/if.h>
#include <sys/socket.h>

namespace velloway::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Ends with the number of objects that it began with.
class MacTest : public testing::Test {
protected:
    MacTest() {
        resetFakeMac();
        fakeCoreGraphics = {};
        fakeInterfaces = everydayInterfaces();
    }
    ~MacTest() override { objc_autoreleasePoolPop(pool); }

    std::vector<std::string> calls() { return std::exchange(fakeMac.calls, {}); }

    void* pool = objc_autoreleasePoolPush();
};

// The delegate that the platform calls

class RecordingDelegate : public ApplicationDelegate,
                          public ServicesProvider,
                          public UserNotificationCenterDelegate {
public:
    void applicationDidFinishLaunching() override { notes.push_back("launched"); }
    bool applicationShouldTerminateAfterLastWindowClosed() override { return terminates; }
    bool applicationShouldHandleReopen(bool hasVisibleWindows) override {
        notes.push_back(hasVisibleWindows ? "reopened with windows" : "reopened");
        return true;
    }
    void applicationDidBecomeActive() override { notes.push_back("active"); }
    void handleSendToAndroidService(const ServicePasteboard& pasteboard) override { given = pasteboard; }
    void didReceive(const NotificationResponse& response, std::function<void()> completion) override {
        notes.push_back(response.actionIdentifier + " " + response.requestIdentifier + " " +
                        response.userText.value_or("(no text)"));
        completion();
    }
    void willPresent(const NotificationRequest& request, std::function<void(unsigned)> completion) override {
        notes.push_back("present " + request.identifier);
        completion(options);
    }

    bool terminates = false;
    unsigned options = presentationOptions::banner | presentationOptions::sound | presentationOptions::badge;
    ServicePasteboard given;
    std::vector<std::string> notes;
};

class MacDelegateTest : public MacTest {
protected:
    MacDelegateTest() { delegate.application = &recorder; }

    RecordingDelegate recorder;
    MacDelegate delegate;
    MacApplication application{delegate};
};

TEST_F(MacDelegateTest, LaunchReopenActivationAndTheLastWindowReachTheProgram) {
    fakeLaunch();
    EXPECT_TRUE(fakeReopen(false));
    EXPECT_TRUE(fakeReopen(true));
    fakeBecomeActive();
    EXPECT_THAT(recorder.notes, ElementsAre("launched", "reopened", "reopened with windows", "active"));
    EXPECT_FALSE(fakeLastWindowClosed());
    recorder.terminates = true;
    EXPECT_TRUE(fakeLastWindowClosed());
}

TEST_F(MacDelegateTest, AnswersToItsSelectorsAndToNoOthers) {
    for (const char* selector :
         {"applicationDidFinishLaunching:", "applicationShouldTerminateAfterLastWindowClosed:",
          "applicationShouldHandleReopen:hasVisibleWindows:", "onMenuCall", "onMenuSms", "onMenuFileDrop",
          "onMenuHistory", "onMenuRemote", "onMenuClipboardHistory", "onMenuSettings", "onMenuInfo",
          "onMenuSendClipboard", "handleSendToAndroidService:userData:error:", "windowWillClose:",
          "userNotificationCenter:didReceiveNotificationResponse:withCompletionHandler:",
          "userNotificationCenter:willPresentNotification:withCompletionHandler:"}) {
        EXPECT_TRUE(fakeDelegateAnswers(selector)) << selector;
    }
    for (const char* selector : {"applicationShouldTerminate:", "applicationWillTerminate:", "choose:",
                                 "applicationDidBecomeActive:", "terminate:"}) {
        EXPECT_FALSE(fakeDelegateAnswers(selector)) << selector;
    }
}

TEST_F(MacDelegateTest, BeforeTheProgramStandsCallsDoNothing) {
    delegate.application = nullptr;
    fakeLaunch();
    fakeBecomeActive();
    EXPECT_TRUE(fakeReopen(false));
    EXPECT_FALSE(fakeLastWindowClosed());
    EXPECT_THAT(recorder.notes, IsEmpty());
}

TEST_F(MacDelegateTest, ActivationIsToldToNobodyAfterTheEnd) {
    resetFakeMac();
    {
        const MacApplication another(delegate);
        fakeBecomeActive();
    }
    fakeBecomeActive();
    EXPECT_THAT(recorder.notes, ElementsAre("active"));
}

TEST_F(MacDelegateTest, FilesGivenToTheServiceArriveAsPathsInOrder) {
    EXPECT_FALSE(fakeService()) << "there is no provider yet";
    application.setServicesProvider(&recorder);
    fakeMac.pasteboardFiles = {"/tmp/a b.txt", "/tmp/\u00fc.png"};
    EXPECT_TRUE(fakeService());
    EXPECT_TRUE(recorder.given.hasTypes);
    EXPECT_TRUE(recorder.given.hasFileUrls);
    ASSERT_TRUE(recorder.given.urls);
    EXPECT_THAT(*recorder.given.urls, ElementsAre("/tmp/a b.txt", "/tmp/\u00fc.png"));
}

TEST_F(MacDelegateTest, AnAddressGivenToTheServiceArrivesWhole) {
    application.setServicesProvider(&recorder);
    fakeMac.pasteboardFiles = {"https://example.org/etc/hosts", "/tmp/a"};
    EXPECT_TRUE(fakeService());
    ASSERT_TRUE(recorder.given.urls);
    EXPECT_THAT(*recorder.given.urls, ElementsAre("https://example.org/etc/hosts", "/tmp/a"));
}

TEST_F(MacDelegateTest, AServicePasteboardWithoutTypesOrFilesSaysSo) {
    application.setServicesProvider(&recorder);
    fakeMac.pasteboardText = "text";
    fakeService();
    EXPECT_TRUE(recorder.given.hasTypes);
    EXPECT_FALSE(recorder.given.hasFileUrls);
    fakeMac.pasteboardHasTypes = false;
    fakeService();
    EXPECT_FALSE(recorder.given.hasTypes);
    fakeMac.pasteboardHasTypes = true;
    fakeMac.pasteboardFiles = {"/tmp/x"};
    fakeMac.pasteboardIsReadable = false;
    fakeService();
    EXPECT_TRUE(recorder.given.hasFileUrls);
    EXPECT_FALSE(recorder.given.urls);
}

TEST_F(MacDelegateTest, ThePlatformDoesNotKeepTheDelegateAlive) {
    const int before = runtimeObjectsAlive();
    { MacDelegate another; }
    EXPECT_EQ(runtimeObjectsAlive(), before);
}

// Application

TEST_F(MacDelegateTest, PolicyActivationAndTheEndArePassedOn) {
    application.setActivationPolicy(ActivationPolicy::accessory);
    application.setActivationPolicy(ActivationPolicy::regular);
    application.activate();
    application.terminate();
    EXPECT_THAT(calls(), ElementsAre("activation policy 1", "activation policy 0", "activate, ignoring others",
                                     "terminate"));
}

TEST_F(MacDelegateTest, AnAlertShowsItsTextsAndButtonsAndAnswersWithTheButton) {
    Alert alert{.messageText = "Message", .informativeText = "More\n\nlines", .buttons = {"First", "Second"}};
    fakeMac.modalAnswer = 1000;
    EXPECT_EQ(application.runModal(alert), 0);
    EXPECT_THAT(calls(), ElementsAre("prevents the end = 0", "alert 0 Message|More\n\nlines|[First][Second]"));
    fakeMac.modalAnswer = 1001;
    EXPECT_EQ(application.runModal(alert), 1);
    alert.style = Alert::Style::informational;
    application.runModal(alert);
    EXPECT_THAT(calls().back(), testing::StartsWith("alert 1 "));
    alert.style = Alert::Style::critical;
    application.runModal(alert);
    EXPECT_THAT(calls().back(), testing::StartsWith("alert 2 "));
}

// Status item

class MacStatusItemTest : public MacTest {
protected:
    std::vector<MenuItem> items() {
        return {{.title = "Velloway", .isEnabled = false},
                {.isSeparator = true},
                {.title = "Server: starting\u2026", .tag = 1, .isEnabled = false},
                {.title = "Call\u2026",
                 .keyEquivalent = "c",
                 .action = MenuItem::Action::call,
                 .operation = "onMenuCall",
                 .onChosen = [this] { ++chosen; }},
                {.title = "Quit Velloway", .keyEquivalent = "q", .action = MenuItem::Action::terminate}};
    }

    int chosen = 0;
    MacDelegate delegate;
    std::unique_ptr<MacStatusItem> item = std::make_unique<MacStatusItem>(delegate);
};

TEST_F(MacStatusItemTest, HasVariableLengthAndIsTakenAwayAtTheEnd) {
    item->create();
    EXPECT_TRUE(item->hasButton());
    item.reset();
    EXPECT_THAT(calls(), ElementsAre("status item of length -1", "status item removed"));
}

TEST_F(MacStatusItemTest, ShowsTheAssetAtItsOwnSizeAndTheSymbolAtTheSizeAskedFor) {
    item->create();
    const StatusImage asset{.kind = StatusImage::Kind::asset, .name = "StatusIcon", .isTemplate = true};
    const StatusImage symbol{
        .kind = StatusImage::Kind::symbol, .name = "antenna", .pointSize = 16, .isTemplate = false};
    EXPECT_TRUE(item->hasImage(asset));
    item->setImage(asset);
    EXPECT_EQ(fakeMac.buttonImage, "StatusIcon 0");
    EXPECT_TRUE(fakeMac.isButtonImageTemplate);
    item->setImage(symbol);
    EXPECT_EQ(fakeMac.buttonImage, "antenna 16");
    EXPECT_FALSE(fakeMac.isButtonImageTemplate);
    fakeMac.hasAsset = false;
    fakeMac.hasSymbol = false;
    EXPECT_FALSE(item->hasImage(asset));
    EXPECT_FALSE(item->hasImage(symbol));
}

TEST_F(MacStatusItemTest, WithoutAButtonAnImageGoesNowhere) {
    fakeMac.hasButton = false;
    item->create();
    EXPECT_FALSE(item->hasButton());
    item->setImage({.kind = StatusImage::Kind::asset, .name = "StatusIcon"});
    EXPECT_EQ(fakeMac.buttonImage, "");
}

TEST_F(MacStatusItemTest, TheMenuHasTitlesKeysTagsActionsAndTargets) {
    item->create();
    item->setMenu(items());
    const auto menu = fakeMenu();
    ASSERT_EQ(menu.size(), 5u);
    EXPECT_EQ(menu[0], (FakeMenuItem{.title = "Velloway"}));
    EXPECT_TRUE(menu[1].isSeparator);
    EXPECT_EQ(menu[2], (FakeMenuItem{.title = "Server: starting\u2026", .tag = 1}));
    EXPECT_EQ(menu[3], (FakeMenuItem{.title = "Call\u2026",
                                     .keyEquivalent = "c",
                                     .isEnabled = true,
                                     .action = "onMenuCall",
                                     .hasTarget = true}));
    EXPECT_EQ(menu[4], (FakeMenuItem{.title = "Quit Velloway",
                                     .keyEquivalent = "q",
                                     .isEnabled = true,
                                     .action = "terminate:",
                                     .hasTarget = false}));
}

TEST_F(MacStatusItemTest, AnItemWithAnActionIsDisabledWhenTheCoreSaysSo) {
    item->create();
    item->setMenu(
        {{.title = "Call", .isEnabled = false, .action = MenuItem::Action::call, .operation = "onMenuCall"}});
    ASSERT_EQ(fakeMenu().size(), 1u);
    EXPECT_FALSE(fakeMenu()[0].isEnabled);
}

TEST_F(MacStatusItemTest, AClickRunsWhatTheItemStandsFor) {
    item->create();
    item->setMenu(items());
    EXPECT_TRUE(clickFakeMenuItem(3));
    EXPECT_EQ(chosen, 1);
    EXPECT_FALSE(clickFakeMenuItem(0));
    EXPECT_FALSE(clickFakeMenuItem(4));
}

TEST_F(MacStatusItemTest, WhatAClickRunsMayReplaceTheMenu) {
    item->create();
    std::string seen;
    auto replacing = items();
    replacing[3].onChosen = [this, &seen, text = std::string("held by the action, longer than in place")] {
        item->setMenu({});
        seen = text;
    };
    item->setMenu(replacing);
    replacing.clear();
    EXPECT_TRUE(clickFakeMenuItem(3));
    EXPECT_EQ(seen, "held by the action, longer than in place");
    EXPECT_TRUE(fakeMenu().empty());
}

TEST_F(MacStatusItemTest, TheTitleOfATaggedItemChangesAndAnUnknownTagIsLeftAlone) {
    item->create();
    item->setItemTitle(1, "before there is a menu");
    item->setMenu(items());
    item->setItemTitle(1, "Server: listening on :8765");
    item->setItemTitle(7, "nobody");
    EXPECT_EQ(fakeMenu()[2].title, "Server: listening on :8765");
}

TEST_F(MacStatusItemTest, AMenuWithoutAStatusItemEndsTheProcess) {
    EXPECT_DEATH(item->setMenu(items()), "there is no status item");
    EXPECT_DEATH(item->setItemTitle(1, "x"), "there is no status item");
}

// Notifications

class MacNotificationsTest : public MacTest {
protected:
    ~MacNotificationsTest() override { center.setDelegate(nullptr); }

    RecordingDelegate recorder;
    MacDelegate delegate;
    MacUserNotificationCenter center{delegate};
};

TEST_F(MacNotificationsTest, AFullRequestSetsEverything) {
    std::vector<std::string> results;
    center.add({.identifier = "k1",
                .content = {.title = "App",
                            .subtitle = "",
                            .body = "h\u00e9llo \U0001F600",
                            .hasDefaultSound = true,
                            .threadIdentifier = "App",
                            .categoryIdentifier = "REPLY_CATEGORY"}},
               [&](const auto& error) { results.push_back(error.value_or("sent")); });
    EXPECT_THAT(calls(), ElementsAre("add k1|App||h\u00e9llo \U0001F600|App|REPLY_CATEGORY|sound"));
    EXPECT_THAT(results, IsEmpty());
    fakeMac.runLater();
    EXPECT_THAT(results, ElementsAre("sent"));
}

TEST_F(MacNotificationsTest, WhatIsAbsentIsNeverSet) {
    center.add({.identifier = "k2", .content = {.title = "T", .body = "b"}}, nullptr);
    EXPECT_THAT(calls(), ElementsAre("add k2|T|(unset)|b|(unset)|(unset)|silent"));
    EXPECT_THAT(fakeMac.later, IsEmpty()) << "no completion was asked for";
}

TEST_F(MacNotificationsTest, AnErrorComesWithItsDescription) {
    fakeMac.notificationError = "not allowed";
    std::vector<std::string> results;
    center.add({.identifier = "k"}, [&](const auto& error) { results.push_back(error.value_or("sent")); });
    center.requestAuthorization(7, [&](bool granted, const auto& error) {
        results.push_back((granted ? "granted " : "refused ") + error.value_or("cleanly"));
    });
    fakeMac.grantsAuthorization = false;
    fakeMac.runLater();
    EXPECT_THAT(results, ElementsAre("error: not allowed", "refused error: not allowed"));
}

TEST_F(MacNotificationsTest, RemovalsCategoriesAndPermissionArePassedOn) {
    center.removeDelivered({"a", "b"});
    center.removePending({"a"});
    center.setCategories({{.identifier = "REPLY_CATEGORY",
                           .actions = {{.identifier = "REPLY_ACTION",
                                        .title = "Reply",
                                        .textInputButtonTitle = "Send",
                                        .textInputPlaceholder = "Type your reply..."}}}});
    center.requestAuthorization(authorizationOptions::alert | authorizationOptions::sound |
                                    authorizationOptions::badge,
                                [](bool, const auto&) {});
    EXPECT_THAT(calls(), ElementsAre("remove delivered a", "remove delivered b", "remove pending a",
                                     "category REPLY_CATEGORY options 0 intents 0 action "
                                     "REPLY_ACTION/Reply/0/Send/Type your reply...",
                                     "request authorization 7"));
}

TEST_F(MacNotificationsTest, EachPermissionIsAskedForByItsOwnOption) {
    const std::pair<unsigned, int> cases[] = {
        {authorizationOptions::badge, 1}, {authorizationOptions::sound, 2}, {authorizationOptions::alert, 4}};
    for (const auto& [option, native] : cases) {
        center.requestAuthorization(option, [](bool, const auto&) {});
        EXPECT_THAT(calls(), ElementsAre("request authorization " + std::to_string(native)));
    }
}

TEST_F(MacNotificationsTest, TheStatusOfThePermissionIsThatOfTheSystem) {
    const std::pair<int, AuthorizationStatus> cases[] = {
        {0, AuthorizationStatus::notDetermined}, {1, AuthorizationStatus::denied},
        {2, AuthorizationStatus::authorized},    {3, AuthorizationStatus::provisional},
        {4, AuthorizationStatus::ephemeral},     {5, AuthorizationStatus::unknown},
        {-1, AuthorizationStatus::unknown},
    };
    for (const auto& [native, expected] : cases) {
        std::optional<AuthorizationStatus> status;
        center.getAuthorizationStatus([&](AuthorizationStatus now) { status = now; });
        EXPECT_FALSE(status) << "it comes later";
        fakeMac.authorizationStatus = native;
        fakeMac.runLater();
        EXPECT_EQ(status, expected) << native;
    }
}

TEST_F(MacNotificationsTest, EachWayOfPresentingIsItsOwnOption) {
    center.setDelegate(&recorder);
    const std::pair<unsigned, unsigned long> cases[] = {{presentationOptions::badge, 1},
                                                        {presentationOptions::sound, 2},
                                                        {presentationOptions::banner, 0x10},
                                                        {0, 0}};
    for (const auto& [options, native] : cases) {
        recorder.options = options;
        EXPECT_EQ(fakePresentNotification("k"), native);
    }
}

TEST_F(MacNotificationsTest, AnswersReachTheProgramAndEachIsCompletedOnce) {
    center.setDelegate(&recorder);
    EXPECT_EQ(fakeAnswerNotification("REPLY_ACTION", "k1", "hello"), 1);
    EXPECT_EQ(fakeAnswerNotification("REPLY_ACTION", "k1", ""), 1);
    EXPECT_EQ(fakeAnswerNotification("DEFAULT", "k2", std::nullopt), 1);
    EXPECT_EQ(fakePresentNotification("k3"), 0x13u);
    EXPECT_THAT(recorder.notes,
                ElementsAre("REPLY_ACTION k1 hello", "REPLY_ACTION k1 ", "DEFAULT k2 (no text)", "present k3"));
}

TEST_F(MacNotificationsTest, WithoutADelegateNothingIsDelivered) {
    center.setDelegate(&recorder);
    center.setDelegate(nullptr);
    EXPECT_EQ(fakeAnswerNotification("REPLY_ACTION", "k1", "hello"), 0);
    EXPECT_THAT(recorder.notes, IsEmpty());
}

TEST_F(MacNotificationsTest, WhatNobodyTakesIsCompletedAndNotShown) {
    center.setDelegate(&recorder);
    delegate.notifications = nullptr;
    EXPECT_EQ(fakeAnswerNotification("REPLY_ACTION", "k1", "hello"), 1);
    EXPECT_EQ(fakePresentNotification("k1"), 0ul);
}

// Scripts, login item, pasteboard, defaults, workspace, facts

using ScriptAction = SystemScript::Action;

TEST_F(MacTest, EachActionRunsItsScript) {
    const std::pair<SystemScript, std::string> cases[] = {
        {{ScriptAction::volumeUp, ""}, "set volume output volume (output volume of (get volume settings) + 5)"},
        {{ScriptAction::volumeDown, ""},
         "set volume output volume (output volume of (get volume settings) - 5)"},
        {{ScriptAction::emptyTrash, ""}, "tell application \"Finder\" to empty trash"},
        {{ScriptAction::lockScreen, ""}, "tell application \"System Events\" to lock screen"},
        {{ScriptAction::sleep, ""}, "tell application \"System Events\" to sleep"},
        {{ScriptAction::openLocation, ""}, "open location \"\""},
        {{ScriptAction::openLocation, "example.org/\u00e4 b\\n"}, "open location \"example.org/\u00e4 b\\n\""},
        // A double quote in the address ends the string there.
        {{ScriptAction::openLocation, "a\" & \"b"}, "open location \"a\" & \"b\""},
    };
    MacScripts scripts;
    for (const auto& [script, source] : cases) {
        EXPECT_FALSE(scripts.run(script));
        EXPECT_THAT(calls(), ElementsAre("script " + source, "executed"));
    }
}

TEST_F(MacTest, AScriptReturnsItsError) {
    MacScripts scripts;
    fakeMac.scriptError = "denied";
    EXPECT_EQ(scripts.run({}), "{ NSAppleScriptErrorMessage = denied; }");
    fakeMac.compilesScripts = false;
    EXPECT_FALSE(scripts.run({})) << "a script that can't be made runs nothing";
}

TEST_F(MacTest, TheLoginItemRegistersUnregistersAndTellsItsError) {
    MacLoginItem login;
    EXPECT_EQ(login.status(), LoginItemStatus::notRegistered);
    EXPECT_FALSE(login.registerItem());
    EXPECT_EQ(login.status(), LoginItemStatus::enabled);
    EXPECT_FALSE(login.unregisterItem());
    EXPECT_EQ(login.status(), LoginItemStatus::notRegistered);
    const std::pair<int, LoginItemStatus> statuses[] = {{0, LoginItemStatus::notRegistered},
                                                        {1, LoginItemStatus::enabled},
                                                        {2, LoginItemStatus::requiresApproval},
                                                        {3, LoginItemStatus::notFound},
                                                        {9, LoginItemStatus::notRegistered}};
    for (const auto& [native, status] : statuses) {
        fakeMac.loginItemStatus = native;
        EXPECT_EQ(login.status(), status) << native;
    }
    fakeMac.loginItemError = "no";
    EXPECT_EQ(login.registerItem(), "no");
    EXPECT_EQ(login.unregisterItem(), "no");
}

TEST_F(MacTest, ThePasteboardIsClearedWrittenAndReadAsPlainText) {
    MacPasteboard pasteboard;
    const auto read = [&] {
        std::vector<std::optional<std::string>> answers;
        pasteboard.readString([&](auto text) { answers.push_back(std::move(text)); });
        return answers.at(0);
    };
    EXPECT_FALSE(read());
    pasteboard.clearContents();
    pasteboard.setString("h\u00e9llo");
    EXPECT_EQ(read(), "h\u00e9llo");
    EXPECT_THAT(calls(), ElementsAre("pasteboard cleared", "pasteboard text"));
    fakeMac.pasteboardText = std::string("a\0b", 3);
    EXPECT_EQ(read(), std::string("a\0b", 3));
}

TEST_F(MacTest, DefaultsAreKeptAndEachWriteIsObserved) {
    MacUserDefaults defaults;
    EXPECT_FALSE(defaults.has("port"));
    EXPECT_EQ(defaults.integer("port"), 0);
    std::vector<std::int64_t> seen;
    {
        const Subscription subscription = defaults.observe("port", [&](auto value) { seen.push_back(value); });
        defaults.setInteger("port", 9000);
        defaults.setInteger("port", 9000);
        defaults.setInteger("selectedSettingsTab", 3);
    }
    defaults.setInteger("port", 1);
    EXPECT_THAT(seen, ElementsAre(9000, 9000));
    EXPECT_TRUE(defaults.has("port"));
    EXPECT_EQ(MacUserDefaults().integer("port"), 1);
    defaults.setInteger("zero", 0);
    EXPECT_TRUE(defaults.has("zero"));
}

TEST_F(MacTest, AddressesAreOpenedSettingsReachedAndFilesShown) {
    MacWorkspace workspace;
    workspace.open("https://example.org/a");
    workspace.open("not an address");
    workspace.openSettings(SettingsPane::notifications);
    workspace.openSettings(SettingsPane::accessibility);
    workspace.activateFileViewerSelecting("/tmp/a b.txt");
    EXPECT_THAT(
        calls(),
        ElementsAre("open https://example.org/a",
                    "open x-apple.systempreferences:com.apple.Notifications-Settings.extension",
                    "open x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility",
                    "reveal /tmp/a b.txt"));
}

TEST_F(MacTest, TheHostTellsItsFactsAndWhatIsMissing) {
    const MacHost host;
    EXPECT_EQ(host.localizedName(), "Studio");
    EXPECT_EQ(host.downloadsDirectory(), "/Users/me/Downloads");
    EXPECT_EQ(host.locale(), "de_AT");
    EXPECT_EQ(host.timeZone(), "Europe/Vienna");
    EXPECT_THAT(host.interfacePrefixes(), ElementsAre("en"));
    fakeMac.hostName.reset();
    fakeMac.downloads.reset();
    EXPECT_FALSE(host.localizedName());
    EXPECT_FALSE(host.downloadsDirectory());
}

std::string textOf(const NetworkInterface& interface) {
    return interface.name + " " + std::to_string(interface.flags) + " " +
           std::to_string(interface.addressFamily) + " [" + interface.numericAddress + "]";
}

TEST_F(MacTest, InterfacesComeInTheirOrderWithTheAddressesOfBothFamiliesAndAlsoWithoutAny) {
    constexpr int linkLayer = 18;
    fakeInterfaces.entries = {{"lo0", IFF_UP | IFF_LOOPBACK, AF_INET, "127.0.0.1"},
                              {"en0", IFF_UP, linkLayer, ""},
                              {"en0", IFF_UP, AF_INET6, "2001:db8::1:2:3"},
                              {"en0", IFF_UP, AF_INET, "192.168.1.20"},
                              {"utun0", 0, std::nullopt, ""}};
    const auto interfaces = MacHost().networkInterfaces();
    ASSERT_TRUE(interfaces);
    std::vector<std::string> texts;
    std::transform(interfaces->begin(), interfaces->end(), std::back_inserter(texts), textOf);
    EXPECT_THAT(texts, ElementsAre("lo0 9 2 [127.0.0.1]", "en0 1 18 []", "en0 1 10 [2001:db8::1:2:3]",
                                   "en0 1 2 [192.168.1.20]", "utun0 0 -1 []"));
    EXPECT_EQ(fakeInterfaces.listsAlive, 0);
}

TEST_F(MacTest, WithoutAListOfInterfacesThereIsNone) {
    fakeInterfaces.fails = true;
    EXPECT_FALSE(MacHost().networkInterfaces());
    EXPECT_EQ(fakeInterfaces.listsAlive, 0);
}

// Activities

TEST_F(MacTest, AnActivityLastsAsLongAsItIsHeld) {
    const int before = runtimeObjectsAlive();
    auto first = beginConnectedActivity();
    auto second = beginConnectedActivity();
    EXPECT_EQ(fakeMac.activities, 2);
    // Initiated by the user, with the sleep of an idle computer allowed.
    EXPECT_EQ(fakeMac.activityOptions, 0x00EFFFFFul);
    EXPECT_FALSE(fakeMac.activityReason.empty());
    first.reset();
    EXPECT_EQ(fakeMac.activities, 1);
    second.reset();
    EXPECT_EQ(fakeMac.activities, 0);
    EXPECT_EQ(runtimeObjectsAlive(), before);
}

// Media keys

TEST_F(MacTest, AMediaKeyIsTwoSystemEventsAtTheHardwareTap) {
    const int aliveBefore = FakeObject::alive;
    MacInputEvents().pressMediaKey(MediaKey::playPause);
    EXPECT_THAT(calls(),
                ElementsAre("event 14 at 0 0, flags 2560, time 0, window 0, subtype 8, data 1051136 -1",
                            "event 14 at 0 0, flags 2816, time 0, window 0, subtype 8, data 1051392 -1"));
    ASSERT_EQ(fakeCoreGraphics.posted.size(), 2u);
    EXPECT_EQ(fakeCoreGraphics.posted[0].tap, 0);
    EXPECT_EQ(fakeCoreGraphics.posted[1].tap, 0);
    EXPECT_EQ(FakeObject::alive, aliveBefore);
}

TEST_F(MacTest, EachMediaKeyHasItsNumber) {
    const std::pair<MediaKey, int> numbers[] = {
        {MediaKey::soundUp, 0},
        {MediaKey::soundDown, 1},
        {MediaKey::screenBrightnessUp, 2},
        {MediaKey::screenBrightnessDown, 3},
        {MediaKey::mute, 7},
        {MediaKey::playPause, 16},
        {MediaKey::nextTrack, 17},
        {MediaKey::previousTrack, 18},
        {MediaKey::keyboardLightUp, 21},
        {MediaKey::keyboardLightDown, 22},
    };
    for (const auto& [key, number] : numbers) {
        MacInputEvents().pressMediaKey(key);
        const std::string start = "event 14 at 0 0, flags ";
        const std::string middle = ", time 0, window 0, subtype 8, data ";
        EXPECT_THAT(calls(),
                    ElementsAre(start + "2560" + middle + std::to_string(number * 65536 + 0xA00) + " -1",
                                start + "2816" + middle + std::to_string(number * 65536 + 0xB00) + " -1"));
    }
}

TEST_F(MacTest, TheDataOfAMediaKeyIsWidenedWithItsSign) {
    EXPECT_EQ(systemKeyData(16, 0xA00), 0x100A00);
    EXPECT_EQ(systemKeyData(0x8000, 0xA00), -0x7FFFF600LL);
}

TEST_F(MacTest, TheReleaseOfAMediaKeyIsTriedAlsoWhenItsPressCanNotBeMade) {
    fakeMac.eventThatFails = 0;
    MacInputEvents().pressMediaKey(MediaKey::mute);
    EXPECT_THAT(calls(), testing::SizeIs(2));
    EXPECT_THAT(fakeCoreGraphics.posted, testing::SizeIs(1));
    fakeMac.eventThatFails = 1;
    MacInputEvents().pressMediaKey(MediaKey::mute);
    EXPECT_THAT(fakeCoreGraphics.posted, testing::SizeIs(2));
}

TEST_F(MacTest, AMediaKeyWithoutAnEventOrWithoutItsPostableFormPostsNothing) {
    fakeMac.eventsHavePostableForm = false;
    MacInputEvents().pressMediaKey(MediaKey::soundUp);
    fakeMac.makesEvents = false;
    MacInputEvents().pressMediaKey(MediaKey::soundUp);
    EXPECT_THAT(fakeCoreGraphics.posted, IsEmpty());
}

} // namespace
} // namespace velloway::test
