// Whatever the bytes, the tool ends, says where they stop making sense, and prints what is sound.

#include "contents.h"
#include "samples.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <limits>
#include <sstream>

namespace
{
constexpr std::size_t classesOnly = std::numeric_limits<std::size_t>::max();

struct Sample {
    std::string bytes;
    std::size_t classCount;
};

std::vector<Sample> allSamples()
{
    return {{samples::device() + samples::thermostat(), classesOnly},
            {samples::oddNames(), classesOnly},
            {samples::oneWayValues(), 0},
            {samples::strangers() + samples::values(), 7}};
}

/// Prints it in all forms and gives the damage that was found.
std::vector<dump::Damage> damagesIn(const std::string& bytes, std::size_t classCount)
{
    std::vector<dump::Contents> files{dump::readContents("sample", bytes, classCount, 0)};
    std::vector<const dump::ClassRecord*> classes;
    for (const dump::ClassRecord& record : files[0].classes)
        classes.push_back(&record);
    dump::Hierarchy hierarchy(classes);

    std::ostringstream listing;
    dump::printListing(listing, files, hierarchy);
    std::ostringstream dot;
    dump::printDot(dot, files, hierarchy);
    EXPECT_TRUE(dot.view().ends_with("}\n"));
    std::ostringstream json;
    dump::printJson(json, files, hierarchy);
    EXPECT_TRUE(nlohmann::json::accept(json.str()));
    for (const dump::Damage& damage : files[0].damages)
        EXPECT_LE(damage.offset, bytes.size());
    return files[0].damages;
}

std::vector<std::size_t> endsOfRecords(const Sample& sample)
{
    dump::Contents contents = dump::readContents("sample", sample.bytes, sample.classCount, 0);
    std::vector<std::size_t> ends{0};
    for (const dump::ClassRecord& record : contents.classes)
        ends.push_back(record.end);
    for (const dump::VariantRecord& record : contents.variants)
        ends.push_back(record.end);
    return ends;
}

std::string number(unsigned long long value, unsigned int bytes)
{
    std::string text;
    for (unsigned int i = 0; i < bytes; ++i, value >>= 8)
        text += static_cast<char>(value & 0xFF);
    return text;
}

std::string text(const std::string& bytes) { return number(bytes.size(), 8) + bytes; }

std::string classHead(const std::string& name) { return text(name) + text("ZTNone"); }
} // namespace

TEST(DumpDamage, IsFoundInEveryTruncationThatCutsARecord)
{
    for (const Sample& sample : allSamples()) {
        std::vector<std::size_t> ends = endsOfRecords(sample);
        EXPECT_EQ(ends.back(), sample.bytes.size());
        for (std::size_t size = 0; size <= sample.bytes.size(); ++size) {
            bool isCut = std::find(ends.begin(), ends.end(), size) == ends.end();
            auto damages = damagesIn(sample.bytes.substr(0, size), sample.classCount);
            EXPECT_EQ(damages.size(), isCut ? 1U : 0U) << "cut to " << size;
        }
    }
}

TEST(DumpDamage, IsSurvivedInEverySingleBit)
{
    for (const Sample& sample : allSamples()) {
        for (std::size_t bit = 0; bit < sample.bytes.size() * 8; ++bit) {
            std::string bytes = sample.bytes;
            bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ (1 << bit % 8));
            damagesIn(bytes, sample.classCount);
            ASSERT_FALSE(HasFailure()) << "bit " << bit;
        }
    }
}

TEST(DumpDamage, IsTheCountThatTheBytesCannotHold)
{
    std::string enums = classHead("A") + number(0, 4) + number(1, 4) + text("Mode");
    auto damages = damagesIn(enums + number(~0ULL, 8) + number(0, 8), classesOnly);
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
    auto damages = damagesIn(head + method + number(1, 4) + property + number(0, 4), classesOnly);
    ASSERT_EQ(damages.size(), 4U);
    std::size_t flags = head.size() + 11 + 12;
    EXPECT_EQ(damages[0].offset, flags);
    EXPECT_EQ(damages[1].offset, flags + 2);
    EXPECT_EQ(damages[2].offset, head.size() + method.size() + 4 + 10 + 12);
    EXPECT_EQ(damages[3].offset, damages[2].offset + 4);
}

TEST(DumpDamage, IsNestingThatIsTooDeep)
{
    std::string nested;
    for (int i = 0; i < 100'000; ++i)
        nested += text("struct ZTVariant");
    auto damages = damagesIn(nested + text("int") + number(5, 4), 0);
    ASSERT_EQ(damages.size(), 1U);
    EXPECT_EQ(damages[0].what, "variants are nested too deep to be read");
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
    std::vector<dump::Contents> files{dump::readContents("sample", bytes, classesOnly, 0)};
    EXPECT_EQ(files[0].damages.size(), count);
    dump::Hierarchy hierarchy({&files[0].classes[0]});
    std::ostringstream json;
    dump::printJson(json, files, hierarchy);
    EXPECT_LT(json.view().size(), 40 * bytes.size());
    std::ostringstream dot;
    dump::printDot(dot, files, hierarchy);
    EXPECT_LT(dot.view().size(), 40 * bytes.size());
}

TEST(DumpDamage, DoesNotSlowALongLineOfAncestors)
{
    std::string bytes;
    constexpr int length = 5'000;
    for (int i = 0; i < length; ++i)
        bytes += text("C" + std::to_string(i)) + text("C" + std::to_string((i + 1) % length)) +
                 number(0, 16);
    EXPECT_TRUE(damagesIn(bytes, classesOnly).empty()); // one circle
    bytes += text("C") + text("ZTNone") + number(0, 16);
    EXPECT_TRUE(damagesIn(bytes, classesOnly).empty());
}
