#include "support/describe.h"
#include "support/hostclasses.h"

namespace host
{
/// A class whose objects can be given a class of their own.
class Shape : public Machine
{
    ZT_OBJECT(Shape, ZTDynamicBase)
public:
    void resized(double size) { sendEvent<&Self::resized>(size); }
    int radius = 3;

private:
    static constexpr auto members() { return zt::members(zt::event<&Self::resized>()); }
};
ZT_CLASS(Shape)
} // namespace host

namespace
{
using namespace host;

TEST(RootClasses, AreTheirEvents)
{
    const ZTMetaClass& root = ZTBase::typeMetaClass();
    const ZTMetaClass& dynamicRoot = ZTDynamicBase::typeMetaClass();
    EXPECT_EQ(support::describe(root),
              "struct ZTBase: -\n"
              "event 0 void destroyed(struct ZTBase*), 2\n"
              "event 1 void dynamicPropertyChanged(std::string, struct ZTVariant), 2\n"
              "event 2 void childAdded(struct ZTBase*), 2\n"
              "event 3 void childRemoved(struct ZTBase*), 2\n");
    EXPECT_EQ(support::describe(dynamicRoot),
              "struct ZTDynamicBase: struct ZTBase\n"
              "event 4 void metaClassInitialized(const struct ZTMetaClass*), 2\n");
    EXPECT_EQ(ztMetaType("const struct ZTDynamicBase*").metaClass(), &dynamicRoot);
    EXPECT_EQ(ztMetaType("const struct ZTMetaClass*").metaClass(), nullptr);
    auto initialized = &ZTDynamicBase::metaClassInitialized;
    EXPECT_EQ(dynamicRoot.indexOfInvokable(&initialized), 4);
    EXPECT_EQ(root.indexOfInvokable(&initialized), -1);
    using Changed = void(const std::string&, const ZTVariant&);
    EXPECT_EQ(root.indexOfInvokable<Changed>("dynamicPropertyChanged"), 1);
}

const char staticWarning[] =
    "Zintar Warning: Static meta class provided to ZTDynamicBase::initializeMetaClass() but "
    "expected a dynamic meta class. Ignoring.\n";
const char secondWarning[] =
    "Zintar Warning: ZTDynamicBase::initializeMetaClass called more than once. Ignoring.\n";

using Class = std::unique_ptr<ZTMetaClass>;

/// A class made at run time: an event "changed", a method "grow" that raises it, and a property.
template <class Parameter = int>
Class classUnder(const ZTMetaClass* superClass)
{
    ZTMetaClassBuilder builder;
    builder.setTypeName("Circle");
    builder.setSuperClass(superClass);
    auto event = builder.addInvokable();
    event.setName("changed");
    event.setEvent<Parameter>();
    auto grow = builder.addInvokable();
    grow.setName("grow");
    grow.setFunction([](Shape& self, int by) {
        self.radius += by;
        self.metaClass()->invokable<void()>("changed")->invoke(&self, self.radius);
        return self.radius;
    });
    auto property = builder.addProperty();
    property.setName("radius");
    property.setGetter([](const Shape& self) { return self.radius; });
    property.setSetter([](Shape& self, int radius) { self.radius = radius; });
    property.setChangeEvent(event);
    return Class(builder.toMetaClass());
}

class DynamicBase : public TreeTest
{
protected:
    std::string errorsOf(Shape& object, const ZTMetaClass* metaClass)
    {
        ZTLogCapture log;
        EXPECT_FALSE(object.initializeMetaClass(metaClass));
        EXPECT_EQ(log.out(), "");
        return log.err();
    }
    void hear(ZTBase& sender, const ZTMetaInvokable* event, const std::string& name)
    {
        on(&sender, event, [=, this](int value) { diary.add(name + std::to_string(value)); });
    }

