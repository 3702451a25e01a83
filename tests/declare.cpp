#include "support/describe.h"
#include "support/hostclasses.h"
#include "support/sampleclasses.h"

#include <cstdint>

namespace host
{
enum class Colour : std::uint8_t { Red = 1, Blue = 200 };

/// The second of three levels, with members of many shapes, and another base.
class Mixed : public sample::Device, public std::string
{
    ZT_OBJECT(Mixed, sample::Device)
    using MovedBy = void (Self::*)(int);
    using MovedTo = void (Self::*)(const std::string&);

public:
    int add(int a) { return a + 1; }
    int add(int a, int b) const { return a + b; }
    void moved(int x) { sendEvent<static_cast<MovedBy>(&Self::moved)>(x); }
    void moved(const std::string& to) { sendEvent<static_cast<MovedTo>(&Self::moved)>(to); }
    void literal(const char* to) { sendEvent<static_cast<MovedTo>(&Self::moved)>(to); }
    void forgotten() { sendEvent<&Self::forgotten>(); }
    Colour mix(Colour one) const noexcept { return one == Colour::Red ? Colour::Blue : one; }
    const char* echo(const char* text) { return text; }
    ZTVariant pass(const ZTVariant& value) { return value; }
    int level() const { return m_level; }
    void setLevel(int level) { moved(m_level = level); }
    std::int64_t big = 1LL << 40;
    Colour colour = Colour::Red;
    Device* peer = nullptr;

private:
    static constexpr auto members()
    {
        using Add = int (Self::*)(int);
        using AddBoth = int (Self::*)(int, int) const;
        return zt::members(
            zt::enumeration<Colour>(zt::enumerators<Colour::Red, Colour::Blue>).as("Paint"),
            zt::property<&Self::big>(), zt::property<&Self::colour>(), zt::property<&Self::peer>(),
            zt::property<&Self::level, &Self::setLevel>()
                .notify<static_cast<MovedBy>(&Self::moved)>()
                .info("unit", "watt"),
            zt::method<static_cast<Add>(&Self::add)>(),
            zt::method<static_cast<AddBoth>(&Self::add)>().as("sum"),
            zt::event<static_cast<MovedBy>(&Self::moved)>(),
            zt::event<static_cast<MovedTo>(&Self::moved)>(),
            zt::method<&Self::mix>().access(ZTAccessSpecifier::Protected),
            zt::method<&Self::echo>(), zt::method<&Self::pass>(), zt::method<&Self::reset>());
    }
    void reset() { m_level = 0; }
    int m_level = 1;
};
ZT_CLASS(Mixed)

/// The third level; its property is announced by an event of the first.
class Smart : public Mixed
{
    ZT_OBJECT(Smart, Mixed)
    static constexpr auto members()
    {
        return zt::members(zt::property<&Self::spare>().notify<&sample::Device::renamed>());
    }
    const int spare = 0;
};
ZT_CLASS(Smart)

/// Members and enumerators whose names take some care.
class Names : public ZTBase
{
    ZT_OBJECT(Names, ZTBase)
public:
    enum class Stufe { Aus = 0, Größte = 7 };
    template <int Slot>
    int at() const
    {
        return Slot;
    }
    double größe() const { return 1.5; }
    int far() const { return *m_far; }
    void setFar(int value) const { *m_far = value; }
    int operator()() { return 1; }
    int operator+(int other) const { return other; }
    int operator[](int) { return 2; }
    explicit operator bool() const { return true; }
    explicit operator std::string() const { return {}; }
    int operators() { return 3; }
    int first() { return 1; }
    int second() { return 2; }

private:
    static constexpr auto members()
    {
        // clang-format off
        return zt::members(
            zt::enumeration<Stufe>(
                zt::enumerators<Stufe::Aus, Stufe::Größte, zt::enumerator("Standard", Stufe::Aus)>),
            zt::property<&Self::größe>(),
            zt::property<&Self::far, &Self::setFar>(),
            zt::method<&Self::at<3>>(),
            zt::method<&Self::at<4>>().as("at4"),
            zt::method<&Self::operator()>(),
            zt::method<&Self::operator+>(),
            zt::method<&Self::operator[]>(),
            zt::method<&Self::operator bool>(),
            zt::method<&Self::operator std::string>(),
            zt::method<&Self::operators>(),
            zt::method<&Self::first>().as("twin"),
            zt::method<&Self::second>().as("twin"));
        // clang-format on
    }
    std::unique_ptr<int> m_far = std::make_unique<int>(1);
};
ZT_CLASS(Names)

/// A class whose table a host laid out, between classes of the kit.
class Hand : public sample::Device
{
public:
    using Self = Hand;
    static const ZTMetaClass& typeMetaClass();
    const ZTMetaClass* metaClass() const { return &typeMetaClass(); }
    void signalled() {}
};
const ZTMetaClass& Hand::typeMetaClass()
{
    static zt::detail::ZTStaticMetaClassData table = [] {
        const ZTMetaClass& super = sample::Device::typeMetaClass();
        zt::detail::ZTStaticMetaClassData data;
        data.superClass = &super;
        data.typeName = "struct host::Hand";
        data.classInfoOffset = super.classInfoCount();
        data.enumOffset = super.enumCount();
        data.propertyOffset = super.propertyCount();
        data.invokableOffset = super.invokableCount();
        return data;
    }();
    static const ZTStaticMetaClass handMade(&table);
    return handMade;
}

class Fingers : public Hand
{
    ZT_OBJECT(Fingers, Hand)
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Fingers)

/// Has no `ZT_OBJECT` of its own and so is a Mixed to the library, for what derives from it too.
class Unnamed : public Mixed
{
public:
    using Self = Unnamed;
};
class Toes : public Unnamed
{
    ZT_OBJECT(Toes, Unnamed)
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Toes)
} // namespace host

