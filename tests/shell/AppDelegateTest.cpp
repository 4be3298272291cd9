#include "app/Program.h"
#include "fakes/FakePlatform.h"
#include "shell/StatusMenu.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace velloway::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using namespace std::chrono_literals;

/// The whole program on a whole host of fakes.
class AppDelegateTest : public testing::Test {
protected:
    void launch() {
        program.delegate().applicationDidFinishLaunching();
        on.drain();
    }

    std::shared_ptr<FakeConnection> connectPhone() {
        auto phone =
            std::make_shared<FakeConnection>(Endpoint{.host = "10.0.0.1", .description = "10.0.0.1:1"});
        phones.push_back(phone);
        on.network.listener().connect(phone);
        phone->report(ConnectionState::ready);
        on.drain();
        phone->sent.clear();
        return phone;
    }

    std::string statusLine() const { return on.statusItem.menu.at(2).title; }

    void TearDown() override {
        for (const auto& phone : phones) {
            phone->report(ConnectionState::cancelled);
        }
    }

    FakePlatform on;
    int terminations = 0;
    Program program{on.platform(), [this] { ++terminations; }};
    std::vector<std::shared_ptr<FakeConnection>> phones;
};

// Launch

TEST_F(AppDelegateTest, LaunchesInOrder) {
    program.delegate().applicationDidFinishLaunching();
    EXPECT_THAT(on.journal.entries(),
                ElementsAre("notification delegate", "notification settings", "notification categories",
                            "accessibility prompt", "status item", "menu", "listener make 8765",
                            "listener start", "services provider", "policy accessory"));
    EXPECT_EQ(on.notificationCenter.delegate, &program.delegate());
    EXPECT_EQ(on.application.provider, &program.delegate());
}

TEST_F(AppDelegateTest, TheStoreAndTheStatusCallbackAreInPlaceWhenTheServerStarts) {
    on.network.acceptsPorts = false; // makes the server report from inside its start
    program.historyStore().availableSIMs.set({{.slot = 0, .carrier = "One"}});
    launch();
    EXPECT_EQ(statusLine(), "Server: invalid port");
    EXPECT_TRUE(program.historyStore().availableSIMs.get().empty());
}

TEST_F(AppDelegateTest, ALaunchBuildsNoWindow) {
    launch();
    EXPECT_THAT(on.windows.mainProperties, IsEmpty());
    EXPECT_THAT(on.windows.panels, IsEmpty());
}

// Status item and menu

TEST_F(AppDelegateTest, TheMenuHasItsFifteenEntries) {
    launch();
    struct Expected {
        std::string title, key;
        int tag;
        bool isEnabled, isSeparator;
        std::string operation;
        MenuItem::Action action = operation.empty() ? MenuItem::Action::none : MenuItem::Action::call;
    };
    const std::vector<Expected> expected{
        {"Velloway", "", 0, false, false, ""},
        {"", "", 0, true, true, ""},
        {"Server: starting…", "", 1, false, false, ""},
        {"", "", 0, true, true, ""},
        {"Call…", "c", 0, true, false, "onMenuCall"},
        {"Send SMS…", "s", 0, true, false, "onMenuSms"},
        {"File Drop…", "f", 0, true, false, "onMenuFileDrop"},
        {"Notifications…", "y", 0, true, false, "onMenuHistory"},
        {"Remote Control…", "r", 0, true, false, "onMenuRemote"},
        {"Send Clipboard", "v", 0, true, false, "onMenuSendClipboard"},
        {"Clipboard History…", "h", 0, true, false, "onMenuClipboardHistory"},
        {"Settings…", ",", 0, true, false, "onMenuSettings"},
        {"Info…", "i", 0, true, false, "onMenuInfo"},
        {"", "", 0, true, true, ""},
        {"Quit Velloway", "q", 0, true, false, "", MenuItem::Action::terminate},
    };
    ASSERT_EQ(on.statusItem.menu.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const MenuItem& item = on.statusItem.menu[i];
        EXPECT_EQ(item.title, expected[i].title);
        EXPECT_EQ(item.keyEquivalent, expected[i].key);
        EXPECT_EQ(item.tag, expected[i].tag);
        EXPECT_EQ(item.isEnabled, expected[i].isEnabled);
        EXPECT_EQ(item.isSeparator, expected[i].isSeparator);
        EXPECT_EQ(item.operation, expected[i].operation);
        EXPECT_EQ(item.action, expected[i].action);
    }
}

