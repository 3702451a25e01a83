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
    Hearer a{"a", diary}, b{"b", diary}, c{"c", diary};
};

TEST_F(Dispatch, ReceiversAreCalledInTheOrderOfTheirSubscribing)
{
    EXPECT_EQ(say(0), "");
    listen(c);
    listen(a);
    listen(b);
    listen(c);
    EXPECT_EQ(say(1), "c:1 a:1 b:1 c:1");
    speaker->told("x", 2);
    EXPECT_EQ(diary.take(), "");
}

TEST_F(Dispatch, IndexOutOfRangeIsToldAndDeliversNothing)
{
    ZTBase::subscribe(speaker.get(), &Speaker::said, &a, &Hearer::hear);
    const std::string head = "Zintar Error: Cannot send event with out of bounds index ";
    const std::string tail = " on object of type struct host::Speaker.\n";
    ZTEventBlocker blocker(speaker.get(), true);
    support::CapturedLog log;
    speaker->sendEvent(-1, {});
    speaker->sendEvent(8, {});
    speaker->sendEvent(7, {});
    speaker->sendEvent(std::numeric_limits<int>::min(), {});
    EXPECT_EQ(log.err(), head + "-1" + tail + head + "8" + tail + head + "-2147483648" + tail);
    EXPECT_EQ(log.out(), "");
    EXPECT_EQ(diary.take(), "");
}

TEST_F(Dispatch, HandlerTakesTheLeadingArguments)
{
    ZTBase::subscribe(speaker.get(), &Speaker::told, &a, &Hearer::hearTold);
    ZTBase::subscribe(speaker.get(), &Speaker::told, &a, &Hearer::hearText);
    ZTBase::subscribe(speaker.get(), &Speaker::told, &a, &Hearer::hearAny);
    for (unsigned int method = 5; method < 8; ++method)
        ZTBase::subscribe(speaker.get(), Speaker::typeMetaClass().invokable(5U), &b,
                          Hearer::typeMetaClass().invokable(method));
    speaker->told("x", 2);
    EXPECT_EQ(diary.take(), "a:x2 a:x a:any b:x2 b:x b:any");
    speaker->sendEvent(5, {ZTVariant("y"), ZTVariant(3), ZTVariant("ignored")});
    EXPECT_EQ(diary.take(), "a:y3 a:y a:any b:y3 b:y b:any");
}

TEST_F(Dispatch, WhatDoesNotFitArrivesAsADefault)
{
    listen(a);
    ZTBase::subscribe(speaker.get(), Speaker::typeMetaClass().invokable(4U), &b,
                      Hearer::typeMetaClass().invokable(4U));
    EXPECT_NE(support::logOf([&] {
                  speaker->sendEvent(4, {ZTVariant("text")});
                  speaker->sendEvent(4, {});
              }).find("Conversion failed"),
              std::string::npos);
    EXPECT_EQ(diary.take(), "a:0 b:0 a:0 b:0");
    // A variant takes whatever comes.
    ZTBase::subscribe(speaker.get(), &Speaker::carried, &a, [&](const ZTVariant& v, double weight) {
        diary.add(v.type().name() + std::to_string(int(weight)));
    });
    speaker->carried(ZTVariant(3), 1.5);
    speaker->sendEvent(6, {ZTVariant(), ZTVariant(2)});
    EXPECT_EQ(diary.take(), "int1 ZTBadMetaType0");
}

TEST_F(Dispatch, TenValuesTravelOfAnEventWithMore)
{
    ZTMetaClassBuilder builder;
    builder.setSuperClass(&ZTDynamicBase::typeMetaClass());
    auto wide = builder.addInvokable();
    wide.setName("wide");
    wide.setEvent(std::vector<const ZTMetaType*>(12, &ztMetaType<int>()));
    const std::unique_ptr<ZTMetaClass> metaClass(builder.toMetaClass());
    Machine machine;
    machine.initializeMetaClass(metaClass.get());
    auto ten = [&](int, int, int, int, int, int, int, int, int, int last) {
        diary.add(std::to_string(last));
    };
    auto eleven = [](int, int, int, int, int, int, int, int, int, int, int) {};
    ZTBase::subscribe(&machine, metaClass->invokable(5U), &a, ten);
    ZTArgumentArray values;
    values.fill(ZTVariant(7));
    machine.sendEvent(5, values);
    EXPECT_EQ(diary.take(), "7");
    EXPECT_LOGS("Zintar: Subscription failed with event wide and handler type " +
                    std::string(ztTypeName<decltype(eleven)>()) +
                    ". Handler requires more parameters than event supplies\n",
                [&] { ZTBase::subscribe(&machine, metaClass->invokable(5U), &a, eleven); });
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
    speaker->carried(value, 1);
    EXPECT_EQ(Counted::copies, 0);
    ZTBase::subscribe(speaker.get(), &Speaker::carried, &a, look);
    ZTBase::subscribe(speaker.get(), &Speaker::carried, &b, look);
    speaker->carried(value, 1);
    EXPECT_NE(seen, &value);
    EXPECT_EQ(Counted::copies, 1);
    const ZTArgumentArray array{value};
    seen = &array[0];
    Counted::reset();
    speaker->sendEvent(6, array);
    EXPECT_EQ(Counted::copies, 0);
}

TEST_F(Dispatch, ReceiverKnowsTheEventThatItHandles)
{
    Speaker other("other");
    listen(a);
    ZTBase::subscribe(&other, Speaker::typeMetaClass().invokable(5U), &a,
                      Hearer::typeMetaClass().invokable(7U));
    int depth = 0;
    a.then = [&] {
        diary.add(a.active());
        if (++depth > 2)
            return;
        depth == 1 ? other.told("x", 1) : speaker->said(3);
        diary.add(a.active());
    };
    EXPECT_EQ(a.active(), "idle");
    EXPECT_EQ(say(1), "a:1 said 4 of speaker a:any told 5 of other a:3 said 4 of speaker "
                      "told 5 of other said 4 of speaker");
    EXPECT_EQ(a.active(), "idle");

    // A callable has the event of its receiver, and makes it nobody else's.
    a.then = nullptr;
    ZTBase::subscribe(speaker.get(), &Speaker::said, &b,
                      [&] { diary.add(b.active() + " " + a.active()); });
    auto free = ZTBase::subscribe(speaker.get(), &Speaker::said, [&] { diary.add(b.active()); });
    EXPECT_EQ(say(2), "a:2 said 4 of speaker idle idle");
}
} // namespace
