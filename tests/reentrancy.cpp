#include "support/hostclasses.h"

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
    c.reset();
    EXPECT_EQ(diary.take(), "back a:9 b:9");
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
} // namespace
