#include "hosts/linux/desktop/LinuxWorkspace.h"
#include "desktop/TemporaryFolder.h"
#include "desktop/WaitFor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace velloway::test {
namespace {

using testing::IsEmpty;

/// A service that writes down the calls it gets and answers them all alike.
class RecordingService : public QDBusVirtualObject {
public:
    RecordingService(const QString& name, const QString& path, bool answersWithError)
        : bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, name)),
          name_(name),
          answersWithError_(answersWithError) {
        bus_.registerVirtualObject(path, this);
        isThere_ = bus_.registerService(name);
    }
    ~RecordingService() override { QDBusConnection::disconnectFromBus(name_); }

    bool isThere() const { return isThere_; }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        calls.push_back(message);
        connection.send(answersWithError_ ? message.createErrorReply("org.example.No", "no")
                                          : message.createReply());
        return true;
    }

    std::vector<QDBusMessage> calls;

private:
    QDBusConnection bus_;
    QString name_;
    bool answersWithError_;
    bool isThere_ = false;
};

class LinuxWorkspaceTest : public testing::Test {
protected:
    LinuxWorkspaceTest() {
        std::filesystem::create_directory(folder.path() / "bin");
        oldPath = std::getenv("PATH");
        ::setenv("PATH", ((folder.path() / "bin").string() + ":" + oldPath).c_str(), 1);
    }
    ~LinuxWorkspaceTest() override {
        ::setenv("PATH", oldPath.c_str(), 1);
        ::unsetenv("XDG_CURRENT_DESKTOP");
    }

    /// A program of this name that writes down its arguments, one a line.
    void install(const std::string& name) {
        const std::filesystem::path file = folder.path() / "bin" / name;
        writeText(file, "#!/bin/sh\nprintf '%s\\n' \"" + name + "\" \"$@\" >'" +
                            (folder.path() / "part").string() + "'\nmv '" + (folder.path() / "part").string() +
                            "' '" + started().string() + "'\n");
        std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    }
    std::filesystem::path started() const { return folder.path() / "started"; }
    /// What was started with which arguments; empty when nothing was.
    std::string whatStarted(std::chrono::milliseconds bound = std::chrono::seconds(10)) {
        waitFor([this] { return std::filesystem::exists(started()); }, bound);
        return readText(started());
    }

    std::unique_ptr<RecordingService> portal(bool answersWithError = false) {
        return std::make_unique<RecordingService>("org.freedesktop.portal.Desktop",
                                                  "/org/freedesktop/portal/desktop", answersWithError);
    }
    std::unique_ptr<RecordingService> fileManager(bool answersWithError = false) {
        return std::make_unique<RecordingService>("org.freedesktop.FileManager1",
                                                  "/org/freedesktop/FileManager1", answersWithError);
    }

    TemporaryFolder folder;
    std::string oldPath;
    LinuxWorkspace workspace;
};

constexpr std::string_view awkward = "https://example.org/?a=1&b=$(touch x);'\"`|ä";

TEST_F(LinuxWorkspaceTest, OpensAnAddressByThePortal) {
    install("xdg-open");
    const auto service = portal();
    ASSERT_TRUE(service->isThere());
    workspace.open(awkward);
    ASSERT_TRUE(waitFor([&] { return service->calls.size() == 1; }));
    const QDBusMessage& call = service->calls.front();
    EXPECT_EQ(call.interface(), "org.freedesktop.portal.OpenURI");
    EXPECT_EQ(call.member(), "OpenURI");
    EXPECT_EQ(call.arguments().at(1).toString().toStdString(), awkward);
    EXPECT_THAT(whatStarted(std::chrono::milliseconds(100)), IsEmpty());
}

TEST_F(LinuxWorkspaceTest, OpensAnAddressAsOneArgumentWhereThereIsNoPortal) {
    install("xdg-open");
    workspace.open(awkward);
    EXPECT_EQ(whatStarted(), "xdg-open\n" + std::string(awkward) + "\n");
}

TEST_F(LinuxWorkspaceTest, OpensAnAddressByProgramWhenThePortalRefuses) {
    install("xdg-open");
    const auto service = portal(true);
    workspace.open("mailto:a@example.org");
    EXPECT_EQ(whatStarted(), "xdg-open\nmailto:a@example.org\n");
}

