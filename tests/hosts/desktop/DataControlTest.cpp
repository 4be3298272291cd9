#include "hosts/linux/desktop/DataControl.h"
#include "desktop/FakeCompositor.h"
#include "desktop/WaitFor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#include <wayland-server.h>

extern "C" {
extern const wl_interface zwlr_data_control_manager_v1_interface;
extern const wl_interface zwlr_data_control_offer_v1_interface;
}

namespace velloway::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using namespace std::chrono_literals;

const std::string device = "zwlr_data_control_device_v1";
const std::string source = "zwlr_data_control_source_v1";

/// The numbers of the events in their interfaces.
constexpr std::uint32_t dataOffer = 0;
constexpr std::uint32_t selection = 1;
constexpr std::uint32_t finished = 2;
constexpr std::uint32_t primarySelection = 3;
constexpr std::uint32_t offerOffer = 0;
constexpr std::uint32_t sourceSend = 0;
constexpr std::uint32_t sourceCancelled = 1;

wl_interface extInterface() {
    wl_interface copy = zwlr_data_control_manager_v1_interface;
    copy.name = "ext_data_control_manager_v1";
    copy.version = 1;
    return copy;
}
const wl_interface ext = extInterface();

int openDescriptors() {
    int count = 0;
    DIR* directory = opendir("/proc/self/fd");
    while (readdir(directory)) {
        ++count;
    }
    closedir(directory);
    return count;
}

