#include "phone/device/ProcessRunner.h"

#include "phone/LoopEngine.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/write.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <utility>
#include <vector>

namespace velloway::phone::device {

namespace asio = boost::asio;
using Pipe = asio::posix::stream_descriptor;

namespace {

constexpr std::size_t mostAtOnce = 3;
constexpr std::size_t longestOutput = 64 << 20;
constexpr double pauseBetweenLooks = 0.02;
constexpr int highestDescriptor = 1024;

/// Two ends that no other child inherits.
bool makePipe(std::array<int, 2>& ends) {
    if (pipe(ends.data()) != 0) {
        return false;
    }
    fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    fcntl(ends[1], F_SETFD, FD_CLOEXEC);
    return true;
}

void closeIfOpen(int end) {
    if (end >= 0) {
        close(end);
    }
}

} // namespace

/// One process, from its start to its end.
class ProcessRunner::Child : public std::enable_shared_from_this<Child> {
public:
    Child(Loop& loop, CommandLine line, std::function<void(CommandResult)> done)
        : loop_(loop),
          line_(std::move(line)),
          done_(std::move(done)),
          input_(loop.engine().context),
          output_(loop.engine().context),
          errors_(loop.engine().context) {}

    /// Kills the process; `done` does not come any more.
    void abandon() {
        done_ = nullptr;
        kill();
        finish({});
    }

    void start() {
        if (const int error = spawn(); error != 0) {
            CommandResult result;
            result.end = CommandResult::End::missing;
            result.exitCode = error;
            loop_.post([self = shared_from_this(), result] { self->finish(result); });
            return;
        }
        limit_ = loop_.after(line_.limit, [this] {
            result_.end = CommandResult::End::tookTooLong;
            kill();
            finish(result_);
        });
        // A command need not read its input; it may end first.
        asio::async_write(input_, asio::buffer(line_.input),
                          [self = shared_from_this()](const auto&, std::size_t) { self->closeInput(); });
        read(output_, result_.output, outputBlock_);
        read(errors_, result_.errors, errorBlock_);
    }

private:
    /// Returns an error number; 0 when the command runs.
    int spawn() {
        std::array<std::array<int, 2>, 4> pipes{{{-1, -1}, {-1, -1}, {-1, -1}, {-1, -1}}};
        const bool hasPipes = std::all_of(pipes.begin(), pipes.end(), makePipe);
        auto& [in, out, err, fault] = pipes;
        int error = hasPipes ? spawnWith(in[0], out[1], err[1], fault) : EMFILE;
        for (const int end : {in[0], out[1], err[1], fault[0], fault[1]}) {
            closeIfOpen(end);
        }
        if (error != 0) {
            for (const int end : {in[1], out[0], err[0]}) {
                closeIfOpen(end);
            }
            return error;
        }
        input_.assign(in[1]);
        output_.assign(out[0]);
        errors_.assign(err[0]);
        return 0;
    }

    int spawnWith(int in, int out, int err, std::array<int, 2>& fault) {
        std::vector<char*> words;
        for (std::string& word : line_.words) {
            words.push_back(word.data());
        }
        words.push_back(nullptr);
        pid_ = fork();
        if (pid_ == 0) {
            // A group of its own, so that whatever the command starts is killed with it.
            setpgid(0, 0);
            dup2(in, STDIN_FILENO);
            dup2(out, STDOUT_FILENO);
            dup2(err, STDERR_FILENO);
            signal(SIGPIPE, SIG_DFL);
            // A command that outlives its question must not hold the link, or the terminal, open.
            for (int end = STDERR_FILENO + 1; end < highestDescriptor; ++end) {
                if (end != fault[1]) {
                    close(end);
                }
            }
            execvp(words[0], words.data());
            const int error = errno;
            [[maybe_unused]] const auto count = write(fault[1], &error, sizeof error);
            _exit(127);
        }
        if (pid_ < 0) {
            return errno;
        }
        setpgid(pid_, pid_);
        // Closed by a successful exec, hence nothing to read then.
        close(std::exchange(fault[1], -1));
        int error = 0;
        while (::read(fault[0], &error, sizeof error) < 0 && errno == EINTR) {
        }
        if (error != 0) {
            waitpid(pid_, nullptr, 0);
            pid_ = -1;
        }
        return error;
    }

    void closeInput() {
        boost::system::error_code ignored;
        input_.close(ignored);
    }

    void read(Pipe& pipe, std::string& text, std::array<char, 65536>& block) {
        pipe.async_read_some(asio::buffer(block), [this, self = shared_from_this(), &pipe, &text,
                                                   &block](const auto& error, std::size_t count) {
            text.append(block.data(), count);
            if (!error && text.size() < longestOutput) {
                read(pipe, text, block);
            } else if (++ended_ == 2) {
                awaitEnd();
            }
        });
    }

    /// Both pipes are closed, so the end of the process is near.
    void awaitEnd() {
        if (!done_ || pid_ < 0) {
            return;
        }
        int status = 0;
        if (waitpid(pid_, &status, WNOHANG) == pid_) {
            pid_ = -1;
            result_.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
            finish(result_);
            return;
        }
        look_ = loop_.after(pauseBetweenLooks, [this] { awaitEnd(); });
    }

    void kill() {
        if (pid_ > 0) {
            ::kill(-pid_, SIGKILL);
            waitpid(pid_, nullptr, 0);
            pid_ = -1;
        }
    }

    void finish(CommandResult result) {
        const auto keep = shared_from_this();
        limit_.reset();
        look_.reset();
        boost::system::error_code ignored;
        input_.close(ignored);
        output_.close(ignored);
        errors_.close(ignored);
        if (done_) {
            std::exchange(done_, nullptr)(std::move(result));
        }
    }

    Loop& loop_;
    CommandLine line_;
    std::function<void(CommandResult)> done_;
    Pipe input_;
    Pipe output_;
    Pipe errors_;
    std::array<char, 65536> outputBlock_{};
    std::array<char, 65536> errorBlock_{};
    CommandResult result_;
    pid_t pid_ = -1;
    int ended_ = 0;
    std::shared_ptr<void> limit_;
    std::shared_ptr<void> look_;
};

ProcessRunner::~ProcessRunner() {
    waiting_.clear();
    for (const auto& child : std::exchange(running_, {})) {
        child->abandon();
    }
}

void ProcessRunner::run(CommandLine line, std::function<void(CommandResult)> done) {
    waiting_.emplace_back(std::move(line), std::move(done));
    startNext();
}

void ProcessRunner::startNext() {
    while (!waiting_.empty() && running_.size() < mostAtOnce) {
        auto [line, done] = std::move(waiting_.front());
        waiting_.pop_front();
        const auto place = std::make_shared<std::weak_ptr<Child>>();
        const auto child = std::make_shared<Child>(
            loop_, std::move(line), [this, place, answer = std::move(done)](CommandResult result) {
                running_.erase(place->lock());
                startNext();
                answer(std::move(result));
            });
        *place = child;
        running_.insert(child);
        child->start();
    }
}

} // namespace velloway::phone::device
