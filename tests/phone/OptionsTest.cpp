#include "phone/Options.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace velloway::phone {
namespace {

TEST(Options, DefaultToThisComputer) {
    const Options options = parseOptions({});
    EXPECT_EQ(options.host, "127.0.0.1");
    EXPECT_EQ(options.port, 8765);
    EXPECT_TRUE(options.answers);
    EXPECT_TRUE(options.reconnects);
    EXPECT_FALSE(options.isScripted());
}

TEST(Options, TakeTheAddressInEveryForm) {
    struct {
        const char* address;
        const char* host;
        int port;
    } const forms[] = {{"ws://10.0.0.5:9000", "10.0.0.5", 9000},
                       {"ws://10.0.0.5", "10.0.0.5", 8765},
                       {"ws://desk.local:9000/", "desk.local", 9000},
                       {"ws://[fe80::1]:9000", "fe80::1", 9000},
                       {"ws://[::1]", "::1", 8765}};
    for (const auto& form : forms) {
        const Options options = parseOptions({form.address});
        EXPECT_EQ(options.host, form.host) << form.address;
        EXPECT_EQ(options.port, form.port) << form.address;
    }
}

TEST(Options, AreRefusedWhenTheyMeanNothing) {
    for (const std::vector<std::string>& words : {std::vector<std::string>{"--port", "66000"},
                                                  {"--port", "x"},
                                                  {"--port"},
                                                  {"--fast"},
                                                  {"--poll", "0"},
                                                  {"--poll", "-1"},
                                                  {"--command-limit", "inf"},
                                                  {"http://a"},
                                                  {"ws://:80"},
                                                  {"ws://a:80b"},
                                                  {"--exec"},
                                                  {"--connect-timeout", "soon"}}) {
        EXPECT_THROW(parseOptions(words), std::invalid_argument) << words[0];
    }
}

TEST(Options, OfADeviceMakeItStayAndSayHowOftenItLooks) {
    const Options options =
        parseOptions({"--device", "--name", "Tab", "--poll", "2.5", "--command-limit", "7"});
    EXPECT_TRUE(options.isDevice);
    EXPECT_TRUE(options.world.isDevice);
    EXPECT_TRUE(options.stay);
    EXPECT_EQ(options.device.name, "Tab");
    EXPECT_EQ(options.device.pollInterval, 2.5);
    EXPECT_EQ(options.device.commandLimit, 7);
    EXPECT_FALSE(parseOptions({}).world.isDevice);
    EXPECT_EQ(parseOptions({}).device.pollInterval, 10);
}

TEST(Options, ThatNameAScriptOrCommandsMakeThePhoneLeaveByItself) {
    EXPECT_TRUE(parseOptions({"--exec", "hello"}).isScripted());
    EXPECT_TRUE(parseOptions({"--script", "a.jsonl"}).isScripted());
}

} // namespace
} // namespace velloway::phone
