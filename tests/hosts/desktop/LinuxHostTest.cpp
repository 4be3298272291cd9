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

TEST(LinuxHostName, is_the_one_that_the_user_gave) {
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

TEST(LinuxHostName, is_else_the_name_on_the_network_without_its_domain) {
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

TEST_F(LinuxHostEnvironment, the_locale_is_the_one_that_dates_follow_in_the_form_that_icu_knows) {
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

TEST_F(LinuxHostEnvironment, the_time_zone_has_its_long_name) {
    ::setenv("TZ", "Europe/Berlin", 1);
    EXPECT_EQ(host.timeZone(), "Europe/Berlin");
    ::unsetenv("TZ");
    EXPECT_FALSE(host.timeZone().empty());
}

TEST_F(LinuxHostEnvironment, the_downloads_folder_is_the_users_own_and_is_made_when_missing) {
    const std::filesystem::path config = std::getenv("XDG_CONFIG_HOME");
    const std::filesystem::path home = std::getenv("HOME");
    EXPECT_EQ(host.downloadsDirectory(), home / "Downloads");
    EXPECT_TRUE(std::filesystem::is_directory(home / "Downloads"));
    writeText(config / "user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"$HOME/Heruntergeladenes Zeug\"\n");
    EXPECT_EQ(host.downloadsDirectory(), home / "Heruntergeladenes Zeug");
    EXPECT_TRUE(std::filesystem::is_directory(home / "Heruntergeladenes Zeug"));
    std::filesystem::remove(config / "user-dirs.dirs");
}

TEST(LinuxHostNetwork, lists_the_loopback_with_its_flags_and_address) {
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

TEST(LinuxHostNetwork, knows_how_interfaces_are_named_here) {
    EXPECT_THAT(LinuxHost().interfacePrefixes(), ElementsAre("en", "eth", "wl"));
}

TEST(LinuxHostClock, tells_the_present_time) {
    const auto before = std::chrono::system_clock::now();
    const Instant now = LinuxHost().now();
    EXPECT_GE(now, before);
    EXPECT_LE(now, std::chrono::system_clock::now());
}

} // namespace
} // namespace velloway::test
