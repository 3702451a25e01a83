#include "support/hostclasses.h"
#include "support/together.h"

#include <zintar/eventqueue.h>
#include <zintar/metaclassbuilder.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace
{
using namespace host;
using namespace std::chrono_literals;
using Time = ZTEventQueue::Clock::time_point;

const ZTMetaInvokable* const said = Speaker::typeMetaClass().invokable(4U);
const ZTMetaInvokable* const hear = Hearer::typeMetaClass().invokable(4U);

class Queue : public SpeechTest
{
protected:
    template <class... Options>
    ZTSubscription listenLater(Hearer& hearer, Options... options)
    {
        return ZTBase::subscribe(speaker.get(), &Speaker::said, *queue, &hearer, &Hearer::hear,
                                 options...);
    }
    /// A queue with options, whose clock stands at `time`.
    void makeQueue(ZTEventQueue::Options options)
    {
        options.now = [this] { return time; };
        options.wake = [this] { ++wakes; };
        queue = std::make_unique<ZTEventQueue>(std::move(options));
    }
    std::string delivered()
    {
        queue->deliver();
        return diary.take();
    }

    /// What is heard of the number when the queue delivers.
    std::string sayLater(int number)
    {
        speaker->said(number);
        return delivered();
    }

    Time time{1h};
    std::atomic<int> wakes = 0;
    std::unique_ptr<ZTEventQueue> queue = std::make_unique<ZTEventQueue>();
    std::unique_ptr<Hearer> a = std::make_unique<Hearer>("a", diary);
    Hearer b{"b", diary};
};

TEST_F(Queue, DeliversInTheOrderOfRaising)
{
    Speaker other;
    const ZTSubscription first = listenLater(*a);
    ZTBase::subscribe(&other, &Speaker::said, *queue, a.get(), &Hearer::hear);
    EXPECT_TRUE(first);
    EXPECT_EQ(say(1), "");
    other.said(2);
    speaker->said(3);
    EXPECT_EQ(queue->waitingCount(), 3U);
    EXPECT_EQ(queue->deliver(2), 2U);
    EXPECT_EQ(diary.take(), "a:1 a:2");
    // What a handler raises waits for the next time.
    ZTBase::subscribe(speaker.get(), &Speaker::said, *queue, &b, [&](int number) {
        if (number < 6)
            speaker->said(number + 1);
    });
    speaker->said(5);
    EXPECT_EQ(queue->deliver(), 3U);
    EXPECT_EQ(diary.take(), "a:3 a:5");
    EXPECT_EQ(delivered(), "a:6");
    EXPECT_EQ(queue->deliver(), 0U);
}

TEST_F(Queue, TakesEveryKindOfHandler)
{
    static int calls = 0;
    calls = 0;
    int captured = 0;
    ZTBase::subscribe(speaker.get(), said, *queue, a.get(), hear);
    ZTBase::subscribe(speaker.get(), &Speaker::said, *queue, a.get(),
                      [&](const ZTArgumentArray& values) {
                          diary.add("array:" + std::to_string(ztVariantValue<int>(values[0])));
                      });
    ZTBase::subscribe(speaker.get(), &Speaker::said, *queue, [] { ++calls; });
    const ZTScopedSubscription kept =
        ZTBase::subscribe(speaker.get(), &Speaker::said, *queue, [&](int n) { captured += n; });
    // Values that are no plain ones, a variant among them, typed and in an array.
    ZTBase::subscribe(speaker.get(), &Speaker::told, *queue, a.get(), &Hearer::hearTold);
    ZTBase::subscribe(speaker.get(), &Speaker::carried, *queue, a.get(),
                      [&](const ZTVariant& value, double weight) {
                          diary.add(ztVariantValue<std::string>(value) +
                                    std::to_string(int(weight)));
                      });
    speaker->said(1);
    speaker->told("text that is too long for the string itself", 2);
    speaker->carried(ZTVariant("carried"), 3.0);
    ZTArgumentArray array;
    array[0] = ZTVariant("carried in an array");
    array[1] = ZTVariant(4.0);
    speaker->sendEvent(6, array);
    EXPECT_EQ(delivered(), "a:1 array:1 a:text that is too long for the string itself2 carried3 "
                           "carried in an array4");
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(captured, 1);
    // What does not fit is refused as it is without a queue.
    ZTLogCapture log;
    Hearer* none = nullptr;
    EXPECT_FALSE(ZTBase::subscribe(speaker.get(), said, *queue, none, [](int) {}));
    EXPECT_FALSE(ZTBase::subscribe(speaker.get(), said, *queue, a.get(), &Hearer::hearText));
    EXPECT_NE(log.err(), "");
}

TEST_F(Queue, CancelsWithTheHandleTheReceiverAndTheQueue)
{
    auto captured = std::make_shared<int>(0);
    ZTSubscription handle = listenLater(*a);
    listenLater(b);
    ZTBase::subscribe(speaker.get(), &Speaker::said, *queue, a.get(), [captured] { ++*captured; });
    speaker->said(1);
    EXPECT_TRUE(ZTBase::unsubscribe(handle));
    EXPECT_FALSE(ZTBase::unsubscribe(handle));
    a.reset();
    EXPECT_EQ(captured.use_count(), 1); // on its own thread at once
    EXPECT_EQ(delivered(), "b:1");
    // By what was subscribed.
    speaker->said(2);
    EXPECT_TRUE(ZTBase::unsubscribe(speaker.get(), &Speaker::said, &b, &Hearer::hear));
    EXPECT_FALSE(ZTBase::unsubscribe(speaker.get(), &Speaker::said, &b, &Hearer::hear));
    EXPECT_EQ(delivered(), "");
    handle = listenLater(b);
    speaker->said(3);
    EXPECT_TRUE(speaker->unsubscribe(nullptr));
    EXPECT_EQ(delivered(), "");
    handle = listenLater(b);
    speaker->said(4);
    queue.reset();
    EXPECT_FALSE(handle);
    EXPECT_EQ(say(5), "");
}

TEST_F(Queue, DeliversWhatASenderHasRaisedBeforeItsDeath)
{
    auto captured = std::make_shared<int>(0);
    ZTSubscription handle =
        ZTBase::subscribe(speaker.get(), &Speaker::said, *queue, a.get(),
                          [&, captured](int n) { diary.add(std::to_string(n) + nameOf(nullptr)); });
    const ZTSubscription idle = ZTBase::subscribe(speaker.get(), &Speaker::told, *queue, a.get(),
                                                  [captured] { ++*captured; });
    speaker->said(1);
    speaker.reset();
    EXPECT_FALSE(handle);
    EXPECT_FALSE(idle);
    EXPECT_EQ(captured.use_count(), 2);
    EXPECT_EQ(delivered(), "1null");
    EXPECT_EQ(captured.use_count(), 1);
}

/// Tells inside its handler what is being delivered.
class Asker : public Named
{
    ZT_OBJECT(Asker, ZTBase)
public:
    Asker() : Named("asker") {}
    void hear(int)
    {
        isRight = activeEvent() == said && activeEventIndex() == 4 && !eventSender();
        heard++;
        if (action)
            action();
    }
    [[nodiscard]] bool isIdle() const { return !activeEvent() && activeEventIndex() == -1; }

    bool isRight = false;
    int heard = 0;
    std::function<void()> action;

private:
    static constexpr auto members() { return zt::members(zt::method<&Self::hear>()); }
};
} // namespace
ZT_CLASS(Asker)
namespace
{

TEST_F(Queue, TellsTheEventAndNoSender)
{
    auto asker = std::make_unique<Asker>();
    ZTBase::subscribe(speaker.get(), &Speaker::said, *queue, asker.get(), &Asker::hear);
    speaker->said(1);
    queue->deliver();
    EXPECT_TRUE(asker->isRight);
    EXPECT_TRUE(asker->isIdle());
    // A receiver moves while something waits for it, and dies in its own handler.
    speaker->said(2);
    auto moved = std::make_unique<Asker>(std::move(*asker));
    asker.reset();
    speaker->said(3);
    moved->action = [&] { moved.reset(); };
    EXPECT_EQ(queue->deliver(), 1U);
    EXPECT_FALSE(moved);
}

TEST_F(Queue, HandlersMayEndAnythingWhileTheyRun)
{
    // Its own subscription, with what it captured.
    auto captured = std::make_shared<int>(0);
    ZTSubscription own;
    own = ZTBase::subscribe(speaker.get(), &Speaker::said, *queue, a.get(), [&, captured] {
        ZTBase::unsubscribe(own);
        diary.add("own" + std::to_string(captured.use_count()));
    });
    speaker->said(1);
    speaker->said(2);
    EXPECT_EQ(delivered(), "own2");
    EXPECT_EQ(captured.use_count(), 1);
    // The rest of the queue from within, and then the queue.
    listenLater(*a);
    ZTBase::subscribe(speaker.get(), &Speaker::told, *queue, &b, [&](const std::string& what) {
        if (what == "deliver")
            EXPECT_EQ(queue->deliver(), 1U);
        else
            queue.reset();
        diary.add(what);
    });
    speaker->told("deliver", 1);
    speaker->said(3);
    EXPECT_EQ(delivered(), "a:3 deliver");
    speaker->told("reset", 1);
    speaker->said(4);
    EXPECT_EQ(queue->deliver(), 1U);
    EXPECT_FALSE(queue);
    EXPECT_EQ(diary.take(), "reset");
}

TEST_F(Queue, KeepsTheRestWhenAHandlerThrows)
{
    makeQueue({});
    ZTBase::subscribe(speaker.get(), &Speaker::said, *queue, a.get(), [&](int number) {
        if (number == 2)
            throw std::runtime_error("thrown");
        diary.add(std::to_string(number));
    });
    for (int i = 1; i <= 4; ++i)
        speaker->said(i);
    EXPECT_EQ(wakes, 1);
    EXPECT_THROW(queue->deliver(), std::runtime_error);
    EXPECT_EQ(diary.take(), "1");
    EXPECT_EQ(wakes, 2); // there is something left
    EXPECT_EQ(delivered(), "3 4");
    EXPECT_EQ(wakes, 2);
}

TEST_F(Queue, BoundsWhatWaits)
{
    makeQueue({.capacity = 2});
    listenLater(*a);
    for (int i = 1; i <= 4; ++i)
        speaker->said(i);
    EXPECT_EQ(queue->droppedCount(), 2U);
    EXPECT_EQ(delivered(), "a:3 a:4");
    makeQueue({.capacity = 2, .overflow = ZTOverflow::RefuseNewest});
    listenLater(*a);
    for (int i = 1; i <= 4; ++i)
        speaker->said(i);
    queue->post([] {});
    EXPECT_EQ(queue->droppedCount(), 3U);
    EXPECT_EQ(delivered(), "a:1 a:2");
    // The thread that delivers would wait for itself.
    makeQueue({.capacity = 2, .overflow = ZTOverflow::Wait});
    listenLater(*a);
    for (int i = 1; i <= 4; ++i)
        speaker->said(i);
    EXPECT_EQ(delivered(), "a:1 a:2 a:3 a:4");
    std::thread raising([&] {
        for (int i = 1; i <= 100; ++i)
            speaker->said(i);
    });
    std::size_t count = 0;
    while (count < 100) {
        EXPECT_TRUE(queue->wait(1min));
        EXPECT_LE(queue->waitingCount(), 2U);
        count += queue->deliver();
    }
    raising.join();
    EXPECT_EQ(queue->droppedCount(), 0U);
}

TEST_F(Queue, AThreadThatWaitsForRoomGoesOnWhenItsSubscriptionEnds)
{
    makeQueue({.capacity = 1, .overflow = ZTOverflow::Wait});
    listenLater(*a);
    std::thread raising([&] {
        speaker->said(1);
        speaker->said(2);
    });
    EXPECT_TRUE(queue->wait(1min));
    a.reset();
    raising.join();
    EXPECT_EQ(queue->deliver(), 0U);
}

TEST_F(Queue, ThinsOut)
{
    makeQueue({});
    listenLater(*a, zt::latestOnly);
    listenLater(b);
    speaker->said(1);
    speaker->said(2);
    EXPECT_EQ(queue->waitingCount(), 3U);
    EXPECT_EQ(delivered(), "a:2 b:1 b:2"); // in the place of the first
    EXPECT_EQ(sayLater(3), "a:3 b:3");
}

TEST_F(Queue, Throttles)
{
    makeQueue({});
    listenLater(*a, zt::throttle(100ms));
    speaker->said(1);
    EXPECT_EQ(delivered(), "a:1");
    time += 10ms;
    speaker->said(2);
    speaker->said(3);
    EXPECT_EQ(delivered(), "");
    ASSERT_TRUE(queue->nextTime());
    EXPECT_EQ(*queue->nextTime(), time + 90ms);
    time += 90ms;
    EXPECT_TRUE(queue->wait(0ms));
    EXPECT_EQ(delivered(), "a:3");
    EXPECT_FALSE(queue->nextTime());
    speaker->said(4);
    EXPECT_EQ(delivered(), "");
    time += 1s;
    EXPECT_EQ(delivered(), "a:4");
}

TEST_F(Queue, Debounces)
{
    makeQueue({});
    const ZTSubscription handle = listenLater(*a, zt::debounce(100ms));
    for (int i = 1; i <= 5; ++i) {
        speaker->said(i);
        EXPECT_EQ(delivered(), "");
        time += 60ms;
    }
    time += 40ms;
    EXPECT_EQ(delivered(), "a:5");
    speaker->said(6);
    EXPECT_FALSE(queue->wait(1ms));
    ZTBase::unsubscribe(handle);
    time += 1s;
    EXPECT_EQ(queue->deliver(), 0U);
}

TEST_F(Queue, AsksConditionsAndBlockersWhereTheyBelong)
{
    listenLater(*a, zt::when([](int number) { return number > 1; }));
    const ZTSubscription once = listenLater(b, zt::once);
    {
        ZTEventBlocker quiet(speaker.get(), true);
        speaker->said(2);
    }
    speaker->said(1);
    EXPECT_FALSE(once);
    speaker->said(3);
    EXPECT_EQ(queue->waitingCount(), 2U);
    {
        ZTEventBlocker deaf(a.get(), false);
        EXPECT_EQ(delivered(), "b:1");
    }
    const ZTSubscription first = listenLater(b, zt::unique);
    EXPECT_EQ(listenLater(b, zt::unique), first);
    EXPECT_EQ(sayLater(4), "a:4 b:4");
    // A condition that the sender has not seen yet goes where the subscription is ended.
    auto captured = std::make_shared<int>(0);
    const ZTSubscription unseen =
        listenLater(b, zt::when([captured](int) { return *captured == 0; }));
    EXPECT_TRUE(ZTBase::unsubscribe(unseen));
    EXPECT_EQ(captured.use_count(), 1);
    // Bound to something that goes while it waits.
    auto owner = std::make_shared<int>(0);
    listenLater(b, zt::boundTo(owner));
    speaker->said(0);
    owner.reset();
    EXPECT_EQ(delivered(), "b:0");
}

TEST_F(Queue, PostsCallables)
{
    makeQueue({});
    auto captured = std::make_shared<int>(0);
    queue->post([&, captured] { diary.add("free"); });
    queue->post(a.get(), [&, captured] { diary.add("a"); });
    queue->post(&b, &Hearer::hearAny);
    queue->postAfter(1s, &b, &Hearer::hearAny);
    a.reset();
    EXPECT_EQ(captured.use_count(), 2);
    EXPECT_EQ(delivered(), "free b:any");
    EXPECT_EQ(captured.use_count(), 1);
    time += 1s;
    EXPECT_EQ(delivered(), "b:any");
    queue->post(&b, &Hearer::hearAny);
    queue->postAfter(1s, [captured] {});
    queue.reset();
    EXPECT_EQ(captured.use_count(), 1);
}

TEST_F(Queue, DropsWhatIsOfRunTimeClassesThatEnded)
{
    ZTMetaClassBuilder builder;
    builder.setSuperClass(&ZTDynamicBase::typeMetaClass());
    builder.addInvokable().setName("told");
    builder.invokable(0).setEvent<int>();
    std::unique_ptr<ZTMetaClass> metaClass(builder.toMetaClass());
    auto machine = std::make_unique<Machine>();
    machine->initializeMetaClass(metaClass.get());
    const ZTMetaInvokable* told = metaClass->invokable<void(int)>("told");
    ASSERT_TRUE(ZTBase::subscribe(machine.get(), told, *queue, a.get(), &Hearer::hear));
    ZTArgumentArray values;
    values[0] = ZTVariant(1);
    machine->sendEvent(static_cast<int>(told->index()), values);
    machine.reset();
    metaClass.reset();
    EXPECT_EQ(delivered(), "a:1");
}

// Four threads, each with a queue and objects of its own that live shortly. Each subscribes the
// objects of the next one through its own queue, raises, delivers, and lets objects die.
TEST(Queues, BetweenThreads)
{
    struct Side {
        std::unique_ptr<ZTEventQueue> queue = std::make_unique<ZTEventQueue>();
        std::atomic<int> heard = 0;
    };
    constexpr int rounds = 2000;
    Side sides[2];
    Speaker speaker; // of the first thread
    std::atomic<bool> isDone = false;
    support::together({
        [&] {
            for (int i = 0; i < rounds; ++i)
                speaker.said(i);
            isDone = true;
        },
        [&] {
            // Subscribes another thread's object while that raises.
            while (!isDone) {
                Asker receiver;
                receiver.action = [&] { ++sides[0].heard; };
                const ZTSubscription kept = ZTBase::subscribe(
                    &speaker, &Speaker::said, *sides[0].queue, &receiver, &Asker::hear);
                ZTBase::subscribe(&speaker, &Speaker::said, *sides[0].queue, &receiver,
                                  [text = std::string(50, 'x')](int) {});
                sides[0].queue->wait(100us);
                sides[0].queue->deliver(5);
                if (receiver.heard % 2 == 0)
                    ZTBase::unsubscribe(kept);
            }
        },
        [&] {
            std::vector<int> numbers;
            const ZTScopedSubscription kept =
                ZTBase::subscribe(&speaker, &Speaker::said, *sides[1].queue,
                                  [&](int number) { numbers.push_back(number); });
            while (!isDone || sides[1].queue->waitingCount() > 0)
                sides[1].queue->deliver();
            for (std::size_t i = 1; i < numbers.size(); ++i)
                EXPECT_EQ(numbers[i], numbers[i - 1] + 1); // nothing lost, in order
        },
    });
    EXPECT_EQ(sides[0].queue->deliver(), 0U);
}
} // namespace
