#include "ui/ViewTest.h"

#include <QAccessible>

#include <functional>
#include <set>

namespace velloway::test {
namespace {

class AccessibleTreeTest : public ViewTest {
protected:
    AccessibleTreeTest() { QAccessible::setActive(true); }

    using Visit = std::function<void(QAccessibleInterface&, const std::string& path)>;

    static void walk(QAccessibleInterface* from, const std::string& path, const Visit& visit) {
        if (!from || !from->isValid() || from->state().invisible) {
            return;
        }
        const std::string here = path + "/" + from->text(QAccessible::Name).toStdString();
        visit(*from, here);
        for (int i = 0; i < from->childCount(); ++i) {
            walk(from->child(i), here, visit);
        }
    }
    static void walk(QWindow* window, const Visit& visit) {
        walk(QAccessible::queryAccessibleInterface(window), "", visit);
    }

    static bool isControl(QAccessible::Role role) {
        static const std::set<QAccessible::Role> controls{
            QAccessible::Button,      QAccessible::EditableText, QAccessible::CheckBox, QAccessible::ComboBox,
            QAccessible::RadioButton, QAccessible::Link,         QAccessible::ListItem, QAccessible::List,
            QAccessible::ProgressBar, QAccessible::PushButton,   QAccessible::Graphic,  QAccessible::MenuItem};
        return controls.count(role) > 0;
    }

    std::set<std::string> namesOf(QAccessible::Role role, QWindow* window = mainWindow()) {
        std::set<std::string> names;
        walk(window, [&](QAccessibleInterface& part, const std::string&) {
            if (part.role() == role) {
                names.insert(part.text(QAccessible::Name).toStdString());
            }
        });
        return names;
    }

    void press(const std::string& name) {
        QAccessibleInterface* found = nullptr;
        walk(mainWindow(), [&](QAccessibleInterface& part, const std::string&) {
            if (!found && part.text(QAccessible::Name).toStdString() == name && part.actionInterface()) {
                found = &part;
            }
        });
        ASSERT_NE(found, nullptr) << name;
        found->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        settle();
    }

    void fill() {
        HistoryStore& store = program.historyStore();
        store.availableSIMs.set({{0, "Red"}, {1, "Blue"}});
        store.add({.app = "Chat", .title = "Ada", .body = "Hello"});
        store.add({.app = "Chat", .title = "Bruno", .body = "Hi"});
        store.addClipboard("text");
        store.addFileTransfer({.id = Uuid::random(), .fileName = "a", .url = "/tmp/a", .isOutgoing = true});
        store.batteryLevel.set(50);
        state().phone.phoneSmsLog.set(
            {{"123", "Ada", "Hello", 1.7e12, 1}, {"123", "Ada", "Hi", 1.7e12 + 1, 2}});
        state().phone.phoneCallLog.set({{"123", "Ada", 1.7e12, 3, 1}});
        state().sms.activeRecipient.set("123");
        state().sms.contactQuery.set("123");
        state().notifications.replyingTo.set(store.items.get()[0].id);
        state().settings.serverRestartNeeded.set(true);
        state().calls.dialpadNumber.set("12");
        settle();
    }
};

TEST_F(AccessibleTreeTest, EveryControlOfEveryTabHasAName) {
    on.accessibility.trusted = false;
    open(0);
    fill();
    for (const TabRow& tab : tabRows) {
        open(tab.index);
        int controls = 0;
        walk(mainWindow(), [&](QAccessibleInterface& part, const std::string& path) {
            if (isControl(part.role())) {
                ++controls;
                EXPECT_FALSE(part.text(QAccessible::Name).trimmed().isEmpty())
                    << tab.title << ": a part of role " << part.role() << " at " << path;
            }
            if (part.state().focusable && !isControl(part.role())) {
                const std::set<QAccessible::Role> alright{QAccessible::Grouping,   QAccessible::StaticText,
                                                          QAccessible::Window,     QAccessible::Client,
                                                          QAccessible::ScrollBar,  QAccessible::Heading,
                                                          QAccessible::Application};
                EXPECT_TRUE(alright.count(part.role()))
                    << tab.title << ": role " << part.role() << " at " << path;
            }
        });
        EXPECT_GT(controls, 8) << tab.title;
    }
}

TEST_F(AccessibleTreeTest, TheSidebarListsTheEightTabsAndTellsWhichIsChosen) {
    open(7);
    std::vector<std::string> names;
    std::vector<std::string> selected;
    walk(mainWindow(), [&](QAccessibleInterface& part, const std::string& path) {
        if (part.role() == QAccessible::ListItem && path.find("/Tabs/") != std::string::npos) {
            names.push_back(part.text(QAccessible::Name).toStdString());
            if (part.state().selected) {
                selected.push_back(names.back());
            }
        }
    });
    EXPECT_THAT(names, ElementsAre("Call", "SMS", "File Drop", "Notifications", "Remote", "Clipboard",
                                   "Settings", "Info"));
    EXPECT_THAT(selected, ElementsAre("Remote"));
}

TEST_F(AccessibleTreeTest, APressThroughTheTreeActsAsAClick) {
    open(0);
    press("Remote");
    takeSent();
    press("Back");
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"nav_command","command":"back"})"));
    press("Call");
    press("5");
    EXPECT_EQ(text("number"), "5");
}