struct MenuTabCase {
    std::string title;
    int tab;
};

class AppDelegateMenuTest : public AppDelegateTest, public testing::WithParamInterface<MenuTabCase> {};

TEST_P(AppDelegateMenuTest, AnEntryOpensItsTab) {
    launch();
    on.statusItem.choose(GetParam().title);
    EXPECT_EQ(on.userDefaults.integer("selectedSettingsTab"), GetParam().tab);
    ASSERT_TRUE(on.windows.mainWindow);
    EXPECT_TRUE(on.windows.mainWindow->visible);
}

INSTANTIATE_TEST_SUITE_P(Entries, AppDelegateMenuTest,
                         testing::Values(MenuTabCase{"Call…", 4}, MenuTabCase{"Send SMS…", 2},
                                         MenuTabCase{"File Drop…", 5}, MenuTabCase{"Notifications…", 1},
                                         MenuTabCase{"Remote Control…", 7},
                                         MenuTabCase{"Clipboard History…", 6}, MenuTabCase{"Settings…", 0},
                                         MenuTabCase{"Info…", 3}));

TEST_F(AppDelegateTest, QuitEndsTheProcessWithoutAHook) {
    launch();
    on.journal.take();
    on.statusItem.choose("Quit Velloway");
    EXPECT_EQ(terminations, 1);
    EXPECT_THAT(on.journal.entries(), IsEmpty()) << "the server is not stopped and nothing is told to anybody";
}

TEST_F(AppDelegateTest, TheStatusLineFollowsTheServer) {
    launch();
    EXPECT_EQ(statusLine(), "Server: starting…");
    on.network.listener().report(ListenerState::ready);
    EXPECT_EQ(statusLine(), "Server: starting…") << "changes on the main queue only";
    on.drain();
    EXPECT_EQ(statusLine(), "Server: listening on :8765");

    on.network.listener().report(ListenerState::failed, NetworkError{.localizedDescription = "Address in use"});
    on.drain();
    EXPECT_EQ(statusLine(), "Server: failed – Address in use");
    on.main.advance(5s);
    on.network.listener().report(ListenerState::ready);
    on.drain();
    EXPECT_EQ(statusLine(), "Server: listening on :8765");
}

TEST_F(AppDelegateTest, OfSeveralReportsInARowTheLastStays) {
    launch();
    on.network.listener().report(ListenerState::ready);
    on.network.listener().report(ListenerState::cancelled);
    on.drain();
    EXPECT_EQ(statusLine(), "Server: stopped");
}

TEST_F(AppDelegateTest, TheNamedImageIsATemplateAtItsOwnSize) {
    launch();
    ASSERT_TRUE(on.statusItem.image);
    EXPECT_EQ(on.statusItem.image->name, "StatusIcon");
    EXPECT_EQ(on.statusItem.image->kind, StatusImage::Kind::asset);
    EXPECT_TRUE(on.statusItem.image->isTemplate);
    EXPECT_EQ(on.statusItem.image->pointSize, 0);
}

TEST_F(AppDelegateTest, WithoutTheNamedImageTheAntennaServesAt16Points) {
    on.statusItem.availableImages.erase("StatusIcon");
    launch();
    ASSERT_TRUE(on.statusItem.image);
    EXPECT_EQ(on.statusItem.image->name, "antenna.radiowaves.left.and.right");
    EXPECT_EQ(on.statusItem.image->kind, StatusImage::Kind::symbol);
    EXPECT_EQ(on.statusItem.image->pointSize, 16);
    EXPECT_TRUE(on.statusItem.image->isTemplate);
}

TEST_F(AppDelegateTest, WithNeitherImageTheItemStillHasItsMenu) {
    on.statusItem.availableImages.clear();
    launch();
    EXPECT_FALSE(on.statusItem.image);
    EXPECT_EQ(on.statusItem.menu.size(), 15u);
}

TEST_F(AppDelegateTest, WithoutAButtonTheItemStillHasItsMenu) {
    on.statusItem.button = false;
    launch();
    EXPECT_FALSE(on.statusItem.image);
    EXPECT_EQ(on.statusItem.menu.size(), 15u);
}

