#include "support/counted.h"
#include "support/hostclasses.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

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

TEST_F(Dispatch, TellsTheInnermostDeliveryToWhoeverAsks)
{
    const auto isNone = [](const ZTDeliveryInfo& one) {
        return !one.event && one.index == -1 && !one.sender && !one.receiver;
    };
    const auto tell = [&] {
        const ZTDeliveryInfo one = ZTBase::delivery();
        diary.add(std::string(one.event->name()) + std::to_string(one.index) + ":" +
                  nameOf(one.sender) + ">" + nameOf(one.receiver));
    };
    EXPECT_TRUE(isNone(ZTBase::delivery()));
    Speaker inner("inner");
    ZTBase::subscribe(&inner, &Speaker::told, b.get(), tell);
    ZTScopedSubscription free = ZTBase::subscribe(speaker.get(), &Speaker::said, [&] {
        inner.told("", 0);
        tell();
        Speaker moved = std::move(*speaker);
        EXPECT_EQ(ZTBase::delivery().sender, &moved);
        speaker.reset();
    } /* the speaker dies with `moved` */);
    EXPECT_EQ(say(1), "a:1 b:1 told5:inner>b said4:speaker>null");
    EXPECT_TRUE(isNone(ZTBase::delivery()));

    ZTBase::subscribe(&inner, &Speaker::said, [&] {
        EXPECT_EQ(ZTBase::delivery().event, Speaker::typeMetaClass().invokable(4U));
        throw 1;
    });
    EXPECT_THROW(inner.said(1), int);
    EXPECT_TRUE(isNone(ZTBase::delivery()));
    ZTBase::subscribe(&inner, &Speaker::carried, a.get(), [&] {
        a.reset();
        tell();
    });
    inner.carried({}, 1);
    EXPECT_EQ(diary.take(), "carried6:inner>null");
}

class Blocking : public Dispatch
{
protected:
    ZTSubscription first = listen(*a);
    ZTSubscription second = listen(*b);
};

TEST_F(Blocking, SilencesOneSubscription)
{
    diary.take();
    ZTScopedSubscription free = ZTBase::subscribe(
        speaker.get(), &Speaker::said, [this](int n) { diary.add("free:" + std::to_string(n)); });
    ZTSubscription array =
        ZTBase::subscribe(speaker.get(), &Speaker::said, a.get(),
                          [this](const ZTArgumentArray&) { diary.add("array"); });
    ZTSubscription described =
        ZTBase::subscribe(speaker.get(), Speaker::typeMetaClass().invokable(4U), a.get(),
                          Hearer::typeMetaClass().invokable(7U));
    EXPECT_EQ(say(1), "a:1 b:1 a:1 b:1 free:1 array a:any");
    {
        const ZTEventBlocker quiet(first), quietFree(free), quietArray(array), still(described);
        EXPECT_EQ(say(2), "a:2 b:2 b:2");
        speaker->sendEvent(4, {ZTVariant(3)});
        EXPECT_EQ(diary.take(), "a:3 b:3 b:3");
        EXPECT_EQ(speaker->listenerCount(&Speaker::said), 3);
        {
            const ZTEventBlocker again(first);
        }
        EXPECT_EQ(say(4), "a:4 b:4 b:4"); // they nest
        EXPECT_TRUE(first);
    }
    EXPECT_EQ(say(5), "a:5 b:5 a:5 b:5 free:5 array a:any");
    std::optional<ZTEventBlocker> late(first);
    ZTBase::unsubscribe(first);
    late.reset();
    late.emplace(first); // one of what has ended
    *late = ZTEventBlocker(second);
    EXPECT_EQ(say(6), "a:6 b:6 free:6 array a:any");
    late.emplace(ZTSubscription());
    EXPECT_EQ(say(7), "a:7 b:7 b:7 free:7 array a:any");
    late.emplace(second);
    speaker.reset();
    late.reset();
}

TEST_F(Blocking, ASubscriptionIsSilentAtOnce)
{
    std::optional<ZTEventBlocker> quiet;
    Speaker other;
    ZTBase::subscribe(&other, &Speaker::said, a.get(), [&] { quiet.emplace(second); });
    ZTSubscription third = ZTBase::subscribe(&other, &Speaker::said, b.get(), &Hearer::hear);
    second = third;
    other.said(1);
    EXPECT_EQ(diary.take(), "");
    quiet.reset();
    EXPECT_EQ(say(2), "a:2 b:2 a:2 b:2");
}

TEST_F(Blocking, SilencesOneEventOfAnObject)
{
    ZTBase::subscribe(speaker.get(), &Speaker::told, a.get(), &Hearer::hearTold);
    const auto all = [&] {
        const std::string heard = say(1);
        speaker->told("x", 2);
        const std::string told = diary.take();
        return (heard.empty() ? "" : "said ") + std::string(told.empty() ? "" : "told");
    };
    EXPECT_EQ(all(), "said told");
    // In any order among blockers of all kinds.
    std::mt19937 random(3);
    const ZTMetaInvokable* told = Speaker::typeMetaClass().invokable(5U);
    const ZTMetaInvokable* nothing = nullptr;
    std::vector<std::pair<unsigned int, std::unique_ptr<ZTEventBlocker>>> blockers;
    for (int step = 0; step < 500; ++step) {
        const unsigned int kind = static_cast<unsigned int>(random()) % 8;
        if (kind == 0)
            blockers.emplace_back(kind, new ZTEventBlocker(speaker.get(), true));
        else if (kind == 1)
            blockers.emplace_back(kind, new ZTEventBlocker(speaker.get(), false));
        else if (kind == 2)
            blockers.emplace_back(kind, new ZTEventBlocker(speaker.get(), &Speaker::said));
        else if (kind == 3)
            blockers.emplace_back(kind, new ZTEventBlocker(speaker.get(), told));
        else if (!blockers.empty())
            blockers.erase(blockers.begin() +
                           static_cast<std::ptrdiff_t>(random() % blockers.size()));
        const auto has = [&](unsigned int wanted) {
            return std::any_of(blockers.begin(), blockers.end(),
                               [&](auto& one) { return one.first == wanted; });
        };
        EXPECT_EQ(all(),
                  std::string(has(0) || has(2) ? "" : "said ") + (has(0) || has(3) ? "" : "told"));
        EXPECT_EQ(speaker->isHeard(told), !has(0) && !has(3));
        EXPECT_EQ(speaker->isBlockingSentEvents(), has(0));
        EXPECT_EQ(speaker->isBlockingReceivedEvents(), has(1));
    }
    blockers.clear();
    EXPECT_LOGS_NOTHING([&] {
        const ZTEventBlocker ofNothing(speaker.get(), nothing);
        const ZTEventBlocker ofAMethod(speaker.get(), Speaker::typeMetaClass().invokable(7U));
        const ZTEventBlocker elsewhere(a.get(), told);
        const ZTEventBlocker ofNobody(static_cast<Speaker*>(nullptr), &Speaker::said);
        EXPECT_EQ(all(), "said told");
    });
    const ZTEventBlocker outlives(speaker.get(), &Speaker::said);
    Speaker moved = std::move(*speaker);
    moved.said(1);
    EXPECT_EQ(diary.take(), "");
    speaker.reset();
}
} // namespace
