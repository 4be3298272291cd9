// Whether every part of every state stands, at the scale and with the font of this run, where the tables in
// tests/ui/tables have it. The build runs this at scales of 1.5 and 2, and with the desktop's fonts doubled.
#include "ui/ViewTable.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <regex>

namespace velloway::test {
namespace {

/// In pixels of a scale of 1. Fonts are laid out on the pixels of the screen, and lines of text add up.
constexpr double tolerance = 2.5;

/// A part without its place: what it is, what it says, in how many lines, and whether it is cut.
struct Part {
    std::string name;
    std::array<double, 4> place{};
    std::string line;
};

Lines tableOf(const std::string& state) {
    std::ifstream in(std::filesystem::path(VELLOWAY_VIEW_TABLES) / (state + ".txt"));
    Lines lines;
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::vector<Part> partsOf(const Lines& lines) {
    static const std::regex form(R"re((text|symbol|picture|box|clips|scrolls|pointer) ?(".*"|[a-z._]+)?(.*) )re"
                                 R"re(at (\S+),(\S+) ([\d.]+)x([\d.]+)( clipped to .*)?)re");
    static const std::regex manner(R"( (cut|lines \d+)(?= |$))");
    std::vector<Part> parts;
    for (const std::string& line : lines) {
        std::smatch match;
        if (!std::regex_match(line, match, form)) {
            continue;
        }
        Part part{.name = match[1].str(), .line = line};
        if (part.name == "text" || part.name == "symbol") {
            part.name += match[2].str();
        }
        const std::string words = match[3].str();
        for (std::sregex_iterator word(words.begin(), words.end(), manner), end; word != end; ++word) {
            part.name += word->str();
        }
        for (std::size_t i = 0; i < part.place.size(); ++i) {
            part.place[i] = std::stod(match[i + 4].str());
        }
        parts.push_back(part);
    }
    return parts;
}

double distance(const Part& one, const Part& other) {
    double most = 0;
    for (std::size_t i = 0; i < one.place.size(); ++i) {
        most = std::max(most, std::abs(one.place[i] - other.place[i]));
    }
    return most;
}

/// The nearest of the same name.
std::vector<Part>::iterator counterpart(const Part& of, std::vector<Part>& among) {
    auto nearest = among.end();
    for (auto part = among.begin(); part != among.end(); ++part) {
        if (part->name == of.name && (nearest == among.end() || distance(of, *part) < distance(of, *nearest))) {
            nearest = part;
        }
    }
    return nearest;
}

class ViewScale : public ViewTable {};

TEST_P(ViewScale, EveryPartStandsWhereItStandsInTheTable) {
    setDark(true);
    enter();
    const std::vector<Part> expected = partsOf(tableOf(shownState().name));
    std::vector<Part> actual = partsOf(describedDark(seenAtRest()));
    ASSERT_GT(expected.size(), 5u);
    for (const Part& part : expected) {
        const auto found = counterpart(part, actual);
        if (found == actual.end()) {
            ADD_FAILURE() << "not there: " << part.line;
            continue;
        }
        EXPECT_LE(distance(part, *found), tolerance) << part.line << "\n" << found->line;
        actual.erase(found);
    }
    for (const Part& part : actual) {
        ADD_FAILURE() << "not in the table: " << part.line;
    }
}

INSTANTIATE_TEST_SUITE_P(, ViewScale, testing::ValuesIn(viewStates()), nameOf);

} // namespace
} // namespace velloway::test
