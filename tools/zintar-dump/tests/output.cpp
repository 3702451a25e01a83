// What is printed can be read by what it is for: a terminal, a reader of JSON, Graphviz.

#include "bytes.h"

#include <gtest/gtest.h>

#include <bit>
#include <limits>
#include <string_view>

namespace
{
using dump::Form;
using support::number;
using support::shownAs;
using support::text;

/// A class of that name, derived from one of that name, with a property of that name.
std::string classCalled(const std::string& name)
{
    return text(name) + text(name) + number(0, 12) + number(1, 4) + text(name) + text("int") +
           number(~0U, 4) + number(3, 1) + number(0, 4);
}

bool contains(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

TEST(DumpOutput, EscapesWhatATerminalDoesNotShow)
{
    const struct {
        std::string character, escaped, json;
    } cases[] = {{"\x07", R"(\x07)", R"(\u0007)"},
                 {"\x7F", R"(\x7f)", R"(\u007f)"},
                 {"\u009B", R"(\xc2\x9b)", R"(\u009b)"},                   // begins a command
                 {"\u200B", R"(\xe2\x80\x8b)", R"(\u200b)"},               // has no width
                 {"\u2028", R"(\xe2\x80\xa8)", R"(\u2028)"},               // ends a line
                 {"\u202E", R"(\xe2\x80\xae)", R"(\u202e)"},               // turns the text round
                 {"\u2066", R"(\xe2\x81\xa6)", R"(\u2066)"},               // does so too
                 {"\uE000", R"(\xee\x80\x80)", R"(\ue000)"},               // for private use
                 {"\uFEFF", R"(\xef\xbb\xbf)", R"(\ufeff)"},               // as above
                 {"\U000E0041", R"(\xf3\xa0\x81\x81)", R"(\udb40\udc41)"}, // a hidden letter
                 {"\U0010FFFD", R"(\xf4\x8f\xbf\xbd)", R"(\udbff\udffd)"}};
    for (const auto& [character, escaped, json] : cases) {
        const std::string bytes = classCalled("a" + character + "b");
        for (Form form : {Form::Listing, Form::Json, Form::Dot})
            EXPECT_FALSE(contains(shownAs(form, bytes, 1), character)) << escaped;
        EXPECT_TRUE(contains(shownAs(Form::Listing, bytes, 1), "a" + escaped + "b")) << escaped;
        EXPECT_TRUE(contains(shownAs(Form::Json, bytes, 1), "a" + json + "b")) << escaped;
    }
    for (const char* shown : {"~", "\u00A0", "\u00E9", "\u05D0", "\u4E2D", "\uFFFD", "\U0001F600"})
        for (Form form : {Form::Listing, Form::Json, Form::Dot})
            EXPECT_TRUE(contains(shownAs(form, classCalled(shown), 1), shown)) << shown;
}

std::string jsonOf(double number)
{
    const std::string bytes =
        text("double") + support::number(std::bit_cast<unsigned long long>(number), 8);
    const std::string json = shownAs(Form::Json, bytes, 0);
    const std::size_t start = json.find("\"value\": ") + 9;
    return json.substr(start, json.find(',', start) - start);
}

TEST(DumpOutput, HasATextForNumbersThatJsonLacks)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(jsonOf(std::numeric_limits<double>::quiet_NaN()), "\"NaN\"");
    EXPECT_EQ(jsonOf(infinity), "\"Infinity\"");
    EXPECT_EQ(jsonOf(-infinity), "\"-Infinity\"");
    EXPECT_EQ(jsonOf(std::numeric_limits<double>::denorm_min()), "5e-324");
    const std::string json = shownAs(Form::Json, text("float") + number(0x7F800000U, 4), 0);
    EXPECT_TRUE(contains(json, "\"Infinity\"")) << json;
}

// Graphviz refuses more than 16384 bytes in a row that have no meaning to it.
TEST(DumpOutput, IsADiagramAlsoWhereNamesAreLong)
{
    for (const std::string name : {"x", "\\", "<", "a&", "\xff"}) {
        std::string longName;
        while (longName.size() < 50'000)
            longName += name;
        const std::string diagram = shownAs(Form::Dot, classCalled(longName), 1);
        ASSERT_GT(diagram.size(), 3 * longName.size());
        std::size_t run = 0;
        bool isQuoted = false;
        for (std::size_t i = 0; i < diagram.size(); ++i) {
            run = diagram[i] == '\\' || diagram[i] == '"' ? 0 : run + 1;
            ASSERT_LE(run, 16'000U);
            if (diagram[i] == '\\')
                ++i; // with what it escapes
            else if (diagram[i] == '"')
                isQuoted = !isQuoted;
            else
                ASSERT_TRUE(isQuoted || !contains("<&", diagram.substr(i, 1)));
        }
        EXPECT_FALSE(isQuoted);
    }
}
} // namespace