// Clipboard

TEST_F(AppDelegateTest, SendClipboardSendsTheTextAtOnce) {
    launch();
    auto phone = connectPhone();
    on.pasteboard.content = "hello";
    on.statusItem.choose("Send Clipboard");
    on.drain();
    ASSERT_EQ(phone->sent.size(), 1u);
    EXPECT_EQ(phone->sent[0].text, R"({"action":"clipboard","text":"hello"})");
    EXPECT_FALSE(on.windows.mainWindow) << "no window opens";
}

TEST_F(AppDelegateTest, SendClipboardDoesNothingWithoutText) {
    launch();
    on.statusItem.choose("Send Clipboard");
    auto phone = connectPhone();
    on.pasteboard.content.reset();
    on.statusItem.choose("Send Clipboard");
    on.pasteboard.content = "";
    on.statusItem.choose("Send Clipboard");
    on.drain();
    EXPECT_THAT(phone->sent, IsEmpty());
}

TEST_F(AppDelegateTest, SendClipboardSaysSoWhenTheClipboardCannotBeRead) {
    launch();
    auto phone = connectPhone();
    on.pasteboard.content = "stale";
    on.pasteboard.isLocked = true;
    on.statusItem.choose("Send Clipboard");
    on.drain();
    EXPECT_THAT(phone->sent, IsEmpty());
    ASSERT_EQ(on.notificationCenter.requests.size(), 1u);
    const NotificationContent& content = on.notificationCenter.requests[0].content;
    EXPECT_EQ(content.title, "Clipboard Not Sent");
    EXPECT_EQ(content.body.string(),
              "This desktop lets Velloway read the clipboard only while one of its windows "
              "is in front. Use the Clipboard tab.");
    EXPECT_TRUE(content.hasDefaultSound);
}

// Reopening and the main window

TEST_F(AppDelegateTest, ReopeningOpensTheStoredTabWhileNoWindowShows) {
    launch();
    EXPECT_TRUE(program.delegate().applicationShouldHandleReopen(true));
    ASSERT_TRUE(on.windows.mainWindow);
    EXPECT_EQ(on.userDefaults.integer("selectedSettingsTab"), 0) << "nothing stored means the first tab";

    on.windows.closeMainWindow();
    on.drain();
    on.userDefaults.setInteger("selectedSettingsTab", 6);
    on.journal.take();
    EXPECT_TRUE(program.delegate().applicationShouldHandleReopen(false));
    EXPECT_EQ(on.userDefaults.integer("selectedSettingsTab"), 6);
    EXPECT_THAT(on.journal.entries(),
                ElementsAre("policy regular", "main window makeKeyAndOrderFront", "activate"));
    EXPECT_EQ(on.windows.mainProperties.size(), 1u) << "the same window comes back";
}

TEST_F(AppDelegateTest, ReopeningDoesNothingWhileTheWindowShows) {
    launch();
    program.delegate().showSettings(2);
    on.journal.take();
    EXPECT_TRUE(program.delegate().applicationShouldHandleReopen(false));
    EXPECT_THAT(on.journal.entries(), IsEmpty());
    EXPECT_EQ(on.userDefaults.integer("selectedSettingsTab"), 2);
}

TEST_F(AppDelegateTest, TheMainWindowIsBuiltOnceWithItsProperties) {
    launch();
    on.journal.take();
    program.delegate().showSettings(5);
    EXPECT_THAT(on.journal.entries(), ElementsAre("policy regular", "main window center",
                                                  "main window makeKeyAndOrderFront", "activate"));
    const MainWindowProperties& properties = on.windows.mainProperties.at(0);
    EXPECT_EQ(properties.title, "Velloway Settings");
    EXPECT_EQ(properties.size, (Size{850, 550}));
    EXPECT_EQ(properties.minimumSize, (Size{800, 500}));

    on.journal.take();
    program.delegate().showSettings(1);
    EXPECT_EQ(on.userDefaults.integer("selectedSettingsTab"), 1);
    EXPECT_THAT(on.journal.entries(), Not(Contains("main window center")));
    EXPECT_EQ(on.windows.mainProperties.size(), 1u);
}

