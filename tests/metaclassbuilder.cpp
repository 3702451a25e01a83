#include <zintar/dynamicbase.h>
#include <zintar/metaclassbuilder.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace
{
using Owned = std::unique_ptr<ZTMetaClass>;

/// A builder with the events "a", "b" and "c", and a property that "c" announces.
struct ThreeEvents : testing::Test {
    ThreeEvents()
    {
        builder.setSuperClass(&ZTBase::typeMetaClass()); // which has four invokables
        for (const char* name : {"a", "b", "c"})
            builder.addInvokable().setName(name);
        auto property = builder.addProperty();
        property.setName("level");
        property.setChangeEvent(builder.invokable(2));
    }
    std::string changeEvent()
    {
        const Owned made(builder.toMetaClass());
        const ZTMetaProperty& property = *made->property("level");
        const ZTMetaInvokable* event = property.changeEvent();
        EXPECT_EQ(property.changeEventIndex(), event ? event->index() : -1);
        EXPECT_TRUE(!event || event == made->invokable(static_cast<unsigned>(event->index())));
        return event ? std::string(event->name()) : "none";
    }

    ZTMetaClassBuilder builder;
};

TEST(ClassBuilder, StartsEmpty)
{
    ZTMetaClassBuilder builder;
    EXPECT_EQ(builder.superClass(), nullptr);
    EXPECT_EQ(builder.typeName(), "");
    EXPECT_EQ(builder.classInfoCount() + builder.enumCount() + builder.invokableCount() +
                  builder.propertyCount(),
              0);
    const Owned made(builder.toMetaClass());
    EXPECT_TRUE(*made && made->typeName().data());
    EXPECT_EQ(made->invokableCount() + made->propertyCount(), 0U);
    EXPECT_TRUE(made->isDynamic() && !made->metaType() && !made->superClass());
}

TEST(ClassBuilder, CountsOwnMembersAndRemovesThemByPosition)
{
    ZTMetaClassBuilder builder;
    for (const char* name : {"a", "b", "c"}) {
        builder.addClassInfo().setKey(name);
        builder.addEnum().setName(name);
        builder.addProperty().setName(name);
        builder.addInvokable().setName(name);
    }
    for (unsigned int position : {3U, ~0U, 1U}) {
        builder.removeClassInfo(position);
        builder.removeEnum(position);
        builder.removeProperty(position);
        builder.removeInvokable(position);
    }
    EXPECT_EQ(builder.classInfoCount(), 2);
    EXPECT_EQ(builder.classInfo(1).key(), "c");
    EXPECT_EQ(builder.metaEnum(1).name(), "c");
    EXPECT_EQ(builder.property(1).name(), "c");
    EXPECT_EQ(builder.invokable(1).name(), "c");
    builder.invokable(7).setName("nowhere");
    EXPECT_EQ(builder.invokableCount(), 2);
}

TEST_F(ThreeEvents, OffsetsAreThoseOfTheLastSuperClass)
{
    EXPECT_EQ(builder.property(0).changeEventIndex(), 6);
    builder.setSuperClass(&ZTDynamicBase::typeMetaClass()); // which has five
    EXPECT_EQ(builder.property(0).changeEventIndex(), 7);
    EXPECT_EQ(changeEvent(), "c");
    Owned made(builder.toMetaClass());
    EXPECT_EQ(made->invokableOffset(), 5U);
    EXPECT_EQ(made->invokableCount(), 8U);
    builder.setSuperClass(nullptr);
    EXPECT_EQ(builder.property(0).changeEventIndex(), 2);
    EXPECT_EQ(changeEvent(), "c");
    EXPECT_EQ(made->property(0U)->changeEventIndex(), 7);
}

TEST_F(ThreeEvents, ChangeEventFollowsItsInvokable)
{
    builder.removeInvokable(0);
    EXPECT_EQ(builder.property(0).changeEventIndex(), 5);
    EXPECT_EQ(changeEvent(), "c");
    builder.addInvokable().setName("d");
    builder.invokable(1).setName("renamed");
    EXPECT_EQ(changeEvent(), "renamed");
    builder.removeInvokable(0);
    EXPECT_EQ(builder.property(0).changeEventIndex(), 4);
    EXPECT_EQ(changeEvent(), "renamed");
}

TEST_F(ThreeEvents, ChangeEventThatWasRemovedIsNone)
{
    auto handle = builder.invokable(2);
    builder.removeInvokable(2);
    EXPECT_EQ(builder.property(0).changeEventIndex(), -1);
    EXPECT_EQ(changeEvent(), "none");
    handle.setName("survivor");
    EXPECT_EQ(handle.name(), "survivor");
    builder.property(0).setChangeEvent(handle); // of this builder, but of no class any more
    EXPECT_EQ(builder.property(0).changeEventIndex(), -1);
    EXPECT_EQ(changeEvent(), "none");
}

TEST_F(ThreeEvents, FinishedClassesAreIndependent)
{
    const Owned first(builder.toMetaClass());
    builder.invokable(0).setName("renamed");
    builder.removeInvokable(1);
    builder.property(0).addPropInfo("k", "v");
    const Owned second(builder.toMetaClass());
    builder.setTypeName("later");
    EXPECT_EQ(first->invokable(4U)->name(), "a");
    EXPECT_EQ(second->invokable(4U)->name(), "renamed");
    EXPECT_EQ(first->property(0U)->changeEventIndex(), 6);
    EXPECT_EQ(second->property(0U)->changeEventIndex(), 5);
    EXPECT_EQ(first->property(0U)->propInfoCount(), 0U);
    EXPECT_EQ(second->typeName(), "");
    for (unsigned int i = 4; i < first->invokableCount(); ++i)
        EXPECT_EQ(first->invokable(i)->index(), static_cast<int>(i));
}

TEST_F(ThreeEvents, PrototypeIsCopiedWithItsOwnMembersAlone)
{
    builder.setTypeName("Level");
    builder.addClassInfo().setValue("v");
    builder.addEnum().setName("Kind");
    int word = 0;
    Owned prototype(builder.toMetaClass());
    prototype->setUserData(&word);
    ZTMetaClassBuilder copy(prototype.get());
    prototype.reset();
    EXPECT_EQ(copy.superClass(), &ZTBase::typeMetaClass());
    EXPECT_EQ(copy.typeName(), "Level");
    EXPECT_EQ(copy.invokableCount(), 3);
    EXPECT_EQ(copy.classInfo(0).value(), "v");
    EXPECT_EQ(copy.metaEnum(0).name(), "Kind");
    EXPECT_EQ(copy.property(0).changeEventIndex(), 6);
    const Owned made(copy.toMetaClass());
    EXPECT_EQ(made->userData(), nullptr);
    EXPECT_EQ(made->property("level")->changeEvent()->name(), "c");
}

TEST(ClassBuilder, DoesNotLinkAnInheritedEventOfAPrototype)
{
    ZTMetaClassBuilder super;
    super.addInvokable().setName("changed");
    const Owned superClass(super.toMetaClass());
    ZTMetaClassBuilder source;
    source.addInvokable();
    auto property = source.addProperty();
    property.setName("level");
    property.setChangeEvent(source.invokable(0));
    const Owned prototype(source.toMetaClass()); // its event has index 0
    ZTMetaClassBuilder builder;
    builder.setSuperClass(superClass.get());
    builder.addInvokable();
    EXPECT_EQ(builder.addProperty(prototype->property(0U)).changeEventIndex(), -1);
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
    builder.reset();
    info.setKey("k");
    EXPECT_TRUE(kind.add("A", 1));
    event.setEvent<int>();
    property.setName("late");
    EXPECT_EQ(property.changeEventIndex(), -1);
    property.setChangeEvent(event);
    EXPECT_EQ(property.changeEventIndex(), -1);
    EXPECT_EQ(made->property(0U)->name(), "");
    EXPECT_EQ(made->property(0U)->changeEventIndex(), 0);
}

TEST(MemberHandle, OfADeadBuilderIsStrangeToTheNextOneInItsPlace)
{
    std::optional<ZTMetaClassBuilder> builder(std::in_place);
    auto foreign = builder->addInvokable();
    builder.emplace();
    auto property = builder->addProperty();
    property.setChangeEvent(builder->addInvokable());
    property.setChangeEvent(foreign);
    EXPECT_EQ(property.changeEventIndex(), 0);
}
} // namespace
