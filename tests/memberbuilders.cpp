#include "support/logs.h"

#include <zintar/declare.h>
#include <zintar/metaclassbuilder.h>

#include <memory>
#include <type_traits>

namespace sample
{
/// The declared prototype: a property that can be written, one that cannot, and one each with an
/// own and an inherited change event.
class Gauge : public ZTBase
{
    ZT_OBJECT(Gauge, ZTBase)
public:
    int level() const { return m_level; }
    void setLevel(int level) { m_level = level; }
    int serial() const { return 77; }
    int reset(int to) { return m_level = to; }
    void warned() { sendEvent<&Self::warned>(); }
    void levelChanged(int level) { sendEvent<&Self::levelChanged>(level); }

private:
    static constexpr auto members()
    {
        return zt::members(
            zt::method<&Self::reset>(), zt::event<&Self::warned>(),
            zt::event<&Self::levelChanged>(),
            zt::property<&Self::level, &Self::setLevel>().notify<&Self::levelChanged>().info("unit",
                                                                                             "m"),
            zt::property<&Self::serial>());
    }
    int m_level = 3;
};
class Stranger : public ZTBase
{
    ZT_OBJECT(Stranger, ZTBase)
private:
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Gauge)
ZT_CLASS(Stranger)
} // namespace sample