TEST_F(AppDelegateTest, TheTabIsStoredBeforeTheWindowIsBuilt) {
    launch();
    std::size_t windowsWhenStored = 99;
    auto observer = on.userDefaults.observe(
        "selectedSettingsTab", [&](std::int64_t) { windowsWhenStored = on.windows.mainProperties.size(); });
    program.delegate().showSettings(7);
    EXPECT_EQ(windowsWhenStored, 0u);
}

TEST_F(AppDelegateTest, ClosingTheWindowLeavesTheProcessRunning) {
    launch();
    program.delegate().showSettings(0);
    on.windows.closeMainWindow();
    EXPECT_EQ(on.application.policy, ActivationPolicy::accessory);
    EXPECT_EQ(terminations, 0);
    EXPECT_FALSE(program.delegate().applicationShouldTerminateAfterLastWindowClosed());
    EXPECT_EQ(on.statusItem.menu.size(), 15u);
}

// Permissions

TEST_F(AppDelegateTest, TheReplyCategoryHasOneTextAction) {
    launch();
    EXPECT_THAT(on.notificationCenter.categories,
                ElementsAre(NotificationCategory{.identifier = "REPLY_CATEGORY",
                                                 .actions = {{.identifier = "REPLY_ACTION",
                                                              .title = "Reply",
                                                              .textInputButtonTitle = "Send",
                                                              .textInputPlaceholder = "Type your reply..."}}}));
}

TEST_F(AppDelegateTest, AnUndecidedPermissionIsAskedForAndARefusalLeadsToTheAlert) {
    launch();
    on.notificationCenter.answerStatus(AuthorizationStatus::notDetermined);
    on.drain();
    EXPECT_THAT(on.journal.entries(), Contains("request authorization 7"));
    on.notificationCenter.answerAuthorization(false);
    EXPECT_THAT(on.application.alerts, IsEmpty()) << "the alert comes on the main queue";
    on.drain();
    ASSERT_EQ(on.application.alerts.size(), 1u);
    const Alert& alert = on.application.alerts[0];
    EXPECT_EQ(alert.style, Alert::Style::warning);
    EXPECT_EQ(alert.messageText, "Notification Permission Required");
    EXPECT_EQ(
        alert.informativeText,
        "Velloway needs permission to show notifications forwarded from your Android device.\n\nPlease open "
        "System Settings → Notifications → Velloway and set \"Allow Notifications\" to On.");
    EXPECT_THAT(alert.buttons, ElementsAre("Open System Settings", "Not Now"));
}

TEST_F(AppDelegateTest, AnErrorOfTheRequestIsLoggedAlsoWhenItWasGranted) {
    launch();
    on.notificationCenter.answerStatus(AuthorizationStatus::notDetermined);
    on.drain();
    on.notificationCenter.answerAuthorization(true, "odd");
    on.drain();
    EXPECT_THAT(on.log.lines(), Contains("[Notifications] Authorization error: odd"));
    EXPECT_THAT(on.application.alerts, IsEmpty());
}

TEST_F(AppDelegateTest, AnErrorWithoutAGrantIsLoggedAndAlerted) {
    launch();
    on.notificationCenter.answerStatus(AuthorizationStatus::notDetermined);
    on.drain();
    on.notificationCenter.answerAuthorization(false, "broken");
    on.drain();
    EXPECT_THAT(on.log.lines(), Contains("[Notifications] Authorization error: broken"));
    EXPECT_EQ(on.application.alerts.size(), 1u);
}

class AppDelegateQuietStatusTest : public AppDelegateTest,
                                   public testing::WithParamInterface<AuthorizationStatus> {};

