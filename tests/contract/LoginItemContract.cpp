#include "desktop/TemporaryFolder.h"
#include "fakes/FakeDesktop.h"
#include "hosts/linux/desktop/LinuxLoginItem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QProcess>

#include <memory>
#include <string>
#include <sys/stat.h>

namespace velloway::test {
namespace {

using testing::HasSubstr;
using testing::Not;

class LoginItemContract : public testing::TestWithParam<bool> {
protected:
    LoginItemContract() {
        if (GetParam()) {
            item = std::make_unique<LinuxLoginItem>("/bin/sh", folder.path() / "autostart");
        } else {
            item = std::make_unique<FakeLoginItem>();
        }
    }

    TemporaryFolder folder;
    std::unique_ptr<LoginItem> item;
};

TEST_P(LoginItemContract, IsNotRegisteredAtFirst) {
    EXPECT_EQ(item->status(), LoginItemStatus::notRegistered);
}

TEST_P(LoginItemContract, IsEnabledOnceRegisteredAndStaysSoWhenRegisteredAgain) {
    EXPECT_EQ(item->registerItem(), std::nullopt);
    EXPECT_EQ(item->status(), LoginItemStatus::enabled);
    EXPECT_EQ(item->registerItem(), std::nullopt);
    EXPECT_EQ(item->status(), LoginItemStatus::enabled);
}

TEST_P(LoginItemContract, IsNotRegisteredAfterItWasTakenOut) {
    item->registerItem();
    EXPECT_EQ(item->unregisterItem(), std::nullopt);
    EXPECT_EQ(item->status(), LoginItemStatus::notRegistered);
    EXPECT_EQ(item->unregisterItem(), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(, LoginItemContract, testing::Bool(),
                         [](const auto& it) { return std::string(it.param ? "Linux" : "Fake"); });

class LinuxLoginItemTest : public testing::Test {
protected:
    LinuxLoginItemTest() { std::filesystem::create_directories(autostart); }

    std::filesystem::path program(const std::string& name) {
        const std::filesystem::path path = folder.path() / name;
        std::filesystem::create_directories(path.parent_path());
        writeText(path, "#!/bin/sh\n");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }

    TemporaryFolder folder;
    std::filesystem::path autostart = folder.path() / "autostart";
    std::filesystem::path entry = autostart / "velloway.desktop";
};

TEST_F(LinuxLoginItemTest, TheEntryStartsTheProgramByItsQuotedPath) {
    const std::filesystem::path path = program("velloway");
    ASSERT_EQ(LinuxLoginItem(path, autostart).registerItem(), std::nullopt);
    EXPECT_THAT(readText(entry),
                HasSubstr("\nExec=env DESKTOP_AUTOSTART_ID=velloway \"" + path.string() + "\"\n"));
    EXPECT_THAT(readText(entry), HasSubstr("[Desktop Entry]\nType=Application\nName=Velloway\n"));
}

TEST_F(LinuxLoginItemTest, AwkwardPathsAreEscapedByBothRulesAndFoundAgain) {
    const struct {
        const char* name;
        const char* escaped;
    } cases[] = {
        {"with space/v", "with space/v"}, {"100%/v", "100%%/v"},      {"dollar$HOME/v", "dollar\\\\$HOME/v"},
        {"quote\"/v", "quote\\\\\"/v"},   {"tick`/v", "tick\\\\`/v"}, {"back\\slash/v", "back\\\\\\\\slash/v"},
        {"new\nline/v", "new\\nline/v"},  {"ümlaut/v", "ümlaut/v"},   {"apo'strophe;&|/v", "apo'strophe;&|/v"},
    };
    for (const auto& each : cases) {
        const std::filesystem::path path = program(each.name);
        LinuxLoginItem item(path, autostart);
        ASSERT_EQ(item.registerItem(), std::nullopt);
        EXPECT_THAT(readText(entry), HasSubstr("Exec=env DESKTOP_AUTOSTART_ID=velloway \"" +
                                               folder.path().string() + "/" + each.escaped + "\"\n"));
        EXPECT_EQ(item.status(), LoginItemStatus::enabled) << each.name;
    }
}

TEST_F(LinuxLoginItemTest, AnEntryThatTheUserOrTheDesktopTurnedOffIsNotRegistered) {
    for (const char* off : {"Hidden=true", "X-GNOME-Autostart-enabled=false", " Hidden = true "}) {
        writeText(entry, std::string("[Desktop Entry]\nType=Application\nExec=/bin/sh\n") + off + "\n");
        EXPECT_EQ(LinuxLoginItem("/bin/sh", autostart).status(), LoginItemStatus::notRegistered) << off;
    }
}

TEST_F(LinuxLoginItemTest, RegisteringTurnsOnAnEntryThatWasTurnedOff) {
    writeText(entry, "[Desktop Entry]\nType=Application\nExec=/bin/sh\nHidden=true\n");
    LinuxLoginItem item("/bin/sh", autostart);
    ASSERT_EQ(item.registerItem(), std::nullopt);
    EXPECT_EQ(item.status(), LoginItemStatus::enabled);
    EXPECT_THAT(readText(entry), Not(HasSubstr("Hidden")));
}

TEST_F(LinuxLoginItemTest, KeysOfOtherGroupsDoNotCount) {
    writeText(entry, "[Desktop Entry]\nType=Application\nExec=/bin/sh\n[Other]\nHidden=true\nExec=/nowhere\n");
    EXPECT_EQ(LinuxLoginItem("/bin/sh", autostart).status(), LoginItemStatus::enabled);
}

TEST_F(LinuxLoginItemTest, AnEntryForAProgramThatHasGoneIsNotFound) {
    const std::filesystem::path path = program("old/velloway");
    LinuxLoginItem item(path, autostart);
    item.registerItem();
    std::filesystem::remove(path);
    EXPECT_EQ(item.status(), LoginItemStatus::notFound);
}

TEST_F(LinuxLoginItemTest, AFailedRegistrationTellsWhyAndStaysOff) {
    writeText(folder.path() / "file", "no folder");
    LinuxLoginItem item("/bin/sh", folder.path() / "file");
    const std::optional<std::string> error = item.registerItem();
    ASSERT_TRUE(error.has_value());
    EXPECT_FALSE(error->empty());
    EXPECT_EQ(item.status(), LoginItemStatus::notRegistered);
}

TEST_F(LinuxLoginItemTest, ARemovalThatFailsTellsWhy) {
    std::filesystem::create_directories(entry / "in the way");
    const std::optional<std::string> error = LinuxLoginItem("/bin/sh", autostart).unregisterItem();
    ASSERT_TRUE(error.has_value());
    EXPECT_FALSE(error->empty());
}

TEST_F(LinuxLoginItemTest, LeavesNothingButTheEntryInTheFolder) {
    LinuxLoginItem("/bin/sh", autostart).registerItem();
    int files = 0;
    for ([[maybe_unused]] const auto& file : std::filesystem::directory_iterator(autostart)) {
        ++files;
    }
    EXPECT_EQ(files, 1);
}

TEST(LinuxLoginItemPlaces, FollowTheEnvironment) {
    EXPECT_EQ(LinuxLoginItem::autostartFolder(),
              std::filesystem::path(std::getenv("XDG_CONFIG_HOME")) / "autostart");
    EXPECT_EQ(LinuxLoginItem::ownProgram(), std::filesystem::read_symlink("/proc/self/exe"));
    ::setenv("APPIMAGE", "/apps/Velloway.AppImage", 1);
    EXPECT_EQ(LinuxLoginItem::ownProgram(), "/apps/Velloway.AppImage");
    ::setenv("APPIMAGE", "relative", 1);
    EXPECT_EQ(LinuxLoginItem::ownProgram(), std::filesystem::read_symlink("/proc/self/exe"));
    ::unsetenv("APPIMAGE");
}

} // namespace
} // namespace velloway::test
