#include "hosts/qt/StandardOutputLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <fcntl.h>
#include <functional>
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

TEST(StandardOutputLog, writes_the_pieces_as_one_line) {
    const ChildOutput output = inChild([] {
        StandardOutputLog log;
        log.line({"[Area] ", "one ", "two"});
        log.line({});
        log.line({"%s %n"});
    });
    EXPECT_EQ(output.text, "[Area] one two\n\n%s %n\n");
}

TEST(StandardOutputLog, leaves_nothing_in_a_buffer_when_the_process_is_ended_hard) {
    const ChildOutput output = inChild([] {
        StandardOutputLog log;
        log.line({"line"});
        std::fputs("printed", stdout);
        ::abort();
    });
    EXPECT_TRUE(WIFSIGNALED(output.status));
    EXPECT_EQ(output.text, "line\nprinted");
}

TEST(StandardOutputLog, lines_of_several_threads_never_mix) {
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

TEST(StandardOutputLog, a_reader_that_has_gone_does_no_harm) {
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

TEST(StandardOutputLog, a_stream_missing_from_the_start_is_taken_so_that_no_file_gets_its_number) {
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