namespace
{
using namespace host;

struct Declare : testing::Test {
    template <class... Arguments>
    ZTVariant call(unsigned int index, const Arguments&... arguments)
    {
        return object.metaClass()->invokable(index)->invoke(&object, arguments...);
    }

    Smart object;
    Diary diary;
    Hearer hearer{"h", diary};
};

TEST_F(Declare, TellsMembersOfManyShapesOverThreeLevels)
{
    EXPECT_EQ(support::describe(Mixed::typeMetaClass()),
              "struct host::Mixed: struct sample::Device\n"
              "enum 1 Paint Red=1 Blue=200\n"
              "property 2 __int64 big get set, -1\n"
              "property 3 enum host::Colour colour get set, -1\n"
              "property 4 struct sample::Device* peer get set, -1\n"
              "property 5 int level get set unit=watt, 7 moved\n"
              "method 5 int add(int), 2\n"
              "method 6 int sum(int, int) const, 2\n"
              "event 7 void moved(int), 2\n"
              "event 8 void moved(std::string), 2\n"
              "method 9 enum host::Colour mix(enum host::Colour) const, 1\n"
              "method 10 std::string echo(std::string), 2\n"
              "method 11 struct ZTVariant pass(struct ZTVariant), 2\n"
              "method 12 void reset(), 2\n");
    EXPECT_EQ(support::describe(*object.metaClass()), "struct host::Smart: struct host::Mixed\n"
                                                      "property 6 int spare get, 4 renamed\n");
}

TEST_F(Declare, TellsTheWholeNameOfEachMemberAndEnumerator)
{
    EXPECT_EQ(support::describe(Names::typeMetaClass()),
              "struct host::Names: struct ZTBase\n"
              "enum 0 Stufe Aus=0 Größte=7 Standard=0\n"
              "property 0 double größe get, -1\n"
              "property 1 int far get set, -1\n"
              "method 4 int at() const, 2\n"
              "method 5 int at4() const, 2\n"
              "method 6 int operator()(), 2\n"
              "method 7 int operator+(int) const, 2\n"
              "method 8 int operator[](int), 2\n"
              "method 9 bool operator bool() const, 2\n"
              "method 10 std::string operator class std::basic_string<char,struct "
              "std::char_traits<char>,class std::allocator<char> >() const, 2\n"
              "method 11 int operators(), 2\n"
              "method 12 int twin(), 2\n"
              "method 13 int twin(), 2\n");
}

TEST_F(Declare, SetterMayBeConst)
{
    Names names;
    EXPECT_TRUE(names.setProperty("far", 7));
    EXPECT_EQ(names.far(), 7);
}

TEST_F(Declare, OfTwoMembersThatFitTheLaterIsFound)
{
    Names names;
    const ZTMetaClass& type = Names::typeMetaClass();
    EXPECT_EQ(type.indexOfInvokable<void()>("twin"), 13);
    EXPECT_EQ(type.invokable<void()>("twin")->invoke(&names), ZTVariant(2));
    const auto* table = static_cast<const ZTStaticMetaClass&>(type).table();
    const ZTStaticMetaClass copy(table); // asks the class without an index of the names
    EXPECT_EQ(copy.indexOfInvokable<void()>("twin"), 13);
}

TEST_F(Declare, ClassThatAHostLaidOutStaysInTheChain)
{
    const ZTMetaClass& fingers = Fingers::typeMetaClass();
    EXPECT_EQ(fingers.superClass(), &Hand::typeMetaClass());
    EXPECT_TRUE(fingers.isDerivedFrom(&sample::Device::typeMetaClass()));
    EXPECT_EQ(Toes::typeMetaClass().superClass(), &Mixed::typeMetaClass());
}

TEST_F(Declare, ClassAndMembersAreFoundOverAllLevels)
{
    const ZTMetaClass& type = *object.metaClass();
    EXPECT_EQ(ztMetaType("struct host::Smart*").metaClass(), &type);
    EXPECT_EQ(ztMetaType("const struct host::Smart*").metaClass(), &type);
    auto mix = &Smart::mix;
    EXPECT_EQ(type.indexOfInvokable(&mix), 9);
    EXPECT_EQ(sample::Device::typeMetaClass().indexOfInvokable(&mix), -1);
    EXPECT_EQ(type.property("level"), type.property(5U)); // not that of the first level
    const ZTStaticMetaClass copy(static_cast<const ZTStaticMetaClass&>(type));
    EXPECT_EQ(copy.property("spare"), copy.property(6U)); // of its own
    EXPECT_EQ(copy.property("label"), type.property("label"));
}

TEST_F(Declare, TableCanBeCopiedByAHost)
{
    const auto& declared = static_cast<const ZTStaticMetaClass&>(Mixed::typeMetaClass());
    const auto table = *declared.table();
    const ZTStaticMetaClass copy(&table);
    auto mix = &Mixed::mix;
    EXPECT_EQ(copy.indexOfInvokable(&mix), declared.indexOfInvokable(&mix));
    EXPECT_EQ((copy.indexOfInvokable<void(int, int)>("sum", true)), 6);
}

TEST_F(Declare, FunctionsAndPropertiesReachTheObject)
{
    EXPECT_EQ(call(6, 1, 5), ZTVariant(6));
    EXPECT_EQ(call(9, Colour::Red), ZTVariant(Colour::Blue));
    EXPECT_EQ(call(10, "twice"), ZTVariant("twice"));
    EXPECT_EQ(call(11, 2.5), ZTVariant(2.5));
    EXPECT_TRUE(object.setProperty("colour", Colour::Blue));
    EXPECT_EQ(object.colour, Colour::Blue);
    EXPECT_FALSE(call(12));
    EXPECT_EQ(object.level(), 0);
}

TEST_F(Declare, PropertyOfAPointerKeepsWhatItHasWhenTheClassIsUnrelated)
{
    sample::Heater heater;
    EXPECT_TRUE(object.setProperty("peer", static_cast<ZTBase*>(&heater)));
    EXPECT_LOGS("Zintar Warning: Retrieved default-constructed value of type \"struct "
                "sample::Device*\" while converting from ZTVariant. Conversion failed from type "
                "type \"struct host::Hearer*\".\n",
                [&] { EXPECT_TRUE(object.setProperty("peer", &hearer)); });
    EXPECT_EQ(object.peer, &heater);
}

TEST_F(Declare, EventsAreRaisedByFunctionPropertyAndDescriptor)
{
    using MovedTo = void (Mixed::*)(const std::string&);
    ZTBase::subscribe(&object, static_cast<MovedTo>(&Mixed::moved), &hearer, &Hearer::hearText);
    ZTBase::subscribe(&object, object.metaClass()->invokable<void(int)>("moved"), &hearer,
                      &Hearer::hear);
    object.literal("text");
    object.literal(nullptr);
    object.moved(5);
    object.moved("home");
    EXPECT_TRUE(object.setProperty("level", 3));
    EXPECT_FALSE(call(7, 8).isValid());
    EXPECT_EQ(diary.take(), "h:text h: h:5 h:home h:3 h:8");
}

TEST_F(Declare, EventThatIsNotListedIsToldWhenItIsRaised)
{
    EXPECT_LOGS("Zintar Error: Cannot send event with out of bounds index -1 on object of type "
                "struct host::Smart.\n",
                [&] { object.forgotten(); });
}
} // namespace
