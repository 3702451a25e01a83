#include "support/bytes.h"
#include "support/logs.h"

#include <zintar/base.h>
#include <zintar/typedvalue.h>

#include <utility>
#include <vector>

namespace
{
using support::streamed;
using support::streamOf;

std::string unknown(const std::string& name)
{
    return "Zintar: ZTMetaType deserialization failed. Did not find meta type with name \"" + name +
           "\".\n";
}
std::string failed(const std::string& what, const std::string& type)
{
    return "Zintar: ZTVariant " + what + " failed for type " + type + ".\n";
}

/// What the stream gives to a variant that held something; the warnings go to standard error.
ZTVariant readOver(ZTDataStream& stream, const std::string& warning = {})
{
    ZTLogCapture log;
    ZTVariant target(-1);
    EXPECT_EQ(&(stream >> target), &stream);
    EXPECT_EQ(log.err(), warning);
    EXPECT_EQ(log.out(), "");
    return target;
}

TEST(TypeOnStream, IsItsNameAndFoundByAnAlias)
{
    ZTDataStream stream;
    stream << ztMetaType<int>() << ZTMetaType::ZTBadMetaType;
    EXPECT_EQ(stream.data(), streamed("int") + streamed("ZTBadMetaType"));
    stream << "std::string"
           << "no such type";
    const ZTMetaType* type = nullptr;
    EXPECT_LOGS_NOTHING([&] {
        for (const char* name : {"int", "ZTBadMetaType", "std::string"}) {
            stream >> type;
            EXPECT_EQ(type, &ztMetaType(name));
        }
    });
    EXPECT_LOGS(unknown("no such type"), [&] { stream >> type; });
    EXPECT_EQ(type, &ZTMetaType::ZTBadMetaType);
    EXPECT_TRUE(stream.good());
}

/// Registers a type of its own under that name.
template <class T>
const ZTMetaType& registerAs(std::string_view name, const std::string& alias = {})
{
    using Functions = zt::detail::TypeFunctions<T>;
    return zt::detail::ztRegisterMetaType(typeid(T), name, alias, Functions::create(),
                                          Functions::destroy(), Functions::createDefault(), nullptr,
                                          nullptr, nullptr, nullptr, nullptr);
}

TEST(TypeOnStream, IsTheOneThatOwnsTheName)
{
    struct Owner {};
    struct Namesake {};
    struct Longer {};
    struct Other {};
    const std::vector<std::pair<std::string, const ZTMetaType*>> named = {
        {"dup", &registerAs<Owner>("dup")}, {"bee", &registerAs<Namesake>("dup", "bee")},
        {"dup", &ztMetaType<Owner>()},      {"dup*", &registerAs<Longer>("dup*")},
        {"dup", &ztMetaType<Owner>()},      {"duq", &registerAs<Other>("duq")},
        {"dup", &ztMetaType<Owner>()},      {"dup", &ztMetaType<Owner>()}};
    ZTDataStream stream;
    for (const auto& [name, type] : named)
        stream << name;
    for (const auto& [name, type] : named) {
        const ZTMetaType* read = nullptr;
        stream >> read;
        EXPECT_EQ(read, type) << name;
    }
}

enum class Wide : long long { Low = -2 };
/// Has no default value, so that no block is there to read into.
struct Pin {
    explicit Pin(int n) : number(n) {}
    int number;
    friend ZTDataStream& operator<<(ZTDataStream& s, const Pin& v) { return s << v.number; }
    [[maybe_unused]] friend ZTDataStream& operator>>(ZTDataStream& s, Pin&) { return s; }
};
struct ReadOnly {
    int number = 0;
    friend ZTDataStream& operator>>(ZTDataStream& s, ReadOnly& v) { return s >> v.number; }
};

TEST(VariantOnStream, IsItsTypeAndItsValueAndComesBackEqual)
{
    ZTVariant five(5), invalid;
    ZTDataStream stream;
    stream << five;
    const std::string fiveBytes = stream.data();
    EXPECT_EQ(support::hex(fiveBytes), "03 00 00 00 00 00 00 00 69 6E 74 05 00 00 00");
    EXPECT_EQ(streamed(ZTVariant(Wide::Low)), streamed(ztTypeName<Wide>(), -2LL));
    stream << ZTVariant(ztMetaType<ZTVariant>(), &five);
    EXPECT_EQ(stream.data(), fiveBytes + streamed("struct ZTVariant") + fiveBytes);
    for (const ZTVariant& variant :
         {ZTVariant("abc"), ZTVariant(Wide::Low), ZTVariant(ztMetaType<ZTVariant>(), &five),
          ZTVariant(ztMetaType<ZTVariant>(), &invalid), invalid}) {
        ZTDataStream one;
        EXPECT_LOGS_NOTHING([&] { one << variant; });
        ZTVariant read = readOver(one);
        EXPECT_EQ(&read.type(), &variant.type());
        EXPECT_EQ(read, variant);
        EXPECT_TRUE(one.good());
    }
}

TEST(VariantOnStream, OfATypeThatIsNotWrittenStaysInStep)
{
    for (const ZTVariant& variant :
         {ZTVariant(ztMetaType("void"), nullptr), ZTVariant(ZTULong(7)), ZTVariant(ReadOnly{3})}) {
        const std::string name = variant.type().name();
        ZTDataStream stream;
        EXPECT_LOGS(failed("serialization", name), [&] { stream << variant; });
        EXPECT_EQ(stream.data(), streamed(name));
        stream << 5;
        // A type that is only read takes what follows.
        const bool reads = &variant.type() == &ztMetaType<ReadOnly>();
        int next = 0;
        EXPECT_EQ(readOver(stream, reads ? "" : failed("deserialization", name)).isValid(), reads);
        EXPECT_EQ((stream >> next).good(), !reads) << name;
        EXPECT_EQ(next, reads ? 0 : 5);
    }
}

TEST(VariantOnStream, OfATypeThatIsNotReadLeavesItsValueBehind)
{
    ZTBase object;
    const std::pair<ZTVariant, std::size_t> variants[] = {{ZTVariant('x'), 4},
                                                          {ZTVariant(Pin(7)), 4},
                                                          {ZTVariant(nullptr), 0},
                                                          {ZTVariant(&object), 1}};
    for (const auto& [variant, left] : variants) {
        const std::string name = variant.type().name();
        ZTDataStream stream;
        stream << variant;
        EXPECT_EQ(stream.data().size(), streamed(name).size() + left) << name;
        stream << "next";
        EXPECT_FALSE(readOver(stream, failed("deserialization", name)));
        std::string rest(left, '\0'), next;
        stream.read(rest.data(), static_cast<unsigned int>(left));
        EXPECT_EQ((stream >> next, next), "next") << name;
    }
}

TEST(VariantOnStream, ThatEndsEarlyHoldsWhatWasRead)
{
    const std::string whole = streamed(ZTVariant(0x04030201));
    const std::size_t name = streamed("int").size();
    const int partial[] = {0, 0x01, 0x0201, 0x030201};
    for (std::size_t size = 0; size < whole.size(); ++size) {
        ZTDataStream stream = streamOf(whole.substr(0, size));
        ZTVariant read = readOver(stream, size < name ? unknown("") : "");
        EXPECT_EQ(read.isValid(), size >= name) << size;
        if (read) {
            EXPECT_EQ(read, ZTVariant(partial[size - name])) << size;
        }
        EXPECT_FALSE(stream.good()) << size;
        EXPECT_FALSE(readOver(stream, unknown(""))) << size;
    }
}

/// As many variants, each in the next one, and an `int` in the innermost.
std::string nested(int count)
{
    std::string bytes;
    for (int i = 1; i < count; ++i)
        bytes += streamed("struct ZTVariant");
    return bytes + streamed(ZTVariant(7));
}

TEST(VariantOnStream, NestsUpToALimit)
{
    ZTDataStream deep = streamOf(nested(500));
    const ZTVariant read = readOver(deep);
    EXPECT_TRUE(deep.good());
    const ZTVariant* innermost = &read;
    while (const auto* inner = ztVariantPointer<ZTVariant>(*innermost))
        innermost = inner;
    EXPECT_EQ(*innermost, ZTVariant(7));

    ZTDataStream tooDeep = streamOf(nested(501));
    EXPECT_TRUE(readOver(tooDeep, failed("deserialization", "int")));
    int left = 0;
    EXPECT_EQ((tooDeep >> left, left), 7);
}

TEST(VariantOnStream, ThatNestsWithoutEndIsSurvived)
{
    std::string bytes;
    for (int i = 0; i < 100'000; ++i)
        bytes += streamed("struct ZTVariant");
    ZTDataStream stream = streamOf(bytes);
    ZTVariant variant;
    EXPECT_NE(support::logOf([&] { stream >> variant; }), "");
}
} // namespace
