#include "support/bytes.h"
#include "support/counted.h"
#include "support/logs.h"

#include <zintar/metaclass.h>
#include <zintar/metatypeof.h>

#include <sstream>
#include <type_traits>

namespace
{
static_assert(sizeof(ZTPartialOrdering) == 1);
static_assert(static_cast<int>(ZTPartialOrdering::Less) == -1);
static_assert(static_cast<int>(ZTPartialOrdering::Equivalent) == 0);
static_assert(static_cast<int>(ZTPartialOrdering::Greater) == 1);
static_assert(static_cast<int>(ZTPartialOrdering::Unordered) == 2);
static_assert(!std::is_default_constructible_v<ZTMetaType>);
static_assert(!std::is_copy_constructible_v<ZTMetaType>);
static_assert(std::is_move_constructible_v<ZTMetaType>);
static_assert(!std::is_convertible_v<const ZTMetaType&, bool>);

using Names = std::unordered_set<std::string>;
using support::Counted;

/// Registers a type that has no function at all.
template <class T>
const ZTMetaType& registerBare(std::string_view name, const std::string& alias = {})
{
    return zt::detail::ztRegisterMetaType(typeid(T), name, alias, nullptr, nullptr, nullptr,
                                          nullptr, nullptr, nullptr, nullptr, nullptr);
}

TEST(Registration, FirstOneStandsAndALaterOneAddsAnAlias)
{
    struct Twice {};
    const ZTMetaType& first = registerBare<Twice>("Twice");
    auto makeNothing = []() -> void* { return new int; };
    const ZTMetaType& second =
        zt::detail::ztRegisterMetaType(typeid(Twice), "TwiceAgain", "TwiceAlias", nullptr, nullptr,
                                       makeNothing, nullptr, nullptr, nullptr, nullptr, nullptr);

    EXPECT_EQ(&second, &first);
    EXPECT_EQ(first.name(), "Twice");
    EXPECT_EQ(first.create(nullptr), nullptr);
    EXPECT_EQ(first.aliases(), Names{"TwiceAlias"});
    EXPECT_EQ(&ztMetaType("Twice"), &first);
    EXPECT_EQ(&ztMetaType("TwiceAlias"), &first);
    EXPECT_FALSE(ztMetaType("TwiceAgain"));
}

TEST(Registration, ATakenNameKeepsItsOwner)
{
    struct Owner {};
    struct Late {};
    const ZTMetaType& owner = registerBare<Owner>("Owned", "OwnedAlias");
    EXPECT_LOGS_NOTHING([] { registerBare<Late>("Owned", "OwnedAlias"); });

    const ZTMetaType* late = zt::detail::ztMetaType(typeid(Late));
    ASSERT_NE(late, nullptr);
    EXPECT_TRUE(*late);
    EXPECT_NE(*late, owner);
    EXPECT_EQ(late->name(), "Owned");
    EXPECT_EQ(late->aliases(), Names());
    EXPECT_EQ(&ztMetaType("Owned"), &owner);
    EXPECT_EQ(&ztMetaType("OwnedAlias"), &owner);
}

TEST(Registration, AnAliasEqualToANameIsNoAlias)
{
    struct Own {};
    struct Other {};
    EXPECT_EQ(registerBare<Own>("SameName", "SameName").aliases(), Names());
    EXPECT_EQ(registerBare<Own>("SameName", "SameName").aliases(), Names());
    EXPECT_EQ(registerBare<Other>("OtherName", "SameName").aliases(), Names());
    EXPECT_EQ(ztMetaType("SameName"), *zt::detail::ztMetaType(typeid(Own)));
}

TEST(Lookup, ComparesTheWholeNameAndRegistersNothing)
{
    struct Unregistered {};
    for (const char* name : {"", "INT", " int", "int ", "const int", "unregistered"}) {
        EXPECT_FALSE(ztMetaType(name)) << name;
        EXPECT_EQ(ztMetaType(name), ZTMetaType::ZTBadMetaType) << name;
    }
    EXPECT_EQ(zt::detail::ztMetaType(typeid(Unregistered)), nullptr);
    EXPECT_FALSE(ztMetaType(std::string(ztTypeName<Unregistered>())));
    EXPECT_TRUE(ztMetaType<Unregistered>());
    EXPECT_EQ(&ztMetaType(std::string(ztTypeName<Unregistered>())), &ztMetaType<Unregistered>());
}

TEST(BadMetaType, IsAnEntryThatCanDoNothing)
{
    const ZTMetaType& bad = ZTMetaType::ZTBadMetaType;
    EXPECT_FALSE(bad);
    EXPECT_EQ(bad, bad);
    EXPECT_NE(bad, ztMetaType<int>());
    EXPECT_EQ(bad.name(), "ZTBadMetaType");
    EXPECT_EQ(bad.aliases(), Names());
    EXPECT_EQ(&ztMetaType("ZTBadMetaType"), &bad);
    EXPECT_EQ(zt::detail::ztMetaType(typeid(ZTNone)), &bad);
    EXPECT_EQ(bad.metaClass(), nullptr);
}

TEST(MetaType, WithoutFunctionsAnswersNeutrally)
{
    struct Bare {};
    ZTDataStream bytes;
    std::ostringstream text;
    int value = 0;
    for (const ZTMetaType* type : {&registerBare<Bare>("Bare"), &ZTMetaType::ZTBadMetaType}) {
        EXPECT_EQ(type->create(&value), nullptr);
        EXPECT_EQ(type->create(nullptr), nullptr);
        type->destroy(&value);
        EXPECT_EQ(type->compare(nullptr, &value), ZTPartialOrdering::Unordered);
        EXPECT_FALSE(type->serialize(bytes, &value));
        EXPECT_FALSE(type->deserialize(bytes, &value));
        EXPECT_FALSE(type->print(text, &value));
    }
    EXPECT_EQ(bytes.data(), "");
    EXPECT_EQ(text.str(), "");
}

TEST(MetaType, NoMakerStandsInForTheOther)
{
    struct OnlyCopy {};
    struct OnlyDefault {};
    auto copy = [](const void* source) -> void* {
        return new int(*static_cast<const int*>(source));
    };
    auto make = []() -> void* { return new int(7); };
    const ZTMetaType& copies = zt::detail::ztRegisterMetaType(
        typeid(OnlyCopy), "OnlyCopy", "", copy, zt::detail::TypeFunctions<int>::destroy(), nullptr,
        nullptr, nullptr, nullptr, nullptr, nullptr);
    const ZTMetaType& makes = zt::detail::ztRegisterMetaType(
        typeid(OnlyDefault), "OnlyDefault", "", nullptr, zt::detail::TypeFunctions<int>::destroy(),
        make, nullptr, nullptr, nullptr, nullptr, nullptr);
    int source = 5;

    EXPECT_EQ(copies.create(nullptr), nullptr);
    EXPECT_EQ(makes.create(&source), nullptr);
    void* copied = copies.create(&source);
    void* made = makes.create(nullptr);
    EXPECT_EQ(*static_cast<int*>(copied), 5);
    EXPECT_EQ(*static_cast<int*>(made), 7);
    copies.destroy(copied);
    makes.destroy(made);
}

TEST(MetaType, OfTheStreamSaysOnlyThatThereIsAFunction)
{
    ZTDataStream failed;
    int value = 5;
    failed >> value;
    ASSERT_FALSE(failed.good());
    EXPECT_TRUE(ztMetaType<int>().serialize(failed, &value));
    EXPECT_TRUE(ztMetaType<int>().deserialize(failed, &value));
    EXPECT_EQ(value, 5);
    EXPECT_EQ(failed.data(), "");
}

struct Plain { // equality, but no order and no streams
    int number = 0;
    bool operator==(const Plain&) const = default;
};
struct Opaque {
    int number = 0;
};
struct Streamed {
    int number = 0;
    friend ZTDataStream& operator<<(ZTDataStream& s, const Streamed& v) { return s << v.number; }
    friend ZTDataStream& operator>>(ZTDataStream& s, Streamed& v) { return s >> v.number; }
    friend std::ostream& operator<<(std::ostream& s, const Streamed& v) { return s << v.number; }
    bool operator<(const Streamed& other) const { return number < other.number; }
    bool operator==(const Streamed& other) const { return number == other.number; }
};

template <class T>
ZTPartialOrdering compare(const T& a, const T& b)
{
    return ztMetaType<T>().compare(&a, &b);
}

TEST(LazyType, ComparesWithWhatTheTypeOffers)
{
    EXPECT_EQ(compare(Plain{1}, Plain{1}), ZTPartialOrdering::Equivalent);
    EXPECT_EQ(compare(Plain{1}, Plain{2}), ZTPartialOrdering::Unordered);
    EXPECT_EQ(compare(Opaque{1}, Opaque{1}), ZTPartialOrdering::Unordered);
    EXPECT_EQ(compare(Streamed{1}, Streamed{1}), ZTPartialOrdering::Equivalent);
    EXPECT_EQ(compare(Streamed{1}, Streamed{2}), ZTPartialOrdering::Less);
    EXPECT_EQ(compare(Streamed{2}, Streamed{1}), ZTPartialOrdering::Greater);
    EXPECT_EQ(compare(std::vector<int>{1, 2}, {1, 3}), ZTPartialOrdering::Less);
    EXPECT_EQ(compare(std::vector<Plain>{{1}}, {{2}}), ZTPartialOrdering::Unordered);
    EXPECT_EQ(compare(std::vector<Opaque>{{1}}, {{1}}), ZTPartialOrdering::Unordered);
}

TEST(LazyType, StreamsAndPrintsWithItsOperators)
{
    const ZTMetaType& type = ztMetaType<Streamed>();
    ZTDataStream bytes;
    std::ostringstream text;
    Streamed value{7};
    Streamed back;
    EXPECT_TRUE(type.serialize(bytes, &value));
    EXPECT_TRUE(type.deserialize(bytes, &back));
    EXPECT_TRUE(type.print(text, &value));
    EXPECT_EQ(back, value);
    EXPECT_EQ(text.str(), "7");
    EXPECT_FALSE(ztMetaType<Opaque>().serialize(bytes, &value));
    EXPECT_FALSE(ztMetaType<Opaque>().deserialize(bytes, &back));
    EXPECT_FALSE(ztMetaType<Opaque>().print(text, &value));
}

TEST(LazyType, MakesAndEndsValues)
{
    Counted::reset();
    const ZTMetaType& type = ztMetaType<Counted>();
    {
        Counted source(3);
        void* copy = type.create(&source);
        void* fresh = type.create(nullptr);
        EXPECT_EQ(static_cast<Counted*>(copy)->number, 3);
        EXPECT_EQ(static_cast<Counted*>(fresh)->number, 0);
        EXPECT_EQ(Counted::alive, 3);
        type.destroy(copy);
        type.destroy(fresh);
        EXPECT_EQ(Counted::copies, 1);
    }
    EXPECT_EQ(Counted::alive, 0);
}

TEST(LazyType, PointerIsAnAddressThatIsNotStreamed)
{
    const ZTMetaType& type = ztMetaType<Plain*>();
    Plain pair[2];
    Plain* first = &pair[0];
    Plain* second = &pair[1];
    Plain* null = nullptr;
    ZTDataStream bytes;
    std::ostringstream text;
    EXPECT_EQ(type.compare(&first, &second), ZTPartialOrdering::Less);
    EXPECT_EQ(type.compare(&second, &first), ZTPartialOrdering::Greater);
    EXPECT_EQ(type.compare(&null, &null), ZTPartialOrdering::Equivalent);
    EXPECT_TRUE(type.serialize(bytes, &first));
    EXPECT_TRUE(type.serialize(bytes, &null));
    EXPECT_EQ(support::bytesOf(bytes), "01 00");
    EXPECT_FALSE(type.deserialize(bytes, &null));
    EXPECT_TRUE(type.print(text, &null));
    EXPECT_EQ(text.str(), "0");
    EXPECT_EQ(type.metaClass(), nullptr);
    EXPECT_FALSE(ztMetaType<const ZTMetaClass*>().print(text, &null));
}

enum class Byte : unsigned char { Zero, Top = 255 };
enum class Wide : long long { Low = -2 };

TEST(LazyType, EnumerationStreamsAsItsInteger)
{
    ZTDataStream stream;
    Byte top = Byte::Top;
    Wide low = Wide::Low;
    EXPECT_TRUE(ztMetaType<Byte>().serialize(stream, &top));
    EXPECT_TRUE(ztMetaType<Wide>().serialize(stream, &low));
    EXPECT_EQ(support::bytesOf(stream), "FF FE FF FF FF FF FF FF FF");
    top = Byte::Zero;
    low = Wide();
    EXPECT_TRUE(ztMetaType<Byte>().deserialize(stream, &top));
    EXPECT_TRUE(ztMetaType<Wide>().deserialize(stream, &low));
    EXPECT_EQ(top, Byte::Top);
    EXPECT_EQ(low, Wide::Low);
    EXPECT_EQ(compare(Byte::Zero, Byte::Top), ZTPartialOrdering::Less);
}
} // namespace
