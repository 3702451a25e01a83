#include "support/hostclasses.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <vector>

namespace
{
using namespace host;

const ZTMetaInvokable* const said = Speaker::typeMetaClass().invokable(4U);
const ZTMetaInvokable* const hear = Hearer::typeMetaClass().invokable(4U);

class Options : public SpeechTest
{
protected:
    template <class... Rest>
    ZTSubscription listenWith(Rest... options)
    {
        return ZTBase::subscribe(speaker.get(), &Speaker::said, &a, &Hearer::hear, options...);
    }

    Hearer a{"a", diary};
    Hearer b{"b", diary};
};

TEST_F(Options, OnceEndsBeforeItsHandlerRuns)
{
    ZTSubscription handle;
    bool wasEnded = false;
    handle = ZTBase::subscribe(
        speaker.get(), &Speaker::said, &a,
        [&, kept = std::make_shared<int>(0)](int number) {
            wasEnded = !handle;
            diary.add("once:" + std::to_string(number));
            if (number == 1)
                speaker->said(2); // does not come back here
        },
        zt::once);
    listen(b);
    EXPECT_EQ(say(1), "once:1 b:2 b:1");
    EXPECT_TRUE(wasEnded);
    EXPECT_EQ(say(3), "b:3");
    // Through descriptors, without a receiver, and one that throws has been called.
    ZTBase::subscribe(speaker.get(), said, &a, hear, zt::once);
    static int calls = 0;
    ZTBase::subscribe(
        speaker.get(), &Speaker::said,
        [] {
            ++calls;
            throw std::runtime_error("thrown");
        },
        zt::once);
    EXPECT_THROW(speaker->said(4), std::runtime_error);
    EXPECT_EQ(diary.take(), "b:4 a:4");
    EXPECT_EQ(say(5), "b:5");
    EXPECT_EQ(calls, 1);
}

TEST_F(Options, UniqueGivesTheFirstOne)
{
    const ZTSubscription first = listenWith(zt::unique);
    EXPECT_EQ(listenWith(zt::unique), first);
    EXPECT_EQ(listenWith(zt::unique, zt::once), first);
    EXPECT_EQ(say(1), "a:1");
    EXPECT_NE(listenWith(), first); // who does not ask gets another one
    EXPECT_NE(ZTBase::subscribe(speaker.get(), &Speaker::said, &b, &Hearer::hear, zt::unique),
              first);
    EXPECT_EQ(say(2), "a:2 a:2 b:2");
    const ZTSubscription described = ZTBase::subscribe(speaker.get(), said, &a, hear, zt::unique);
    EXPECT_EQ(ZTBase::subscribe(speaker.get(), said, &a, hear, zt::unique), described);
    void (*function)() = [] {};
    const ZTSubscription free = ZTBase::subscribe(speaker.get(), said, function, zt::unique);
    EXPECT_EQ(ZTBase::subscribe(speaker.get(), said, function, zt::unique), free);
    EXPECT_TRUE(ZTBase::unsubscribe(first));
    EXPECT_NE(listenWith(zt::unique), first);
    // Among many of one receiver.
    std::vector<std::unique_ptr<Speaker>> others;
    for (int i = 0; i < 40; ++i) {
        others.push_back(std::make_unique<Speaker>());
        ZTBase::subscribe(others.back().get(), &Speaker::said, &b, &Hearer::hear);
    }
    const ZTSubscription one =
        ZTBase::subscribe(others[7].get(), &Speaker::said, &b, &Hearer::hear, zt::unique);
    others[7]->said(7);
    EXPECT_TRUE(one);
    EXPECT_EQ(diary.take(), "b:7");
}

TEST_F(Options, WhenDecidesOverTheValues)
{
    listenWith(zt::when([](int number) { return number > 1; }));
    EXPECT_EQ(say(1), "");
    EXPECT_EQ(say(2), "a:2");
    // More values than the handler takes, and none that are typed.
    ZTBase::subscribe(speaker.get(), &Speaker::told, &a, &Hearer::hearText,
                      zt::when([](const std::string&, int times) { return times == 3; }));
    speaker->told("x", 2);
    speaker->told("y", 3);
    EXPECT_EQ(diary.take(), "a:y");
    ZTBase::subscribe(speaker.get(), said, &b, hear,
                      zt::when([](const ZTArgumentArray& values) { return values[0] == 5; }),
                      zt::once);
    EXPECT_EQ(say(4), "a:4");
    EXPECT_EQ(say(5), "a:5 b:5");
    EXPECT_EQ(say(5), "a:5");
    // A value of another type fits no condition.
    ZTLogCapture log;
    ZTArgumentArray wrong;
    wrong[0] = ZTVariant(2.5);
    speaker->sendEvent(4, wrong);
    EXPECT_EQ(diary.take(), "");
    ZTLogCapture refused;
    EXPECT_FALSE(ZTBase::subscribe(speaker.get(), said, &b, &Hearer::hearAny,
                                   zt::when([](double) { return true; })));
    EXPECT_EQ(refused.err(), "Zintar: Subscription failed with event said and a condition. It "
                             "takes other values than the event supplies\n");
}

TEST_F(Options, AConditionMayEndAnything)
{
    auto kept = std::make_shared<int>(0);
    const std::weak_ptr<int> captured = kept;
    ZTSubscription own = listenWith(zt::when([&, kept = std::move(kept)](int number) {
        if (number == 1)
            ZTBase::unsubscribe(own);
        return ++*kept > 0;
    }));
    listen(b);
    EXPECT_EQ(say(1), "b:1");
    EXPECT_TRUE(captured.expired());
    listenWith(zt::when([&](int) {
        speaker.reset();
        return true;
    }));
    speaker->said(2);
    EXPECT_EQ(diary.take(), "b:2");
    EXPECT_FALSE(speaker);
}

TEST_F(Options, BoundToEndsWithAnyOfThem)
{
    auto object = std::make_unique<Named>("object");
    auto owner = std::make_shared<int>(0);
    auto captured = std::make_shared<int>(0);
    const auto subscribe = [&] {
        return ZTBase::subscribe(
            speaker.get(), &Speaker::said,
            [this, captured](int number) { diary.add(std::to_string(number)); },
            zt::boundTo(object.get(), owner));
    };
    static_assert(std::is_same_v<decltype(subscribe()), ZTSubscription>);
    const ZTSubscription first = subscribe();
    EXPECT_EQ(say(1), "1");
    object.reset();
    EXPECT_FALSE(first);
    EXPECT_EQ(captured.use_count(), 2);
    EXPECT_EQ(say(2), "");
    EXPECT_EQ(captured.use_count(), 1);
    EXPECT_FALSE(subscribe()); // bound to nothing that lives
    object = std::make_unique<Named>("object");
    const ZTSubscription second = subscribe();
    owner.reset();
    EXPECT_FALSE(second);
    EXPECT_EQ(say(3), "");
    // Those that nobody raises do not pile up.
    for (int i = 0; i < 1000; ++i) {
        owner = std::make_shared<int>(0);
        (void)subscribe();
    }
    EXPECT_LT(captured.use_count(), 20);
}

TEST_F(Options, AnEndedReceiverOfAMemberFunctionIsRefusedAlsoWithOptions)
{
    ZTLogCapture log;
    Hearer* none = nullptr;
    EXPECT_FALSE(ZTBase::subscribe(
        speaker.get(), said, none, [](int) {}, zt::once));
    EXPECT_EQ(log.err(), "Zintar: Subscription failed with event said and handler. The handler was "
                         "given with a subscriber, but the subscriber was null\n");
}
} // namespace
