#include "text/Links.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace velloway::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct LinkCase {
    const char* text;
    std::vector<std::string_view> links;
};

class WebLinks : public testing::TestWithParam<LinkCase> {};

TEST_P(WebLinks, AreFound) {
    EXPECT_EQ(webLinks(GetParam().text), GetParam().links) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(
    , WebLinks,
    testing::Values(LinkCase{"", {}}, LinkCase{"no link", {}}, LinkCase{"https://", {}},
                    LinkCase{"http://", {}}, LinkCase{"http://a", {"http://a"}},
                    LinkCase{"https://a", {"https://a"}}, LinkCase{"https:// a", {}}, LinkCase{"https://.", {}},
                    LinkCase{"https://a.example", {"https://a.example"}},
                    LinkCase{"see HTTP://A.example/b now", {"HTTP://A.example/b"}},
                    LinkCase{"https://a.example/b?c=d&e=f#g.", {"https://a.example/b?c=d&e=f#g"}},
                    LinkCase{"(https://a.example/b)", {"https://a.example/b"}},
                    LinkCase{"https://a.example/b_(c)!", {"https://a.example/b_(c)"}},
                    LinkCase{"<https://a.example>", {"https://a.example"}},
                    LinkCase{"\"https://a.example\"", {"https://a.example"}},
                    LinkCase{"https://a.example\nhttp://b.example", {"https://a.example", "http://b.example"}},
                    LinkCase{"xhttps://a.example", {}}, LinkCase{"ahttps://a.example", {}},
                    LinkCase{"zhttps://a.example", {}}, LinkCase{"Ahttps://a.example", {}},
                    LinkCase{"Zhttps://a.example", {}}, LinkCase{"0https://a.example", {}},
                    LinkCase{"9https://a.example", {}}, LinkCase{"_https://a.example", {"https://a.example"}},
                    LinkCase{"ftp://a.example", {}}, LinkCase{"javascript:alert(1)", {}},
                    LinkCase{"file:///etc/passwd", {}},
                    LinkCase{"https://a.example/ü, https://b.example",
                             {"https://a.example/ü", "https://b.example"}}));

TEST(WebLinksTest, AnAddressThatNobodyWouldClickIsNone) {
    EXPECT_THAT(webLinks("https://" + std::string(3000, 'a')), IsEmpty());
    const std::string longest = "https://" + std::string(2040, 'a');
    EXPECT_THAT(webLinks(longest), ElementsAre(longest));
    EXPECT_THAT(webLinks(longest + "a"), IsEmpty());
    const std::string text = std::string(10'000, 'w') + " https://a.example";
    EXPECT_THAT(webLinks(text), ElementsAre("https://a.example"));
}

} // namespace
} // namespace velloway::test
