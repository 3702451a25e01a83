#include "support/counted.h"
#include "support/hostclasses.h"

#include <limits>

namespace
{
using namespace host;
using support::Counted;

class Dispatch : public SpeechTest
{
protected:
    std::unique_ptr<Hearer> a = listening("a"), b = listening("b");
};

TEST_F(Dispatch, IndexOutOfRangeIsToldAndDeliversNothing)
{
    ZTEventBlocker blocker(speaker.get(), true);
    const std::string head = "Zintar Error: Cannot send event with out of bounds index ";
    const std::string tail = " on object of type struct host::Speaker.\n";
    ZTLogCapture log;
    for (int index : {-1, 8, 7, std::numeric_limits<int>::min()})
        speaker->sendEvent(index, {});
    EXPECT_EQ(log.err(), head + "-1" + tail + head + "8" + tail + head + "-2147483648" + tail);
}

TEST_F(Dispatch, WhatDoesNotFitArrivesAsADefault)
{
    ZTBase::subscribe(speaker.get(), Speaker::typeMetaClass().invokable(4U), b.get(),
                      Hearer::typeMetaClass().invokable(4U));
    EXPECT_NE(support::logOf([&] { speaker->sendEvent(4, {ZTVariant("text")}); }), "");
    EXPECT_EQ(diary.take(), "a:0 b:0 b:0");
    // A variant takes whatever comes.
    ZTBase::subscribe(speaker.get(), &Speaker::carried, a.get(), [&](const ZTVariant& v, double w) {
        diary.add(v.type().name() + std::to_string(int(w)));
    });
    speaker->carried(ZTVariant(3), 1.5);
    speaker->sendEvent(6, {ZTVariant(), ZTVariant(2)});
    EXPECT_EQ(diary.take(), "int1 ZTBadMetaType0");
}

TEST_F(Dispatch, PointerToADerivedClassIsOneToTheBase)
{
    ZTBase::subscribe(speaker.get(), &ZTBase::childAdded, b.get(),
                      [&](ZTBase* child) { diary.add(nameOf(child)); });
    speaker->sendEvent(2, {ZTVariant(a.get())});
    speaker->sendEvent(2, {ZTVariant(5)});
    EXPECT_EQ(diary.take(), "a null");
}

TEST_F(Dispatch, TenValuesTravelOfAnEventWithMore)
{
    ZTMetaClassBuilder builder;
    builder.setSuperClass(&ZTDynamicBase::typeMetaClass());
    builder.addInvokable().setEvent(std::vector<const ZTMetaType*>(12, &ztMetaType<int>()));
    const std::unique_ptr<ZTMetaClass> metaClass(builder.toMetaClass());
    Machine machine;
    machine.initializeMetaClass(metaClass.get());
    auto ten = [&](int, int, int, int, int, int, int, int, int, int last) {
        diary.add(std::to_string(last));
    };
    auto eleven = [](int, int, int, int, int, int, int, int, int, int, int) {};
    ZTBase::subscribe(&machine, metaClass->invokable(5U), a.get(), ten);
    const ZTEventListener recorded(&machine, metaClass->invokable(5U));
    ZTArgumentArray values;
    values.fill(ZTVariant(7));
    machine.sendEvent(5, values);
    EXPECT_EQ(diary.take(), "7");
    EXPECT_EQ(recorded.at(0), std::vector<ZTVariant>(values.begin(), values.end()));
    const std::string refusal = support::logOf(
        [&] { ZTBase::subscribe(&machine, metaClass->invokable(5U), a.get(), eleven); });
    EXPECT_TRUE(refusal.ends_with(". Handler requires more parameters than event supplies\n"));
}

TEST_F(Dispatch, ValuesAreCopiedOnceForAll)
{
    const ZTVariant value(Counted(5));
    const ZTVariant* seen = nullptr;
    auto look = [&](const ZTVariant& arrived) {
        EXPECT_TRUE(!seen || seen == &arrived);
        seen = &arrived;
    };
    Counted::reset();
    ZTBase::subscribe(speaker.get(), &Speaker::carried, a.get(), look);
    ZTBase::subscribe(speaker.get(), &Speaker::carried, b.get(), look);
    speaker->carried(value, 1);
    EXPECT_NE(seen, &value);
    EXPECT_EQ(Counted::copies, 1);
    const ZTArgumentArray array{value};
    seen = &array[0];
    speaker->sendEvent(6, array);
    EXPECT_EQ(Counted::copies, 2);
}
} // namespace
