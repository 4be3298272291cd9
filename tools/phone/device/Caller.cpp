#include "phone/device/Caller.h"

#include "phone/Members.h"

#include <boost/json/parse.hpp>

namespace velloway::phone::device {

namespace {

namespace json = boost::json;

constexpr int restAfterRefusal = 30;

std::string firstLine(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    if (begin == std::string::npos) {
        return {};
    }
    return text.substr(begin, std::min<std::size_t>(text.find('\n', begin) - begin, 200));
}

/// Empty unless the answer is nothing but the reason why the command was refused.
std::string refusalIn(const json::value& answer) {
    return answer.is_object() && answer.get_object().size() == 1 ? textUnder(answer.get_object(), "error")
                                                                 : std::string();
}

/// Empty when all went well.
std::string troubleIn(const CommandResult& result, double limit) {
    switch (result.end) {
    case CommandResult::End::missing:
        return "is not installed";
    case CommandResult::End::tookTooLong:
        return "took longer than " + std::to_string(static_cast<int>(limit)) + " s and was ended";
    case CommandResult::End::exited:
        break;
    }
    if (result.exitCode == 0) {
        return {};
    }
    const std::string words = firstLine(result.errors.empty() ? result.output : result.errors);
    return "failed with " + std::to_string(result.exitCode) + (words.empty() ? "" : ": " + words);
}

} // namespace

void Caller::fail(const std::string& command, const std::string& trouble) {
    std::string& last = troubles_[command];
    if (last != trouble) {
        last = trouble;
        note_(command + " " + trouble);
    }
}

void Caller::run(std::vector<std::string> words, std::string input, std::function<void(std::string)> done,
                 std::function<void()> failed) {
    const std::string command = words.front();
    runner_.run({std::move(words), std::move(input), limit_},
                [this, command, done = std::move(done), failed = std::move(failed)](CommandResult result) {
                    const std::string trouble = troubleIn(result, limit_);
                    if (!trouble.empty()) {
                        fail(command, trouble);
                        failed();
                        return;
                    }
                    done(std::move(result.output));
                });
}

void Caller::call(std::vector<std::string> words, std::string input, std::function<void(std::string)> done) {
    const std::string command = words.front();
    run(
        std::move(words), std::move(input),
        [this, command, done = std::move(done)](std::string output) {
            // Commands that answer nothing still say in JSON why they were refused.
            boost::system::error_code error;
            const json::value answer = json::parse(output, error);
            const std::string refusal = error ? std::string() : refusalIn(answer);
            if (!refusal.empty()) {
                fail(command, "was refused: " + refusal);
                return;
            }
            troubles_.erase(command);
            done(std::move(output));
        },
        [] {});
}

void Caller::ask(std::vector<std::string> words, std::function<void(json::value)> done) {
    rests_.erase(words.front());
    poll(std::move(words), std::move(done), [] {});
}

void Caller::poll(std::vector<std::string> words, std::function<void(json::value)> done,
                  std::function<void()> failed) {
    const std::string command = words.front();
    if (int& rest = rests_[command]; rest > 0) {
        --rest;
        failed();
        return;
    }
    run(
        std::move(words), {},
        [this, command, done = std::move(done), failed](std::string output) {
            boost::system::error_code error;
            json::value answer = json::parse(output, error);
            const std::string refusal = error ? std::string() : refusalIn(answer);
            if (error || !refusal.empty()) {
                rests_[command] = restAfterRefusal;
                fail(command,
                     error ? "did not answer in JSON: " + firstLine(output) : "was refused: " + refusal);
                failed();
                return;
            }
            troubles_.erase(command);
            done(std::move(answer));
        },
        failed);
}

} // namespace velloway::phone::device
