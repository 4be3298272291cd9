#include "phone/Words.h"

#include <stdexcept>

namespace velloway::phone {

namespace {

constexpr std::string_view blanks = " \t\r\n";

char unescaped(char letter) {
    switch (letter) {
    case 'n':
        return '\n';
    case 't':
        return '\t';
    default:
        return letter;
    }
}

/// Takes what stands between the quote at `at` and its fellow, and leaves `at` after that one.
std::string quoted(std::string_view line, std::size_t& at) {
    const char quote = line[at++];
    std::string text;
    while (at < line.size() && line[at] != quote) {
        if (quote == '"' && line[at] == '\\' && at + 1 < line.size()) {
            text += unescaped(line[++at]);
        } else {
            text += line[at];
        }
        ++at;
    }
    if (at == line.size()) {
        throw std::invalid_argument("a quote is left open");
    }
    ++at;
    return text;
}

} // namespace

std::vector<Word> splitWords(std::string_view line) {
    std::vector<Word> words;
    std::size_t at = 0;
    while ((at = line.find_first_not_of(blanks, at)) != std::string_view::npos) {
        Word word{{}, at};
        while (at < line.size() && blanks.find(line[at]) == std::string_view::npos) {
            if (line[at] == '"' || line[at] == '\'') {
                word.text += quoted(line, at);
            } else {
                word.text += line[at++];
            }
        }
        words.push_back(std::move(word));
    }
    return words;
}

std::vector<std::string> splitCommands(std::string_view text) {
    std::vector<std::string> commands;
    std::string command;
    char quote = 0;
    int depth = 0;
    const auto finish = [&] {
        if (command.find_first_not_of(blanks) != std::string::npos) {
            commands.push_back(command);
        }
        command.clear();
    };
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char letter = text[at];
        if (quote != 0) {
            if (letter == '\\' && quote == '"' && at + 1 < text.size()) {
                command += letter;
                command += text[++at];
                continue;
            }
            quote = letter == quote ? char{0} : quote;
        } else if (letter == '"' || letter == '\'') {
            quote = letter;
        } else if (letter == '{' || letter == '[') {
            ++depth;
        } else if (letter == '}' || letter == ']') {
            --depth;
        } else if ((letter == ';' || letter == '\n') && depth <= 0) {
            finish();
            continue;
        }
        command += letter;
    }
    finish();
    return commands;
}

} // namespace velloway::phone