TEST_P(AppDelegateQuietStatusTest, NeedsNoQuestion) {
    launch();
    on.notificationCenter.answerStatus(GetParam());
    on.drain();
    EXPECT_THAT(on.application.alerts, IsEmpty());
    EXPECT_THAT(on.notificationCenter.authorizationQueries, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Statuses, AppDelegateQuietStatusTest,
                         testing::Values(AuthorizationStatus::authorized, AuthorizationStatus::provisional,
                                         AuthorizationStatus::ephemeral, AuthorizationStatus::unknown));

TEST_F(AppDelegateTest, ADeniedPermissionAlertsAtEveryLaunch) {
    for (int count = 1; count <= 2; ++count) {
        launch();
        on.notificationCenter.answerStatus(AuthorizationStatus::denied);
        on.drain();
        EXPECT_EQ(on.application.alerts.size(), static_cast<std::size_t>(count));
    }
}

TEST_F(AppDelegateTest, OpeningTheSettingsFromTheAlertGivesTheAccessoryFaceBackShortlyAfter) {
    launch();
    on.application.alertAnswer = 0;
    on.journal.take();
    on.notificationCenter.answerStatus(AuthorizationStatus::denied);
    on.drain();
    EXPECT_THAT(on.workspace.panes, ElementsAre(SettingsPane::notifications));
    EXPECT_THAT(on.journal.entries(),
                ElementsAre("policy regular", "activate", "alert Notification Permission Required"));
    on.main.advance(99ms);
    EXPECT_EQ(on.application.policy, ActivationPolicy::regular);
    on.main.advance(1ms);
    EXPECT_EQ(on.application.policy, ActivationPolicy::accessory);
}

TEST_F(AppDelegateTest, TheOtherButtonOrNoneOpensNothing) {
    for (const int answer : {1, 2, -1}) {
        launch();
        on.application.alertAnswer = answer;
        on.notificationCenter.answerStatus(AuthorizationStatus::denied);
        on.drain();
        EXPECT_THAT(on.workspace.panes, IsEmpty()) << answer;
        on.main.advance(100ms);
        EXPECT_EQ(on.application.policy, ActivationPolicy::accessory);
    }
}

TEST_F(AppDelegateTest, WithTheMainWindowOpenTheApplicationStaysRegularAfterTheAlert) {
    launch();
    program.delegate().showSettings(0);
    on.application.alertAnswer = 0;
    on.notificationCenter.answerStatus(AuthorizationStatus::denied);
    on.drain();
    on.main.advance(1s);
    EXPECT_EQ(on.application.policy, ActivationPolicy::regular);
}

TEST_F(AppDelegateTest, WithTheMainWindowClosedBeforeTheAlertTheAccessoryFaceComesBack) {
    launch();
    program.delegate().showSettings(0);
    on.windows.closeMainWindow();
    on.notificationCenter.answerStatus(AuthorizationStatus::denied);
    on.drain();
    on.main.advance(100ms);
    EXPECT_EQ(on.application.policy, ActivationPolicy::accessory);
}

TEST_F(AppDelegateTest, AccessibilityIsAskedForOnceAndWithThePrompt) {
    on.accessibility.trusted = false;
    launch();
    EXPECT_EQ(on.accessibility.prompts, 1);
    EXPECT_THAT(on.application.alerts, IsEmpty());
}

// Answers to notifications

class AppDelegateResponseTest : public AppDelegateTest {
protected:
    void respond(const NotificationResponse& response) {
        program.delegate().didReceive(response, [this] {
            sentWhenCompleted = static_cast<int>(on.server.pending());
            ++completions;
        });
    }

    int completions = 0;
    int sentWhenCompleted = -1;
};

TEST_F(AppDelegateResponseTest, AReplyGoesToThePhoneUnderTheRequestsIdentifier) {
    launch();
    auto phone = connectPhone();
    respond({.actionIdentifier = "REPLY_ACTION", .requestIdentifier = "0|chat|7", .userText = "On my way"});
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(sentWhenCompleted, 1) << "completed after the reply was handed over";
    on.drain();
    ASSERT_EQ(phone->sent.size(), 1u);
    EXPECT_EQ(phone->sent[0].text, R"({"action":"reply","key":"0|chat|7","message":"On my way"})");
}

TEST_F(AppDelegateResponseTest, AnEmptyReplyIsSentToo) {
    launch();
    auto phone = connectPhone();
    respond({.actionIdentifier = "REPLY_ACTION", .requestIdentifier = "k", .userText = ""});
    on.drain();
    ASSERT_EQ(phone->sent.size(), 1u);
    EXPECT_EQ(phone->sent[0].text, R"({"action":"reply","key":"k","message":""})");
}

TEST_F(AppDelegateResponseTest, AnythingElseOnlyCompletes) {
    launch();
    auto phone = connectPhone();
    respond({.actionIdentifier = "default", .requestIdentifier = "k"});
    respond({.actionIdentifier = "default", .requestIdentifier = "k", .userText = "text"});
    respond({.actionIdentifier = "REPLY_ACTION", .requestIdentifier = "k"});
    on.drain();
    EXPECT_EQ(completions, 3);
    EXPECT_THAT(phone->sent, IsEmpty());
    EXPECT_FALSE(on.windows.mainWindow) << "a click opens no window";
}

TEST_F(AppDelegateResponseTest, EveryNotificationIsPresentedAlike) {
    launch();
    for (const auto& category : {std::optional<std::string>("REPLY_CATEGORY"), std::optional<std::string>()}) {
        unsigned options = 0;
        program.delegate().willPresent({.identifier = "x", .content = {.categoryIdentifier = category}},
                                       [&](unsigned given) { options = given; });
        EXPECT_EQ(options,
                  presentationOptions::banner | presentationOptions::sound | presentationOptions::badge);
    }
}

// The service of the file manager

TEST_F(AppDelegateTest, FilesOfTheServiceAreSentInOrderAndTheFileTabOpens) {
    launch();
    on.log.take();
    program.delegate().handleSendToAndroidService(
        {.hasTypes = true, .hasFileUrls = true, .urls = {{"/tmp/no such/a.txt", "/tmp/no such/b.txt"}}});
    EXPECT_THAT(on.log.lines(), ElementsAre("[AppDelegate] Service triggered for file: a.txt",
                                            "[AppDelegate] Service triggered for file: b.txt"));
    EXPECT_FALSE(on.windows.mainWindow) << "only once control is back with the event loop";
    on.drain();
    EXPECT_EQ(on.userDefaults.integer("selectedSettingsTab"), 5);
    EXPECT_EQ(on.windows.mainProperties.size(), 1u);
    std::vector<std::string> failures;
    for (const NotificationRequest& request : on.notificationCenter.requests) {
        failures.push_back(request.content.body);
    }
    EXPECT_THAT(failures, ElementsAre(HasSubstr("'a.txt'"), HasSubstr("'b.txt'")));
}

TEST_F(AppDelegateTest, AServiceCallWithoutFilesDoesNothing) {
    launch();
    const std::vector<std::filesystem::path> files{"/home/me/a.txt"};
    program.delegate().handleSendToAndroidService({.hasTypes = false, .hasFileUrls = true, .urls = files});
    program.delegate().handleSendToAndroidService({.hasTypes = true, .hasFileUrls = false, .urls = files});
    program.delegate().handleSendToAndroidService(
        {.hasTypes = true, .hasFileUrls = true, .urls = std::nullopt});
    on.drain();
    EXPECT_FALSE(on.windows.mainWindow);
}

TEST_F(AppDelegateTest, AnEmptyListOfFilesStillOpensTheFileTab) {
    launch();
    program.delegate().handleSendToAndroidService(
        {.hasTypes = true, .hasFileUrls = true, .urls = std::vector<std::filesystem::path>{}});
    on.drain();
    EXPECT_EQ(on.userDefaults.integer("selectedSettingsTab"), 5);
    EXPECT_TRUE(on.windows.mainWindow);
}

// The road of one notification

TEST_F(AppDelegateTest, ANotificationOfThePhoneReachesTheDesktopAndItsAnswerThePhone) {
    launch();
    auto phone = connectPhone();
    phone->deliver(R"({"app":"Chat","title":"Ada","body":"Tonight?","time":1700000000,"key":"0|chat|7"})");
    on.drain();
    ASSERT_EQ(program.historyStore().items.get().size(), 1u);
    ASSERT_EQ(on.notificationCenter.requests.size(), 1u);
    const NotificationRequest& request = on.notificationCenter.requests[0];
    EXPECT_EQ(request.identifier, "0|chat|7");
    EXPECT_EQ(request.content.categoryIdentifier, "REPLY_CATEGORY");

    on.notificationCenter.delegate->didReceive(
        {.actionIdentifier = "REPLY_ACTION", .requestIdentifier = request.identifier, .userText = "Yes"},
        [] {});
    on.drain();
    ASSERT_EQ(phone->sent.size(), 1u);
    EXPECT_EQ(phone->sent[0].text, R"({"action":"reply","key":"0|chat|7","message":"Yes"})");
}

} // namespace
} // namespace velloway::test
