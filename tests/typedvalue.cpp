#include "support/counted.h"
#include "support/logs.h"

#include <zintar/base.h>
#include <zintar/converter.h>
#include <zintar/dynamicbase.h>
#include <zintar/staticmetaclass.h>

#include <optional>

namespace
{
const std::string head = "Zintar Warning: Retrieved default-constructed value of type \"";

/// Retrieving a `T` gives the value and writes this to standard output, and nothing to the other.
template <class T, class Value>
void expectRetrieved(const ZTVariant& variant, const Value& value, const std::string& line = {})
{
    ZTLogCapture log;
    EXPECT_EQ(ztVariantValue<T>(variant), value);
    EXPECT_EQ(log.out(), line);
    EXPECT_EQ(log.err(), "");
}

std::string invalid(std::string_view asked)
{
    return head + std::string(asked) + "\" converting from invalid ZTVariant.\n";
}
std::string failed(std::string_view asked, const std::string& held)
{
    return head + std::string(asked) +
           "\" while converting from ZTVariant. Conversion failed from type type \"" + held +
           "\".\n";
}

const std::string constString = "const class std::basic_string<char,struct std::char_traits<char>,"
                                "class std::allocator<char> >";

TEST(RetrievedValue, IsACopyOrADefaultWithAWarning)
{
    expectRetrieved<const std::string&>(ZTVariant("abc"), "abc");
    expectRetrieved<const std::string&>(ZTVariant(), "", invalid(constString));
    expectRetrieved<std::string>(ZTVariant(), "", invalid(constString.substr(6)));
    expectRetrieved<const std::string>(ZTVariant(5), "", failed(constString, "int"));
    // Nothing gets registered for an invalid one.
    struct Unseen {};
    EXPECT_LOGS(invalid(ztTypeName<Unseen>()), [] { (void)ztVariantValue<Unseen>(ZTVariant()); });
    EXPECT_EQ(zt::detail::ztMetaType(typeid(Unseen)), nullptr);
}

TEST(RetrievedValue, NeedNotBeAssignable)
{
    struct Limits {
        const int low = 1;
        bool operator==(const Limits&) const = default;
    };
    expectRetrieved<Limits>(ZTVariant(Limits{2}), Limits{2});
    expectRetrieved<Limits>(ZTVariant(), Limits{}, invalid(ztTypeName<Limits>()));
    expectRetrieved<Limits>(ZTVariant(5), Limits{}, failed(ztTypeName<Limits>(), "int"));
}

TEST(RetrievedValue, MayBeAnEnumeration)
{
    enum class Mode : short { Off, Heat };
    expectRetrieved<const Mode&>(ZTVariant(Mode::Heat), Mode::Heat);
    expectRetrieved<Mode>(ZTVariant(1), Mode::Off, failed(ztTypeName<Mode>(), "int"));
}

TEST(RetrievedPointer, FollowsTheClassTree)
{
    ZTDynamicBase object;
    ZTBase plain, *base = &object;
    const ZTBase* constBase = &object;
    expectRetrieved<ZTBase*>(ZTVariant(constBase), base);
    expectRetrieved<const ZTBase*>(ZTVariant(base), base);
    expectRetrieved<ZTBase*>(ZTVariant(&object), base);
    expectRetrieved<const ZTDynamicBase*>(ZTVariant(base), &object);
    // No look is taken at what the object really is.
    EXPECT_EQ(static_cast<void*>(ztVariantValue<ZTDynamicBase*>(ZTVariant(&plain))), &plain);
    // A descriptor has no class: `const` may come in by the exact match, but never go away.
    auto* metaClass = const_cast<ZTMetaClass*>(&ZTBase::typeMetaClass());
    expectRetrieved<const ZTMetaClass*>(ZTVariant(metaClass), metaClass);
    expectRetrieved<ZTMetaClass*>(ZTVariant(&ZTBase::typeMetaClass()), nullptr,
                                  failed("struct ZTMetaClass*", "const struct ZTMetaClass*"));
    expectRetrieved<ZTBase*>(ZTVariant(), nullptr, invalid("struct ZTBase*"));
    expectRetrieved<int>(ZTVariant(base), 0, failed("int", "struct ZTBase*"));
}

/// A class that says that it was made at run time.
struct DynamicClass : ZTStaticMetaClass {
    using ZTStaticMetaClass::ZTStaticMetaClass;
    bool isDynamic() const override { return true; }
};

/// Registers the type of `T*` as that of a pointer to the class.
template <class T>
void registerPointer(const ZTMetaClass& metaClass)
{
    using Pointer = zt::detail::TypeFunctions<T*>;
    zt::detail::ztRegisterMetaType(typeid(T*), ztTypeName<T*>(), {}, Pointer::create(),
                                   Pointer::destroy(), nullptr, nullptr, nullptr, nullptr, nullptr,
                                   &metaClass);
}

TEST(RetrievedPointer, OfAForeignOrDynamicClassIsNullInSilence)
{
    struct Stranger {};
    struct Dream {};
    static const zt::detail::ZTStaticMetaClassData table;
    static zt::detail::ZTStaticMetaClassData dreamTable;
    static const ZTStaticMetaClass strangerClass(&table);
    static const DynamicClass dreamClass(&dreamTable);
    dreamTable.superClass = &ZTBase::typeMetaClass();
    registerPointer<Stranger>(strangerClass);
    registerPointer<Dream>(dreamClass);
    registerPointer<const Dream>(dreamClass);
    Stranger stranger;
    Dream dream;
    ZTBase object;
    expectRetrieved<ZTBase*>(ZTVariant(&stranger), nullptr);
    expectRetrieved<ZTBase*>(ZTVariant(&dream), nullptr);
    expectRetrieved<Dream*>(ZTVariant(&object), nullptr);
    expectRetrieved<Dream*>(ZTVariant(static_cast<const Dream*>(&dream)), nullptr);
    expectRetrieved<Dream*>(ZTVariant(&dream), &dream);                        // the same type
    EXPECT_FALSE(ZTVariant(&object).canConvert(ztMetaType<ZTDynamicBase*>())); // a converter's say
}

TEST(RetrievedValue, MayLookIntoTheText)
{
    const std::string zeros("a\0b", 3);
    const ZTVariant text(zeros), number(5), nothing;
    expectRetrieved<std::string_view>(text, zeros);
    EXPECT_EQ(ztVariantValue<const char*>(text), static_cast<std::string*>(text.data())->c_str());
    expectRetrieved<const char*>(number, nullptr, failed("const char*", "int"));
    const std::string_view view =
        "struct std::basic_string_view<char,struct std::char_traits<char> >";
    expectRetrieved<std::string_view>(number, "", failed(view, "int"));
    expectRetrieved<std::string_view>(nothing, "", invalid(view));
}

TEST(RetrievedValue, MayBeTheVariantItself)
{
    const ZTVariant five(5);
    expectRetrieved<ZTVariant>(five, five);
    expectRetrieved<const ZTVariant&>(ZTVariant(), ZTVariant());
    expectRetrieved<ZTVariant>(ZTVariant(ztMetaType<ZTVariant>(), &five), five);
}

TEST(RetrievedValue, OfAPointerMayGetConst)
{
    int number = 5;
    expectRetrieved<const int*>(ZTVariant(&number), &number);
    expectRetrieved<int*>(ZTVariant(static_cast<const int*>(&number)), nullptr,
                          failed("int*", "const int*"));
    expectRetrieved<const long*>(ZTVariant(&number), nullptr,
                                 failed(ztTypeName<const long*>(), "int*"));
}

TEST(VariantPointer, LooksAtTheBlockAndConvertsNothing)
{
    support::Counted::reset();
    ZTVariant variant(support::Counted(3));
    EXPECT_LOGS_NOTHING([&] {
        EXPECT_EQ(ztVariantPointer<const support::Counted>(variant), variant.data());
        const ZTVariant nothing, five(5);
        EXPECT_EQ(ztVariantPointer<int>(nothing), nullptr);
        EXPECT_EQ(ztVariantPointer<short>(five), nullptr);
    });
    EXPECT_EQ(support::Counted::copies, 0);
}

struct Celsius {
    double degrees = 0;
};
struct Kelvin {
    double degrees = 0;
    bool operator==(const Kelvin&) const = default;
};
struct Rankine {};

bool toZero(const void*, void* target)
{
    *static_cast<Kelvin*>(target) = {};
    return true;
}

struct Converters : testing::Test {
    Converters()
    {
        ztRegisterConverter([](const Celsius& from) -> std::optional<Kelvin> {
            if (from.degrees < -273)
                return std::nullopt;
            return Kelvin{from.degrees + 273};
        });
    }

