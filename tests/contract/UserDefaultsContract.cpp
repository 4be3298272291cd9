#include "desktop/TemporaryFolder.h"
#include "fakes/FakeUserDefaults.h"
#include "hosts/linux/desktop/LinuxUserDefaults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace velloway::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class UserDefaultsContract : public testing::TestWithParam<bool> {
protected:
    UserDefaultsContract() {
        if (GetParam()) {
            defaults = std::make_unique<LinuxUserDefaults>(folder.path() / "deep" / "velloway.conf");
        } else {
            defaults = std::make_unique<FakeUserDefaults>();
        }
    }

    TemporaryFolder folder;
    std::unique_ptr<UserDefaults> defaults;
};

TEST_P(UserDefaultsContract, WhatWasNeverStoredIsAbsentAndReadsAsZero) {
    EXPECT_FALSE(defaults->has("port"));
    EXPECT_EQ(defaults->integer("port"), 0);
}

TEST_P(UserDefaultsContract, AStoredIntegerReadsBackAlsoAtTheEndsOfItsRange) {
    for (const std::int64_t value :
         {std::int64_t{0}, std::int64_t{8765}, std::int64_t{-1}, std::numeric_limits<std::int64_t>::min(),
          std::numeric_limits<std::int64_t>::max()}) {
        defaults->setInteger("port", value);
        EXPECT_TRUE(defaults->has("port"));
        EXPECT_EQ(defaults->integer("port"), value);
    }
}

TEST_P(UserDefaultsContract, ObserversHearEveryWriteOfTheirKeyAlsoOfAnEqualValue) {
    std::vector<std::int64_t> heard;
    const Subscription subscription =
        defaults->observe("selectedSettingsTab", [&](std::int64_t value) { heard.push_back(value); });
    defaults->setInteger("selectedSettingsTab", 4);
    defaults->setInteger("selectedSettingsTab", 4);
    defaults->setInteger("port", 9);
    EXPECT_THAT(heard, ElementsAre(4, 4));
}

TEST_P(UserDefaultsContract, TheValueIsInPlaceWhenObserversHearOfIt) {
    std::int64_t read = 0;
    const Subscription subscription =
        defaults->observe("port", [&](std::int64_t) { read = defaults->integer("port"); });
    defaults->setInteger("port", 7);
    EXPECT_EQ(read, 7);
}

TEST_P(UserDefaultsContract, AnObserverThatHasLeftHearsNothing) {
    int calls = 0;
    Subscription subscription = defaults->observe("port", [&](std::int64_t) { ++calls; });
    defaults->setInteger("port", 1);
    subscription.reset();
    defaults->setInteger("port", 2);
    EXPECT_EQ(calls, 1);
}

TEST_P(UserDefaultsContract, AnObserverMayWriteAnotherKey) {
    const Subscription subscription =
        defaults->observe("a", [&](std::int64_t value) { defaults->setInteger("b", value + 1); });
    defaults->setInteger("a", 1);
    EXPECT_EQ(defaults->integer("b"), 2);
}

INSTANTIATE_TEST_SUITE_P(, UserDefaultsContract, testing::Bool(),
                         [](const auto& it) { return std::string(it.param ? "Linux" : "Fake"); });

class LinuxUserDefaultsTest : public testing::Test {
protected:
    TemporaryFolder folder;
    std::filesystem::path file = folder.path() / "velloway.conf";
};

TEST_F(LinuxUserDefaultsTest, ValuesOutliveTheObjectInAReadableFile) {
    { LinuxUserDefaults(file).setInteger("port", 4321); }
    EXPECT_EQ(LinuxUserDefaults(file).integer("port"), 4321);
    EXPECT_THAT(readText(file), HasSubstr("port=4321"));
}

TEST_F(LinuxUserDefaultsTest, AWriteIsInTheFileAtOnce) {
    LinuxUserDefaults defaults(file);
    defaults.setInteger("port", 4321);
    EXPECT_THAT(readText(file), HasSubstr("port=4321"));
}

