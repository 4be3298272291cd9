#include "hosts/linux/desktop/LinuxApplication.h"
#include "desktop/WaitFor.h"
#include "hosts/qt/QtMainQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QWidget>
#include <QWindow>

#include <string>
#include <vector>

namespace velloway::test {
namespace {

using testing::ElementsAre;

const Alert alert{.style = Alert::Style::warning,
                  .messageText = "Permission <b>Required</b>",
                  .informativeText = "First line.\n\nOpen Settings → Notifications & more.",
                  .buttons = {"Open System Settings", "Not Now"}};

class LinuxApplicationTest : public testing::Test {
protected:
    /// Runs the alert and does this to it once it is there.
    int runAlert(const std::function<void(QMessageBox&)>& act) {
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                timer.stop();
                act(*box);
            }
        });
        timer.start(5);
        return application.runModal(alert);
    }

    LinuxApplication application;
};

class CountingDelegate : public ApplicationDelegate {
public:
    void applicationDidFinishLaunching() override {}
    bool applicationShouldTerminateAfterLastWindowClosed() override { return false; }
    bool applicationShouldHandleReopen(bool) override { return true; }
    void applicationDidBecomeActive() override { ++activations; }

    int activations = 0;
};

// The first of the cases: it needs a process that is not in front yet.
TEST_F(LinuxApplicationTest, ReportsThatItHasComeToTheFront) {
    CountingDelegate delegate;
    application.setDelegate(&delegate);
    QWidget window;
    window.show();
    // There is no window manager that could do it.
    ASSERT_TRUE(waitFor([&] { return window.windowHandle()->isExposed(); }));
    QProcess::execute("xdotool", {"windowfocus", QString::number(window.winId())});
    EXPECT_TRUE(waitFor([&] { return delegate.activations > 0; }));
    const int activations = delegate.activations;
    window.hide();
    ASSERT_TRUE(waitFor([] { return QGuiApplication::applicationState() != Qt::ApplicationActive; }));
    EXPECT_EQ(delegate.activations, activations) << "it has left the front";
    application.setDelegate(nullptr);
    window.show();
    ASSERT_TRUE(waitFor([&] { return window.windowHandle()->isExposed(); }));
    QProcess::execute("xdotool", {"windowfocus", QString::number(window.winId())});
    EXPECT_TRUE(waitFor([] { return QGuiApplication::applicationState() == Qt::ApplicationActive; }));
    EXPECT_EQ(delegate.activations, activations) << "nobody asks any more";
}

TEST_F(LinuxApplicationTest, AnAlertShowsItsTextsAsTheyAre) {
    std::vector<std::string> shown;
    runAlert([&](QMessageBox& box) {
        shown = {box.text().toStdString(), box.informativeText().toStdString()};
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        EXPECT_EQ(box.icon(), QMessageBox::Warning);
        for (const QAbstractButton* button : box.buttons()) {
            shown.push_back(button->text().toStdString());
        }
        box.reject();
    });
    EXPECT_THAT(shown,
                ElementsAre(alert.messageText, alert.informativeText, "Open System Settings", "Not Now"));
}

TEST_F(LinuxApplicationTest, EachButtonAnswersByItsPlace) {
    for (const int place : {0, 1}) {
        EXPECT_EQ(runAlert([&](QMessageBox& box) { box.buttons().at(place)->click(); }), place);
    }
}

TEST_F(LinuxApplicationTest, EscapeAndClosingAnswerLikeTheSecondButton) {
    EXPECT_EQ(runAlert([](QMessageBox& box) {
                  QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
                  QApplication::sendEvent(&box, &escape);
              }),
              1);
    EXPECT_EQ(runAlert([](QMessageBox& box) { box.close(); }), 1);
}

TEST_F(LinuxApplicationTest, ReturnAnswersLikeTheFirstButton) {
    EXPECT_EQ(runAlert([](QMessageBox& box) {
                  QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
                  QApplication::sendEvent(&box, &enter);
              }),
              0);
}

TEST_F(LinuxApplicationTest, TheMainQueueGoesOnWhileAnAlertIsUp) {
    QtMainQueue queue;
    int answer = -1;
    bool ranInside = false;
    queue.async([&] { answer = application.runModal(alert); });
    queue.async([&] {
        ranInside = answer == -1 && QApplication::activeModalWidget() != nullptr;
        queue.asyncAfter(std::chrono::milliseconds(1), [] {
            qobject_cast<QMessageBox*>(QApplication::activeModalWidget())->buttons().at(0)->click();
        });
    });
    EXPECT_TRUE(waitFor([&] { return answer == 0; }));
    EXPECT_TRUE(ranInside);
}

TEST_F(LinuxApplicationTest, KnowsWhetherAWindowIsOnScreen) {
    EXPECT_FALSE(LinuxApplication::hasVisibleWindows());
    QWidget window;
    window.show();
    EXPECT_TRUE(LinuxApplication::hasVisibleWindows());
    window.hide();
    EXPECT_FALSE(LinuxApplication::hasVisibleWindows());
    QWidget popup(nullptr, Qt::Popup);
    popup.show();
    EXPECT_FALSE(LinuxApplication::hasVisibleWindows());
}

TEST_F(LinuxApplicationTest, KeepsTheActivationPolicy) {
    application.setActivationPolicy(ActivationPolicy::accessory);
    EXPECT_EQ(application.activationPolicy(), ActivationPolicy::accessory);
}

} // namespace
} // namespace velloway::test
