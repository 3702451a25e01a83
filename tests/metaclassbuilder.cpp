#include "support/counted.h"
#include "support/logs.h"
#include "support/sampleclasses.h"

#include <zintar/dynamicbase.h>
#include <zintar/metaclassbuilder.h>
#include <zintar/staticmetaclass.h>

#include <memory>
#include <optional>
#include <stdexcept>

namespace
{
using sample::Heater;
using Owned = std::unique_ptr<ZTMetaClass>;

/// A builder with three members of each kind, "a", "b" and "c". The event "c" announces each
/// property.
struct ClassBuilder : testing::Test {
    ClassBuilder()
    {
        builder.setSuperClass(&ZTBase::typeMetaClass()); // which has four invokables
        for (const char* name : {"a", "b", "c"}) {
            builder.addClassInfo().setKey(name);
            builder.addEnum().setName(name);
            builder.addInvokable().setName(name);
            builder.addProperty().setName(name);
        }
        for (unsigned int i = 0; i < 3; ++i)
            builder.property(i).setChangeEvent(builder.invokable(2));
    }
    /// "6 c", as builder and finished class have it.
    std::string changeEvent()
    {
        const Owned made(builder.toMetaClass());
        const ZTMetaProperty& property = *made->property("a");
        const ZTMetaInvokable* event = property.changeEvent();
        EXPECT_EQ(property.changeEventIndex(), builder.property(0).changeEventIndex());
        EXPECT_EQ(property.changeEventIndex(), event ? event->index() : -1);
        EXPECT_TRUE(!event || event == made->invokable(static_cast<unsigned>(event->index())));
        return event ? std::to_string(event->index()) + " " + std::string(event->name()) : "none";
    }

