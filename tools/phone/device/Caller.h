#pragma once

#include "phone/device/CommandRunner.h"

#include <boost/json/value.hpp>

#include <map>
#include <string>

namespace velloway::phone::device {

/// Calls the phone's commands for the adapters, and says in words what went wrong: each trouble of a command
/// once, and again only after the command has worked in between.
class Caller {
public:
    using Note = std::function<void(const std::string& line)>;

    /// `limit`: the seconds that a command may take.
    Caller(CommandRunner& runner, Note note, double limit)
        : runner_(runner), note_(std::move(note)), limit_(limit) {}

    /// `done` gets what the command has written; it does not come when the command failed.
    void call(std::vector<std::string> words, std::string input, std::function<void(std::string output)> done);
    void call(std::vector<std::string> words, std::function<void(std::string output)> done) {
        call(std::move(words), {}, std::move(done));
    }

    /// The same for commands that answer in JSON. An answer that holds an "error" counts as a failure.
    void ask(std::vector<std::string> words, std::function<void(boost::json::value answer)> done);

    /// As `ask`, for a question that nobody waits for: after a refusal it is not put again for a while, since
    /// each refused call may bring the phone's permission dialog up. `failed` comes when there is no answer.
    void poll(std::vector<std::string> words, std::function<void(boost::json::value answer)> done,
              std::function<void()> failed);

    void note(const std::string& line) const { note_(line); }

private:
    void run(std::vector<std::string> words, std::string input, std::function<void(std::string)> done,
             std::function<void()> failed);
    void fail(const std::string& command, const std::string& trouble);

    CommandRunner& runner_;
    Note note_;
    double limit_;
    std::map<std::string, std::string> troubles_;
    /// How many polls of a refused command are still to be left out.
    std::map<std::string, int> rests_;
};

} // namespace velloway::phone::device
