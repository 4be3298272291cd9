#include "hosts/qt/StandardOutputLog.h"
#include "platform/Fatal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <functional>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace velloway::test {
namespace {

/// What `body` writes to standard output in a child process, and how the child ended.
struct ChildOutput {
    std::string text;
    int status = 0;
};

ChildOutput inChild(const std::function<void()>& body) {
    int ends[2];
    EXPECT_EQ(::pipe(ends), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(ends[1], STDOUT_FILENO);
        ::close(ends[0]);
        ::close(ends[1]);
        body();
        ::_exit(0);
    }
    ::close(ends[1]);
    ChildOutput output;
    char block[4096];
    for (ssize_t count = 0; (count = ::read(ends[0], block, sizeof block)) > 0;) {
        output.text.append(block, static_cast<std::size_t>(count));
    }
    ::close(ends[0]);
    ::waitpid(child, &output.status, 0);
    return output;
}

TEST(StandardOutputLog, WritesThePiecesAsOneLine) {
    const ChildOutput output = inChild([] {
        StandardOutputLog log;
        log.line({"[Area] ", "one ", "two"});
        log.line({});
        log.line({"%s %n"});
    });
    EXPECT_EQ(output.text, "[Area] one two\n\n%s %n\n");
}

TEST(StandardOutputLog, LeavesNothingInABufferWhenTheProcessIsEndedHard) {
    const ChildOutput output = inChild([] {
        StandardOutputLog log;
        log.line({"line"});
        std::fputs("printed", stdout);
        ::abort();
    });
    EXPECT_TRUE(WIFSIGNALED(output.status));
    EXPECT_EQ(output.text, "line\nprinted");
}

TEST(StandardOutputLog, LinesOfSeveralThreadsNeverMix) {
    const ChildOutput output = inChild([] {
        StandardOutputLog log;
        std::vector<std::thread> threads;
        for (const char letter : {'a', 'b', 'c'}) {
            threads.emplace_back([&log, letter] {
                // Longer than what a pipe takes in one go.
                const std::string text(100'000, letter);
                for (int line = 0; line < 20; ++line) {
                    log.line({text});
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    });
    int lines = 0;
    for (std::size_t start = 0; start < output.text.size(); ++lines) {
        const std::size_t end = output.text.find('\n', start);
        ASSERT_EQ(end - start, 100'000u);
        EXPECT_EQ(output.text.find_first_not_of(output.text[start], start), end);
        start = end + 1;
    }
    EXPECT_EQ(lines, 60);
}

TEST(StandardOutputLog, AReaderThatHasGoneDoesNoHarm) {
    const ChildOutput output = inChild([] {
        int ends[2];
        if (::pipe(ends) != 0) {
            ::_exit(1);
        }
        const int kept = ::dup(STDOUT_FILENO);
        ::dup2(ends[1], STDOUT_FILENO);
        StandardOutputLog log;
        ::close(ends[0]);
        ::close(ends[1]);
        log.line({"lost"});
        ::dup2(kept, STDOUT_FILENO);
        log.line({"still here"});
    });
    EXPECT_EQ(output.status, 0);
    EXPECT_EQ(output.text, "still here\n");
}

TEST(StandardOutputLog, AReaderThatDoesNotReadCostsLinesAndTheyAreCounted) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    int steps[2];
    ASSERT_EQ(::pipe(steps), 0);
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(ends[1], STDOUT_FILENO);
        ::close(ends[0]);
        ::close(ends[1]);
        StandardOutputLog log;
        for (int line = 0; line < 5000; ++line) {
            log.line({std::string(99, 'x')});
        }
        ::close(steps[1]);
        // Lines until the parent has read on and ends this process.
        for (;;) {
            log.line({"after"});
            ::usleep(1000);
        }
    }
    ::close(ends[1]);
    ::close(steps[1]);
    char byte = 0;
    EXPECT_EQ(::read(steps[0], &byte, 1), 0) << "until the child has written its lines";
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));

    std::string text;
    std::vector<char> block(4096);
    while (text.find("\nafter\n") == std::string::npos) {
        const ssize_t count = ::read(ends[0], block.data(), block.size());
        ASSERT_GT(count, 0);
        text.append(block.data(), static_cast<std::size_t>(count));
    }
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    ::close(ends[0]);
    ::close(steps[0]);

    std::size_t lines = 0;
    std::istringstream all(text);
    std::string line;
    while (std::getline(all, line) && line == std::string(99, 'x')) {
        ++lines;
    }
    int dropped = 0;
    ASSERT_EQ(std::sscanf(line.c_str(), "[Log] %d lines were dropped because nobody read them", &dropped), 1)
        << line;
    EXPECT_GE(lines + static_cast<std::size_t>(dropped), 5000u);
    EXPECT_GT(lines, 100u);
    EXPECT_GT(dropped, 100);
}

TEST(StandardOutputLog, GatheredLinesAreWrittenTogetherAtTheEndOfATurn) {
    const ChildOutput output = inChild([] {
        StandardOutputLog log;
        std::thread([&log] {
            StandardOutputLog::gatherOnThisThread();
            log.line({"one"});
            log.line({"two"});
            std::fputs("not yet\n", stdout);
            log.flush();
            std::fputs("now\n", stdout);
            log.line({"three"});
        }).join();
        log.line({"four, of another thread"});
    });
    EXPECT_EQ(output.text, "not yet\none\ntwo\nnow\nthree\nfour, of another thread\n");
}

TEST(StandardOutputLog, GatheredLinesAreWrittenBeforeAFatalEnd) {
    const ChildOutput output = inChild([] {
        StandardOutputLog log;
        StandardOutputLog::gatherOnThisThread();
        log.line({"last line"});
        fatal("the end");
    });
    EXPECT_TRUE(WIFSIGNALED(output.status));
    EXPECT_EQ(output.text, "last line\n");
}

TEST(StandardOutputLog, AStreamMissingFromTheStartIsTakenSoThatNoFileGetsItsNumber) {
    const ChildOutput output = inChild([] {
        const int kept = ::dup(STDOUT_FILENO);
        ::close(STDIN_FILENO);
        ::close(STDOUT_FILENO);
        StandardOutputLog log;
        const int opened = ::open("/dev/null", O_RDONLY);
        log.line({"lost"});
        ::dup2(kept, STDOUT_FILENO);
        log.line({opened > STDERR_FILENO ? "safe" : "in danger"});
    });
    EXPECT_EQ(output.text, "safe\n");
}

} // namespace
} // namespace velloway::test
