#include "hosts/linux/input/X11Connection.h"
#include "desktop/WaitFor.h"

#include <gtest/gtest.h>

#include <QByteArray>
#include <QProcess>

namespace velloway::test {

namespace {

/// An X server whose screens differ in width.
class ManyScreens {
public:
    ManyScreens() {
        server_.start("Xvfb", {"-displayfd", "1", "-noreset", "-nolisten", "tcp", "-screen", "0", "600x400x24",
                               "-screen", "1", "700x400x24", "-screen", "2", "800x400x24"});
        if (waitFor([this] { return server_.canReadLine(); })) {
            display_ = ':' + server_.readLine().trimmed();
        }
    }
    ~ManyScreens() {
        server_.terminate();
        server_.waitForFinished();
    }
    ManyScreens(const ManyScreens&) = delete;
    ManyScreens& operator=(const ManyScreens&) = delete;

    const QByteArray& display() const { return display_; }

private:
    QProcess server_;
    QByteArray display_;
};

int widthOfRoot(X11Connection& connection) {
    const X11Reply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(
        connection.get(), xcb_get_geometry(connection.get(), connection.root()), nullptr));
    return geometry ? geometry->width : 0;
}

TEST(X11Screens, TheScreenOfTheDisplayIsTheOneThatIsUsed) {
    const ManyScreens server;
    ASSERT_FALSE(server.display().isEmpty());
    const QByteArray before = qgetenv("DISPLAY");
    for (const auto& [screen, width] : {std::pair("", 600), {".0", 600}, {".1", 700}, {".2", 800}}) {
        qputenv("DISPLAY", server.display() + screen);
        X11Connection connection;
        EXPECT_TRUE(connection.isUsable()) << screen;
        EXPECT_EQ(widthOfRoot(connection), width) << screen;
    }
    qputenv("DISPLAY", server.display() + ".3");
    EXPECT_FALSE(X11Connection().isUsable());
    qputenv("DISPLAY", before);
}

} // namespace

} // namespace velloway::test
