#include "text/Links.h"

#include "text/Case.h"

#include <algorithm>
#include <cstddef>

namespace velloway {

namespace {

/// An address is worth a click, a longer text is not.
constexpr std::size_t longestLink = 2048;

bool startsHere(std::string_view text, std::string_view scheme) {
    return text.size() > scheme.size() &&
           std::equal(scheme.begin(), scheme.end(), text.begin(),
                      [](char wanted, char c) { return lowerAscii(c) == wanted; });
}

bool isWordCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

bool endsLink(char c) {
    return static_cast<unsigned char>(c) <= 0x20 || c == '<' || c == '>' || c == '"';
}

/// Whether the last character belongs to the sentence around the address.
bool isSentence(std::string_view link) {
    switch (link.back()) {
    case '.':
    case ',':
    case ';':
    case ':':
    case '!':
    case '?':
    case '\'':
        return true;
    case ')':
        return std::count(link.begin(), link.end(), ')') > std::count(link.begin(), link.end(), '(');
    default:
        return false;
    }
}

/// The address at the start of `text`; empty when there is none.
std::string_view linkAtStart(std::string_view text) {
    const std::size_t scheme = startsHere(text, "https://") ? 8 : startsHere(text, "http://") ? 7 : 0;
    if (scheme == 0) {
        return {};
    }
    const auto end = std::find_if(text.begin(), text.end(), endsLink);
    std::string_view link = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    while (link.size() > scheme && isSentence(link)) {
        link.remove_suffix(1);
    }
    return link.size() > scheme && link.size() <= longestLink ? link : std::string_view();
}

} // namespace

std::vector<std::string_view> webLinks(std::string_view text) {
    std::vector<std::string_view> links;
    for (std::size_t at = 0; at < text.size();) {
        const bool isWordStart = at == 0 || !isWordCharacter(text[at - 1]);
        const std::string_view link = isWordStart ? linkAtStart(text.substr(at)) : std::string_view();
        if (!link.empty()) {
            links.push_back(link);
        }
        at += std::max<std::size_t>(link.size(), 1);
    }
    return links;
}

} // namespace velloway
