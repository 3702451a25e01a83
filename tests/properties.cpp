#include "support/counted.h"
#include "support/hostclasses.h"
#include "support/sampleclasses.h"

#include <algorithm>

namespace
{
using namespace host;

// The page on properties shows what becomes of the properties of the class.
class Properties : public testing::Test
{
protected:
    Properties()
    {
        ZTBase::subscribe(&heater, &sample::Heater::levelChanged, &observer,
                          [this](int level) { diary.add(std::to_string(level)); });
        ZTBase::subscribe(&heater, &ZTBase::dynamicPropertyChanged, &observer,
                          [this](const std::string& name, const ZTVariant& value) {
                              std::ostringstream text;
                              text << name << "=" << value;
                              diary.add(text.str());
                          });
    }
    std::string names() const
    {
        auto views = heater.dynamicProperties();
        std::sort(views.begin(), views.end());
        std::string text;
        for (std::string_view view : views)
            text += "[" + std::string(view) + "]";
        return text;
    }

    Diary diary;
    sample::Heater heater;
    ZTBase observer;
};

TEST_F(Properties, DynamicPropertySendsEachChange)
{
    const struct {
        ZTVariant value;
        std::string told;
    } steps[] = {{ZTVariant(1), "x=ZTVariant(int, 1)"},
                 {ZTVariant(1), ""},
                 {ZTVariant(1.0), "x=ZTVariant(double, 1)"},
                 {ZTVariant(), "x=ZTVariant(ZTBadMetaType, )"},
                 {ZTVariant(), ""}};
    for (const auto& step : steps) {
        EXPECT_TRUE(heater.setProperty("x", step.value, true));
        EXPECT_EQ(diary.take(), step.told);
        EXPECT_EQ(heater.property("x"), step.value);
    }
    ZTEventBlocker blocker(&heater, true);
    EXPECT_TRUE(heater.setProperty("x", 4, true));
    EXPECT_TRUE(heater.setProperty("", true, true));
    EXPECT_FALSE(heater.setProperty("X", 2));
    EXPECT_TRUE(heater.setProperty("serial", 1, true)); // which the class has, to be read
    EXPECT_EQ(names() + diary.take(), "[][x]");
    EXPECT_EQ(heater.property("x"), ZTVariant(4));
}

TEST_F(Properties, FirstInvalidValueAndOneThatCannotBeComparedAreChanges)
{
    struct Opaque {};
    heater.setProperty("x", ZTVariant(), true);
    EXPECT_EQ(names() + diary.take(), "[x]x=ZTVariant(ZTBadMetaType, )");
    int heard = 0;
    ZTBase::subscribe(&observer, &ZTBase::dynamicPropertyChanged, &heater, [&] { ++heard; });
    for (int i = 0; i < 3; ++i)
        observer.setProperty("x", Opaque(), true);
    observer.setProperty("x", observer.property("x"), true);
    EXPECT_EQ(heard, 4);
}

/// Writes properties of an object whenever it is compared.
struct Meddler {
    bool operator==(const Meddler&) const
    {
        for (int i = 0; i < 100; ++i)
            object->setProperty(std::to_string(i), i, true);
        return false;
    }
    ZTBase* object;
};

TEST_F(Properties, ConversionReplacesTheValue)
{
    ztRegisterConverter([](const Meddler& value) {
        value.object->setProperty("x", 2, true);
        return value.object->property<int>("x");
    });
    observer.setProperty("x", Meddler{&observer}, true);
    EXPECT_EQ(observer.property<int>("x"), 2);
}

TEST_F(Properties, ThrowingCopyLosesNothing)
{
    using support::Counted;
    observer.setProperty("x", Counted(1), true);
    const ZTVariant next(Counted(2));
    Counted::reset();
    Counted::throwAtCopy = 1;
    EXPECT_THROW(observer.setProperty("x", next, true), std::runtime_error);
    EXPECT_EQ(observer.property<Counted>("x"), Counted(1));
}

TEST_F(Properties, FunctionsGetTheObjectAsARoot)
{
    ZTMetaClassBuilder builder;
    builder.setSuperClass(&ZTDynamicBase::typeMetaClass());
    auto property = builder.addProperty();
    property.setName("p");
    property.setGetter([](const ZTVariant& object) { return ZTVariant(object.type().name()); });
    property.setSetter([&](const ZTVariant& object, const ZTVariant&) {
        diary.add(object.type().name());
        return ZTVariant();
    });
    const std::unique_ptr<ZTMetaClass> metaClass(builder.toMetaClass());
    Machine object;
    object.initializeMetaClass(metaClass.get());
    EXPECT_EQ(object.property("p"), ZTVariant("const struct ZTBase*"));
    EXPECT_TRUE(object.setProperty("p", 1));
    EXPECT_EQ(diary.take(), "struct ZTBase*");
}
TEST_F(Properties, FoundPropertyIsOfItsClassAlone)
{
    const ZTMetaProperty& level = *heater.metaClass()->property("level");
    Named stranger("level");
    ZTBase* object = &stranger; // comes along the class tree, but is no heater
    std::string log = support::logOf([&] {
        EXPECT_EQ(level.get<int>(object), 0);
        level.set(object, 7);
    });
    EXPECT_NE(log.find("\"const struct sample::Heater*\""), std::string::npos) << log;
    EXPECT_NE(log.find("\"struct sample::Heater*\""), std::string::npos) << log;
    object = &heater;
    level.set(object, 7);
    EXPECT_EQ(level.get<int>(object), 7);
}
} // namespace
