#include "hosts/linux/desktop/LinuxHost.h"
#include "desktop/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <sys/socket.h>
#include <unistd.h>

namespace velloway::test {
namespace {

using testing::ElementsAre;

TEST(LinuxHostName, IsTheOneThatTheUserGave) {
    const TemporaryFolder folder;
    const std::filesystem::path file = folder.path() / "machine-info";
    const struct {
        const char* text;
        const char* name;
    } cases[] = {
        {"PRETTY_HOSTNAME=\"Anna's Desk\"\n", "Anna's Desk"},
        {"ICON_NAME=computer\nPRETTY_HOSTNAME=Büro\n", "Büro"},
        {"PRETTY_HOSTNAME='single quotes'", "single quotes"},
        {"PRETTY_HOSTNAME=\"a \\\"b\\\" \\$c\"\n", "a \"b\" $c"},
    };
    for (const auto& each : cases) {
        writeText(file, each.text);
        EXPECT_EQ(LinuxHost(file).localizedName(), each.name);
    }
}

TEST(LinuxHostName, IsElseTheNameOnTheNetworkWithoutItsDomain) {
    std::array<char, 256> name{};
    ASSERT_EQ(::gethostname(name.data(), name.size() - 1), 0);
    const std::string expected = std::string(name.data()).substr(0, std::string(name.data()).find('.'));
    const TemporaryFolder folder;
    EXPECT_EQ(LinuxHost(folder.path() / "nothing").localizedName(), expected);
    writeText(folder.path() / "empty", "PRETTY_HOSTNAME=\"\"\n");
    EXPECT_EQ(LinuxHost(folder.path() / "empty").localizedName(), expected);
}

class LinuxHostEnvironment : public testing::Test {
protected:
    ~LinuxHostEnvironment() override {
        for (const char* name : {"LC_TIME", "LANG", "TZ"}) {
            ::unsetenv(name);
        }
        ::setenv("LC_ALL", "C.UTF-8", 1);
    }

    LinuxHost host;
};

TEST_F(LinuxHostEnvironment, TheLocaleIsTheOneThatDatesFollowInTheFormThatIcuKnows) {
    const struct {
        const char* given;
        const char* locale;
    } cases[] = {
        {"de_DE.UTF-8", "de_DE"},
        {"C.UTF-8", "en_US_POSIX"},
        {"POSIX", "en_US_POSIX"},
        {"sr_RS@latin", "sr_Latn_RS"},
        {"sr@latin", "sr_Latn"},
        {"de_DE.ISO-8859-15@euro", "de_DE"},
        {"uz_UZ.UTF-8@cyrillic", "uz_Cyrl_UZ"},
        {"ja", "ja"},
    };
    for (const auto& each : cases) {
        ::setenv("LC_ALL", each.given, 1);
        EXPECT_EQ(host.locale(), each.locale) << each.given;
    }
    ::setenv("LC_ALL", "", 1);
    ::setenv("LANG", "en_US.UTF-8", 1);
    EXPECT_EQ(host.locale(), "en_US");
    ::setenv("LC_TIME", "en_GB.UTF-8", 1);
    EXPECT_EQ(host.locale(), "en_GB");
    ::unsetenv("LC_TIME");
    ::unsetenv("LANG");
    EXPECT_EQ(host.locale(), "en_US_POSIX");
}

TEST_F(LinuxHostEnvironment, TheTimeZoneHasItsLongName) {
    ::setenv("TZ", "Europe/Berlin", 1);
    EXPECT_EQ(host.timeZone(), "Europe/Berlin");
    ::unsetenv("TZ");
    EXPECT_FALSE(host.timeZone().empty());
}

TEST_F(LinuxHostEnvironment, TheDownloadsFolderIsTheUsersOwnAndIsMadeWhenMissing) {
    const std::filesystem::path config = std::getenv("XDG_CONFIG_HOME");
    const std::filesystem::path home = std::getenv("HOME");
    EXPECT_EQ(host.downloadsDirectory(), home / "Downloads");
    EXPECT_TRUE(std::filesystem::is_directory(home / "Downloads"));
    writeText(config / "user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"$HOME/Heruntergeladenes Zeug\"\n");
    EXPECT_EQ(host.downloadsDirectory(), home / "Heruntergeladenes Zeug");
    EXPECT_TRUE(std::filesystem::is_directory(home / "Heruntergeladenes Zeug"));
    std::filesystem::remove(config / "user-dirs.dirs");
}

TEST(LinuxHostNetwork, ListsTheLoopbackWithItsFlagsAndAddress) {
    const auto interfaces = LinuxHost().networkInterfaces();
    ASSERT_TRUE(interfaces.has_value());
    const auto loopback =
        std::find_if(interfaces->begin(), interfaces->end(), [](const NetworkInterface& entry) {
            return entry.name == "lo" && entry.addressFamily == AF_INET;
        });
    ASSERT_NE(loopback, interfaces->end());
    EXPECT_EQ(loopback->flags & 0x49u, 0x49u);
    EXPECT_EQ(loopback->numericAddress, "127.0.0.1");
}

TEST(LinuxHostNetwork, KnowsHowInterfacesAreNamedHere) {
    EXPECT_THAT(LinuxHost().interfacePrefixes(), ElementsAre("en", "eth", "wl"));
}

TEST(LinuxHostClock, TellsThePresentTime) {
    const auto before = std::chrono::system_clock::now();
    const Instant now = LinuxHost().now();
    EXPECT_GE(now, before);
    EXPECT_LE(now, std::chrono::system_clock::now());
}

} // namespace
} // namespace velloway::test