namespace
{
using namespace sample;
using Owned = std::unique_ptr<ZTMetaClass>;

template <class Builder>
constexpr bool isPureHandle =
    !std::is_default_constructible_v<Builder> && !std::is_copy_constructible_v<Builder> &&
    !std::is_copy_assignable_v<Builder>;
static_assert(isPureHandle<ZTMetaClassInfoBuilder> && isPureHandle<ZTMetaEnumBuilder> &&
              isPureHandle<ZTMetaInvokableBuilder> && isPureHandle<ZTMetaPropertyBuilder>);

TEST(MemberBuilder, OfANewMemberReadsNeutrally)
{
    ZTMetaClassBuilder builder;
    builder.addClassInfo();
    builder.addEnum();
    builder.addInvokable();
    builder.addProperty();
    for (unsigned int position : {0U, 99U}) { // attached, and detached
        EXPECT_EQ(builder.classInfo(position).key(), "");
        EXPECT_EQ(builder.metaEnum(position).count(), 0);
        auto invokable = builder.invokable(position);
        EXPECT_FALSE(invokable.isConst() || invokable.isEvent() || invokable.function());
        EXPECT_FALSE(invokable.returnMetaType() || !invokable.parameterMetaTypes().empty());
        EXPECT_EQ(invokable.accessSpecifier(), ZTAccessSpecifier::Private);
        auto property = builder.property(position);
        EXPECT_FALSE(property.canGet() || property.canSet() || property.metaType());
        EXPECT_FALSE(property.getter() || property.setter() || property.propInfoCount());
        EXPECT_EQ(property.changeEventIndex(), -1);
    }
}

TEST(EnumBuilder, RefusesNamesAndValuesThatAreThere)
{
    ZTMetaClassBuilder builder;
    auto kind = builder.addEnum();
    EXPECT_TRUE(kind.add("A", 1));
    EXPECT_FALSE(kind.add("A", 2) || kind.add("B", 1));
    EXPECT_EQ(kind.count(), 1);
    EXPECT_TRUE(kind.add("B", 2) && kind.add("", -1));
    kind.remove(3);
    kind.remove(0);
    EXPECT_EQ(kind.count(), 2);
    EXPECT_EQ(kind.enumerator(0), "B");
    EXPECT_EQ(kind.value(0), 2);
    EXPECT_EQ(kind.value(2), -1);
    EXPECT_TRUE(kind.enumerator(2).empty() && kind.enumerator(2).data());
    EXPECT_TRUE(kind.add("A", 1));
}

TEST(PropertyBuilder, KeepsAnnotationsInTheirOrder)
{
    ZTMetaClassBuilder builder;
    auto property = builder.addProperty();
    property.addPropInfo("k", "1");
    property.addPropInfo("k", "2");
    property.addPropInfo("", "");
    property.removePropInfo(3);
    property.removePropInfo(0);
    EXPECT_EQ(property.propInfoCount(), 2U);
    EXPECT_EQ(property.propInfoKey(0), "k");
    EXPECT_EQ(property.propInfoValue(0), "2");
    EXPECT_TRUE(property.propInfoKey(2).empty() && property.propInfoValue(2).data());
}

TEST(PropertyBuilder, PlainFunctionsLeaveTheTypeAlone)
{
    ZTMetaClassBuilder builder;
    auto property = builder.addProperty();
    property.setMetaType(ztMetaType<double>());
    property.setGetter([](const ZTVariant& object) { return object; });
    property.setSetter([](const ZTVariant&, const ZTVariant& value) { return value; });
    EXPECT_EQ(&property.metaType(), &ztMetaType<double>());
    EXPECT_TRUE(property.canGet() && property.canSet());
    EXPECT_EQ(property.getter()(ZTVariant(5)), ZTVariant(5));
    const Owned made(builder.toMetaClass());
    EXPECT_EQ(made->property(0U)->set(ZTVariant(), ZTVariant(6)), ZTVariant(6));
    property.setGetter(nullptr);
    property.setSetter(zt::detail::SetterFunction());
    EXPECT_FALSE(property.canGet() || property.canSet() || property.setter());
}

TEST(PropertyBuilder, TypedFunctionsSetTheType)
{
    ZTMetaClassBuilder builder;
    auto property = builder.addProperty();
    property.setGetter([](const Gauge& self) { return self.level(); });
    EXPECT_EQ(&property.metaType(), &ztMetaType<int>());
    property.setGetter<double>([](const Gauge& self) { return self.level(); });
    EXPECT_EQ(&property.metaType(), &ztMetaType<double>());
    Gauge gauge;
    EXPECT_EQ(property.getter()(ZTVariant(&gauge)), ZTVariant(3.0));
    property.setSetter([](Gauge& self, const int& level) { self.setLevel(level); });
    EXPECT_EQ(&property.metaType(), &ztMetaType<int>());
    property.setter()(ZTVariant(&gauge), ZTVariant(9));
    EXPECT_EQ(gauge.level(), 9);
    int calls = 0;
    property.setGetter([calls](const ZTBase&) mutable { return ++calls; });
    auto getter = property.getter();
    EXPECT_EQ(getter(ZTVariant(&gauge)), ZTVariant(1));
    EXPECT_EQ(getter(ZTVariant(&gauge)), ZTVariant(2));
}

TEST(PropertyBuilder, TypedFunctionsRefuseWhatDoesNotFit)
{
    ZTMetaClassBuilder builder;
    auto property = builder.addProperty();
    property.setGetter([](const Gauge& self) { return self.level(); });
    property.setSetter([](Gauge& self, int level) { self.setLevel(level); });
    Gauge gauge;
    Stranger stranger;
    support::CapturedLog log;
    EXPECT_FALSE(property.getter()(ZTVariant(&stranger)));
    EXPECT_FALSE(property.setter()(ZTVariant(static_cast<Gauge*>(nullptr)), ZTVariant(1)));
    EXPECT_EQ(log.all(), ""); // unrelated classes give a null pointer without a word
    property.setter()(ZTVariant(&gauge), ZTVariant());
    EXPECT_NE(log.all().find("type \"int\""), std::string::npos) << log.all();
    EXPECT_EQ(gauge.level(), 3);
}

TEST(InvokableBuilder, TypedFunctionTellsTypesAndConstness)
{
    ZTMetaClassBuilder builder;
    auto invokable = builder.addInvokable();
    invokable.setFunction([](const Gauge& self, const std::string& text, float) {
        return text + std::to_string(self.level());
    });
    EXPECT_TRUE(invokable.isConst());
    EXPECT_EQ(&invokable.returnMetaType(), &ztMetaType<std::string>());
    const std::vector<const ZTMetaType*> types{&ztMetaType<std::string>(), &ztMetaType<float>()};
    EXPECT_EQ(invokable.parameterMetaTypes(), types);
    const Gauge gauge;
    const Owned made(builder.toMetaClass());
    EXPECT_EQ(made->invokable(0U)->invoke(&gauge, "level ", 1.0F), ZTVariant("level 3"));
    invokable.setFunction([](Gauge& self) { self.setLevel(0); });
    EXPECT_FALSE(invokable.isConst() || !invokable.parameterMetaTypes().empty());
    EXPECT_EQ(&invokable.returnMetaType(), &ztMetaType<void>());
}

TEST(InvokableBuilder, TypedFunctionMeetsWrongArgumentsAndObjects)
{
    ZTMetaClassBuilder builder;
    auto invokable = builder.addInvokable();
    int calls = 0;
    invokable.setFunction([&calls](Gauge& self, int to) { return ++calls, self.reset(to); });
    const auto function = invokable.function();
    Gauge gauge;
    Stranger stranger;
    EXPECT_LOGS_NOTHING([&] { EXPECT_FALSE(function(ZTVariant(&stranger), {ZTVariant(1)})); });
    EXPECT_EQ(calls, 0);
    EXPECT_LOGS("Zintar Warning: Retrieved default-constructed value of type \"int\" "
                "converting from invalid ZTVariant.\n",
                [&] { EXPECT_EQ(function(ZTVariant(&gauge), {}), ZTVariant(0)); });
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(function(ZTVariant(static_cast<ZTBase*>(&gauge)), {ZTVariant(8)}), ZTVariant(8));
}

TEST(InvokableBuilder, PlainFunctionIsFoundByItsKey)
{
    ZTMetaClassBuilder builder;
    auto keyed = builder.addInvokable();
    int key = 0;
    keyed.setFunction([](const ZTVariant& object, const ZTArgumentArray&) { return object; }, &key);
    keyed.setParameterMetaTypes(std::vector<const ZTMetaType*>(11, &ztMetaType<int>()));
    builder.addInvokable();
    const Owned made(builder.toMetaClass());
    EXPECT_EQ(made->indexOfInvokable(&key), 0);
    EXPECT_EQ(made->indexOfInvokable(static_cast<void*>(nullptr)), 1); // it was given no key
    EXPECT_EQ(made->invokable(0U)->parameterCount(), 11U);
    EXPECT_EQ(made->invokable(0U)->invoke(ZTVariant(5), ZTArgumentArray()), ZTVariant(5));
    EXPECT_FALSE(made->invokable(1U)->invoke(ZTVariant(5), ZTArgumentArray()));
}

TEST(ChangeEvent, IsRefusedFromAnotherClassBuilder)
{
    ZTMetaClassBuilder builder;
    ZTMetaClassBuilder other;
    auto property = builder.addProperty();
    auto event = builder.addInvokable();
    auto foreign = other.addInvokable();
    property.setChangeEvent(foreign);
    EXPECT_EQ(property.changeEventIndex(), -1);
    property.setChangeEvent(event); // whether it is an event is not asked
    EXPECT_EQ(property.changeEventIndex(), 0);
    property.setChangeEvent(foreign);
    property.setChangeEvent(builder.invokable(99));
    EXPECT_EQ(property.changeEventIndex(), 0);
    property.clearChangeEvent();
    EXPECT_EQ(property.changeEventIndex(), -1);
    auto detached = builder.property(99);
    detached.setChangeEvent(builder.invokable(99));
    EXPECT_EQ(detached.changeEventIndex(), -1);
}

TEST(CopyOfAProperty, OfADeclaredClassKeepsItsFunctions)
{
    ZTMetaClassBuilder builder;
    builder.setSuperClass(&ZTBase::typeMetaClass());
    builder.addInvokable();
    builder.addInvokable();
    builder.addInvokable().setName("third");
    auto level = builder.addProperty(Gauge::typeMetaClass().property("level"));
    auto serial = builder.addProperty(Gauge::typeMetaClass().property("serial"));
    Gauge gauge;
    EXPECT_TRUE(level.canGet() && level.canSet() && serial.canGet() && !serial.canSet());
    EXPECT_EQ(level.getter()(ZTVariant(&gauge)), ZTVariant(3));
    EXPECT_EQ(level.propInfoValue(0), "m");
    EXPECT_EQ(level.changeEventIndex(), 6); // by position: whatever stands third here
    EXPECT_EQ(serial.changeEventIndex(), -1);
    ZTMetaClassBuilder empty;
    EXPECT_EQ(empty.addProperty(Gauge::typeMetaClass().property("level")).changeEventIndex(), -1);
}

TEST(CopyOfAnInvokable, KeepsTheFunctionOfARunTimeClassAlone)
{
    int key = 0;
    ZTMetaClassBuilder source;
    auto original = source.addInvokable();
    original.setFunction([](const ZTVariant&, const ZTArgumentArray&) { return ZTVariant(4); },
                         &key);
    original.setAccessSpecifier(ZTAccessSpecifier::Protected);
    const Owned prototype(source.toMetaClass());
    ZTMetaClassBuilder builder;
    builder.addInvokable(Gauge::typeMetaClass().invokable<void(int)>("reset"));
    builder.addInvokable(prototype->invokable(0U));
    const Owned made(builder.toMetaClass());
    EXPECT_EQ(made->invokable(0U)->name(), "reset");
    EXPECT_EQ(&made->invokable(0U)->returnMetaType(), &ztMetaType<int>());
    Gauge gauge;
    EXPECT_FALSE(made->invokable(0U)->invoke(&gauge, 9));
    EXPECT_EQ(gauge.level(), 3);
    EXPECT_EQ(made->indexOfInvokable(&key), 1);
    EXPECT_EQ(made->invokable(1U)->accessSpecifier(), ZTAccessSpecifier::Protected);
    EXPECT_EQ(made->invokable(1U)->invoke(ZTVariant(), ZTArgumentArray()), ZTVariant(4));
}

TEST(CopyOfAnEnum, TakesRepeatedEnumeratorsAsTheyAre)
{
    const std::string_view names[] = {"A", "A", "B"};
    const int values[] = {1, 1, 1};
    const zt::detail::ZTStaticMetaEnumData data("Kind", 3, names, values);
    const ZTStaticMetaEnum prototype(&data);
    ZTMetaClassBuilder builder;
    auto copy = builder.addEnum(&prototype);
    EXPECT_EQ(copy.name(), "Kind");
    EXPECT_EQ(copy.count(), 3);
    EXPECT_EQ(copy.enumerator(1), "A");
    EXPECT_EQ(copy.value(2), 1);
    EXPECT_FALSE(copy.add("B", 7));
}
} // namespace