    const ZTMetaType& celsius = ztMetaType<Celsius>();
    const ZTMetaType& kelvin = ztMetaType<Kelvin>();
    const ZTMetaType& bad = ZTMetaType::ZTBadMetaType;
    Celsius source{7};
    Kelvin target{1};
};

TEST_F(Converters, ServeOneDirectionOfOnePair)
{
    zt::detail::ztRegisterConverter(kelvin, ztMetaType<Rankine>(), &toZero);
    EXPECT_TRUE(celsius.canConvert(kelvin));
    EXPECT_TRUE(celsius.convert(&source, kelvin, &target));
    EXPECT_EQ(target.degrees, 280);
    EXPECT_FALSE(kelvin.canConvert(celsius));
    EXPECT_FALSE(kelvin.convert(&target, celsius, &source));
    EXPECT_EQ(source.degrees, 7);
    EXPECT_FALSE(celsius.canConvert(ztMetaType<Rankine>())); // not by way of a third type
}

TEST_F(Converters, ServeRetrieval)
{
    zt::detail::ztRegisterConverter(celsius, ztMetaType<ZTBase*>(), [](const void*, void* result) {
        *static_cast<const void**>(result) = &ZTBase::typeMetaClass();
        return true;
    });
    expectRetrieved<Kelvin>(ZTVariant(source), Kelvin{280});
    EXPECT_TRUE(ztVariantValue<ZTBase*>(ZTVariant(source)));
    const std::string failure = failed(kelvin.name(), celsius.name());
    expectRetrieved<Kelvin>(ZTVariant(Celsius{-300}), Kelvin{}, failure);
    // What a converter that refuses has left there stands.
    zt::detail::ztRegisterConverter(celsius, kelvin, [](const void*, void* result) {
        static_cast<Kelvin*>(result)->degrees = -27;
        return false;
    });
    expectRetrieved<Kelvin>(ZTVariant(source), Kelvin{-27}, failure);
}

TEST_F(Converters, MayRefuseAValueAndBeReplaced)
{
    source.degrees = -300;
    EXPECT_LOGS_NOTHING([&] { EXPECT_FALSE(celsius.convert(&source, kelvin, &target)); });
    EXPECT_TRUE(celsius.canConvert(kelvin));
    zt::detail::ztRegisterConverter(celsius, kelvin, &toZero);
    EXPECT_TRUE(celsius.convert(&source, kelvin, &target));
    EXPECT_EQ(target.degrees, 0);
    zt::detail::ztRegisterConverter(celsius, kelvin, nullptr);
    EXPECT_FALSE(celsius.convert(&source, kelvin, &target));
}

/// No value of it can be made of a null source.
struct Pin {
    explicit Pin(int n) : number(n) {}
    int number;
};

TEST_F(Converters, AreNotCalledForAVariantWithoutAValue)
{
    ztRegisterConverter([](const Pin& pin) { return Kelvin{double(pin.number)}; });
    const ZTVariant none(ztMetaType<Pin>(), nullptr);
    const std::string pin = none.type().name();
    EXPECT_TRUE(none.isValid());
    EXPECT_EQ(none.data(), nullptr);
    EXPECT_TRUE(none.canConvert(kelvin));
    expectRetrieved<Kelvin>(ZTVariant(Pin(3)), Kelvin{3});
    expectRetrieved<Kelvin>(none, Kelvin{}, failed(kelvin.name(), pin));
    expectRetrieved<ZTBase*>(none, nullptr, failed("struct ZTBase*", pin));
    EXPECT_FALSE(none.type().convert(none.data(), kelvin, &target));
    EXPECT_EQ(target.degrees, 1);
}

/// It has no default value, and cannot be assigned.
struct Serial {
    explicit Serial(int n) : number(n) {}
    const int number;
};

TEST_F(Converters, ReachTypesWithoutADefaultValue)
{
    ztRegisterConverter([](std::string_view text) -> std::optional<Serial> {
        if (text.empty())
            return std::nullopt;
        return Serial(static_cast<int>(text.size()));
    });
    using Some = std::optional<Serial>;
    EXPECT_EQ(ztVariantValue<Some>(ZTVariant(Serial(3)))->number, 3);
    EXPECT_EQ(ztVariantValue<Some>(ZTVariant("four"))->number, 4);
    EXPECT_LOGS(failed(ztTypeName<Some>(), constString.substr(6)),
                [] { EXPECT_FALSE(ztVariantValue<Some>(ZTVariant(""))); });
    Serial living(1);
    const ZTVariant text("abc");
    EXPECT_TRUE(text.type().convert(text.data(), ztMetaType<Serial>(), &living));
    EXPECT_EQ(living.number, 3);
    // One that has a default value comes in an optional, too.
    expectRetrieved<std::optional<Kelvin>>(ZTVariant(source), Kelvin{280});
    expectRetrieved<std::optional<Kelvin>>(ZTVariant(std::optional<Kelvin>()), std::nullopt);
}

TEST_F(Converters, HaveNothingToDoWithTheBadType)
{
    for (auto [from, to] : {std::pair(&celsius, &bad), {&bad, &bad}, {&bad, &kelvin}}) {
        EXPECT_FALSE(from->canConvert(*to));
        EXPECT_FALSE(from->convert(&source, *to, &target));
    }
    EXPECT_EQ(target.degrees, 1);
    EXPECT_TRUE(ZTVariant(source).canConvert(celsius));
    EXPECT_TRUE(ZTVariant(source).canConvert(kelvin));
    EXPECT_FALSE(ZTVariant(source).canConvert(bad));
    EXPECT_FALSE(ZTVariant().canConvert(bad));
}

TEST_F(Converters, TouchATargetOfTheSameTypeOnlyWhenTheyAreRegistered)
{
    Kelvin other{5};
    EXPECT_TRUE(kelvin.convert(&other, kelvin, &target));
    EXPECT_EQ(target.degrees, 1);
    zt::detail::ztRegisterConverter(kelvin, kelvin, &toZero);
    EXPECT_TRUE(kelvin.convert(&other, kelvin, &target));
    EXPECT_EQ(target.degrees, 0);
}
} // namespace
