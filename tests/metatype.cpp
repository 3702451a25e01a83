#include "support/bytes.h"
#include "support/logs.h"
#include "support/namesake.h"

#include <zintar/converter.h>
#include <zintar/metaclass.h>
#include <zintar/typedvalue.h>

#include <array>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <sstream>
#include <stack>
#include <tuple>
#include <type_traits>
#include <variant>
#include <vector>

namespace
{
static_assert(!std::is_copy_constructible_v<ZTMetaType>);
static_assert(!std::is_convertible_v<const ZTMetaType&, bool>);

using Names = std::unordered_set<std::string>;

/// Registers a type with no other function than one that makes a value.
template <class T>
const ZTMetaType& registerBare(std::string_view name, const std::string& alias = {},
                               zt::detail::CreateDefaultFunction createDefault = nullptr)
{
    return zt::detail::ztRegisterMetaType(typeid(T), name, alias, nullptr, nullptr, createDefault,
                                          nullptr, nullptr, nullptr, nullptr, nullptr);
}

int made = 7;
void* make() { return &made; }

TEST(Registration, FirstOneStandsAndALaterOneAddsAnAlias)
{
    struct Twice {};
    struct Late {};
    const ZTMetaType& type = registerBare<Twice>("Twice");
    EXPECT_EQ(&registerBare<Twice>("TwiceAgain", "TwiceAlias", make), &type);
    EXPECT_EQ(type.create(nullptr), nullptr);
    EXPECT_FALSE(ztMetaType("TwiceAgain"));

    // Another type gets neither of its names.
    EXPECT_LOGS_NOTHING([] { registerBare<Late>("Twice", "TwiceAlias"); });
    const ZTMetaType* late = zt::detail::ztMetaType(typeid(Late));
    ASSERT_TRUE(late);
    ASSERT_TRUE(*late);
    ASSERT_NE(*late, type);
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
    for (const char* name : {"", "INT", " int", "const int", unregistered.c_str()})
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
    for (const ZTMetaType* type :
         {&registerBare<Bare>("Bare"), &bad, &ztMetaType("void"), &ztMetaType("void*")}) {
        EXPECT_EQ(static_cast<bool>(*type), type != &bad);
        EXPECT_FALSE(type->create(&value));
        EXPECT_FALSE(type->create(nullptr));
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

template <class T>
ZTPartialOrdering compare(const T& a, const T& b)
{
    return ztMetaType<T>().compare(&a, &b);
}

/// One row of the table of built-in types, with a value and what becomes of it.
template <class T>
struct Row {
    std::string name;
    std::string alias;
    T value;
    std::string bytes; ///< empty when the type is not written
    bool readable;
    std::string text;
};

/// Every promise that a row makes.
template <class T>
void expectRow(const Row<T>& row)
{
    SCOPED_TRACE(row.name);
    const ZTMetaType& type = ztMetaType<T>();
    EXPECT_EQ(type.name(), row.name);
    EXPECT_EQ(type.aliases(), row.alias.empty() ? Names() : Names{row.alias});
    EXPECT_EQ(&ztMetaType(row.alias.empty() ? row.name : row.alias), &type);
    ZTDataStream stream;
    EXPECT_EQ(type.serialize(stream, &row.value), !row.bytes.empty());
    EXPECT_EQ(support::bytesOf(stream), row.bytes);
    T read{};
    EXPECT_EQ(type.deserialize(stream, &read), row.readable);
    EXPECT_EQ(compare(read, row.value) == ZTPartialOrdering::Equivalent, row.readable);
    std::ostringstream text;
    EXPECT_TRUE(type.print(text, &row.value));
    EXPECT_EQ(text.str(), row.text);
    if constexpr (std::is_arithmetic_v<T>) {
        using Limits = std::numeric_limits<T>; // a number compares by its sign
        EXPECT_EQ(compare(Limits::lowest(), Limits::max()), ZTPartialOrdering::Less);
        EXPECT_EQ(compare(Limits::max(), Limits::lowest()), ZTPartialOrdering::Greater);
    }
}

TEST(BuiltInTypes, HaveTheirNamesFunctionsAndBytes)
{
    expectRow<char>({"char", "", -1, "FF FF FF FF", false, "\xFF"});
    expectRow<unsigned char>({"unsigned char", "", 'A', "41", true, "A"});
    expectRow<short>({"short", "", -2, "FE FF", true, "-2"});
    expectRow<unsigned short>({"unsigned short", "", 0x1234, "34 12", true, "4660"});
    expectRow<int>({"int", "", -2, "FE FF FF FF", true, "-2"});
    expectRow<unsigned int>({"unsigned int", "", 0xFFFFFFFE, "FE FF FF FF", true, "4294967294"});
    expectRow<ZTLong>({"long", "", 1, "01 00 00 00", false, "1"});
    expectRow<ZTULong>({"unsigned long", "", 0xFFFFFFFE, "", false, "4294967294"});
    expectRow<long long>({"__int64", "long long", -2, "FE FF FF FF FF FF FF FF", true, "-2"});
    expectRow<unsigned long long>({"unsigned __int64", "unsigned long long", 0x0102030405060708,
                                   "08 07 06 05 04 03 02 01", true, "72623859790382856"});
    expectRow<bool>({"bool", "", true, "01", true, "1"});
    expectRow<float>({"float", "", 0.5F, "00 00 00 3F", true, "0.5"});
    expectRow<double>({"double", "", -0.5, "00 00 00 00 00 00 E0 BF", true, "-0.5"});
    expectRow<std::string>({std::string(ztTypeName<std::string>()), "std::string", "abc",
                            "03 00 00 00 00 00 00 00 61 62 63", true, "abc"});
    EXPECT_FALSE(ztMetaType("signed char"));
    EXPECT_FALSE(ztMetaType("long double")); // no such rows
    EXPECT_EQ(&ztMetaType("ZTVariant"), &ztMetaType<ZTVariant>());
    if (sizeof(long) == 8) {
        EXPECT_EQ(&ztMetaType<long>(), &ztMetaType<long long>());
        EXPECT_EQ(ztVariantValue<unsigned long>(ZTVariant(std::size_t(7))), 7U);
    }
}

TEST(BuiltInTypes, NullHasNothingToWrite)
{
    ZTDataStream stream;
    std::ostringstream text;
    std::nullptr_t null = nullptr;
    const ZTMetaType& type = ztMetaType("std::nullptr_t");
    EXPECT_TRUE(type.serialize(stream, &null));
    EXPECT_TRUE(type.print(text, &null));
    EXPECT_FALSE(type.deserialize(stream, &null));
    EXPECT_EQ(type.name() + stream.data() + text.str(), "nullptrnullptr");
    EXPECT_EQ(compare(null, null), ZTPartialOrdering::Equivalent);
}

TEST(BuiltInTypes, CompareNaNsStringsAndVariants)
{
    using namespace std::string_literals;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(compare(1.0, nan), ZTPartialOrdering::Greater);
    EXPECT_EQ(compare(nan, 1.0), ZTPartialOrdering::Greater);
    EXPECT_EQ(compare(0.0, -0.0), ZTPartialOrdering::Equivalent);
    EXPECT_EQ(compare("a"s, "\xFF"s), ZTPartialOrdering::Less); // by their bytes
    EXPECT_EQ(compare("a\0b"s, "a\0c"s), ZTPartialOrdering::Less);
    EXPECT_EQ(compare(ZTVariant(1), ZTVariant(2)), ZTPartialOrdering::Less);
    EXPECT_EQ(compare(ZTVariant(), ZTVariant()), ZTPartialOrdering::Equivalent);
    EXPECT_EQ(compare(ZTVariant(1), ZTVariant("1")), ZTPartialOrdering::Greater);
}

struct Equal { // equality alone
    int number = 0;
    bool operator==(const Equal&) const = default;
};
struct Opaque {
    int number = 0;
};
enum class Byte : unsigned char { Zero, Top = 255 };

struct Namesake {
    int number;
};

TEST(LazyType, IsToldWhenItsNameIsTaken)
{
    EXPECT_LOGS_NOTHING([] {
        (void)support::namesakeElsewhere(1);
        (void)support::namesakeElsewhere(2);
        zt::detail::registerType<Opaque>("Opaque");
        zt::detail::registerType<Opaque>(); // as a plugin does that has it too
    });
    const std::string line =
        "Zintar: ZTMetaType registration of a second type with name \"struct "
        "(anonymous)::Namesake\". Its values are read from streams as those of the first one.\n";
    EXPECT_LOGS(line, [] { (void)ZTVariant(Namesake{1}); });
    EXPECT_LOGS_NOTHING([] { (void)ZTVariant(Namesake{2}); });
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

/// Has a `value_type`, and a comparison of its own.
struct Pool {
    using value_type = Opaque;
    int id = 0;
    bool operator==(const Pool&) const = default;
};
template <class T>
struct Key {
    using value_type = T;
    int id = 0;
    bool operator==(const Key&) const = default;
};
/// Copies what its elements cannot copy.
class Shapes
{
public:
    using value_type = std::unique_ptr<int>;
    explicit Shapes(int number) { m_all.push_back(std::make_unique<int>(number)); }
    Shapes(const Shapes& other) : Shapes(*other.m_all.front()) {}
    auto begin() const { return m_all.begin(); }
    auto end() const { return m_all.end(); }
    bool operator==(const Shapes& other) const { return **begin() == **other.begin(); }

private:
    std::vector<value_type> m_all;
};
/// Derive from a container; one compares by itself.
struct Flock : std::vector<Opaque> {};
struct Series : std::vector<Opaque> {
    int id = 0;
    bool operator==(const Series& other) const { return id == other.id; }
};
struct UniqueRow : std::vector<std::unique_ptr<int>> {};
struct Tree : std::variant<int, std::vector<Tree>> {
    using variant::variant;
};
class Secret
{
    [[maybe_unused]] bool operator==(const Secret&) const { return true; }
};
class Inherited : Equal
{};

/// Two values of a type compare like that, also as variants.
template <class T>
void expectCompared(const T& a, const T& b, ZTPartialOrdering order)
{
    const bool equal = order == ZTPartialOrdering::Equivalent;
    EXPECT_EQ(compare(a, b), order) << ztTypeName<T>();
    EXPECT_EQ(ZTVariant(a) == ZTVariant(b), equal) << ztTypeName<T>();
}

TEST(LazyType, WithAValueTypeSpeaksForItself)
{
    expectCompared(Pool{1}, Pool{1}, ZTPartialOrdering::Equivalent);
    expectCompared(Key<Opaque>{1}, Key<Opaque>{1}, ZTPartialOrdering::Equivalent);
    expectCompared(Shapes(2), Shapes(2), ZTPartialOrdering::Equivalent);
    expectCompared(Series(), Series(), ZTPartialOrdering::Equivalent);
    int numbers[2] = {1, 2};
    const ZTVariant view(std::span<int>{numbers});
    EXPECT_EQ(ztVariantPointer<std::span<int>>(view)->data(), numbers);
    static_assert(zt::detail::isCopyable<std::span<std::unique_ptr<int>>>);
}

TEST(LazyType, DoesWhatAllOfItsPartsCanDo)
{
    const auto unordered = ZTPartialOrdering::Unordered;
    const Opaque opaque;
    expectCompared(std::tuple(1, opaque), std::tuple(1, opaque), unordered);
    expectCompared(std::variant<int, Opaque>(1), std::variant<int, Opaque>(1), unordered);
    expectCompared(std::pair(1, opaque), std::pair(1, opaque), unordered);
    expectCompared(std::optional(std::vector{opaque}), {}, unordered);
    expectCompared(std::map<int, Opaque>(), std::map<int, Opaque>(), unordered);
    expectCompared(std::array<Opaque, 2>(), std::array<Opaque, 2>(), unordered);
    expectCompared(std::stack<Opaque>(), std::stack<Opaque>(), unordered);
    expectCompared(Flock(), Flock(), unordered);
    expectCompared(Secret(), Secret(), unordered);
    expectCompared(Inherited(), Inherited(), unordered);
    expectCompared(std::tuple(1, 2), std::tuple(1, 3), ZTPartialOrdering::Less);
    expectCompared(std::variant<int, bool>(2), std::variant<int, bool>(1),
                   ZTPartialOrdering::Greater);
    expectCompared(std::map<int, Equal>{{1, {}}}, {{1, {}}}, ZTPartialOrdering::Equivalent);
    expectCompared(Tree(7), Tree(7), ZTPartialOrdering::Equivalent);
    static_assert(!zt::detail::isCopyable<std::vector<std::unique_ptr<int>>>);
    static_assert(!zt::detail::isCopyable<std::map<int, std::unique_ptr<int>>>);
    static_assert(!zt::detail::isCopyable<std::optional<std::vector<std::unique_ptr<int>>>>);
    static_assert(!zt::detail::isCopyable<UniqueRow>);
}

/// Nobody gets its address by asking for it.
struct Shy {
    int number = 0;
    bool operator==(const Shy&) const = default;
    Shy* operator&() const { return nullptr; }
};

TEST(LazyType, MayOverloadTheAddress)
{
    const ZTMetaType& type = ztMetaType<Shy>();
    ZTVariant variant(Shy{5});
    EXPECT_EQ(ztVariantValue<Shy>(variant).number, 5);
    ztRegisterConverter([](int number) { return Shy{number}; });
    EXPECT_EQ(ztVariantValue<Shy>(ZTVariant(3)).number, 3);
    EXPECT_EQ(variant, ZTVariant(type, variant.data()));
}

struct Point {
    int x = 0;
    friend ZTDataStream& operator<<(ZTDataStream& s, const Point& p) { return s << p.x; }
    friend ZTDataStream& operator>>(ZTDataStream& s, Point& p) { return s >> p.x; }
};
struct LabelledPoint : Point {
    std::string label;
};
struct Label : std::string {};

TEST(LazyType, IsNotReadByTheOperatorOfABaseClass)
{
    ZTDataStream stream;
    Point point;
    LabelledPoint labelled;
    Label label;
    EXPECT_TRUE(ztMetaType<Point>().serialize(stream, &point));
    EXPECT_TRUE(ztMetaType<Point>().deserialize(stream, &point));
    EXPECT_FALSE(ztMetaType<LabelledPoint>().deserialize(stream, &labelled));
    EXPECT_FALSE(ztMetaType<Label>().deserialize(stream, &label));
}

TEST(LazyType, LeavesValuesInTheMemoryOfWhoRegisteredItFirst)
{
    struct Foreign {
        int number;
    };
    static int living = 0;
    auto create = [](const void* source) -> void* {
        ++living;
        return new Foreign(*static_cast<const Foreign*>(source));
    };
    auto destroy = [](void* block) {
        --living;
        delete static_cast<Foreign*>(block);
    };
    zt::detail::ztRegisterMetaType(typeid(Foreign), "Foreign", {}, create, destroy, nullptr,
                                   nullptr, nullptr, nullptr, nullptr, nullptr);
    {
        ZTVariant value(Foreign{5});
        EXPECT_EQ(ztVariantPointer<Foreign>(value)->number, 5);
        EXPECT_EQ(living, 1);
    }
    EXPECT_EQ(living, 0);
}

TEST(LazyType, PointerIsAnAddressThatIsNotStreamed)
{
    const ZTMetaType& type = ztMetaType<Opaque*>();
    Opaque pair[2], *first = &pair[0], *second = &pair[1], *null = nullptr;
    ZTDataStream bytes;
    EXPECT_EQ(type.compare(&first, &second), ZTPartialOrdering::Less);
    EXPECT_EQ(type.compare(&second, &first), ZTPartialOrdering::Greater);
    EXPECT_EQ(type.compare(&null, &null), ZTPartialOrdering::Equivalent);
    EXPECT_TRUE(type.serialize(bytes, &first));
    EXPECT_TRUE(type.serialize(bytes, &null));
    EXPECT_EQ(support::bytesOf(bytes), "01 00");
    EXPECT_FALSE(type.deserialize(bytes, &null));
    EXPECT_FALSE(type.metaClass());
}
} // namespace
