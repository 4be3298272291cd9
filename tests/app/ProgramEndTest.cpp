#include "app/Program.h"
#include "hosts/HostRuntime.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace velloway::test {
namespace {

using namespace std::chrono_literals;

/// The exit code of a process in which `runProgram` returned, so that it differs from an exit on the way.
constexpr int returned = 42;
/// Of one that a job of the file queue has ended.
constexpr int writtenCode = 43;

/// The real host, with a job on the main queue once the program has been launched.
class HostWithJob final : public HostRuntime {
public:
    HostWithJob(HostRuntime& host, std::function<void()> job) : host_(host), job_(std::move(job)) {}

    Platform platform() override { return host_.platform(); }
    int run(ApplicationDelegate& delegate) override {
        platform().mainQueue.async([this] { platform().mainQueue.async(job_); });
        return host_.run(delegate);
    }
    void terminate() override { host_.terminate(); }

private:
    HostRuntime& host_;
    std::function<void()> job_;
};

/// A file of zeros, without a block on the disk.
class SparseFile {
public:
    explicit SparseFile(std::uintmax_t size) {
        std::ofstream{path};
        std::filesystem::resize_file(path, size);
    }
    ~SparseFile() { std::filesystem::remove(path); }

    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("velloway-" + std::to_string(::getpid()));
};

/// Runs the program in this process, which must be one of a death test, and exits.
[[noreturn]] void runWith(const std::function<void(HostRuntime&)>& job) {
    char name[] = "velloway";
    char* words[] = {name, nullptr};
    int count = 1;
    {
        const HostStart start = makeHost(count, words);
        HostWithJob host(*start.host, [&] { job(*start.host); });
        if (runProgram(host) != 0) {
            std::_Exit(1);
        }
    }
    std::_Exit(returned);
}

class ProgramEndTest : public testing::Test {
protected:
    // The host has threads: the process of the test must not be a copy of one that already has some.
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

bool returnedOrExited(int status) {
    return WIFEXITED(status) && (WEXITSTATUS(status) == returned || WEXITSTATUS(status) == 0);
}

TEST_F(ProgramEndTest, WithNothingToDoRunsEverythingDown) {
    EXPECT_EXIT(runWith([](HostRuntime& host) { host.terminate(); }), testing::ExitedWithCode(returned), "");
}

TEST_F(ProgramEndTest, InTheMiddleOfAFileTouchesNothingThatHasGone) {
    const SparseFile file(150u << 20);
    EXPECT_EXIT(runWith([&](HostRuntime& host) {
                    WebSocketServer::shared().sendFile(file.path);
                    host.platform().mainQueue.asyncAfter(30ms, [&host] { host.terminate(); });
                }),
                returnedOrExited, "");
}

TEST_F(ProgramEndTest, DropsTheFilesThatWaitForAShortJob) {
    const SparseFile file(150u << 20);
    EXPECT_EXIT(runWith([&](HostRuntime& host) {
                    host.platform().serverQueue.async([] { std::this_thread::sleep_for(50ms); });
                    WebSocketServer::shared().sendFile(file.path);
                    host.terminate();
                }),
                testing::ExitedWithCode(returned), "");
}

TEST_F(ProgramEndTest, RunsTheJobsForFilesThatWaitBehindAShortOne) {
    EXPECT_EXIT(runWith([](HostRuntime& host) {
                    host.platform().fileQueue.async([] { std::this_thread::sleep_for(100ms); });
                    host.platform().fileQueue.async([] { std::_Exit(writtenCode); });
                    host.terminate();
                }),
                testing::ExitedWithCode(writtenCode), "");
}

TEST_F(ProgramEndTest, DoesNotWaitForStorageThatNeverAnswers) {
    EXPECT_EXIT(runWith([](HostRuntime& host) {
                    host.platform().fileQueue.async([] { std::this_thread::sleep_for(1h); });
                    host.platform().mainQueue.asyncAfter(10ms, [&host] { host.terminate(); });
                }),
                testing::ExitedWithCode(0), "");
}

TEST_F(ProgramEndTest, DoesNotWaitForAJobThatNeverEnds) {
    EXPECT_EXIT(runWith([](HostRuntime& host) {
                    host.platform().serverQueue.async([] { std::this_thread::sleep_for(1h); });
                    host.platform().mainQueue.asyncAfter(10ms, [&host] { host.terminate(); });
                }),
                testing::ExitedWithCode(0), "");
}

TEST_F(ProgramEndTest, DoesNotWaitForADiskThatDoesNotAnswer) {
    EXPECT_EXIT(runWith([](HostRuntime& host) {
                    host.platform().readingQueue.async([] { std::this_thread::sleep_for(1h); });
                    host.platform().mainQueue.asyncAfter(10ms, [&host] { host.terminate(); });
                }),
                testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace velloway::test
