#include "ui/ViewTest.h"

#include <QCloseEvent>

namespace velloway::test {
namespace {

class MainWindowViewTest : public ViewTest {
protected:
    /// Until the window system has taken the window away: before that it still passes for exposed and active.
    void close(QWindow& window) {
        QCloseEvent closing;
        QGuiApplication::sendEvent(&window, &closing);
        require("the window's end", [&] { return !window.isExposed() && !window.isActive(); });
    }
    std::vector<std::string> highlighted() {
        std::vector<std::string> rows;
        for (const TabRow& tab : tabRows) {
            const std::string name = "tab" + std::to_string(tab.index);
            if (part(name.c_str())->property("current").toBool()) {
                rows.push_back(name);
            }
        }
        return rows;
    }
    QString shownFile() { return part("tabLoader")->property("source").toUrl().fileName(); }
};

TEST_F(MainWindowViewTest, OpensWithItsTitleAndSizeInTheMiddleOfTheScreen) {
    ContentView& window = open(4);
    EXPECT_EQ(window.title(), "Velloway Settings");
    EXPECT_EQ(window.size(), QSize(850, 550));
    EXPECT_EQ(window.minimumSize(), QSize(800, 500));
    const QRect usable = window.screen()->availableGeometry();
    EXPECT_NEAR(window.geometry().center().x(), usable.center().x(), 1);
    EXPECT_NEAR(window.geometry().center().y(), usable.center().y(), 1);
}

TEST_F(MainWindowViewTest, EveryRowOfTheSidebarShowsItsTab) {
    open(0);
    const std::map<int, const char*> files{
        {4, "CallsTab.qml"},  {2, "SmsTab.qml"},       {5, "FileDropTab.qml"}, {1, "NotificationsTab.qml"},
        {7, "RemoteTab.qml"}, {6, "ClipboardTab.qml"}, {0, "SettingsTab.qml"}, {3, "InfoTab.qml"}};
    double last = -1;
    for (const TabRow& tab : tabRows) {
        const std::string name = "tab" + std::to_string(tab.index);
        const double y = part(name.c_str())->mapToScene({}).y();
        EXPECT_GT(y, last) << "the order of the rows";
        last = y;
        click(name.c_str());
        EXPECT_EQ(shownFile(), files.at(tab.index));
        EXPECT_THAT(highlighted(), ElementsAre(name));
        EXPECT_EQ(on.userDefaults.integer("selectedSettingsTab"), tab.index);
    }
}

TEST_F(MainWindowViewTest, TheSidebarWorksFromTheKeyboard) {
    open(4);
    part("sidebar")->forceActiveFocus();
    key(Qt::Key_Down);
    EXPECT_THAT(highlighted(), ElementsAre("tab2"));
    key(Qt::Key_Down);
    EXPECT_THAT(highlighted(), ElementsAre("tab5"));
    key(Qt::Key_Up);
    key(Qt::Key_Up);
    key(Qt::Key_Up);
    EXPECT_THAT(highlighted(), ElementsAre("tab4"));
}

TEST_F(MainWindowViewTest, AnUnknownTabShowsTheCallsWithNoRowHighlighted) {
    on.userDefaults.setInteger("selectedSettingsTab", 99);
    open(99);
    EXPECT_EQ(shownFile(), "CallsTab.qml");
    EXPECT_THAT(highlighted(), IsEmpty());
    click("tab6");
    EXPECT_EQ(on.userDefaults.integer("selectedSettingsTab"), 6);
    EXPECT_THAT(highlighted(), ElementsAre("tab6"));
}

TEST_F(MainWindowViewTest, AnOpenWindowFollowsTheStoredTab) {
    ContentView& window = open(5);
    EXPECT_EQ(&open(2), &window);
    EXPECT_EQ(shownFile(), "SmsTab.qml");
}

TEST_F(MainWindowViewTest, LabelsGoAtAWidthOf250) {
    ContentView& window = open(0);
    window.setMinimumSize({100, 100});
    window.resize(251, 500);
    ASSERT_TRUE(wait([&] { return window.width() == 251; }));
    settle();
    EXPECT_TRUE(shows("label"));
    window.resize(250, 500);
    ASSERT_TRUE(wait([&] { return window.width() == 250; }));
    settle();
    EXPECT_FALSE(shows("label"));
    const QQuickItem* row = part("tab0");
    for (const QQuickItem* child : row->childItems()) {
        if (child->property("tint").isValid()) {
            EXPECT_EQ(child->x() + child->width() / 2, row->width() / 2) << "the symbol stands in the middle";
            return;
        }
    }
    ADD_FAILURE() << "no symbol";
}

TEST_F(MainWindowViewTest, ClosingHidesTheWindowAndReopeningBringsItBackWhereItWas) {
    ContentView& window = open(4);
    type("42");
    window.setGeometry(30, 40, 900, 600);
    ASSERT_TRUE(wait([&] { return window.geometry() == QRect(30, 40, 900, 600); }));
    EXPECT_EQ(on.application.policy, ActivationPolicy::regular);

    close(window);
    settle();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(on.application.policy, ActivationPolicy::accessory);

    takeSent();
    EXPECT_EQ(&open(4), &window);
    EXPECT_EQ(window.geometry(), QRect(30, 40, 900, 600));
    EXPECT_EQ(on.application.policy, ActivationPolicy::regular);
    EXPECT_EQ(text("number"), "42");
}

TEST_F(MainWindowViewTest, AppearingAsksThePhoneForItsLogsEachTime) {
    ContentView& window = open(0);
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"get_sms_history"})", R"({"action":"get_call_history"})"));
    on.accessibility.trusted = false;
    close(window);
    settle();
    EXPECT_THAT(takeSent(), IsEmpty());
    open(7);
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"get_sms_history"})", R"({"action":"get_call_history"})"));
    EXPECT_TRUE(shows("accessibilityWarning"));
}

