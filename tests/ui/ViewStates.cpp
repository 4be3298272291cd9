#include "ui/ViewStates.h"

#include <net/if.h>
#include <sys/socket.h>

namespace velloway::test {

namespace {

constexpr double minute = 60'000;
constexpr double day = 24 * 60 * minute;

double now(const ViewHarness& harness) {
    return std::chrono::duration<double, std::milli>(harness.on.host.time.time_since_epoch()).count();
}

/// Identities that stay the same, so that a state can be entered again.
Uuid idOf(int number) {
    static std::vector<Uuid> made;
    while (static_cast<int>(made.size()) <= number) {
        made.push_back(Uuid::random());
    }
    return made[static_cast<std::size_t>(number)];
}

void twoSims(ViewHarness& harness) {
    harness.program.historyStore().availableSIMs.set({{0, "Blue"}, {1, "Red Mobile"}});
}

void fewCalls(ViewHarness& harness) {
    const double time = now(harness);
    // The same rows with other contents first: the view has to follow.
    harness.state().phone.phoneCallLog.set(
        {{"1", "Wrong", time - minute, 0, 2}, {"2", std::nullopt, time - 2 * minute, 0, 1}});
    harness.settle();
    harness.state().phone.phoneCallLog.set(
        {{"+44 7700 900123", "Ada Winter", time - minute, 63, 1},
         {"+44 7700 900456", "Bruno Keller", time - 2 * minute, 0, 3},
         {"+90 532 555 0199", "Elif Demir with a name that does not end before the row does, not by a long way",
          time - day, 600, 2},
         {"16216", std::nullopt, time - 30 * day, 12, 5}});
}

void emptyCalls(ViewHarness& harness) {
    harness.program.historyStore().availableSIMs.set({});
    harness.state().phone.phoneCallLog.set({});
    harness.state().calls.dialpadNumber.set("");
}

void filledCalls(ViewHarness& harness) {
    twoSims(harness);
    harness.state().calls.dialpadNumber.set("1");
    fewCalls(harness);
    harness.settle();
    harness.state().calls.dialpadNumber.set("0770090");
    harness.state().phone.selectedSimSlot.set(1);
}

void manyCalls(ViewHarness& harness) {
    emptyCalls(harness);
    std::vector<CallRecord> log;
    for (int i = 0; i < 40; ++i) {
        log.push_back({std::to_string(100 + i), std::nullopt, now(harness) - i * minute, 3, 1 + i % 3});
    }
    harness.state().phone.phoneCallLog.set(log);
    harness.state().calls.dialpadNumber.set("0123456789012345678901234567890123456789");
}

std::vector<SmsRecord> fewMessages(const ViewHarness& harness) {
    const double time = now(harness);
    const std::string ada = "+44 7700 900123";
    return {
        {ada, "Ada Winter", "Are we still on for tomorrow evening?", time - 2 * day, 1},
        {ada, "Ada Winter",
         "Yes! I booked a table for four, close to the river. Could you bring the charger that I left on your "
         "desk last week? It is the white one, and it belongs to my sister.",
         time - day, 2},
        {ada, "Ada Winter", "Sure", time - 70 * minute, 1},
        {ada, "Ada Winter", "See you at eight", time - 30 * minute, 2},
        {ada, "Ada Winter",
         "The train is five minutes late, and I still have to walk over from the station by the river", time,
         1},
        {"Bank 24", std::nullopt, "Your code is 1234", time - day, 1},
        {"+90 532 555 0199", "Elif Demir who has a name that does not end before the row does",
         "line one\nline two", time - 40 * day, 1}};
}

void noMessages(ViewHarness& harness) {
    harness.program.historyStore().availableSIMs.set({});
    harness.state().phone.phoneSmsLog.set({});
    harness.state().sms.activeRecipient.set(std::nullopt);
    harness.state().sms.contactQuery.set("");
    harness.state().sms.chatText.set("");
}

void threads(ViewHarness& harness) {
    noMessages(harness);
    std::vector<SmsRecord> log = fewMessages(harness);
    for (SmsRecord& record : log) {
        record.body = "before";
    }
    harness.state().phone.phoneSmsLog.set(log);
    harness.settle();
    harness.state().phone.phoneSmsLog.set(fewMessages(harness));
}

void chat(ViewHarness& harness) {
    noMessages(harness);
    twoSims(harness);
    harness.state().sms.activeRecipient.set("Bank 24");
    harness.state().phone.phoneSmsLog.set(fewMessages(harness));
    harness.settle();
    harness.state().sms.activeRecipient.set("+44 7700 900123");
}

void typedChat(ViewHarness& harness) {
    noMessages(harness);
    harness.state().phone.phoneSmsLog.set(fewMessages(harness));
    harness.state().sms.activeRecipient.set("Bank 24");
    harness.settle();
    harness.state().sms.chatText.set("one\ntwo");
}

void longChat(ViewHarness& harness) {
    noMessages(harness);
    std::vector<SmsRecord> log;
    for (int i = 0; i < 60; ++i) {
        log.push_back(
            {"5", std::nullopt, "message " + std::to_string(i), now(harness) - (60 - i) * minute, 1 + i % 2});
    }
    harness.state().phone.phoneSmsLog.set(log);
    harness.state().sms.activeRecipient.set("5");
}

void manyThreads(ViewHarness& harness) {
    noMessages(harness);
    std::vector<SmsRecord> log;
    for (int i = 0; i < 40; ++i) {
        log.push_back({std::to_string(500 + i), std::nullopt, "hello", now(harness) - i * minute, 1});
    }
    harness.state().phone.phoneSmsLog.set(log);
}

/// A chat with the menu of the first text open.
void chatMenu(ViewHarness& harness) {
    chat(harness);
    harness.settle();
    QTest::mouseClick(&ViewHarness::openWindow(), Qt::RightButton, {},
                      ViewHarness::part("body")->mapToScene({20, 10}).toPoint());
}

void simMenu(ViewHarness& harness) {
    chat(harness);
    harness.settle();
    harness.click("simPicker");
    QTest::mouseMove(&ViewHarness::openWindow(), {2, 2});
}

void search(ViewHarness& harness, const char* query) {
    noMessages(harness);
    harness.state().phone.phoneSmsLog.set(fewMessages(harness));
    harness.state().sms.contactQuery.set(query);
}

void noTransfers(ViewHarness& harness) {
    harness.program.historyStore().fileTransfers.set({});
}

void transfers(ViewHarness& harness) {
    const auto record = [&](int id, const char* name, bool isOutgoing, double progress, bool isCompleted) {
        return FileTransferRecord{.id = idOf(id),
                                  .fileName = name,
                                  .url = isCompleted ? std::optional<std::filesystem::path>("/tmp/file")
                                                     : std::nullopt,
                                  .fileSize = 3'200'000,
                                  .date = harness.on.host.time,
                                  .isOutgoing = isOutgoing,
                                  .progress = progress,
                                  .isCompleted = isCompleted};
    };
    harness.program.historyStore().fileTransfers.set({record(1, "before", true, 0.1, false),
                                                      record(2, "before", false, 0.2, false),
                                                      record(3, "before", false, 0, false)});
    harness.settle();
    harness.program.historyStore().fileTransfers.set(
        {record(1, "holiday-plan.pdf", false, 1, true), record(2, "IMG_2026.jpg", true, 1, true),
         record(3, "presentation.key", true, 0.9996, false), record(4, "song.flac", false, 0.37, false),
         record(5, "zero.bin", true, 0, false), record(6, "more-than-announced.bin", false, 1.5, false),
         record(7,
                "a-file-with-a-name-that-is-so-long-that-it-has-to-be-cut-in-its-middle-so-that-its-ending-can-"
                "still-"
                "be-seen.tar.gz",
                false, 1, true)});
}

NotifPayload notification(const ViewHarness& harness, int id, const char* app, const char* title,
                          const char* body, double age) {
    NotifPayload payload{.id = idOf(id), .app = app, .title = title, .time = now(harness) / 1000 - age};
    payload.body = std::string(body);
    payload.key = "key" + std::to_string(id);
    return payload;
}

void noNotifications(ViewHarness& harness) {
    harness.state().notifications.replyingTo.set(std::nullopt);
    harness.state().notifications.replyText.set("");
    harness.program.historyStore().items.set({});
}

void notifications(ViewHarness& harness) {
    harness.state().notifications.replyingTo.set(std::nullopt);
    harness.program.historyStore().items.set({notification(harness, 11, "before", "before", "before", 3)});
    harness.settle();
    harness.program.historyStore().items.set(
        {notification(harness, 11, "Chat", "Ada Winter", "See you at seven?", 60),
         notification(harness, 12, "Messages", "", "On my way", 90'000),
         notification(harness, 13,
                      "an application with a name that is far too long for one line of any row of this list",
                      "Title of a notification that is longer than a row could ever be, so that it has to be "
                      "cut at the end",
                      "A text that runs on and on, over more lines than any row would show, so that it has to "
                      "be cut, and "
                      "again, and again, and again, until there is nothing more to be said about it.",
                      500),
         notification(harness, 14, "", "Only a title", "", 600)});
    harness.state().notifications.replyText.set("");
}

void replying(ViewHarness& harness) {
    notifications(harness);
    harness.settle();
    harness.state().notifications.replyingTo.set(idOf(11));
}

void clipboardTexts(ViewHarness& harness) {
    const auto record = [&](int id, std::string text) {
        return ClipboardRecord{.id = idOf(id), .text = std::move(text), .date = harness.on.host.time};
    };
    std::string lines;
    for (int i = 1; i <= 25; ++i) {
        lines += "Line " + std::to_string(i) + "\n";
    }
    harness.program.historyStore().clipboardHistory.set({record(21, "before")});
    harness.settle();
    harness.program.historyStore().clipboardHistory.set({record(21, "https://example.org/article?id=42"),
                                                         record(22, "Flat 3, 18 Mill Lane\nCambridge CB2 1RX"),
                                                         record(23, lines)});
}

void noClipboardTexts(ViewHarness& harness) {
    harness.program.historyStore().clipboardHistory.set({});
}

void disconnected(ViewHarness& harness) {
    harness.program.historyStore().connectedRemoteIP.set(std::nullopt);
    harness.state().settings.notifAuthStatus.set(AuthorizationStatus::notDetermined);
}

void connected(ViewHarness& harness, int battery, bool isCharging) {
    HistoryStore& store = harness.program.historyStore();
    store.connectedRemoteIP.set("192.168.1.19");
    store.connectedDeviceName.set("Another");
    store.connectedWifiName.set("Other");
    store.batteryLevel.set(50);
    harness.settle();
    store.connectedRemoteIP.set("192.168.1.20");
    store.connectedDeviceName.set("Ada's phone");
    store.connectedWifiName.set("Home Network 5G");
    store.batteryLevel.set(battery);
    store.isCharging.set(isCharging);
    harness.state().settings.notifAuthStatus.set(AuthorizationStatus::authorized);
    harness.state().settings.serverRestartNeeded.set(true);
    harness.state().settings.launchAtLogin.set(true);
}

void nameless(ViewHarness& harness) {
    connected(harness, 7, false);
    harness.program.historyStore().connectedDeviceName.set(std::nullopt);
    harness.program.historyStore().connectedWifiName.set(std::nullopt);
    harness.program.historyStore().batteryLevel.set(std::nullopt);
    harness.state().settings.notifAuthStatus.set(AuthorizationStatus::denied);
    harness.state().settings.serverRestartNeeded.set(false);
    harness.state().settings.launchAtLogin.set(false);
}

void trusted(ViewHarness& harness, bool isTrusted) {
    harness.on.accessibility.trusted = isTrusted;
    harness.state().remote.refreshAccessibilityStatus();
}

void ring(ViewHarness& harness, const char* number, std::optional<std::string> name) {
    harness.program.historyStore().incomingCallInfo.set(IncomingCallInfo{"1", "Before"});
    harness.settle();
    harness.program.historyStore().incomingCallInfo.set(IncomingCallInfo{number, std::move(name)});
}

void call(ViewHarness& harness, bool isMuted) {
    harness.program.notifications().post(
        AppNotification::prepareActiveCall,
        std::map<std::string, std::string>{{"number", "123"}, {"name", "Bob"}});
    ContentView& panel = harness.drawnPanel();
    harness.program.notifications().post(AppNotification::callDurationUpdated, std::int64_t{3725});
    harness.settle();
    if (isMuted) {
        // Where the mute button stands.
        QTest::mouseClick(&panel, Qt::LeftButton, {}, {274, 40});
        harness.settle();
    }
    QTest::mouseMove(&panel, {2, 2});
}

void nothing(ViewHarness&) {}

std::vector<ViewState> made() {
    using H = ViewHarness;
    const QSize tall{850, 900};
    const QSize wide{1600, 700};
    return {
        {"calls_empty", tabIndex::call, emptyCalls},
        {"calls_filled", tabIndex::call, filledCalls, {850, 550}, true},
        {"calls_many", tabIndex::call, manyCalls, {800, 500}},
        {"calls_wide", tabIndex::call, filledCalls, wide},
        {"sms_empty", tabIndex::sms, noMessages},
        {"sms_threads", tabIndex::sms, threads, {850, 550}, true},
        {"sms_chat", tabIndex::sms, chat, {850, 550}, true},
        {"sms_chat_wide", tabIndex::sms, chat, wide},
        {"sms_typed", tabIndex::sms, typedChat, {850, 550}, true},
        {"sms_long", tabIndex::sms, longChat},
        {"sms_many", tabIndex::sms, manyThreads},
        {"sms_menu", tabIndex::sms, chatMenu},
        {"sms_sims", tabIndex::sms, simMenu},
        {"sms_search", tabIndex::sms, [](H& h) { search(h, "+44 77"); }, {850, 550}, true},
        {"sms_search_in_vain", tabIndex::sms, [](H& h) { search(h, "zzz"); }},
        {"sms_new", tabIndex::sms,
         [](H& h) {
             noMessages(h);
             h.state().sms.activeRecipient.set("+33 1 55 50 10 20");
         }},
        {"files_empty", tabIndex::fileDrop, noTransfers},
        {"files_filled", tabIndex::fileDrop, transfers, {850, 550}, true},
        {"notifications_empty", tabIndex::notifications, noNotifications},
        {"notifications_filled", tabIndex::notifications, notifications, {850, 550}, true},
        {"notifications_reply", tabIndex::notifications, replying, {850, 550}, true},
        {"remote", tabIndex::remote, nothing, tall, true},
        {"remote_warning", tabIndex::remote, [](H& h) { trusted(h, false); }, {850, 550}, true},
        {"clipboard_empty", tabIndex::clipboard, noClipboardTexts},
        {"clipboard_filled", tabIndex::clipboard, clipboardTexts, {850, 550}, true},
        {"settings_disconnected", tabIndex::settings, disconnected, tall, true},
        {"settings_connected", tabIndex::settings, [](H& h) { connected(h, 71, false); }, tall, true},
        {"settings_charging", tabIndex::settings, [](H& h) { connected(h, 15, true); }, tall},
        {"settings_nameless", tabIndex::settings, nameless, {850, 550}, true},
        {"settings_wide", tabIndex::settings, [](H& h) { connected(h, 12, false); }, wide},
        {"info", tabIndex::info, nothing, tall, true},
        {"sidebar_hidden", tabIndex::info,
         [](H& h) { h.state().columnVisibility.set(ColumnVisibility::detailOnly); }},
        {"ringing", -1, [](H& h) { ring(h, "+44 7700 900123", "Ada Winter"); }},
        {"ringing_number", -1, [](H& h) { ring(h, "+44 7700 900123", std::nullopt); }},
        {"ringing_long", -1,
         [](H& h) {
             ring(h, "+44770090012301234567890123456789", "Maximiliane-Alexandra von und zu Hohenstein");
         }},
        {"in_call", -1, [](H& h) { call(h, false); }},
        {"in_call_muted", -1, [](H& h) { call(h, true); }},
    };
}

} // namespace

const std::vector<ViewState>& viewStates() {
    static const std::vector<ViewState> states = made();
    return states;
}

std::vector<ViewState> scrolledStates() {
    std::vector<ViewState> states;
    for (const char* name : {"calls_many", "sms_long", "sms_many", "files_filled", "notifications_filled",
                             "remote_warning", "clipboard_filled", "settings_connected", "info"}) {
        const auto of = std::find_if(viewStates().begin(), viewStates().end(),
                                     [&](const ViewState& state) { return state.name == name; });
        states.push_back(*of);
        states.back().size = {850, 320};
    }
    // So low that a page key does not reach the end at once.
    for (std::size_t form = states.size() - 2, last = states.size(); form < last; ++form) {
        states.push_back(states[form]);
        states.back().name += "_low";
        states.back().size = {850, 150};
    }
    return states;
}

} // namespace velloway::test