TEST_F(LinuxUserDefaultsTest, KeysOfOthersStayInTheFile) {
    writeText(file, "[General]\nport=1\nother=text\n[Group]\nx=y\n");
    LinuxUserDefaults(file).setInteger("port", 2);
    EXPECT_THAT(readText(file), HasSubstr("other=text"));
    EXPECT_THAT(readText(file), HasSubstr("x=y"));
    EXPECT_THAT(readText(file), HasSubstr("port=2"));
}

TEST_F(LinuxUserDefaultsTest, WhatIsNotAnIntegerIsThereButReadsAsZero) {
    for (const char* text :
         {"abc", "12x", "12.5", "0x10", "1 2", "\"\"", "1,2", "@Invalid()", "true", "nan", "inf", "+", "+-1"}) {
        writeText(file, std::string("[General]\nport=") + text + "\n");
        const LinuxUserDefaults defaults(file);
        EXPECT_EQ(defaults.integer("port"), 0) << text;
        EXPECT_TRUE(defaults.has("port")) << text;
    }
}

TEST_F(LinuxUserDefaultsTest, AnIntegerMayBeWrittenInAnyWayAndBeOfAnySize) {
    const std::pair<const char*, std::int64_t> cases[] = {
        {"+9124", 9124},
        {"9123.0", 9123},
        {"-9123.0", -9123},
        {"9.123e3", 9123},
        {"09123", 9123},
        {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
        {"9223372036854775808", std::numeric_limits<std::int64_t>::max()},
        {"99999999999999999999", std::numeric_limits<std::int64_t>::max()},
        {"1e300", std::numeric_limits<std::int64_t>::max()},
        {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
        {"-99999999999999999999", std::numeric_limits<std::int64_t>::min()},
    };
    for (const auto& [text, value] : cases) {
        // A file of its own each: the toolkit takes one of the same size and time for unchanged.
        const std::filesystem::path each = file.parent_path() / (std::string("port ") + text);
        writeText(each, std::string("[General]\nport=") + text + "\n");
        EXPECT_EQ(LinuxUserDefaults(each).integer("port"), value) << text;
    }
}

TEST_F(LinuxUserDefaultsTest, ABrokenFileCountsForWhatCanBeReadOfIt) {
    writeText(file, std::string("\x00\xff[[[\n=\n[General\nport=5\n[General]\nport=77\n\x01\x02", 44));
    LinuxUserDefaults defaults(file);
    defaults.setInteger("port", 8);
    EXPECT_EQ(defaults.integer("port"), 8);
}

TEST_F(LinuxUserDefaultsTest, WithoutAPlaceToWriteTheValuesLiveOnInMemory) {
    writeText(folder.path() / "file", "no folder");
    LinuxUserDefaults defaults(folder.path() / "file" / "velloway.conf");
    std::int64_t heard = 0;
    const Subscription subscription = defaults.observe("port", [&](std::int64_t value) { heard = value; });
    defaults.setInteger("port", 8);
    EXPECT_EQ(defaults.integer("port"), 8);
    EXPECT_EQ(heard, 8);
}

TEST_F(LinuxUserDefaultsTest, AFolderInThePlaceOfTheFileDoesNoHarm) {
    std::filesystem::create_directories(file);
    LinuxUserDefaults defaults(file);
    EXPECT_EQ(defaults.integer("port"), 0);
    defaults.setInteger("port", 3);
    EXPECT_EQ(defaults.integer("port"), 3);
}

TEST_F(LinuxUserDefaultsTest, AnyThreadMayReadWhileTheMainThreadWrites) {
    LinuxUserDefaults defaults(file);
    bool isAscending = true;
    std::thread reader([&] {
        std::int64_t last = 0;
        while (last < 20) {
            const std::int64_t now = defaults.integer("port");
            isAscending = isAscending && now >= last;
            last = now;
        }
    });
    for (int value = 1; value <= 20; ++value) {
        defaults.setInteger("port", value);
    }
    reader.join();
    EXPECT_TRUE(isAscending);
}

TEST_F(LinuxUserDefaultsTest, TheFileLiesInTheFolderOfSettings) {
    EXPECT_EQ(LinuxUserDefaults::defaultFile(),
              std::filesystem::path(std::getenv("XDG_CONFIG_HOME")) / "velloway" / "velloway.conf");
}

} // namespace
} // namespace velloway::test
