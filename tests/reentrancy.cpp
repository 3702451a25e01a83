#include "support/crowd.h"

#include <stdexcept>

namespace
{
using namespace host;

class Reentrancy : public SpeechTest
{
protected:
    /// Subscribes an action with what it captured in the place of a hearer.
    template <class Action>
    ZTSubscription act(Action action)
    {
        return ZTBase::subscribe(speaker.get(), &Speaker::said, c.get(), action);
    }

    std::unique_ptr<Hearer> a = listening("a"), b = listening("b"), c = listening("c");
    std::unique_ptr<Hearer> d{new Hearer("d", diary)};
};

TEST_F(Reentrancy, WhatIsUnsubscribedIsNotCalledAnyMore)
{
    b->then = [&] { EXPECT_TRUE(speaker->unsubscribe(c.get())); };
    EXPECT_EQ(say(1), "a:1 b:1");
    b->then = [&] { EXPECT_TRUE(speaker->unsubscribe(a.get())); };
    listen(*d);
    EXPECT_EQ(say(2), "a:2 b:2 d:2");
    b->then = [&] {
        EXPECT_TRUE(speaker->unsubscribe(b.get()));
        diary.add(b->active());
    };
    EXPECT_EQ(say(3), "b:3 said 4 of speaker d:3");
    EXPECT_EQ(b->active(), "idle");
    d->then = [&] { EXPECT_TRUE(speaker->unsubscribe(nullptr)); };
    EXPECT_EQ(say(4), "d:4");
    EXPECT_EQ(say(5), "");
}

TEST_F(Reentrancy, WhatIsNewWaitsForTheNextSend)
{
    a->then = [&] {
        a->then = nullptr;
        listen(*d);
        speaker->said(2);
    };
    EXPECT_EQ(say(1), "a:1 a:2 b:2 c:2 b:1 c:1");
    EXPECT_EQ(say(3), "a:3 b:3 c:3 d:3");
}

TEST_F(Reentrancy, WhatIsNewCanEndBeforeItEverRan)
{
    ZTSubscription first, second, third;
    a->then = [&] {
        a->then = nullptr;
        first = listen(*d);
        EXPECT_TRUE(first && ZTBase::unsubscribe(first));
        second = listen(*d);
        EXPECT_TRUE(ZTBase::unsubscribe(speaker.get(), &Speaker::said, d.get(), &Hearer::hear));
        third = listen(*d);
        d.reset();
        EXPECT_FALSE(first || second || third);
    };
    EXPECT_EQ(say(1), "a:1 b:1 c:1");
    EXPECT_EQ(say(2), "a:2 b:2 c:2");
}

TEST_F(Reentrancy, SenderDiesInItsDelivery)
{
    ZTSubscription subscription = listen(*d);
    ZTRef<Hearer> receiver(b.get());
    b->then = [&] {
        speaker.reset();
        diary.add(receiver->active());
    };
    a->then = [&] {
        a->then = nullptr;
        speaker->said(2);
        diary.add(a->active());
    };
    speaker->said(1);
    EXPECT_EQ(diary.take(), "a:1 a:2 b:2 said 4 of null said 4 of null");
    EXPECT_FALSE(subscription);
    EXPECT_EQ(a->active() + b->active(), "idleidle");
}

TEST_F(Reentrancy, ReceiversDieInADelivery)
{
    b->then = [&] {
        a.reset();
        b.reset();
    };
    EXPECT_EQ(say(1), "a:1 b:1 c:1");
    listen(*d);
    c->then = [&] {
        c.reset();
        d.reset();
    };
    EXPECT_EQ(say(2), "c:2");
    EXPECT_EQ(say(3), "");
}

TEST_F(Reentrancy, SenderAndReceiverDieInADelivery)
{
    b->then = [&] {
        speaker.reset();
        b.reset();
    };
    speaker->said(1);
    EXPECT_EQ(diary.take(), "a:1 b:1");
    EXPECT_EQ(a->active(), "idle");
}

TEST_F(Reentrancy, EndedCallableKeepsWhatItCaptured)
{
    auto witness = std::make_shared<std::string>("kept");
    ZTSubscription own;
    own = act([&, witness, depth = 0](int number) mutable {
        if (++depth == 1)
            speaker->said(number + 1);
        else
            EXPECT_TRUE(ZTBase::unsubscribe(own));
        diary.add(*witness + std::to_string(witness.use_count()));
    });
    EXPECT_EQ(say(1), "a:1 b:1 c:1 a:2 b:2 c:2 kept2 kept2");
    EXPECT_EQ(witness.use_count(), 1);
    EXPECT_FALSE(own);

    for (bool senderDies : {true, false}) {
        c = std::make_unique<Hearer>("c", diary);
        speaker = std::make_unique<Speaker>();
        act([this, witness, senderDies] {
            senderDies ? speaker.reset() : c.reset();
            diary.add(*witness + std::to_string(witness.use_count()));
        });
        speaker->said(1);
        EXPECT_EQ(diary.take(), "kept2");
        EXPECT_EQ(witness.use_count(), 1);
    }
}

TEST_F(Reentrancy, ExceptionLeavesEverythingInOrder)
{
    b->then = [&] {
        speaker->unsubscribe(a.get());
        listen(*d);
        throw std::runtime_error("b");
    };
    EXPECT_THROW(speaker->said(1), std::runtime_error);
    EXPECT_EQ(diary.take(), "a:1 b:1");
    EXPECT_EQ(a->active() + b->active(), "idleidle");
    b->then = nullptr;
    EXPECT_EQ(say(2), "b:2 c:2 d:2");

    d->then = [] { throw std::runtime_error("d"); };
    b->then = [&] {
        b->then = nullptr;
        EXPECT_THROW(speaker->said(4), std::runtime_error);
        diary.add(b->active());
    };
    EXPECT_THROW(speaker->said(3), std::runtime_error);
    EXPECT_EQ(diary.take(), "b:3 b:4 c:4 d:4 said 4 of speaker c:3 d:3");
}

TEST_F(Reentrancy, ExceptionLeavesNothingOfTheDead)
{
    auto witness = std::make_shared<int>(1);
    act([&, witness] {
        c.reset();
        throw std::runtime_error(std::to_string(*witness));
    });
    EXPECT_THROW(speaker->said(1), std::runtime_error);
    EXPECT_EQ(witness.use_count(), 1);
    b->then = [&] {
        speaker.reset();
        b.reset();
        throw std::runtime_error("b");
    };
    EXPECT_THROW(speaker->said(2), std::runtime_error);
    EXPECT_EQ(diary.take(), "a:1 b:1 c:1 a:2 b:2");
    EXPECT_EQ(a->active(), "idle");
}

TEST_F(Reentrancy, SenderMovesInItsDelivery)
{
    a->then = [&] { speaker = std::make_unique<Speaker>(std::move(*speaker)); };
    b->then = [&] { diary.add(b->active() + (b->sender() == speaker.get() ? "!" : "?")); };
    EXPECT_EQ(say(1), "a:1 b:1 said 4 of speaker! c:1");
    a->then = [&] { *speaker = Speaker("other"); };
    speaker->said(2);
    EXPECT_EQ(diary.take(), "a:2");
    EXPECT_EQ(nameOf(speaker.get()) + a->active() + say(3), "otheridle");
}

TEST_F(Reentrancy, ReceiversMoveInADelivery)
{
    a->then = [&] {
        a = std::make_unique<Hearer>(std::move(*a));
        a->then = nullptr;
        b = std::make_unique<Hearer>(std::move(*b));
        diary.add(a->active());
    };
    EXPECT_EQ(say(1), "a:1 said 4 of speaker b:1 c:1");
    EXPECT_EQ(a->active(), "idle");
    a->then = [&] { *b = std::move(*c); };
    EXPECT_EQ(say(2), "a:2 c:2");
    EXPECT_EQ(nameOf(b.get()), "c");
}

TEST_F(Reentrancy, DyingReceiverIsNotCalledOnWhatIsGoneOfIt)
{
    act([&](int number) { diary.add("lambda" + std::to_string(number)); });
    ZTBase::subscribe(speaker.get(), Speaker::typeMetaClass().invokable(4U), c.get(),
                      Hearer::typeMetaClass().invokable(4U));
    ZTBase::subscribe(c.get(), &ZTBase::destroyed, a.get(), [&] { speaker->said(1); });
    c.reset();
    EXPECT_EQ(diary.take(), "a:1 b:1 lambda1");
}

class ComingBack : public Reentrancy
{
protected:
    /// Subscribes what comes back when it goes.
    ZTSubscription actAtTheEnd()
    {
        std::shared_ptr<void> end(nullptr, [this](void*) {
            diary.add("back");
            speaker->unsubscribe(b.get());
            listen(*b);
            speaker->said(9);
        });
        return act([end] { (void)end; });
    }
};

TEST_F(ComingBack, AfterUnsubscribing)
{
    EXPECT_TRUE(ZTBase::unsubscribe(actAtTheEnd()));
    EXPECT_EQ(diary.take(), "back a:9 c:9 b:9");
    actAtTheEnd();
    EXPECT_TRUE(speaker->unsubscribe(c.get()));
    EXPECT_EQ(diary.take(), "back a:9 b:9");
}

TEST_F(ComingBack, AfterTheReceiver)
{
    actAtTheEnd();
    actAtTheEnd();
    c.reset();
    EXPECT_EQ(diary.take(), "back a:9 b:9 back a:9 b:9");
}

TEST_F(ComingBack, WithinADelivery)
{
    actAtTheEnd();
    a->then = [&] {
        a->then = nullptr;
        speaker->unsubscribe(nullptr);
        diary.add("ended");
    };
    EXPECT_EQ(say(1), "a:1 back ended");
    EXPECT_EQ(say(2), "b:2");
}

TEST(Crowd, BehavesLikeItsModel)
{
    for (unsigned int seed = 1; seed <= 10; ++seed) {
        SCOPED_TRACE(seed);
        Crowd crowd(seed);
        for (int i = 0; i < 3000 && !testing::Test::HasFailure(); ++i)
            crowd.step();
        crowd.checkHandles();
        EXPECT_GT(crowd.calls, 1000U);
    }
}
} // namespace