    Class circle = classUnder(&Shape::typeMetaClass());
    const ZTMetaInvokable *changed = circle->invokable(6U), *grow = circle->invokable(7U);
    Shape shape;
};

TEST_F(DynamicBase, TakesAClassOnceAndOnlyOneForIt)
{
    on(&shape, &ZTDynamicBase::metaClassInitialized, [&](const ZTMetaClass* metaClass) {
        EXPECT_EQ(metaClass, shape.metaClass());
        diary.add(std::string(metaClass->typeName()));
    });
    const Class unrelated = classUnder(&ZTBase::typeMetaClass());
    EXPECT_EQ(errorsOf(shape, nullptr), "");
    EXPECT_EQ(errorsOf(shape, &ZTDynamicBase::typeMetaClass()), staticWarning);
    EXPECT_EQ(errorsOf(shape, unrelated.get()), "");
    EXPECT_EQ(shape.metaClass(), &Shape::typeMetaClass());

    EXPECT_LOGS_NOTHING([&] { EXPECT_TRUE(shape.initializeMetaClass(circle.get())); });
    EXPECT_EQ(diary.take(), "Circle");
    EXPECT_EQ(shape.metaClass(), circle.get());
    EXPECT_EQ(shape.baseMetaClass(), &Shape::typeMetaClass());
    EXPECT_EQ(errorsOf(shape, unrelated.get()), secondWarning);
    EXPECT_EQ(errorsOf(shape, &Shape::typeMetaClass()), staticWarning);
    EXPECT_EQ(errorsOf(shape, nullptr) + diary.take(), "");
}

TEST_F(DynamicBase, MembersAreThoseOfTheNewClass)
{
    shape.setProperty("radius", 7, true);
    on(&shape, &Shape::resized, [&](double size) { diary.add(std::to_string(int(size))); });
    ASSERT_TRUE(shape.initializeMetaClass(circle.get()));
    EXPECT_EQ(shape.property("radius"), ZTVariant(3)); // no longer the dynamic one
    EXPECT_TRUE(shape.setProperty("radius", 5));

    hear(shape, circle->property("radius")->changeEvent(), "changed");
    Shape other;
    other.initializeMetaClass(circle.get());
    EXPECT_TRUE(ZTBase::subscribe(&shape, changed, &other, grow));
    EXPECT_EQ(grow->invoke(&shape, 2), ZTVariant(7));
    EXPECT_EQ(other.radius, 10);
    shape.sendEvent(6, {ZTVariant(1)});
    shape.resized(2);
    EXPECT_EQ(diary.take(), "changed7 changed1 2");
}

TEST_F(DynamicBase, EventOfAnotherMeaningIsNotMistakenForTheFormer)
{
    // The new class has a "changed(text)" where the type has "resized(double)".
    const Class beside = classUnder<std::string>(&ZTDynamicBase::typeMetaClass());
    on(&shape, &Shape::resized, [&](double) { diary.add("resized"); });
    on(&shape, &Shape::resized, [&] { diary.add("any"); }); // takes every event's values
    ASSERT_TRUE(shape.initializeMetaClass(beside.get()));
    on(&shape, beside->invokable(5U), [&](const std::string& s) { diary.add("[" + s + "]"); });
    shape.sendEvent(5, {ZTVariant("text")});
    shape.resized(2);
    EXPECT_EQ(diary.take(), "any [text] any []");
}

TEST_F(DynamicBase, EventIsRaisedByItsOwnDescriptorAlone)
{
    // The same event stands twice in another class, the first time by another name.
    ZTMetaClassBuilder builder;
    builder.setSuperClass(&Shape::typeMetaClass());
    builder.addInvokable(changed).setName("first");
    builder.addInvokable(changed);
    const Class copies(builder.toMetaClass());
    Shape other;
    ZTBase root;
    other.initializeMetaClass(copies.get());
    hear(other, copies->invokable(6U), "first");
    hear(other, copies->invokable(7U), "second");
    copies->invokable(7U)->invoke(&other, 1);
    EXPECT_LOGS_NOTHING([&] {
        for (ZTBase* object : {static_cast<ZTBase*>(&other), static_cast<ZTBase*>(&shape), &root})
            EXPECT_FALSE(changed->invoke(object, 3));
    });
    EXPECT_EQ(diary.take(), "second1");
}

TEST_F(DynamicBase, MoveTakesTheClassAlong)
{
    ASSERT_TRUE(shape.initializeMetaClass(circle.get()));
    Shape moved(std::move(shape)), other;
    EXPECT_EQ(moved.metaClass(), circle.get());
    EXPECT_EQ(errorsOf(moved, circle.get()), secondWarning);
    EXPECT_FALSE(shape.initializeMetaClass(circle.get()));
    on(&other, &ZTDynamicBase::metaClassInitialized, [&] { diary.add("initialized"); });
    moved = std::move(other);
    EXPECT_EQ(moved.metaClass(), &Shape::typeMetaClass());
    EXPECT_TRUE(moved.initializeMetaClass(circle.get()));
    EXPECT_EQ(diary.take(), "initialized");
}
} // namespace