TEST_F(LinuxWorkspaceTest, DoesNotWaitForAnAnswer) {
    install("xdg-open");
    const auto service = portal();
    workspace.open("https://example.org");
    EXPECT_THAT(service->calls, IsEmpty());
}

TEST_F(LinuxWorkspaceTest, ShowsAFileInTheFileManager) {
    const auto service = fileManager();
    workspace.activateFileViewerSelecting("/tmp/some ä file");
    ASSERT_TRUE(waitFor([&] { return service->calls.size() == 1; }));
    EXPECT_EQ(service->calls.front().member(), "ShowItems");
    EXPECT_EQ(service->calls.front().arguments().at(0).toStringList(),
              QStringList{"file:///tmp/some%20%C3%A4%20file"});
}

TEST_F(LinuxWorkspaceTest, AsksThePortalForTheFolderWhenThereIsNoFileManager) {
    const auto service = portal();
    writeText(folder.path() / "file", "x");
    workspace.activateFileViewerSelecting(folder.path() / "file");
    ASSERT_TRUE(waitFor([&] { return service->calls.size() == 1; }));
    EXPECT_EQ(service->calls.front().member(), "OpenDirectory");
    EXPECT_EQ(service->calls.front().signature(), "sha{sv}");
}

TEST_F(LinuxWorkspaceTest, OpensTheFolderWhenNobodyElseCanShowTheFile) {
    install("xdg-open");
    const auto refusing = fileManager(true);
    const auto refusingToo = portal(true);
    writeText(folder.path() / "file", "x");
    workspace.activateFileViewerSelecting(folder.path() / "file");
    EXPECT_EQ(whatStarted(), "xdg-open\nfile://" + folder.path().string() + "\n");
}

TEST_F(LinuxWorkspaceTest, OpensTheFolderOfAFileThatHasGone) {
    install("xdg-open");
    const auto service = portal();
    workspace.activateFileViewerSelecting(folder.path() / "gone");
    EXPECT_EQ(whatStarted(), "xdg-open\nfile://" + folder.path().string() + "\n");
}

TEST_F(LinuxWorkspaceTest, OpensThePageOfTheSettingsThatThisDesktopHas) {
    const struct {
        const char* desktop;
        std::string notifications;
        std::string accessibility;
    } cases[] = {
        {"ubuntu:GNOME", "gnome-control-center\nnotifications\n", "gnome-control-center\nuniversal-access\n"},
        {"Budgie", "budgie-control-center\nnotifications\n", "budgie-control-center\nuniversal-access\n"},
        {"KDE", "systemsettings\nkcm_notifications\n", "systemsettings\nkcm_access\n"},
        {"KDE", "systemsettings5\nkcm_notifications\n", "systemsettings5\nkcm_access\n"},
        {"X-Cinnamon", "cinnamon-settings\nnotifications\n", "cinnamon-settings\naccessibility\n"},
        {"XFCE", "xfce4-notifyd-config\n", "xfce4-accessibility-settings\n"},
        {"MATE", "mate-notification-properties\n", "mate-at-properties\n"},
        {"LXQt", "lxqt-config-notificationd\n", "lxqt-config-input\n"},
    };
    for (const auto& each : cases) {
        ::setenv("XDG_CURRENT_DESKTOP", each.desktop, 1);
        for (const auto& [pane, expected] : {std::pair(SettingsPane::notifications, each.notifications),
                                             {SettingsPane::accessibility, each.accessibility}}) {
            const std::string program = expected.substr(0, expected.find('\n'));
            install(program.c_str());
            workspace.openSettings(pane);
            EXPECT_EQ(whatStarted(), expected);
            std::filesystem::remove(started());
            std::filesystem::remove(folder.path() / "bin" / program);
        }
    }
}

TEST_F(LinuxWorkspaceTest, OpensNoSettingsOnADesktopThatItDoesNotKnow) {
    install("gnome-control-center");
    ::setenv("XDG_CURRENT_DESKTOP", "Unheard-Of", 1);
    workspace.openSettings(SettingsPane::notifications);
    EXPECT_THAT(whatStarted(std::chrono::milliseconds(100)), IsEmpty());
}

} // namespace
} // namespace velloway::test