void writeAll(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = write(file, text.data(), text.size());
        if (count <= 0) {
            return;
        }
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

class DataControlTest : public testing::Test {
protected:
    DataControlTest() {
        signal(SIGPIPE, SIG_IGN);
        compositor_.receivedFile = [this](const std::string& type, int file) {
            asked_ = type;
            if (text_) {
                writers_.emplace_back([text = *text_, file] {
                    writeAll(file, text);
                    close(file);
                });
            } else {
                silent_ = file;
            }
        };
        control_ = DataControl::connect();
    }
    ~DataControlTest() override {
        control_.reset();
        compositor_.perform([this] { compositor_.receivedFile = nullptr; });
        for (std::thread& writer : writers_) {
            writer.join();
        }
    }

    /// Another program offers its clipboard in these types.
    void offer(const std::vector<std::string>& types, std::uint32_t as = selection) {
        compositor_.perform([&] {
            wl_resource* const to = compositor_.latest(device);
            wl_resource* const made = compositor_.make(to, zwlr_data_control_offer_v1_interface);
            wl_resource_post_event(to, dataOffer, made);
            for (const std::string& type : types) {
                wl_resource_post_event(made, offerOffer, type.c_str());
            }
            wl_resource_post_event(to, as, made);
        });
    }
    void post(const std::string& interface, std::uint32_t event) {
        compositor_.perform([&] { wl_resource_post_event(compositor_.latest(interface), event); });
    }
    /// What our own offer hands out, read as slowly as the pipe allows; absent when nothing comes.
    std::optional<std::string> pasted(const char* type = "text/plain") {
        int ends[2];
        EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
        bool isSent = false;
        compositor_.perform([&] {
            if (wl_resource* const to = compositor_.latest(source)) {
                wl_resource_post_event(to, sourceSend, type, ends[1]);
                isSent = true;
            }
        });
        close(ends[1]);
        fcntl(ends[0], F_SETFL, O_NONBLOCK);
        std::string text;
        const bool isWhole = isSent && waitFor([&] {
                                 char piece[100'000];
                                 const ssize_t count = read(ends[0], piece, sizeof piece);
                                 if (count > 0) {
                                     text.append(piece, static_cast<std::size_t>(count));
                                 }
                                 return count == 0;
                             });
        close(ends[0]);
        return isWhole ? std::optional(text) : std::nullopt;
    }
    std::optional<std::string> readText(QClipboard::Mode of = QClipboard::Clipboard) {
        std::optional<std::optional<std::string>> answer;
        control_->read(of, [&](auto text) { answer = std::move(text); });
        EXPECT_TRUE(waitFor([&] { return answer.has_value(); }));
        return answer.value_or(std::nullopt);
    }

    FakeCompositor compositor_{{&wl_seat_interface, &zwlr_data_control_manager_v1_interface}};
    std::unique_ptr<DataControl> control_;
    /// What the other program hands over; absent, it keeps the reader waiting.
    std::optional<std::string> text_;
    std::string asked_;
    int silent_ = -1;
    std::vector<std::thread> writers_;
};

TEST_F(DataControlTest, WatchesTheClipboardOfTheSeat) {
    ASSERT_TRUE(control_);
    EXPECT_TRUE(control_->isUsable());
    EXPECT_THAT(compositor_.take(), ElementsAre("zwlr_data_control_manager_v1.get_data_device new object"));
    EXPECT_EQ(readText(), std::nullopt);
}

TEST_F(DataControlTest, OffersATextInEveryTypeThatProgramsAskFor) {
    compositor_.take();
    EXPECT_TRUE(control_->setText("hello"));
    EXPECT_THAT(compositor_.take(),
                ElementsAre("zwlr_data_control_manager_v1.create_data_source new",
                            source + ".offer text/plain;charset=utf-8", source + ".offer text/plain",
                            source + ".offer UTF8_STRING", source + ".offer STRING", source + ".offer TEXT",
                            device + ".set_selection object"));
    EXPECT_EQ(pasted(), "hello");
    EXPECT_EQ(pasted("STRING"), "hello");
    EXPECT_EQ(readText(), "hello");
    // The next one takes the place of the first, which goes.
    EXPECT_TRUE(control_->setText("again"));
    EXPECT_THAT(compositor_.take(), Contains(source + ".destroy"));
    EXPECT_EQ(pasted(), "again");
}

TEST_F(DataControlTest, ALongTextArrivesWholeHoweverSlowlyItIsTaken) {
    std::string text(3'000'000, 'x');
    for (std::size_t at = 0; at < text.size(); at += 997) {
        text[at] = static_cast<char>('a' + at % 26);
    }
    EXPECT_TRUE(control_->setText(text));
    const int before = openDescriptors();
    EXPECT_TRUE(pasted() == text);
    EXPECT_TRUE(waitFor([&] {
        processPending();
        return openDescriptors() == before;
    }));
    EXPECT_TRUE(control_->setText(""));
    EXPECT_EQ(pasted(), "");
    EXPECT_EQ(readText(), "");
}

TEST_F(DataControlTest, AProgramThatStopsReadingCostsNothingMore) {
    EXPECT_TRUE(control_->setText(std::string(3'000'000, 'x')));
    const int before = openDescriptors();
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    compositor_.perform(
        [&] { wl_resource_post_event(compositor_.latest(source), sourceSend, "text/plain", ends[1]); });
    close(ends[1]);
    pollfd waiting{.fd = ends[0], .events = POLLIN, .revents = 0};
    ASSERT_TRUE(waitFor([&] { return poll(&waiting, 1, 0) == 1; }));
    close(ends[0]);
    EXPECT_TRUE(waitFor([&] {
        processPending();
        return openDescriptors() == before;
    }));
    EXPECT_TRUE(control_->isUsable());
}

TEST_F(DataControlTest, ClearingLeavesNothing) {
    EXPECT_TRUE(control_->setText("hello"));
    compositor_.take();
    EXPECT_TRUE(control_->clear());
    EXPECT_THAT(compositor_.take(), ElementsAre(device + ".set_selection none", source + ".destroy"));
    EXPECT_EQ(readText(), std::nullopt);
    EXPECT_TRUE(control_->clear());
}

TEST_F(DataControlTest, AnotherProgramTakesTheClipboard) {
    EXPECT_TRUE(control_->setText("ours"));
    compositor_.take();
    post(source, sourceCancelled);
    text_ = "theirs";
    offer({"text/plain"});
    EXPECT_EQ(readText(), "theirs");
    EXPECT_THAT(compositor_.take(), Contains(source + ".destroy"));
    EXPECT_EQ(pasted(), std::nullopt);
}

TEST_F(DataControlTest, TheBestTypeOfTextIsAskedFor) {
    struct Case {
        std::vector<std::string> types;
        std::string asked;
    };
    text_ = "Gr\u00fc\u00dfe";
    for (const auto& [types, asked] :
         {Case{{"text/html", "text/plain", "text/plain;charset=utf-8"}, "text/plain;charset=utf-8"},
          {{"text/plain"}, "text/plain"},
          {{"image/png", "text/html"}, ""},
          {{}, ""}}) {
        asked_.clear();
        offer(types);
        const auto expected = asked.empty() ? std::nullopt : text_;
        EXPECT_EQ(readText(), expected);
        EXPECT_EQ(asked_, asked);
    }
}

TEST_F(DataControlTest, AnOfferGoesWhenTheNextComesOrNone) {
    text_ = "text";
    offer({"text/plain"});
    EXPECT_EQ(readText(), "text");
    compositor_.take();
    offer({"image/png"});
    // What is sent in answer to an event leaves with the next request.
    EXPECT_EQ(readText(), std::nullopt);
    EXPECT_EQ(readText(), std::nullopt);
    EXPECT_THAT(compositor_.take(), ElementsAre("zwlr_data_control_offer_v1.destroy"));
    compositor_.perform([&] {
        wl_resource_post_event(compositor_.latest(device), selection, static_cast<wl_resource*>(nullptr));
    });
    // What is sent in answer to an event leaves with the next request.
    EXPECT_EQ(readText(), std::nullopt);
    EXPECT_EQ(readText(), std::nullopt);
    EXPECT_THAT(compositor_.take(), ElementsAre("zwlr_data_control_offer_v1.destroy"));
}

TEST_F(DataControlTest, SelectedTextIsNotTheClipboard) {
    text_ = "clipboard";
    offer({"text/plain"});
    offer({"text/plain"}, primarySelection);
    compositor_.perform([&] {
        wl_resource_post_event(compositor_.latest(device), primarySelection,
                               static_cast<wl_resource*>(nullptr));
    });
    compositor_.take();
    EXPECT_EQ(readText(), "clipboard");
    const auto requests = compositor_.take();
    EXPECT_THAT(requests, Contains("zwlr_data_control_offer_v1.destroy").Times(1))
        << "that of the selected text";
    offer({"text/html"}, primarySelection);
    EXPECT_EQ(readText(), "clipboard");
}

TEST_F(DataControlTest, TheTextSelectedInAWindowIsReadForItself) {
    EXPECT_TRUE(control_->knows(QClipboard::Selection));
    EXPECT_EQ(readText(QClipboard::Selection), std::nullopt);
    EXPECT_TRUE(control_->setText("clipboard"));
    text_ = "selected";
    offer({"text/plain"}, primarySelection);
    EXPECT_EQ(readText(QClipboard::Selection), "selected");
    EXPECT_EQ(readText(), "clipboard");
    offer({"image/png"}, primarySelection);
    EXPECT_EQ(readText(QClipboard::Selection), std::nullopt);
}

TEST_F(DataControlTest, ALongTextOfAnotherProgramComesWhole) {
    text_ = std::string(5'000'000, 'y') + "end";
    offer({"text/plain"});
    const int before = openDescriptors();
    EXPECT_TRUE(readText() == text_);
    text_ = "";
    EXPECT_EQ(readText(), "");
    EXPECT_TRUE(waitFor([&] {
        processPending();
        return openDescriptors() == before;
    }));
}

TEST_F(DataControlTest, AProgramThatHandsNothingOverIsWaitedForFiveSeconds) {
    offer({"text/plain"});
    const auto start = std::chrono::steady_clock::now();
    bool isInTime = true;
    int answers = 0;
    control_->read(QClipboard::Clipboard, [&](const auto& text) {
        ++answers;
        EXPECT_EQ(text, std::nullopt);
        isInTime = std::chrono::steady_clock::now() - start >= 4700ms;
    });
    EXPECT_EQ(answers, 0);
    EXPECT_TRUE(waitFor([&] { return answers == 1; }, 20s));
    EXPECT_TRUE(isInTime) << "a timer may be five per cent early";
    compositor_.perform([&] { close(silent_); });
    processPending();
    EXPECT_EQ(answers, 1);
    EXPECT_TRUE(control_->isUsable());
}

TEST_F(DataControlTest, WhatComesInPiecesWithinFiveSecondsEachIsRead) {
    offer({"text/plain"});
    std::optional<std::optional<std::string>> answer;
    control_->read(QClipboard::Clipboard, [&](auto text) { answer = std::move(text); });
    ASSERT_TRUE(waitFor([&] {
        int file = -1;
        compositor_.perform([&] { file = silent_; });
        return file >= 0;
    }));
    writeAll(silent_, "one ");
    processPending();
    EXPECT_FALSE(answer);
    writeAll(silent_, "two");
    processPending();
    EXPECT_FALSE(answer);
    close(silent_);
    EXPECT_TRUE(waitFor([&] { return answer.has_value(); }));
    EXPECT_EQ(answer.value_or(std::nullopt), "one two");
}

TEST_F(DataControlTest, WhenTheSeatGoesTheClipboardDoesToo) {
    text_ = "text";
    offer({"text/plain"});
    EXPECT_EQ(readText(), "text");
    compositor_.take();
    post(device, finished);
    EXPECT_TRUE(waitFor([&] { return !control_->isUsable(); }));
    EXPECT_EQ(readText(), std::nullopt);
    EXPECT_FALSE(control_->setText("x"));
    EXPECT_FALSE(control_->clear());
    EXPECT_TRUE(waitFor([&] { return compositor_.count() == 2; }));
    EXPECT_THAT(compositor_.take(),
                testing::UnorderedElementsAre("zwlr_data_control_offer_v1.destroy", device + ".destroy"));
}

TEST_F(DataControlTest, WhenTheCompositorGoesNothingHangs) {
    EXPECT_TRUE(control_->setText("ours"));
    compositor_.perform([&] { compositor_.disconnectAll(); });
    EXPECT_TRUE(waitFor([&] { return !control_->isUsable(); }));
    EXPECT_FALSE(control_->setText("x"));
    EXPECT_FALSE(control_->clear());
    EXPECT_EQ(readText(), std::nullopt);
}

TEST_F(DataControlTest, TheEndGivesEverythingBack) {
    text_ = "text";
    offer({"text/plain"});
    EXPECT_EQ(readText(), "text");
    EXPECT_TRUE(control_->setText("ours"));
    compositor_.take();
    control_.reset();
    EXPECT_TRUE(waitFor([&] {
        bool isGone = false;
        compositor_.perform([&] { isGone = compositor_.latest(device) == nullptr; });
        return isGone;
    }));
}

TEST(DataControlConnect, NeedsACompositorWithASeatAndTheProtocol) {
    EXPECT_EQ(DataControl::connect(), nullptr);
    setenv("WAYLAND_DISPLAY", "", 1);
    EXPECT_EQ(DataControl::connect(), nullptr);
    setenv("WAYLAND_DISPLAY", "wayland-dead", 1);
    EXPECT_EQ(DataControl::connect(), nullptr);
    unsetenv("WAYLAND_DISPLAY");
    {
        FakeCompositor compositor({&wl_seat_interface});
        EXPECT_EQ(DataControl::connect(), nullptr);
    }
    {
        FakeCompositor compositor({&zwlr_data_control_manager_v1_interface});
        EXPECT_EQ(DataControl::connect(), nullptr);
    }
    FakeCompositor compositor({&wl_seat_interface, &zwlr_data_control_manager_v1_interface});
    compositor.refusedRequest = "get_data_device";
    EXPECT_EQ(DataControl::connect(), nullptr);
}

TEST(DataControlConnect, TheLaterProtocolIsPreferredWhateverComesFirst) {
    const std::vector<std::vector<const wl_interface*>> orders{
        {&wl_seat_interface, &ext},
        {&ext, &zwlr_data_control_manager_v1_interface, &wl_seat_interface},
        {&zwlr_data_control_manager_v1_interface, &ext, &wl_seat_interface, &wl_seat_interface},
        {&ext, &ext, &wl_seat_interface},
    };
    for (const auto& globals : orders) {
        FakeCompositor compositor(globals);
        const auto control = DataControl::connect();
        ASSERT_TRUE(control);
        EXPECT_THAT(compositor.take(), Contains("ext_data_control_manager_v1.get_data_device new object"));
        EXPECT_TRUE(control->setText("hello"));
    }
}

} // namespace
} // namespace velloway::test