TEST_F(AccessibleTreeTest, RowsThatSearchTookAwayAreNotThere) {
    open(2);
    state().phone.phoneSmsLog.set({{"1", "Ada", "Hello", 1.7e12, 1}, {"2", "Bruno", "Hi", 1.7e12 + 1, 1}});
    settle();
    EXPECT_THAT(namesOf(QAccessible::ListItem), Contains("Bruno, Hi"));
    state().sms.contactQuery.set("ada");
    settle();
    EXPECT_THAT(namesOf(QAccessible::ListItem), Contains("Ada, Hello"));
    EXPECT_THAT(namesOf(QAccessible::ListItem), Not(Contains("Bruno, Hi")));
}

TEST_F(AccessibleTreeTest, ThePanelsButtonsHaveNames) {
    program.historyStore().incomingCallInfo.set(IncomingCallInfo{"123", "Bob"});
    drawnPanel();
    EXPECT_THAT(namesOf(QAccessible::Button, panel()), ElementsAre("Accept", "Decline"));
    click(part("right", panel()));
    drawnPanel();
    EXPECT_THAT(namesOf(QAccessible::Button, panel()), ElementsAre("Hang up", "Mute"));
    click(part("left", panel()));
    EXPECT_THAT(namesOf(QAccessible::Button, panel()), ElementsAre("Hang up", "Unmute"));
}

TEST_F(AccessibleTreeTest, RowsAndButtonsSayWhatTheyStandFor) {
    open(4);
    fill();
    state().sms.contactQuery.set("");
    state().notifications.replyingTo.set(std::nullopt);
    state().phone.phoneCallLog.set(
        {{"123", "Ada", 1.7e12, 3, 1}, {"4", "Bo", 1.7e12, 3, 2}, {"5", "Cy", 1.7e12, 0, 3}});
    settle();
    const auto contains = [](const std::set<std::string>& names, const std::string& start) {
        return std::any_of(names.begin(), names.end(),
                           [&](const auto& name) { return name.starts_with(start); });
    };
    for (const char* call : {"Incoming call, Ada, 123", "Outgoing call, Bo, 4", "Missed call, Cy, 5"}) {
        EXPECT_TRUE(contains(namesOf(QAccessible::Button), call)) << call;
    }
    open(2);
    EXPECT_TRUE(contains(namesOf(QAccessible::ListItem), "Ada, "));
    EXPECT_TRUE(contains(namesOf(QAccessible::ListItem), "You, "));
    open(1);
    EXPECT_THAT(namesOf(QAccessible::Button), testing::IsSupersetOf({"Reply: Ada", "Reply: Bruno"}));
    open(7);
    EXPECT_THAT(namesOf(QAccessible::Button),
                testing::IsSupersetOf({"Previous track", "Back 5 seconds", "Play or pause", "Forward 5 seconds",
                                       "Next track", "Volume down", "Volume up"}));
    open(5);
    EXPECT_THAT(namesOf(QAccessible::Button), Contains("Show in Finder: a"));
    open(6);
    EXPECT_THAT(namesOf(QAccessible::Button), Contains("Copy to Mac Clipboard: text"));
}

TEST_F(AccessibleTreeTest, ADisabledButtonSaysSo) {
    open(1);
    const auto description = [] {
        std::string found = "(not there)";
        walk(mainWindow(), [&](QAccessibleInterface& part, const std::string&) {
            if (part.text(QAccessible::Name) == "Clear All") {
                found = part.text(QAccessible::Description).toStdString();
            }
        });
        return found;
    };
    EXPECT_EQ(description(), "Unavailable");
    program.historyStore().add({.app = "Chat", .title = "Ada", .body = "Hello"});
    settle();
    EXPECT_EQ(description(), "");
}

TEST_F(AccessibleTreeTest, TheSidebarsRowOfTheShownTabHasTheKeyboard) {
    open(7);
    part("sidebar")->forceActiveFocus();
    settle();
    const auto focused = [] { return QAccessible::queryAccessibleInterface(openWindow().activeFocusItem()); };
    ASSERT_NE(focused(), nullptr);
    EXPECT_EQ(focused()->text(QAccessible::Name), "Remote");
    key(Qt::Key_Down);
    EXPECT_EQ(focused()->text(QAccessible::Name), "Clipboard");
}

} // namespace
} // namespace velloway::test
