#include "support/hostclasses.h"

#include <atomic>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace
{
using namespace host;
using Delivery = ZTMonitoredDelivery;
static_assert(!std::is_copy_constructible_v<ZTEventMonitor> &&
              !std::is_copy_assignable_v<ZTEventMonitor>);

class Monitoring : public SpeechTest
{
protected:
    /// "said:speaker>2@0"
    static std::string told(const Delivery& one)
    {
        return std::string(one.event->name()) + ":" + nameOf(one.sender) + ">" +
               std::to_string(one.receivers) + "@" + std::to_string(one.depth) +
               (one.hasThrown ? "!" : "");
    }
    ZTEventMonitor::Callback note()
    {
        return [this](const Delivery& one) { diary.add(told(one)); };
    }

    std::unique_ptr<Hearer> a = listening("a");
};

TEST_F(Monitoring, TellsEachDeliveryWhenItIsOver)
{
    std::optional<ZTEventMonitor> monitor(std::in_place, [this](const Delivery& one) {
        diary.add(told(one));
        EXPECT_EQ(one.index, 4);
        EXPECT_EQ(one.event, Speaker::typeMetaClass().invokable(4U));
        EXPECT_EQ(one.values[0], ZTVariant(one.receivers));
        EXPECT_FALSE(one.values[1]);
        EXPECT_GE(one.duration.count(), 0);
        EXPECT_LE(one.start + one.duration, std::chrono::steady_clock::now());
    });
    EXPECT_EQ(say(1), "a:1 said:speaker>1@0");
    Speaker other("other");
    ZTBase::subscribe(&other, &Speaker::said, &other, [](const ZTArgumentArray&) {});
    ZTBase::subscribe(&other, &Speaker::said, [](int) {});
    ZTBase::subscribe(&other, Speaker::typeMetaClass().invokable(4U), a.get(),
                      Hearer::typeMetaClass().invokable(4U));
    other.said(3);
    other.sendEvent(4, {ZTVariant(3)});
    other.told("nobody", 1); // reaches nobody
    EXPECT_EQ(diary.take(), "a:3 said:other>3@0 a:3 said:other>3@0");
    {
        const ZTEventBlocker deaf(a.get(), false);
        other.said(2);
        const ZTEventBlocker quiet(&other, &Speaker::said);
        other.said(9);
    }
    EXPECT_EQ(diary.take(), "said:other>2@0");
    monitor.reset();
    EXPECT_EQ(say(5), "a:5");
}

TEST_F(Monitoring, TellsInnerDeliveriesBeforeTheOuterOnes)
{
    const ZTEventMonitor monitor(note());
    Speaker inner("inner");
    ZTBase::subscribe(&inner, &Speaker::told, a.get(),
                      [this] { EXPECT_EQ(ZTBase::delivery().receiver, a.get()); });
    ZTBase::subscribe(speaker.get(), &Speaker::said, a.get(), [&](int n) {
        inner.told("x", n);
        if (n < 2)
            speaker->said(n + 1);
    });
    EXPECT_EQ(say(1), "a:1 told:inner>1@1 a:2 told:inner>1@2 said:speaker>2@1 said:speaker>2@0");
}

TEST_F(Monitoring, TellsOfWhatThrowsAndOfWhatDies)
{
    std::optional<ZTEventMonitor> monitor(note());
    ZTSubscription broken = ZTBase::subscribe(speaker.get(), &Speaker::said, a.get(),
                                              [] { throw std::runtime_error("handler"); });
    auto b = listening("b");
    EXPECT_THROW(speaker->said(1), std::runtime_error);
    EXPECT_EQ(diary.take(), "a:1 said:speaker>2@0!");
    {
        const ZTEventMonitor second([](const Delivery&) { throw 5; });
        EXPECT_THROW(speaker->said(1), std::runtime_error); // the handler's goes on
        ZTBase::unsubscribe(broken);
        EXPECT_THROW(speaker->said(1), int);
    }
    diary.take();
    ZTBase::subscribe(speaker.get(), &Speaker::told, a.get(), [this] { speaker.reset(); });
    ZTBase::subscribe(speaker.get(), &Speaker::told, a.get(), &Hearer::hearAny);
    speaker->told("end", 1);
    EXPECT_EQ(diary.take(), "told:null>1@0");
    // One that ends the sender while it is told: the next is told so.
    speaker = std::make_unique<Speaker>();
    const ZTEventMonitor ending([this](const Delivery&) { speaker.reset(); });
    const ZTEventMonitor last([this](const Delivery& one) {
        diary.add(nameOf(one.sender));
        EXPECT_EQ(one.values[0], ZTVariant(8));
    });
    listen(*a);
    speaker->said(8);
    EXPECT_EQ(diary.take(), "a:8 said:speaker>1@0 null");
}

TEST_F(Monitoring, MayDoWhatAHandlerMayAndIsNotToldOfItself)
{
    std::unique_ptr<ZTEventMonitor> second, itself;
    const auto kept = std::make_shared<int>(0);
    itself = std::make_unique<ZTEventMonitor>([&, kept](const Delivery& one) {
        diary.add(told(one));
        speaker->said(7); // is delivered, and not monitored
        second = std::make_unique<ZTEventMonitor>(note());
        itself.reset();
        EXPECT_EQ(kept.use_count(), 2); // what it has captured lives until it returns
        speaker->said(8);
    });
    EXPECT_EQ(say(1), "a:1 said:speaker>1@0 a:7 a:8");
    EXPECT_EQ(kept.use_count(), 1);
    EXPECT_EQ(say(2), "a:2 said:speaker>1@0"); // the second begins with the next delivery
    second.reset();
    EXPECT_EQ(say(3), "a:3");
    const ZTEventMonitor nobody(nullptr);
    EXPECT_EQ(say(4), "a:4");
    // One that is made within a delivery is told of what begins behind it.
    ZTBase::subscribe(speaker.get(), &Speaker::said, a.get(), [&](int n) {
        if (n != 5)
            return;
        second = std::make_unique<ZTEventMonitor>(note());
        speaker->said(6);
    });
    EXPECT_EQ(say(5), "a:5 a:6 said:speaker>2@1");
}

TEST_F(Monitoring, OfRunTimeClassesTellsTheEventOfTheLivingClass)
{
    const ZTEventMonitor monitor(note());
    for (const std::string name : {"first", "second"}) { // one may stand where the other stood
        ZTMetaClassBuilder builder;
        builder.setSuperClass(&ZTDynamicBase::typeMetaClass());
        builder.addInvokable().setName(name);
        builder.invokable(0).setEvent({&ztMetaType<int>()});
        const std::unique_ptr<ZTMetaClass> type(builder.toMetaClass());
        Machine machine;
        machine.initializeMetaClass(type.get());
        ZTBase::subscribe(&machine, type->invokable(5U), a.get(), [](int) {});
        machine.sendEvent(5, {ZTVariant(1)});
        machine.sendEvent(5, {ZTVariant("text")});
    }
    EXPECT_EQ(diary.take(), "first:?>1@0 first:?>1@0 second:?>1@0 second:?>1@0");
}

TEST(MonitoringThreads, HearsOfAllThreadsOneAtATime)
{
    constexpr int sends = 2000;
    std::atomic<int> heard = 0;
    std::atomic<bool> isOver = false;
    int counted = 0; // without a lock: the callback has one
    std::vector<std::thread> threads;
    {
        const ZTEventMonitor monitor([&](const Delivery& one) {
            if (one.index == 4)
                ++counted;
        });
        for (int i = 0; i < 2; ++i)
            threads.emplace_back([&] {
                Speaker speaker;
                ZTBase::subscribe(&speaker, &Speaker::said, [](int) {});
                ZTBase::subscribe(&speaker, &Speaker::said, &speaker, [&](int) { ++heard; });
                for (int n = 0; n < sends; ++n)
                    speaker.said(n);
            });
        // Others come and go meanwhile.
        threads.emplace_back([&] {
            while (!isOver) {
                auto seen = std::make_unique<int>(0);
                {
                    const ZTEventMonitor passing([&](const Delivery&) { ++*seen; });
                    std::this_thread::yield();
                }
                seen.reset(); // its callback runs nowhere any more
            }
        });
        threads[0].join();
        threads[1].join();
        isOver = true;
        threads[2].join();
    }
    EXPECT_EQ(heard, 2 * sends);
    EXPECT_EQ(counted, 2 * sends);
}
} // namespace
