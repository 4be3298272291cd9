#include "hosts/linux/desktop/DesktopColors.h"
#include "desktop/WaitFor.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDBusMessage>
#include <QDBusVirtualObject>

namespace velloway::test {
namespace {

/// A portal that knows the one setting, in the form of the given answer.
class FakeSettingsPortal : public QDBusVirtualObject {
public:
    FakeSettingsPortal()
        : bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("settings portal"))) {
        bus_.registerVirtualObject(QStringLiteral("/org/freedesktop/portal/desktop"), this);
        bus_.registerService(QStringLiteral("org.freedesktop.portal.Desktop"));
    }
    ~FakeSettingsPortal() override { QDBusConnection::disconnectFromBus(QStringLiteral("settings portal")); }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (message.member() != "Read" ||
            message.arguments() != QVariantList{"org.freedesktop.appearance", "color-scheme"}) {
            return false;
        }
        ++reads;
        const QVariant value = QVariant::fromValue(QDBusVariant(QVariant::fromValue(QDBusVariant(scheme))));
        return connection.send(message.createReply(value));
    }

    void change(const char* space, const char* key, unsigned value) {
        QDBusMessage signal = QDBusMessage::createSignal("/org/freedesktop/portal/desktop",
                                                         "org.freedesktop.portal.Settings", "SettingChanged");
        signal << QString::fromLatin1(space) << QString::fromLatin1(key)
               << QVariant::fromValue(QDBusVariant(value));
        bus_.send(signal);
    }
    void choose(unsigned value) { change("org.freedesktop.appearance", "color-scheme", value); }

    unsigned scheme = 0;
    int reads = 0;

private:
    QDBusConnection bus_;
};

bool isDark() {
    return QApplication::palette().color(QPalette::Window).lightness() < 128 &&
           QApplication::palette().color(QPalette::WindowText).lightness() > 128;
}

class DesktopColorsTest : public testing::Test {
protected:
    ~DesktopColorsTest() override { QApplication::setPalette(before_); }

private:
    QPalette before_ = QApplication::palette();
};

TEST_F(DesktopColorsTest, TakesTheDarkColoursThatTheDesktopPrefers) {
    FakeSettingsPortal portal;
    portal.scheme = 1;
    DesktopColors colors;
    EXPECT_FALSE(isDark()) << "nobody waits for the answer";
    EXPECT_TRUE(waitFor(isDark));
}

TEST_F(DesktopColorsTest, FollowsTheChoiceOfTheUser) {
    FakeSettingsPortal portal;
    DesktopColors colors;
    ASSERT_TRUE(waitFor([&] { return portal.reads == 1; }));
    portal.choose(1);
    EXPECT_TRUE(waitFor(isDark));
    portal.choose(2);
    EXPECT_TRUE(waitFor([] { return !isDark(); }));
    portal.choose(1);
    EXPECT_TRUE(waitFor(isDark));
    portal.choose(0);
    EXPECT_TRUE(waitFor([] { return !isDark(); }));
}

TEST_F(DesktopColorsTest, ADarkDesktopKeepsItsOwnDarkColours) {
    for (const auto& [lightness, isKept] : {std::pair(0x2a, true), {127, true}, {128, false}, {0xef, false}}) {
        const QColor ground(lightness, lightness, lightness);
        QApplication::setPalette(QPalette(ground, ground));
        FakeSettingsPortal portal;
        DesktopColors colors;
        ASSERT_TRUE(waitFor([&] { return portal.reads == 1; }));
        processPending();
        portal.choose(1);
        ASSERT_TRUE(waitFor(isDark));
        EXPECT_EQ(QApplication::palette().color(QPalette::Window) == ground, isKept) << lightness;
        portal.choose(2);
        EXPECT_TRUE(waitFor([] { return !isDark(); })) << lightness;
    }
}

TEST_F(DesktopColorsTest, TheDarkColoursCanBeReadOnEachOther) {
    FakeSettingsPortal portal;
    portal.scheme = 1;
    DesktopColors colors;
    ASSERT_TRUE(waitFor(isDark));
    const QPalette palette = QApplication::palette();
    const auto lightness = [&](QPalette::ColorRole role, QPalette::ColorGroup group = QPalette::Active) {
        return palette.color(group, role).lightness();
    };
    for (const auto role :
         {QPalette::Window, QPalette::Base, QPalette::AlternateBase, QPalette::Button, QPalette::ToolTipBase}) {
        EXPECT_LT(lightness(role), 70) << role;
    }
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText,
                            QPalette::HighlightedText, QPalette::BrightText}) {
        EXPECT_GT(lightness(role), 230) << role;
    }
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        EXPECT_NEAR(lightness(role, QPalette::Disabled), 136, 20) << role;
    }
    EXPECT_NEAR(lightness(QPalette::PlaceholderText), 136, 20);
    EXPECT_EQ(palette.color(QPalette::Highlight), QColor(0x0a, 0x84, 0xff));
    EXPECT_GT(lightness(QPalette::Link), 150);
    EXPECT_GT(palette.color(QPalette::Link).blue(), palette.color(QPalette::Link).red());
}

TEST_F(DesktopColorsTest, OtherSettingsChangeNothing) {
    FakeSettingsPortal portal;
    DesktopColors colors;
    ASSERT_TRUE(waitFor([&] { return portal.reads == 1; }));
    portal.choose(1);
    ASSERT_TRUE(waitFor(isDark));
    // Either would bring the light colours back if it were taken for the colour scheme.
    portal.change("org.freedesktop.appearance", "contrast", 0);
    portal.change("org.example", "color-scheme", 0);
    portal.scheme = 1;
    const DesktopColors second;
    ASSERT_TRUE(waitFor([&] { return portal.reads == 2; }));
    processPending();
    EXPECT_TRUE(isDark());
}

TEST_F(DesktopColorsTest, WithoutAPortalTheColoursStay) {
    const QPalette before = QApplication::palette();
    DesktopColors colors;
    processPending();
    EXPECT_EQ(QApplication::palette(), before);
}

} // namespace
} // namespace velloway::test
