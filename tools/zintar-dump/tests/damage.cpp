// Whatever the bytes, the tool says where they stop making sense. That it survives them, and prints
// what can be read back, is for the fuzz target, which runs over all that may become of the
// samples.

#include "bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace
{
using support::classesOnly;
using support::number;
using support::text;

/// The file is in the directory where the test starts.
std::string bytesOf(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<dump::Damage> damagesIn(const std::string& bytes, std::size_t classCount = classesOnly)
{
    return dump::readContents("sample", bytes, classCount, 0).damages;
}

std::vector<std::size_t> endsOfRecords(const std::string& bytes, std::size_t classCount)
{
    dump::Contents contents = dump::readContents("sample", bytes, classCount, 0);
    std::vector<std::size_t> ends{0};
    for (const dump::ClassRecord& record : contents.classes)
        ends.push_back(record.end);
    for (const dump::VariantRecord& record : contents.variants)
        ends.push_back(record.end);
    return ends;
}

std::string shownAs(dump::Form form, const std::string& bytes)
{
    return support::shownAs(form, bytes, classesOnly);
}

std::string classHead(const std::string& name) { return text(name) + text("ZTNone"); }
} // namespace

TEST(DumpDamage, IsFoundInEveryTruncationThatCutsARecord)
{
    const std::pair<std::string, std::size_t> samples[] = {
        {bytesOf("device.classes") + bytesOf("thermostat.classes"), classesOnly},
        {bytesOf("oneway.variants"), 0},
        {bytesOf("mixed"), 7}};
    for (const auto& [bytes, classCount] : samples) {
        std::vector<std::size_t> ends = endsOfRecords(bytes, classCount);
        ASSERT_GT(ends.size(), 2U);
        EXPECT_EQ(ends.back(), bytes.size());
        for (std::size_t size = 0; size <= bytes.size(); ++size) {
            bool isCut = std::find(ends.begin(), ends.end(), size) == ends.end();
            auto damages = damagesIn(bytes.substr(0, size), classCount);
            EXPECT_EQ(damages.size(), isCut ? 1U : 0U) << "cut to " << size;
        }
    }
}

TEST(DumpDamage, IsTheCountThatTheBytesCannotHold)
{
    std::string enums = classHead("A") + number(0, 4) + number(1, 4) + text("Mode");
    auto damages = damagesIn(enums + number(~0ULL, 8) + number(0, 8));
    ASSERT_EQ(damages.size(), 1U);
    EXPECT_EQ(damages[0].offset, enums.size());
    EXPECT_EQ(damages[0].what, "class A, enumeration 1 (Mode), the number of enumerators: "
                               "18446744073709551615, for which the 8 bytes that are left are too "
                               "few");
}

TEST(DumpDamage, OfFlagsAccessAndChangeEventIsReadPast)
{
    std::string head = classHead("A") + number(0, 8) + number(1, 4);
    std::string method = text("run") + text("void") + number(4, 2) + number(3, 4) + number(0, 4);
    std::string property = text("on") + text("bool") + number(1, 4) + number(0x83, 1);
    auto damages = damagesIn(head + method + number(1, 4) + property + number(0, 4));
    ASSERT_EQ(damages.size(), 4U);
    std::size_t flags = head.size() + 11 + 12;
    EXPECT_EQ(damages[0].offset, flags);
    EXPECT_EQ(damages[1].offset, flags + 2);
    EXPECT_EQ(damages[2].offset, head.size() + method.size() + 4 + 10 + 12);
    EXPECT_EQ(damages[3].offset, damages[2].offset + 4);
}

TEST(DumpDamage, IsNoEventThatIsInheritedFromTheFirstPlace)
{
    std::string bytes = text("A") + text("ZTBase") + number(0, 12) + number(1, 4) + text("on") +
                        text("bool") + number(~0ULL - 3, 4) + number(3, 1) + number(0, 4);
    EXPECT_NE(shownAs(dump::Form::Listing, bytes).find("notifies destroyed"), std::string::npos);
}

/// What is wrong with a value in so many variants, one within the other.
std::string faultOfNested(int depth, const std::string& value)
{
    std::string nested;
    for (int i = 1; i < depth; ++i)
        nested += text("struct ZTVariant");
    auto damages = damagesIn(nested + value, 0);
    return damages.empty() ? "" : damages[0].what;
}

TEST(DumpDamage, IsNestingThatIsTooDeep)
{
    const std::string five = text("int") + number(5, 4), letter = text("char") + number(97, 4);
    const std::string tooDeep = "variants are nested too deep to be read";
    EXPECT_EQ(faultOfNested(500, five), "");
    for (int depth : {501, 502, 100'000}) {
        EXPECT_EQ(faultOfNested(depth, five), tooDeep) << depth;
        EXPECT_EQ(faultOfNested(depth, text("ZTBadMetaType")), depth == 501 ? "" : tooDeep);
    }
    EXPECT_EQ(faultOfNested(500, letter), "a value of type char cannot be read back");
    EXPECT_EQ(faultOfNested(502, letter), tooDeep);
}

TEST(DumpDamage, DoesNotMultiplyTheOutput)
{
    // One long name, and as many references to it as there is room for.
    std::string bytes = text(std::string(100'000, 'x')) + text("ZTNone") + number(0, 8);
    bytes += number(1, 4) + text(std::string(100'000, 'e')) + text("") + number(2, 2) +
             number(2, 4) + number(0, 4);
    constexpr unsigned int count = 4'000;
    bytes += number(count, 4);
    for (unsigned int i = 0; i < count; ++i)
        bytes += text("") + text("") + number(0, 4) + number(0x80, 1) + number(0, 4);
    EXPECT_EQ(damagesIn(bytes).size(), count);
    EXPECT_LT(shownAs(dump::Form::Json, bytes).size(), 40 * bytes.size());
    EXPECT_LT(shownAs(dump::Form::Dot, bytes).size(), 40 * bytes.size());
}

TEST(DumpDamage, DoesNotSlowALongLineOfAncestors)
{
    std::string bytes;
    constexpr int length = 5'000;
    for (int i = 0; i < length; ++i)
        bytes += text("C" + std::to_string(i)) + text("C" + std::to_string((i + 1) % length)) +
                 number(0, 16);
    EXPECT_NE(shownAs(dump::Form::Listing, bytes), ""); // one circle
    bytes += classHead("C") + number(0, 16);
    EXPECT_NE(shownAs(dump::Form::Listing, bytes), "");
}
