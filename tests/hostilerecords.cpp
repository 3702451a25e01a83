#include "support/bytes.h"
#include "support/crafted.h"

#include <zintar/metaclassbuilder.h>
#include <zintar/zintar.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <memory>
#include <numeric>
#include <string>
#include <unordered_set>

// Records that are made up to be slow: reading and finishing one takes a time that hardly grows
// faster than its length. Machines are noisy, so each is compared with a harmless one of the same
// size, and may take a multiple of its time. What grows with the square takes a hundred times that.

namespace
{
using Names = std::vector<std::string>;

/// A class record whose enumeration has those values, and whose members have those names.
std::string record(const Names& names, const std::vector<int>& values)
{
    ZTDataStream stream;
    stream << "A"
           << "ZTBase" << 0 << 1 << "Kind" << static_cast<unsigned long long>(values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        stream << std::to_string(i) << values[i];
    const auto count = static_cast<unsigned int>(names.size());
    stream << count;
    for (const std::string& name : names)
        stream << name << "void" << static_cast<unsigned short>(2) << 2 << 0;
    stream << count;
    for (unsigned int i = 0; i < count; ++i)
        stream << names[i] << "int" << static_cast<int>(i) << true << 0;
    return stream.data();
}

std::unique_ptr<ZTMetaClass> classOf(const std::string& bytes)
{
    ZTDataStream stream = support::streamOf(bytes);
    ZTMetaClassBuilder builder;
    builder.deserialize(stream, {});
    EXPECT_TRUE(stream.good());
    return std::unique_ptr<ZTMetaClass>(builder.toMetaClass());
}

template <class Work>
double secondsFor(Work work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

template <class Crafted, class Harmless>
void expectAsFast(Crafted crafted, Harmless harmless)
{
    EXPECT_LT(secondsFor(crafted), 10 * secondsFor(harmless) + 0.2);
}

void expectReadAsFast(const std::string& crafted, const std::string& harmless)
{
    expectAsFast([&] { classOf(crafted); }, [&] { classOf(harmless); });
}

Names numbered(int count, const std::string& front = "", const std::string& back = "")
{
    Names names;
    for (int i = 0; i < count; ++i)
        names.push_back(front + std::to_string(100'000 + i) + back);
    return names;
}

constexpr int count = 60'000;

TEST(HostileRecord, OfNamesThatCollideIsReadAsFastAsOthers)
{
    const std::string harmless = record(numbered(count, "whatever.", "."), {});
    const Names colliding = support::collidingNames(count);
    expectReadAsFast(record(colliding, {}), harmless);
    expectReadAsFast(record(Names(count, "the same for all"), {}), harmless);
    expectReadAsFast(record(numbered(count, std::string(40, 'x'), std::string(40, 'y')), {}),
                     record(numbered(count, "", std::string(80, 'y')), {}));

    const auto made = classOf(record(colliding, {}));
    for (unsigned int i : {0U, 1U, count / 2U, count - 1U})
        EXPECT_EQ(made->property(colliding[i]), made->property(i));
    EXPECT_EQ(made->property(std::string(16, '\1')), nullptr);
}

TEST(HostileRecord, OfEnumeratorValuesThatCollideIsReadAsFastAsOthers)
{
    std::vector<int> values(30'000);
    std::iota(values.begin(), values.end(), 0);
    const std::unordered_set<int> hashed(values.begin(), values.end());
    const std::string harmless = record({}, values);
    const auto buckets = static_cast<int>(hashed.bucket_count());
    ASSERT_LT(buckets, std::numeric_limits<int>::max() / 30'000);
    for (int& value : values)
        value *= buckets; // a set that hashes them by their remainder puts all into the first
    expectReadAsFast(record({}, values), harmless);
    std::fill(values.begin(), values.end(), 1);
    expectReadAsFast(record({}, values), harmless);
}

TEST(HostileRecord, IsEditedAsFastAsItIsRead)
{
    const auto made = classOf(record(numbered(count), {}));
    ZTMetaClassBuilder builder(made.get());
    builder.removeInvokable(0); // moves all others
    std::unique_ptr<ZTMetaClass> edited;
    expectAsFast([&] { edited.reset(builder.toMetaClass()); },
                 [&] { ZTMetaClassBuilder copy(made.get()); });
    EXPECT_EQ(edited->property(0U)->changeEventIndex(), -1);
    EXPECT_EQ(edited->property(1U)->changeEvent(), edited->invokable(edited->invokableOffset()));
}
} // namespace
