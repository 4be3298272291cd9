#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velloway::phone {

/// One word of a command line.
struct Word {
    std::string text;
    /// Where the word begins in the line, so that what follows can be taken as it stands.
    std::size_t begin = 0;
};

/// Splits at blanks. Quotes of either kind hold blanks together; in double quotes `\n`, `\t`, `\"` and `\\`
/// stand for what they stand for in C. Throws std::invalid_argument on an open quote.
std::vector<Word> splitWords(std::string_view line);

/// Splits at semicolons and line ends that stand outside quotes and outside braces and brackets.
std::vector<std::string> splitCommands(std::string_view text);

} // namespace velloway::phone
