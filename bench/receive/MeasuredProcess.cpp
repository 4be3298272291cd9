#include "MeasuredProcess.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include <fcntl.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velloway::bench {

namespace {

int freePort() {
    const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (bind(probe, reinterpret_cast<sockaddr*>(&address), size) != 0) {
        giveUp("no free port");
    }
    getsockname(probe, reinterpret_cast<sockaddr*>(&address), &size);
    close(probe);
    return ntohs(address.sin_port);
}

} // namespace

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

void giveUp(const std::string& what) {
    std::fprintf(stderr, "%s: %s\n", program_invocation_short_name, what.c_str());
    std::exit(1);
}

MeasuredProcess::MeasuredProcess(Command command, const std::filesystem::path& folder)
    : port(freePort()), log(folder / "log.txt") {
    command.push_back(std::to_string(port));
    command.push_back(folder.string());
    int pipe[2];
    if (::pipe2(pipe, O_CLOEXEC) != 0) {
        giveUp("pipe");
    }
    input_ = pipe[1];
    process_ = fork();
    if (process_ == 0) {
        dup2(pipe[0], STDIN_FILENO);
        dup2(::open(log.c_str(), O_CREAT | O_TRUNC | O_WRONLY | O_APPEND, 0644), STDOUT_FILENO);
        dup2(::open("/dev/null", O_WRONLY), STDERR_FILENO);
        std::vector<char*> arguments;
        for (std::string& argument : command) {
            arguments.push_back(argument.data());
        }
        arguments.push_back(nullptr);
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    close(pipe[0]);
}

void MeasuredProcess::say(std::string_view line) {
    const std::string text = std::string(line) + "\n";
    if (::write(input_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        giveUp("the server has gone");
    }
}

double MeasuredProcess::processorTime() const {
    std::ifstream file("/proc/" + std::to_string(process_) + "/stat");
    std::string stat((std::istreambuf_iterator<char>(file)), {});
    unsigned long user = 0;
    unsigned long system = 0;
    std::sscanf(stat.c_str() + stat.rfind(')') + 2, "%*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %lu %lu",
                &user, &system);
    return static_cast<double>(user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

double MeasuredProcess::peakMegabytes() const {
    std::ifstream file("/proc/" + std::to_string(process_) + "/status");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("VmHWM:")) {
            return std::atof(line.c_str() + 6) / 1024;
        }
    }
    return 0;
}

void MeasuredProcess::end() {
    if (process_ <= 0) {
        return;
    }
    close(input_);
    for (int waited = 0; waited < 200; ++waited) {
        if (waitpid(process_, nullptr, WNOHANG) == process_) {
            process_ = 0;
            return;
        }
        usleep(10'000);
    }
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
    process_ = 0;
}

} // namespace velloway::bench
