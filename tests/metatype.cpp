#include "support/bytes.h"
#include "support/logs.h"

#include <zintar/metaclass.h>
#include <zintar/metatypeof.h>

#include <sstream>
#include <type_traits>

namespace
{
static_assert(!std::is_copy_constructible_v<ZTMetaType>);
static_assert(!std::is_convertible_v<const ZTMetaType&, bool>);

using Names = std::unordered_set<std::string>;

/// Registers a type with these ways to make an `int` and without any other function.
template <class T>
const ZTMetaType& registerBare(std::string_view name, const std::string& alias = {},
                               zt::detail::CreateFunction create = nullptr,
                               zt::detail::CreateDefaultFunction createDefault = nullptr)
{
    return zt::detail::ztRegisterMetaType(typeid(T), name, alias, create, nullptr, createDefault,
                                          nullptr, nullptr, nullptr, nullptr, nullptr);
}

int madeByDefault = 7;
int madeByCopy = 8;
void* makeDefault() { return &madeByDefault; }
void* makeCopy(const void*) { return &madeByCopy; }

TEST(Registration, FirstOneStandsAndALaterOneAddsAnAlias)
{
    struct Twice {};
    struct Late {};
    const ZTMetaType& type = registerBare<Twice>("Twice");
    EXPECT_EQ(&registerBare<Twice>("TwiceAgain", "TwiceAlias", makeCopy, makeDefault), &type);
    EXPECT_EQ(&registerBare<Twice>("TwiceAgain", "Twice"), &type);
    EXPECT_EQ(type.create(nullptr), nullptr);
    EXPECT_FALSE(ztMetaType("TwiceAgain"));

    // Another type gets neither of its names.
    EXPECT_LOGS_NOTHING([] { registerBare<Late>("Twice", "TwiceAlias"); });
    const ZTMetaType* late = zt::detail::ztMetaType(typeid(Late));
    ASSERT_NE(late, nullptr);
    EXPECT_TRUE(*late && *late != type);
    EXPECT_EQ(late->name() + type.name(), "TwiceTwice");
    EXPECT_EQ(late->aliases(), Names());
    EXPECT_EQ(type.aliases(), Names{"TwiceAlias"});
    EXPECT_EQ(&ztMetaType("Twice"), &type);
    EXPECT_EQ(&ztMetaType("TwiceAlias"), &type);
}

TEST(Lookup, ComparesTheWholeNameAndRegistersNothing)
{
    struct Unregistered {};
    const std::string unregistered(ztTypeName<Unregistered>());
    for (const std::string& name : {std::string(), std::string("INT"), std::string(" int"),
                                    std::string("const int"), unregistered})
        EXPECT_EQ(&ztMetaType(name), &ZTMetaType::ZTBadMetaType) << name;
    EXPECT_EQ(zt::detail::ztMetaType(typeid(Unregistered)), nullptr);
    const ZTMetaType& type = ztMetaType<Unregistered>();
    EXPECT_EQ(&ztMetaType(unregistered), &type);
}

TEST(MetaType, WithoutFunctionsAnswersNeutrally)
{
    struct Bare {};
    const ZTMetaType& bad = ZTMetaType::ZTBadMetaType;
    ZTDataStream bytes;
    std::ostringstream text;
    int value = 0;
    for (const ZTMetaType* type : {&registerBare<Bare>("Bare"), &bad}) {
        EXPECT_EQ(*type, *type);
        EXPECT_EQ(static_cast<bool>(*type), type != &bad);
        EXPECT_EQ(type->create(&value), nullptr);
        EXPECT_EQ(type->create(nullptr), nullptr);
        type->destroy(&value);
        EXPECT_EQ(type->compare(nullptr, &value), ZTPartialOrdering::Unordered);
        EXPECT_FALSE(type->serialize(bytes, &value));
        EXPECT_FALSE(type->deserialize(bytes, &value));
        EXPECT_FALSE(type->print(text, &value));
    }
    EXPECT_EQ(bytes.data() + text.str(), "");
    EXPECT_EQ(&ztMetaType("ZTBadMetaType"), &bad);
    EXPECT_EQ(zt::detail::ztMetaType(typeid(ZTNone)), &bad);
}

TEST(MetaType, NoMakerStandsInForTheOther)
{
    struct OnlyCopy {};
    struct OnlyDefault {};
    int source = 5;
    const ZTMetaType& copies = registerBare<OnlyCopy>("OnlyCopy", "", makeCopy);
    const ZTMetaType& makes = registerBare<OnlyDefault>("OnlyDefault", "", nullptr, makeDefault);
    EXPECT_TRUE(!copies.create(nullptr) && copies.create(&source) == &madeByCopy);
    EXPECT_TRUE(!makes.create(&source) && makes.create(nullptr) == &madeByDefault);
}

struct Equal { // equality alone
    int number = 0;
    bool operator==(const Equal&) const = default;
};
struct Opaque {
    int number = 0;
};
enum class Byte : unsigned char { Zero, Top = 255 };
enum class Wide : long long { Low = -2 };

template <class T>
ZTPartialOrdering compare(const T& a, const T& b)
{
    return ztMetaType<T>().compare(&a, &b);
}

TEST(LazyType, ComparesWithWhatTheTypeAndItsElementsOffer)
{
    EXPECT_EQ(compare(Equal{1}, Equal{1}), ZTPartialOrdering::Equivalent);
    EXPECT_EQ(compare(Equal{1}, Equal{2}), ZTPartialOrdering::Unordered);
    EXPECT_EQ(compare(Opaque{1}, Opaque{1}), ZTPartialOrdering::Unordered);
    EXPECT_EQ(compare(Byte::Zero, Byte::Top), ZTPartialOrdering::Less);
    EXPECT_EQ(compare(std::vector<int>{1, 2}, {1, 3}), ZTPartialOrdering::Less);
    EXPECT_EQ(compare(std::vector<Equal>{{1}}, {{2}}), ZTPartialOrdering::Unordered);
    EXPECT_EQ(compare(std::vector<Opaque>{{1}}, {{1}}), ZTPartialOrdering::Unordered);
}

TEST(LazyType, PointerIsAnAddressThatIsNotStreamed)
{
    const ZTMetaType& type = ztMetaType<Opaque*>();
    Opaque pair[2], *first = &pair[0], *second = &pair[1], *null = nullptr;
    ZTDataStream bytes;
    EXPECT_EQ(type.compare(&first, &second), ZTPartialOrdering::Less);
    EXPECT_EQ(type.compare(&second, &first), ZTPartialOrdering::Greater);
    EXPECT_EQ(type.compare(&null, &null), ZTPartialOrdering::Equivalent);
    EXPECT_TRUE(type.serialize(bytes, &first) && type.serialize(bytes, &null));
    EXPECT_EQ(support::bytesOf(bytes), "01 00");
    EXPECT_FALSE(type.deserialize(bytes, &null) || type.metaClass());
}

template <class T>
void expectStreamed(T value, const std::string& bytes)
{
    ZTDataStream stream;
    T read{};
    EXPECT_TRUE(ztMetaType<T>().serialize(stream, &value));
    EXPECT_EQ(support::bytesOf(stream), bytes);
    EXPECT_TRUE(ztMetaType<T>().deserialize(stream, &read));
    EXPECT_EQ(read, value);
}

TEST(LazyType, EnumerationStreamsAsItsInteger)
{
    expectStreamed(Byte::Top, "FF");
    expectStreamed(Wide::Low, "FE FF FF FF FF FF FF FF");
}
} // namespace
