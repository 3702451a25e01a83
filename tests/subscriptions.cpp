#include "support/hostclasses.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <memory>
#include <random>
#include <vector>

namespace
{
using namespace host;

const ZTMetaInvokable* const said = Speaker::typeMetaClass().invokable(4U);
const ZTMetaInvokable* const told = Speaker::typeMetaClass().invokable(5U);
const ZTMetaInvokable* const mute = Speaker::typeMetaClass().invokable(7U);
const ZTMetaInvokable* const hear = Hearer::typeMetaClass().invokable(4U);
const ZTMetaInvokable* const hearAny = Hearer::typeMetaClass().invokable(7U);

class Subscribing : public SpeechTest
{
protected:
    /// What is logged when a subscription is refused.
    template <class... Arguments>
    std::string refusal(Arguments... arguments)
    {
        ZTLogCapture log;
        EXPECT_FALSE(ZTBase::subscribe(arguments...));
        EXPECT_EQ(log.out(), "");
        return log.err();
    }
    template <class Handler>
    std::string typed(Handler)
    {
        return "handler type " + std::string(ztTypeName<Handler>());
    }

    const std::string head = "Zintar: Subscription failed with event ";
    Hearer a{"a", diary};
    const ZTMetaInvokable* nothing = nullptr;
};

TEST_F(Subscribing, NeedsASenderAnEventAndAHandler)
{
    Speaker* noSpeaker = nullptr;
    void (Hearer::*noMethod)(int) = nullptr;
    EXPECT_EQ(refusal(noSpeaker, &Speaker::said, &a, &Hearer::hear), "");
    EXPECT_EQ(refusal(noSpeaker, said, &a, hear), "");
    for (const ZTMetaInvokable* event : {nothing, mute}) {
        EXPECT_EQ(refusal(speaker.get(), event, &a, hearAny), "");
        EXPECT_EQ(refusal(speaker.get(), event, &a, &Hearer::hearAny), "");
    }
    EXPECT_EQ(refusal(speaker.get(), &Speaker::mute, &a, &Hearer::hearAny), "");
    EXPECT_EQ(refusal(speaker.get(), said, &a, nothing), "");
    EXPECT_EQ(refusal(speaker.get(), said, &a, nullptr), "");
    EXPECT_EQ(refusal(speaker.get(), said, &a, noMethod), "");
    EXPECT_EQ(say(1), "");
    EXPECT_FALSE(ZTBase::unsubscribe(nullptr, nothing, nullptr, nothing));
    EXPECT_FALSE(ZTBase::unsubscribe(ZTSubscription()));
}

// The page on events shows what is told of handlers that are descriptors.
TEST_F(Subscribing, TellsOfHandlersThatDoNotFit)
{
    auto* from = speaker.get();
    const std::string mismatch = ". Parameter type mismatch at position ";
    ZTMetaClassBuilder builder;
    builder.addInvokable().setParameterMetaTypes({&ZTMetaType::ZTBadMetaType});
    const std::unique_ptr<ZTMetaClass> metaClass(builder.toMetaClass());
    EXPECT_EQ(refusal(from, said, &a, metaClass->invokable(0U)),
              head + "said and handler " + mismatch +
                  "0. Event parameter type \"int\", handler type \"ZTBadMetaType\".\n");
    // Functions and callables go by the spelled name of their type.
    EXPECT_EQ(refusal(from, said, &a, &Hearer::hearTold),
              head + "said and " + typed(&Hearer::hearTold) +
                  ". Handler requires more parameters than event supplies\n");
    auto variant = [](const ZTVariant&) {};
    EXPECT_EQ(refusal(from, said, variant),
              head + "said and " + typed(variant) + mismatch +
                  "0. Event parameter type \"int\", handler type \"struct ZTVariant\".\n");
}

TEST_F(Subscribing, RefusesTheEventOfAnotherClass)
{
    ZTMetaClassBuilder builder; // in the same place, by the same name, of another type
    builder.setSuperClass(&ZTBase::typeMetaClass());
    builder.addInvokable().setName("said");
    builder.invokable(0).setEvent<double>();
    const std::unique_ptr<ZTMetaClass> another(builder.toMetaClass());
    builder.invokable(0).setEvent<int>();
    const std::unique_ptr<ZTMetaClass> alike(builder.toMetaClass());
    EXPECT_EQ(refusal(speaker.get(), another->invokable(4U), &a, hearAny),
              head + "said and handler hearAny. The class struct host::Speaker of the sender does "
                     "not have the event\n");
    EXPECT_TRUE(ZTBase::subscribe(speaker.get(), alike->invokable(4U), &a, hearAny));
}

using Subscription = SpeechTest;

TEST_F(Subscription, HandlesCompareByWhatTheyName)
{
    auto a = std::make_unique<Hearer>("a", diary);
    const ZTSubscription none;
    ZTSubscription member = listen(*a), same = listen(*a), copy = member;
    EXPECT_EQ(copy, member);
    EXPECT_FALSE(member == same);
    EXPECT_FALSE(member == none);
    ZTSubscription described = ZTBase::subscribe(speaker.get(), said, a.get(), hear);
    EXPECT_TRUE(described == ZTBase::subscribe(speaker.get(), said, a.get(), hear));
    EXPECT_FALSE(described == ZTBase::subscribe(speaker.get(), said, a.get(), hearAny));
    EXPECT_FALSE(described == member);
    Speaker elsewhere;
    ZTSubscription any = ZTBase::subscribe(speaker.get(), said, a.get(), hearAny);
    EXPECT_FALSE(any == ZTBase::subscribe(speaker.get(), told, a.get(), hearAny));
    EXPECT_FALSE(any == ZTBase::subscribe(&elsewhere, said, a.get(), hearAny));
    ZTScopedSubscription(ZTBase::subscribe(speaker.get(), said, a.get(), hearAny)).reset();
    EXPECT_TRUE(any); // its equal lives on

    EXPECT_TRUE(ZTBase::unsubscribe(member));
    EXPECT_FALSE(member);
    EXPECT_FALSE(copy);
    EXPECT_EQ(copy, none);
    EXPECT_TRUE(same);
    a.reset(); // the end of either object ends it too
    Hearer b("b", diary);
    ZTSubscription other = listen(b);
    EXPECT_FALSE(same);
    EXPECT_TRUE(other);
    speaker.reset();
    EXPECT_FALSE(other);
}

TEST_F(Subscription, EndsForAnyEventWhereTheDescriptorIsNull)
{
    Hearer a("a", diary);
    ZTSubscription heard = listen(a);
    const ZTMetaInvokable* any = nullptr;
    EXPECT_FALSE(ZTBase::unsubscribe(speaker.get(), any, &a, &Hearer::hearAny));
    EXPECT_TRUE(ZTBase::unsubscribe(speaker.get(), any, &a, &Hearer::hear));
    EXPECT_FALSE(heard);
}

TEST_F(Subscription, TellsWhetherAnybodyHears)
{
    const ZTMetaInvokable* nothing = nullptr;
    const auto heard = [&] {
        EXPECT_EQ(speaker->isHeard(said), speaker->listenerCount(said) > 0);
        EXPECT_EQ(speaker->isHeard(&Speaker::said), speaker->isHeard(said));
        return speaker->listenerCount(&Speaker::said);
    };
    EXPECT_EQ(heard(), 0);
    Hearer a("a", diary), b("b", diary);
    ZTSubscription first = listen(a);
    listen(b);
    ZTSubscription free = ZTBase::subscribe(speaker.get(), said, [](int) {});
    EXPECT_EQ(heard(), 3);
    EXPECT_FALSE(speaker->isHeard(told));
    EXPECT_FALSE(speaker->isHeard(nothing));
    EXPECT_FALSE(speaker->isHeard(mute));
    EXPECT_FALSE(speaker->isHeard(&Speaker::mute));
    EXPECT_FALSE(a.isHeard(said)); // what it has at that index is another's
    EXPECT_EQ(a.listenerCount(said), 0);
    {
        const ZTEventBlocker quiet(speaker.get(), true);
        EXPECT_EQ(heard(), 0);
    }
    {
        const ZTEventBlocker deaf(&b, false);
        EXPECT_EQ(heard(), 2);
        ZTBase::unsubscribe(free);
        ZTBase::unsubscribe(first);
        EXPECT_EQ(heard(), 0);
    }
    EXPECT_EQ(heard(), 1);
    const Speaker moved = std::move(*speaker);
    EXPECT_EQ(heard(), 0);
    EXPECT_EQ(moved.listenerCount(said), 1);
}

/// One of very many subscriptions of one receiver.
struct Known {
    enum Handler { Member, Invokable, Callable };

