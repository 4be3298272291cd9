// Every text of the tabs and every symbol that stands in one, as the user sees it.

#include "tabs/calls/CallsTexts.h"
#include "tabs/clipboard/ClipboardTexts.h"
#include "tabs/filedrop/FileDropTexts.h"
#include "tabs/info/InfoTexts.h"
#include "tabs/notifications/NotificationsTexts.h"
#include "tabs/remote/RemoteTexts.h"
#include "tabs/settings/SettingsTexts.h"
#include "tabs/sms/SmsTexts.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velloway::test {
namespace {

using Texts = std::vector<std::pair<std::string, std::string>>;

template <class Table> Texts all(const Table& table) {
    Texts texts;
    for (const TextEntry& entry : table) {
        texts.emplace_back(entry.name, entry.text);
    }
    return texts;
}

TEST(TabTexts, Calls) {
    EXPECT_EQ(all(callsTexts), (Texts{{"callSymbol", "phone.fill"},
                                      {"deleteSymbol", "delete.left.fill"},
                                      {"recentCalls", "Recent Calls"},
                                      {"noRecentCalls", "No recent calls"}}));
}

TEST(TabTexts, Clipboard) {
    EXPECT_EQ(all(clipboardTexts),
              (Texts{{"title", "Clipboard"},
                     {"clearHistory", "Clear History"},
                     {"description", "Manage and sync clipboard content between your devices."},
                     {"send", "Send Current Mac Clipboard"},
                     {"sendSymbol", "paperplane.fill"},
                     {"emptySymbol", "doc.on.clipboard"},
                     {"empty", "No received items yet"},
                     {"rowSymbol", "text.justify.left"},
                     {"copySymbol", "doc.on.doc"},
                     {"copyTooltip", "Copy to Mac Clipboard"}}));
}

TEST(TabTexts, FileDrop) {
    EXPECT_EQ(all(fileDropTexts), (Texts{{"title", "File Drop"},
                                         {"clearHistory", "Clear History"},
                                         {"description", "Easily move files between your Mac and Android. "
                                                         "Received files are saved to your Downloads folder."},
                                         {"send", "Send Files..."},
                                         {"sendSymbol", "square.and.arrow.up"},
                                         {"revealSymbol", "folder"},
                                         {"revealTooltip", "Show in Finder"}}));
}

TEST(TabTexts, Info) {
    EXPECT_EQ(all(infoTexts),
              (Texts{{"name", "Velloway"},
                     {"version", "Version 1.0 (Build 1)"},
                     {"descriptionSection", "Description"},
                     {"description", "Professional notification bridging between Android and macOS. Secure, "
                                     "local, and real-time communication over your WiFi network."},
                     {"developerSection", "Developer"},
                     {"developerLabel", "Name"},
                     {"developerName", "[Developer's name]"},
                     {"profileTitle", "Visit Profile"},
                     {"supportSection", "Support the Project"},
                     {"supportSymbol", "heart.fill"},
                     {"walletName", "[Wallet's name]"},
                     {"walletAccount", "[Wallet account number]"}}));
}

TEST(TabTexts, Notifications) {
    EXPECT_EQ(all(notificationsTexts),
              (Texts{{"emptyTitle", "No notifications yet"},
                     {"emptySymbol", "bell.slash"},
                     {"emptyDescription", "Notifications forwarded from your Android phone will appear here."},
                     {"clearAll", "Clear All"},
                     {"reply", "Reply"},
                     {"replyPlaceholder", "Type reply..."},
                     {"send", "Send"},
                     {"cancel", "Cancel"}}));
}

TEST(TabTexts, Remote) {
    EXPECT_EQ(all(remoteTexts),
              (Texts{{"control", "Control Android Device"},
                     {"media", "Media"},
                     {"volume", "Volume"},
                     {"navigation", "Navigation"},
                     {"dPad", "D-Pad"},
                     {"core", "Core"},
                     {"system", "System"},
                     {"shortcuts", "Keyboard Shortcuts"},
                     {"warningSymbol", "exclamationmark.shield.fill"},
                     {"warningTitle", "Accessibility Access Required"},
                     {"warning", "Velloway needs Accessibility permission to control media, presentation "
                                 "slides, and system features like locking or sleeping your Mac."},
                     {"warningNote", "Note: If permission is already granted, try removing Velloway from the "
                                     "list and adding it again."},
                     {"openSettings", "Open System Settings"},
                     {"refreshStatus", "Refresh Status"}}));
}

TEST(TabTexts, Settings) {
    EXPECT_EQ(
        all(settingsTexts),
        (Texts{{"serverSection", "Server & Network"},
               {"serverFooter",
                "Tip: For a permanent connection, reserve this IP address for your Mac in your router's DHCP "
                "settings. This prevents the address from changing and disconnecting your Android device."},
               {"status", "Status"},
               {"localIP", "Local IP"},
               {"copySymbol", "doc.on.doc"},
               {"port", "Port"},
               {"portPrompt", "8765"},
               {"restart", "Restart"},
               {"notificationsSection", "Notifications"},
               {"requestPermission", "Request Permission"},
               {"blocked", "Blocked - Open System Settings"},
               {"enabled", "Enabled"},
               {"enabledSymbol", "bell.badge.fill"},
               {"generalSection", "General"},
               {"launchAtLogin", "Launch at login"}}));
}

TEST(TabTexts, Sms) {
    EXPECT_EQ(all(smsTexts), (Texts{{"title", "Messages"},
                                    {"refreshSymbol", "arrow.clockwise"},
                                    {"searchSymbol", "magnifyingglass"},
                                    {"searchPlaceholder", "To: Search or type number…"},
                                    {"clearSymbol", "xmark.circle.fill"},
                                    {"emptySymbol", "message.fill"},
                                    {"empty", "No Messages"},
                                    {"newMessageSymbol", "paperplane.circle.fill"},
                                    {"newMessageCaption", "New message to"},
                                    {"noChatSymbol", "bubble.left.and.bubble.right.fill"},
                                    {"noChat", "Select a conversation or search for a contact to begin."},
                                    {"noSim", "No SIM connected"},
                                    {"simLabel", "SIM:"},
                                    {"newConversation", "New Conversation"},
                                    {"composerPlaceholder", "Text Message"},
                                    {"sendSymbol", "arrow.up.circle.fill"}}));
}

} // namespace
} // namespace velloway::test
