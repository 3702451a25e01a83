#include "support/hostclasses.h"

#include <memory>

namespace host
{
/// A class whose objects can be given a class of their own.
class Shape : public Machine
{
    ZT_OBJECT(Shape, ZTDynamicBase)
public:
    void resized(double size) { sendEvent<&Self::resized>(size); }

private:
    static constexpr auto members() { return zt::members(zt::event<&Self::resized>()); }
};
ZT_CLASS(Shape)
} // namespace host

namespace
{
using namespace host;

const char staticWarning[] =
    "Zintar Warning: Static meta class provided to ZTDynamicBase::initializeMetaClass() but "
    "expected a dynamic meta class. Ignoring.\n";
const char secondWarning[] =
    "Zintar Warning: ZTDynamicBase::initializeMetaClass called more than once. Ignoring.\n";

using Class = std::unique_ptr<ZTMetaClass>;

/// A class made at run time with one event, "changed".
template <class... Parameters>
Class classUnder(const ZTMetaClass* superClass)
{
    ZTMetaClassBuilder builder;
    builder.setTypeName("Circle");
    builder.setSuperClass(superClass);
    auto event = builder.addInvokable();
    event.setName("changed");
    event.setEvent<Parameters...>();
    auto property = builder.addProperty();
    property.setName("radius");
    property.setGetter([](const Shape&) { return 3; });
    return Class(builder.toMetaClass());
}

class DynamicBase : public TreeTest
{
protected:
    std::string errorsOf(Shape& object, const ZTMetaClass* metaClass)
    {
        support::CapturedLog log;
        EXPECT_FALSE(object.initializeMetaClass(metaClass));
        EXPECT_EQ(log.out(), "");
        return log.err();
    }

    Class circle = classUnder<int>(&Shape::typeMetaClass());
    Shape shape;
};

TEST_F(DynamicBase, TakesAClassOnceAndOnlyOneForIt)
{
    on(&shape, &ZTDynamicBase::metaClassInitialized, [&](const ZTMetaClass* metaClass) {
        EXPECT_EQ(metaClass, shape.metaClass());
        diary.add(std::string(metaClass->typeName()));
    });
    const Class unrelated = classUnder<>(&ZTBase::typeMetaClass());
    EXPECT_EQ(errorsOf(shape, nullptr), "");
    EXPECT_EQ(errorsOf(shape, &ZTDynamicBase::typeMetaClass()), staticWarning);
    EXPECT_EQ(errorsOf(shape, classUnder<>(nullptr).get()), "");
    EXPECT_EQ(errorsOf(shape, unrelated.get()), "");
    EXPECT_EQ(shape.metaClass(), &Shape::typeMetaClass());
    EXPECT_EQ(diary.take(), "");

    EXPECT_LOGS_NOTHING([&] { EXPECT_TRUE(shape.initializeMetaClass(circle.get())); });
    EXPECT_EQ(diary.take(), "Circle");
    EXPECT_EQ(shape.metaClass(), circle.get());
    EXPECT_EQ(shape.baseMetaClass(), &Shape::typeMetaClass());
    EXPECT_EQ(errorsOf(shape, circle.get()), secondWarning);
    EXPECT_EQ(errorsOf(shape, unrelated.get()), secondWarning);
    EXPECT_EQ(errorsOf(shape, &Shape::typeMetaClass()), staticWarning);
    EXPECT_EQ(errorsOf(shape, nullptr), "");
    EXPECT_EQ(diary.take(), "");
}

TEST_F(DynamicBase, PropertiesAndEventsAreThoseOfTheNewClass)
{
    shape.setProperty("radius", 7, true);
    on(&shape, &ZTBase::childAdded, [&] { diary.add("child"); });
    on(&shape, &Shape::resized, [&](double size) { diary.add(std::to_string(int(size))); });
    ASSERT_TRUE(shape.initializeMetaClass(circle.get()));
    EXPECT_EQ(shape.property("radius"), ZTVariant(3));
    EXPECT_EQ(shape.dynamicProperties().size(), 1U);

    on(&shape, circle->invokable(6U), [&](int n) { diary.add("changed" + std::to_string(n)); });
    shape.sendEvent(6, {ZTVariant(5)});
    shape.resized(2);
    Named child("c", &shape);
    EXPECT_EQ(diary.take(), "changed5 2 child");
}

TEST_F(DynamicBase, EventOfAnotherMeaningIsNotMistakenForTheFormer)
{
    // The new class has a "changed(text)" where the type has "resized(double)".
    const Class beside = classUnder<std::string>(&ZTDynamicBase::typeMetaClass());
    on(&shape, &Shape::resized, [&](double) { diary.add("resized"); });
    ASSERT_TRUE(shape.initializeMetaClass(beside.get()));
    on(&shape, beside->invokable(5U), [&](const std::string& s) { diary.add("[" + s + "]"); });
    shape.sendEvent(5, {ZTVariant("text")});
    EXPECT_EQ(diary.take(), "[text]");
    shape.resized(2);
    EXPECT_EQ(diary.take(), "[]");
}

TEST_F(DynamicBase, MoveTakesTheClassAlong)
{
    ASSERT_TRUE(shape.initializeMetaClass(circle.get()));
    Shape moved(std::move(shape));
    EXPECT_EQ(moved.metaClass(), circle.get());
    EXPECT_EQ(errorsOf(moved, circle.get()), secondWarning);
    EXPECT_FALSE(shape.initializeMetaClass(circle.get()));

    Shape other;
    on(&other, &ZTDynamicBase::metaClassInitialized, [&] { diary.add("initialized"); });
    moved = std::move(other);
    EXPECT_EQ(moved.metaClass(), &Shape::typeMetaClass());
    EXPECT_TRUE(moved.initializeMetaClass(circle.get()));
    EXPECT_EQ(diary.take(), "initialized");
}
} // namespace