    bool isOf(const Known& other) const { return sender == other.sender && event == other.event; }

    Speaker* sender;
    const ZTMetaInvokable* event;
    Handler handler;
    ZTSubscription handle;
};

ZTSubscription begin(const Known& one, Hearer& receiver)
{
    if (one.handler == Known::Member)
        return ZTBase::subscribe(one.sender, one.event, &receiver, &Hearer::hearAny);
    if (one.handler == Known::Invokable)
        return ZTBase::subscribe(one.sender, one.event, &receiver, hearAny);
    return ZTBase::subscribe(one.sender, one.event, &receiver, [] {});
}

/// Ends all with that sender, event and handler; all handlers, where it is a callable.
bool end(const Known& one, Hearer& receiver)
{
    if (one.handler == Known::Member)
        return ZTBase::unsubscribe(one.sender, one.event, &receiver, &Hearer::hearAny);
    const ZTMetaInvokable* handler = one.handler == Known::Invokable ? hearAny : nullptr;
    return ZTBase::unsubscribe(one.sender, one.event, &receiver, handler);
}

TEST(Unsubscribing, FindsWhatIsMeantAmongVeryManyOfOneReceiver)
{
    std::mt19937 random(20);
    const auto oneOf = [&](auto& all) { return &all[random() % std::size(all)]; };
    Diary diary;
    Hearer receiver("r", diary);
    Speaker senders[5];
    const ZTMetaInvokable* events[] = {said, told};
    std::vector<Known> known;
    for (int step = 0; step < 3000; ++step) {
        Known one{oneOf(senders), *oneOf(events), Known::Handler(random() % 3), {}};
        if (random() % 10 < 8) {
            one.handle = begin(one, receiver);
            known.push_back(one);
            continue;
        }
        const auto isMeant = [&](const Known& other) {
            return one.isOf(other) &&
                   (one.handler == Known::Callable || one.handler == other.handler);
        };
        const auto meant = std::partition(known.begin(), known.end(), std::not_fn(isMeant));
        EXPECT_EQ(end(one, receiver), meant != known.end());
        EXPECT_TRUE(std::none_of(meant, known.end(), [](auto& gone) { return bool(gone.handle); }));
        known.erase(meant, known.end());
        EXPECT_TRUE(
            std::all_of(known.begin(), known.end(), [](auto& on) { return bool(on.handle); }));
    }
}
} // namespace