TEST_F(MainWindowViewTest, ClosingDuringATransferDoesNotStopIt) {
    ContentView& window = open(5);
    program.historyStore().addFileTransfer(
        {.id = Uuid::random(), .fileName = "a", .fileSize = 10, .isOutgoing = true});
    const Uuid id = program.historyStore().fileTransfers.get().front().id;
    close(window);
    program.historyStore().updateFileTransfer(id, 0.5, false, std::nullopt);
    open(5);
    EXPECT_EQ(all("transfer").at(0)->property("percentage").toString(), "50%");
}

TEST_F(MainWindowViewTest, AMinimisedWindowComesBackToTheFront) {
    ContentView& window = open(0);
    window.setWindowStates(Qt::WindowMinimized);
    settle();
    program.delegate().showSettings(0);
    settle();
    EXPECT_FALSE(window.windowStates() & Qt::WindowMinimized);
    EXPECT_EQ(on.application.policy, ActivationPolicy::regular);
}

TEST_F(MainWindowViewTest, FilesHandedOverOpenTheFileDropTab) {
    program.delegate().handleSendToAndroidService(
        {.hasTypes = true, .hasFileUrls = true, .urls = std::vector<std::filesystem::path>{"/nowhere/a"}});
    ASSERT_TRUE(wait([] { return mainWindow() != nullptr; }));
    settle();
    EXPECT_EQ(shownFile(), "FileDropTab.qml");
}

TEST_F(MainWindowViewTest, FollowsTheColoursOfTheDesktop) {
    const QPalette before = QGuiApplication::palette();
    open(0);
    QPalette dark;
    dark.setColor(QPalette::Window, Qt::black);
    QGuiApplication::setPalette(dark);
    settle();
    const QColor darkText =
        text("label").isEmpty() ? QColor() : part("localIP")->property("color").value<QColor>();
    EXPECT_GT(darkText.lightness(), 200);
    QPalette light;
    light.setColor(QPalette::Window, Qt::white);
    QGuiApplication::setPalette(light);
    settle();
    EXPECT_LT(part("localIP")->property("color").value<QColor>().lightness(), 60);
    QGuiApplication::setPalette(before);
}

TEST_F(MainWindowViewTest, AWindowThatOpensOnTheMessagesAsksForThemAndSoDoesTheTab) {
    open(2);
    const std::string sms = R"({"action":"get_sms_history"})";
    const std::string calls = R"({"action":"get_call_history"})";
    EXPECT_THAT(takeSent(), ElementsAre(sms, calls, sms, calls));
}

TEST_F(MainWindowViewTest, TheDividerOfTheSidebarCanBeDragged) {
    ContentView& window = open(0);
    const auto sidebarEnd = [&] { return part("detail")->mapToScene({}).x(); };
    const auto drag = [&](int from, int to) {
        QTest::mousePress(&window, Qt::LeftButton, {}, {from, 300});
        QTest::mouseMove(&window, {(from + to) / 2, 300});
        QTest::mouseMove(&window, {to, 300});
        QTest::mouseRelease(&window, Qt::LeftButton, {}, {to, 300});
        settle();
    };
    EXPECT_EQ(sidebarEnd(), 200);
    drag(200, 260);
    EXPECT_EQ(sidebarEnd(), 260);
    drag(260, 150);
    EXPECT_EQ(sidebarEnd(), 200) << "the least width";
    drag(200, 40);
    EXPECT_EQ(state().columnVisibility.get(), ColumnVisibility::detailOnly);
    EXPECT_FALSE(shows("sidebar"));
    EXPECT_EQ(sidebarEnd(), 0);
    drag(2, 240);
    EXPECT_TRUE(shows("sidebar"));
    EXPECT_EQ(sidebarEnd(), 240);
}

TEST_F(MainWindowViewTest, TheSidebarFollowsTheColumnVisibility) {
    open(0);
    state().columnVisibility.set(ColumnVisibility::detailOnly);
    settle();
    EXPECT_FALSE(shows("sidebar"));
    state().columnVisibility.set(ColumnVisibility::all);
    settle();
    EXPECT_TRUE(shows("sidebar"));
}

} // namespace
} // namespace velloway::test