    ZTMetaClassBuilder builder;
};

TEST_F(ClassBuilder, RemovesMembersByPosition)
{
    for (unsigned int position : {3U, ~0U, 1U}) {
        builder.removeClassInfo(position);
        builder.removeEnum(position);
        builder.removeProperty(position);
        builder.removeInvokable(position);
    }
    EXPECT_EQ(builder.classInfoCount() + builder.enumCount() + builder.propertyCount() +
                  builder.invokableCount(),
              8);
    const std::size_t last = 1; // hosts count so as well
    builder.removeInvokable(std::size_t{1} << 32);
    EXPECT_EQ(builder.invokable(last).name(), "c");
    EXPECT_EQ(builder.property(last).name(), "c");
    EXPECT_EQ(builder.classInfo(1).key(), "c");
    EXPECT_EQ(builder.metaEnum(1).name(), "c");
    EXPECT_EQ(builder.property(1).name(), "c");
    EXPECT_EQ(builder.invokable(1).name(), "c");
}

TEST_F(ClassBuilder, FindsMembersByName)
{
    builder.addProperty().setName("b");
    EXPECT_EQ(builder.indexOfProperty("b"), 1) << "the first of two";
    EXPECT_EQ(builder.indexOfInvokable("c"), 2);
    EXPECT_EQ(builder.indexOfEnum("a"), 0);
    EXPECT_EQ(builder.indexOfClassInfo("b"), 1);
    EXPECT_EQ(builder.indexOfInvokable("destroyed"), -1) << "inherited";
    builder.property("b").addPropInfo("unit", "watt");
    builder.invokable("c").setName("d");
    builder.metaEnum("a").add("On", 1);
    builder.classInfo("b").setValue("blue");
    EXPECT_EQ(builder.property(1).propInfoValue(0), "watt");
    EXPECT_EQ(builder.indexOfInvokable("c"), -1);
    EXPECT_EQ(builder.metaEnum(0).count(), 1);
    EXPECT_EQ(builder.classInfo(1).value(), "blue");
    builder.property("none").setName("lost");
    EXPECT_EQ(builder.indexOfProperty("lost"), -1);
}

TEST_F(ClassBuilder, ChangeEventFollowsItsInvokable)
{
    const Owned first(builder.toMetaClass());
    builder.setSuperClass(&ZTDynamicBase::typeMetaClass()); // which has five
    EXPECT_EQ(changeEvent(), "7 c");
    builder.setSuperClass(nullptr);
    EXPECT_EQ(changeEvent(), "2 c");
    builder.removeInvokable(0);
    builder.addInvokable().setName("d");
    builder.invokable(1).setName("renamed");
    EXPECT_EQ(changeEvent(), "1 renamed");
    auto handle = builder.invokable(1);
    builder.removeInvokable(1);
    EXPECT_EQ(changeEvent(), "none");
    handle.setName("survivor");
    EXPECT_EQ(handle.name(), "survivor");
    builder.property(0).setChangeEvent(handle); // of this builder, but of no class any more
    builder.property(0).addPropInfo("k", "v");
    EXPECT_EQ(changeEvent(), "none");

    // A finished class has nothing in common with the builder.
    EXPECT_EQ(first->superClass(), &ZTBase::typeMetaClass());
    EXPECT_EQ(first->property(0U)->changeEvent()->name(), "c");
    EXPECT_EQ(first->property(0U)->changeEventIndex(), 6);
    EXPECT_EQ(first->property(0U)->propInfoCount(), 0U);
    first->setUserData(&builder);
    EXPECT_EQ(first->userData(), &builder);
    EXPECT_EQ(Owned(ZTMetaClassBuilder(first.get()).toMetaClass())->userData(), nullptr);
}

TEST(MemberHandle, OutlivesItsMemberAndItsClassBuilder)
{
    std::optional<ZTMetaClassBuilder> builder(std::in_place);
    auto info = builder->addClassInfo();
    auto kind = builder->addEnum();
    auto event = builder->addInvokable();
    auto property = builder->addProperty();
    property.setChangeEvent(event);
    const Owned made(builder->toMetaClass());
    auto orphan = builder->addProperty();
    orphan.setChangeEvent(builder->addInvokable());
    auto removed = builder->invokable(1);
    builder->removeInvokable(1);
    builder.emplace(); // in its place
    auto next = builder->addProperty();
    next.setChangeEvent(builder->addInvokable());
    next.setChangeEvent(event);
    EXPECT_EQ(next.changeEventIndex(), 0);
    builder.reset();
    info.setKey("k");
    EXPECT_TRUE(kind.add("A", 1));
    event.setEvent<int>();
    property.setName("late");
    EXPECT_EQ(property.changeEventIndex(), -1);
    EXPECT_EQ(orphan.changeEventIndex(), -1);
    property.setChangeEvent(event);
    EXPECT_EQ(property.changeEventIndex(), -1);
    EXPECT_EQ(made->property(0U)->name(), "");
    EXPECT_EQ(made->property(0U)->changeEventIndex(), 0);
}

/// A function whose copy may throw.
struct Fragile : support::Counted {
    ZTVariant operator()(const ZTVariant&) const { return ZTVariant(number); }
    ZTVariant operator()(const ZTVariant&, const ZTArgumentArray&) const { return {}; }
};

TEST(ClassBuilderCopy, ThrowsWithoutALossOrARest)
{
    ZTMetaClassBuilder builder;
    builder.addInvokable().setFunction(Fragile());
    builder.addProperty().setGetter(Fragile());
    const Owned made(builder.toMetaClass());
    for (int copy : {1, 2}) {
        Fragile::throwAtCopy = copy;
        EXPECT_THROW(Owned(builder.toMetaClass()), std::runtime_error);
    }
    Fragile::throwAtCopy = 1;
    EXPECT_THROW(builder.addInvokable(made->invokable(0U)), std::runtime_error);
    Fragile::throwAtCopy = 1;
    EXPECT_THROW(builder.addProperty(made->property(0U)), std::runtime_error);
    EXPECT_EQ(builder.invokableCount() + builder.propertyCount(), 2);
}

/// What the log says of an object of an unrelated class.
std::string strangeObject(const std::string& asked)
{
    return "Zintar Warning: Retrieved default-constructed value of type \"" + asked +
           "\" while converting from ZTVariant. Conversion failed from type type \"struct "
           "ZTDynamicBase*\".\n";
}

struct MemberBuilder : testing::Test {
    ZTMetaClassBuilder builder;
    Heater heater;
    ZTDynamicBase stranger;
    const ZTVariant pointer{&heater}, strangePointer{&stranger};
    const ZTVariant nullPointer{static_cast<Heater*>(nullptr)};
    const ZTMetaClass& declared = Heater::typeMetaClass();
};

TEST_F(MemberBuilder, OfANewMemberReadsNeutrally)
{
    builder.addClassInfo();
    builder.addEnum();
    builder.addInvokable();
    builder.addProperty();
    for (unsigned int position : {0U, 99U}) { // attached, and detached
        EXPECT_TRUE(builder.classInfo(position).key().empty());
        EXPECT_EQ(builder.metaEnum(position).count(), 0);
        auto invokable = builder.invokable(position);
        EXPECT_FALSE(invokable.isConst());
        EXPECT_FALSE(invokable.isEvent());
        EXPECT_FALSE(invokable.returnMetaType());
        EXPECT_EQ(invokable.accessSpecifier(), ZTAccessSpecifier::Private);
        auto property = builder.property(position);
        EXPECT_FALSE(property.canGet());
        EXPECT_FALSE(property.canSet());
        EXPECT_FALSE(property.metaType());
        EXPECT_EQ(property.changeEventIndex(), -1);
    }
}

TEST_F(MemberBuilder, OfAnEnumRefusesNamesAndValuesThatAreThere)
{
    auto kind = builder.addEnum();
    EXPECT_TRUE(kind.add("A", 1));
    EXPECT_FALSE(kind.add("A", 2));
    EXPECT_FALSE(kind.add("B", 1));
    EXPECT_TRUE(kind.add("B", 2));
    EXPECT_TRUE(kind.add("", -1));
    kind.remove(3);
    kind.remove(0);
    EXPECT_EQ(kind.count(), 2);
    EXPECT_EQ(kind.enumerator(0), "B");
    EXPECT_EQ(kind.value(0), 2);
    EXPECT_TRUE(kind.add("A", 1));

    // A prototype's are taken as they are.
    const std::string_view names[] = {"A", "A", "B"};
    const int values[] = {1, 1, 1};
    const zt::detail::ZTStaticMetaEnumData data("Kind", 3, names, values);
    const ZTStaticMetaEnum prototype(&data);
    auto copy = builder.addEnum(&prototype);
    EXPECT_EQ(copy.count(), 3);
    EXPECT_EQ(copy.enumerator(1), "A");
    EXPECT_EQ(copy.value(2), 1);
    EXPECT_FALSE(copy.add("B", 7));
}

TEST_F(MemberBuilder, OfAPropertyKeepsAnnotationsInTheirOrder)
{
    auto property = builder.addProperty();
    for (const char* value : {"1", "2", ""})
        property.addPropInfo("k", value);
    property.removePropInfo(3);
    property.removePropInfo(0);
    EXPECT_EQ(property.propInfoCount(), 2U);
    EXPECT_EQ(property.propInfoKey(0), "k");
    EXPECT_EQ(property.propInfoValue(0), "2");
}

TEST_F(MemberBuilder, OfAPropertyTakesTypedFunctionsWithTheType)
{
    auto property = builder.addProperty();
    property.setGetter<double>([](const Heater& self) { return self.level(); });
    EXPECT_EQ(&property.metaType(), &ztMetaType<double>());
    EXPECT_EQ(property.getter()(pointer), ZTVariant(1.0));
    property.setSetter([](Heater& self, const int& level) { self.setLevel(level); });
    EXPECT_EQ(&property.metaType(), &ztMetaType<int>());
    property.setter()(pointer, ZTVariant(9));
    EXPECT_EQ(heater.level(), 9);
    EXPECT_LOGS_NOTHING([&] {
        EXPECT_FALSE(property.getter()(nullPointer));
        EXPECT_FALSE(property.setter()(nullPointer, ZTVariant(1)));
    });
    EXPECT_LOGS(strangeObject("const struct sample::Heater*"),
                [&] { EXPECT_FALSE(property.getter()(strangePointer)); });
    EXPECT_LOGS(strangeObject("struct sample::Heater*"),
                [&] { EXPECT_FALSE(property.setter()(strangePointer, ZTVariant(1))); });
    EXPECT_NE(support::logOf([&] { property.setter()(pointer, ZTVariant()); }), "");
    EXPECT_EQ(heater.level(), 9);
    property.setGetter([calls = 0](const ZTBase&) mutable { return ++calls; });
    auto getter = property.getter();
    getter(pointer);
    EXPECT_EQ(getter(pointer), ZTVariant(2));
}

TEST_F(MemberBuilder, OfAMethodTakesTypedFunctionsWithTheSignature)
{
    auto method = builder.addInvokable();
    method.setFunction([](const Heater& self, const std::string& text, float) {
        return text + std::to_string(self.level());
    });
    EXPECT_TRUE(method.isConst());
    EXPECT_EQ(method.returnMetaType(), ztMetaType<std::string>());
    EXPECT_EQ(method.parameterMetaTypes(),
              (std::vector{&ztMetaType<std::string>(), &ztMetaType<float>()}));
    const Owned made(builder.toMetaClass());
    const Heater& constant = heater;
    EXPECT_EQ(made->invokable(0U)->invoke(&constant, "level ", 1.0F), ZTVariant("level 1"));

    method.setFunction([](Heater& self, int to) { self.setLevel(to); });
    EXPECT_FALSE(method.isConst());
    EXPECT_EQ(method.returnMetaType(), ztMetaType<void>());
    const auto function = method.function();
    EXPECT_LOGS(strangeObject("struct sample::Heater*"),
                [&] { EXPECT_FALSE(function(strangePointer, {ZTVariant(1)})); });
    function(ZTVariant(static_cast<ZTBase*>(&heater)), {ZTVariant(8)});
    EXPECT_EQ(heater.level(), 8);
    EXPECT_LOGS("Zintar Warning: Retrieved default-constructed value of type \"int\" "
                "converting from invalid ZTVariant.\n",
                [&] { function(pointer, {}); });
    EXPECT_EQ(heater.level(), 0);
}

TEST_F(MemberBuilder, OfAMethodTakesPlainFunctionsWithAKey)
{
    auto keyed = builder.addInvokable();
    int key = 0;
    keyed.setFunction([](const ZTVariant& object, const ZTArgumentArray&) { return object; }, &key);
    keyed.setParameterMetaTypes(std::vector<const ZTMetaType*>(11, &ztMetaType<int>()));
    builder.addInvokable();
    const Owned made(builder.toMetaClass());
    EXPECT_EQ(made->indexOfInvokable(&key), 0);
    EXPECT_EQ(made->indexOfInvokable(static_cast<void*>(nullptr)), 1); // it was given no key
    EXPECT_EQ(made->invokable(0U)->parameterCount(), 11U);
    EXPECT_FALSE(made->invokable(1U)->invoke(ZTVariant(5), ZTArgumentArray()));

    // A copy has the function of a run-time class, and none of a declared one.
    ZTMetaClassBuilder other;
    other.addInvokable(declared.invokable(5U));
    other.addInvokable(made->invokable(0U));
    const Owned copies(other.toMetaClass());
    EXPECT_FALSE(copies->invokable(0U)->invoke(&heater, 9, 0.5));
    EXPECT_EQ(copies->indexOfInvokable(&key), 1);
    EXPECT_EQ(copies->invokable(1U)->invoke(ZTVariant(5), ZTArgumentArray()), ZTVariant(5));
}

TEST_F(MemberBuilder, TakesItsFunctionsBack)
{
    auto method = builder.addInvokable();
    method.setFunction([](const Heater&) {});
    method.setFunction({});
    auto property = builder.addProperty(declared.property("level"));
    property.setGetter({});
    property.setSetter({});
    EXPECT_FALSE(method.function());
    EXPECT_FALSE(property.canGet());
    EXPECT_FALSE(property.canSet());
}

TEST_F(MemberBuilder, TakesItsFunctionsBackForTypedOnesThatAreEmpty)
{
    auto method = builder.addInvokable();
    auto property = builder.addProperty(declared.property("level"));
    method.setFunction([](const Heater&, int) {});
    method.setFunction(std::function<double(Heater&)>());
    EXPECT_FALSE(method.function());
    EXPECT_EQ(method.parameterMetaTypes(), std::vector{&ztMetaType<int>()});
    method.setFunction([](const Heater&) {});
    method.setFunction(static_cast<void (*)(Heater&)>(nullptr));
    EXPECT_FALSE(method.function());
    property.setGetter(std::function<double(const Heater&)>());
    property.setSetter(static_cast<void (*)(Heater&, double)>(nullptr));
    EXPECT_FALSE(property.canGet());
    EXPECT_FALSE(property.canSet());
    EXPECT_EQ(&property.metaType(), &ztMetaType<int>());
}

TEST_F(MemberBuilder, OfAPropertyTakesAnEventOfItsOwnClassBuilder)
{
    ZTMetaClassBuilder other;
    auto property = builder.addProperty();
    auto event = builder.addInvokable();
    auto foreign = other.addInvokable();
    property.setChangeEvent(foreign);
    EXPECT_EQ(property.changeEventIndex(), -1);
    property.setChangeEvent(event); // whether it is an event is not asked
    property.setChangeEvent(foreign);
    property.setChangeEvent(builder.invokable(99));
    EXPECT_EQ(property.changeEventIndex(), 0);
    property.clearChangeEvent();
    EXPECT_EQ(property.changeEventIndex(), -1);
    auto detached = builder.property(99);
    detached.setChangeEvent(builder.invokable(99));
    EXPECT_EQ(detached.changeEventIndex(), -1);
}

TEST_F(MemberBuilder, OfACopiedPropertyFindsItsEventByPosition)
{
    builder.setSuperClass(&ZTBase::typeMetaClass());
    for (const char* name : {"first", "second", "third"})
        builder.addInvokable().setName(name);
    auto level = builder.addProperty(declared.property("level"));
    auto serial = builder.addProperty(declared.property("serial"));
    EXPECT_TRUE(level.canGet());
    EXPECT_TRUE(level.canSet());
    EXPECT_TRUE(serial.canGet());
    EXPECT_FALSE(serial.canSet());
    EXPECT_EQ(level.getter()(pointer), ZTVariant(1));
    EXPECT_EQ(level.propInfoValue(1), "W");
    EXPECT_EQ(level.changeEventIndex(), 6); // whatever stands third here
    EXPECT_EQ(serial.changeEventIndex(), -1);
    ZTMetaClassBuilder empty;
    EXPECT_EQ(empty.addProperty(declared.property("level")).changeEventIndex(), -1);
    empty.setSuperClass(&declared); // to which the event belongs
    empty.addInvokable();
    EXPECT_EQ(empty.addProperty(declared.property("level")).changeEventIndex(), -1);
}
} // namespace
