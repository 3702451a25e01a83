#include "support/crowd.h"

#include <algorithm>
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

TEST_F(Reentrancy, WhatIsUnsubscribedIsNotCalledAndWhatIsNewWaits)
{
    b->then = [&] {
        b->then = nullptr;
        EXPECT_TRUE(speaker->unsubscribe(a.get()) && speaker->unsubscribe(c.get()));
        listen(*d);
        listen(*c);
        EXPECT_TRUE(speaker->unsubscribe(c.get()));
        speaker->said(2);
        diary.add(b->active());
    };
    EXPECT_EQ(say(1), "a:1 b:1 b:2 said 4 of speaker");
    EXPECT_EQ(say(3), "b:3 d:3");
    b->then = [&] { EXPECT_TRUE(speaker->unsubscribe(nullptr)); };
    EXPECT_EQ(say(4), "b:4");
    EXPECT_EQ(say(5), "");
}

TEST_F(Reentrancy, AnybodyDiesInADelivery)
{
    // Every choice of the dead, in two orders, with and without an exception.
    for (int choice = 0; choice < 64; ++choice) {
        SCOPED_TRACE(choice);
        speaker = std::make_unique<Speaker>();
        a = listening("a"), b = listening("b"), c = listening("c");
        auto senderDies = choice & 1, thrown = choice & 32;
        std::function<void()> deaths[] = {[&] { senderDies ? speaker.reset() : void(); },
                                          [&] { choice & 2 ? a.reset() : void(); },
                                          [&] { choice & 4 ? b.reset() : void(); },
                                          [&] { choice & 8 ? c.reset() : void(); }};
        b->then = [&] {
            if (choice & 16)
                std::reverse(std::begin(deaths), std::end(deaths));
            for (const auto& death : deaths)
                death();
            if (b)
                diary.add(b->active());
            if (thrown)
                throw std::runtime_error("b");
        };
        try {
            speaker->said(1);
        } catch (const std::runtime_error&) {
            diary.add("thrown");
        }
        std::string active = senderDies ? " said 4 of null" : " said 4 of speaker";
        EXPECT_EQ(diary.take(), "a:1 b:1" + (b ? active : "") +
                                    (thrown             ? " thrown"
                                     : c && !senderDies ? " c:1"
                                                        : ""));
        for (const auto& survivor : {a.get(), b.get(), c.get()})
            EXPECT_TRUE(!survivor || survivor->active() == "idle");
    }
}

TEST_F(Reentrancy, EndedCallableKeepsWhatItCaptured)
{
    auto witness = std::make_shared<std::string>("kept");
    enum { Unsubscribed, ReceiverDies, SenderDies };
    for (int end : {Unsubscribed, ReceiverDies, SenderDies})
        for (bool throws : {false, true}) {
            c = std::make_unique<Hearer>("c", diary);
            speaker = std::make_unique<Speaker>();
            ZTSubscription own = act([=, this, depth = 0](int number) mutable {
                if (++depth == 1 && number == 1)
                    return speaker->said(2);
                end == ReceiverDies ? c.reset()
                : end == SenderDies ? speaker.reset()
                                    : (void)speaker->unsubscribe(c.get());
                diary.add(*witness + std::to_string(witness.use_count()));
                if (throws)
                    throw std::runtime_error("end");
            });
            try {
                speaker->said(1);
            } catch (const std::runtime_error&) {
                diary.add("thrown");
            }
            EXPECT_EQ(diary.take(), throws ? "kept2 thrown" : "kept2");
            EXPECT_EQ(witness.use_count(), 1);
            EXPECT_FALSE(own);
        }
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

TEST_F(Reentrancy, WhatGoesWithASubscriptionComesBack)
{
    ZTSubscription own;
    auto actAtTheEnd = [&] {
        std::shared_ptr<void> end(nullptr, [&](void*) {
            diary.add(own ? "still there" : "back");
            speaker->unsubscribe(b.get());
            listen(*b);
            speaker->said(9);
        });
        return act([end] { (void)end; });
    };
    own = actAtTheEnd();
    EXPECT_TRUE(ZTBase::unsubscribe(own));
    EXPECT_EQ(diary.take(), "back a:9 c:9 b:9");
    own = actAtTheEnd(); // which has ended as well when the other one goes
    actAtTheEnd();
    EXPECT_TRUE(speaker->unsubscribe(c.get()));
    EXPECT_EQ(diary.take(), "back a:9 b:9 back a:9 b:9");
    actAtTheEnd();
    actAtTheEnd();
    c.reset();
    EXPECT_EQ(diary.take(), "back a:9 b:9 back a:9 b:9");
    c = listening("c");
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
