#include <zintar/dynamicbase.h>
#include <zintar/metaclassbuilder.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace
{
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
    EXPECT_TRUE(builder.classInfo(1).key() == "c" && builder.metaEnum(1).name() == "c" &&
                builder.property(1).name() == "c" && builder.invokable(1).name() == "c");
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
}

TEST_F(ClassBuilder, PrototypeIsCopiedWithItsOwnMembersAlone)
{
    builder.setTypeName("Level");
    int word = 0;
    Owned prototype(builder.toMetaClass());
    prototype->setUserData(&word);
    ZTMetaClassBuilder copy(prototype.get());
    prototype.reset();
    EXPECT_TRUE(copy.superClass() == &ZTBase::typeMetaClass() && copy.typeName() == "Level");
    EXPECT_EQ(copy.invokableCount(), 3);
    EXPECT_TRUE(copy.classInfo(0).key() == "a" && copy.metaEnum(0).name() == "a");
    EXPECT_EQ(copy.property(0).changeEventIndex(), 6);
    EXPECT_EQ(Owned(copy.toMetaClass())->userData(), nullptr);
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
    EXPECT_TRUE(property.changeEventIndex() == -1 && orphan.changeEventIndex() == -1);
    property.setChangeEvent(event);
    EXPECT_EQ(property.changeEventIndex(), -1);
    EXPECT_EQ(made->property(0U)->name(), "");
    EXPECT_EQ(made->property(0U)->changeEventIndex(), 0);
}
} // namespace
