#include "support/hostclasses.h"

#include <algorithm>
#include <memory>

namespace
{
using namespace host;

const ZTMetaInvokable* const said = Speaker::typeMetaClass().invokable(4U);
const ZTMetaInvokable* const told = Speaker::typeMetaClass().invokable(5U);
const ZTMetaInvokable* const carried = Speaker::typeMetaClass().invokable(6U);
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

/// Subscriptions of every kind, and what is to become of them.
class Unsubscribing : public SpeechTest
{
protected:
    enum Kind { None, Function, Described, Callable };
    struct One {
        const ZTMetaInvokable* event;
        Hearer* receiver;
        Kind kind;
        ZTSubscription handle;
    };

    ZTSubscription add(const ZTMetaInvokable* event, Hearer* receiver, Kind kind)
    {
        if (kind == Function)
            return ZTBase::subscribe(speaker.get(), event, receiver, &Hearer::hearAny);
        if (kind == Described)
            return ZTBase::subscribe(speaker.get(), event, receiver, hearAny);
        if (receiver)
            return ZTBase::subscribe(speaker.get(), event, receiver, [this] { diary.add("any"); });
        return ZTBase::subscribe(speaker.get(), event, [this] { diary.add("free"); }).release();
    }
    void addAll()
    {
        speaker->unsubscribe(nullptr);
        all.clear();
        for (const ZTMetaInvokable* event : {said, told}) {
            for (Hearer* receiver : {&a, &b})
                for (Kind kind : {Function, Described, Callable})
                    all.push_back({event, receiver, kind, add(event, receiver, kind)});
            all.push_back({event, nullptr, Callable, add(event, nullptr, Callable)});
        }
    }
    bool end(const ZTMetaInvokable* event, Hearer* receiver, Kind kind)
    {
        if (kind == Function)
            return event ? ZTBase::unsubscribe(speaker.get(), event, receiver, &Hearer::hearAny)
                         : ZTBase::unsubscribe(speaker.get(), nullptr, receiver, &Hearer::hearAny);
        return ZTBase::unsubscribe(speaker.get(), event, receiver,
                                   kind == Described ? hearAny : nothing);
    }

    Hearer a{"a", diary}, b{"b", diary}, stranger{"c", diary};
    const ZTMetaInvokable* nothing = nullptr;
    std::vector<One> all;
};

TEST_F(Unsubscribing, EndsWhatMatchesEveryPartThatIsGiven)
{
    for (const ZTMetaInvokable* event : {nothing, said, told, mute, carried})
        for (Hearer* receiver : {static_cast<Hearer*>(nullptr), &a, &b, &stranger})
            for (Kind kind : {None, Function, Described}) {
                addAll();
                std::vector<bool> left;
                for (const One& one : all)
                    left.push_back((event && one.event != event) ||
                                   (receiver && one.receiver != receiver) ||
                                   (kind && (!receiver || one.kind != kind)));
                const bool any = std::count(left.begin(), left.end(), false) > 0;
                EXPECT_LOGS_NOTHING([&] { EXPECT_EQ(end(event, receiver, kind), any); });
                for (std::size_t i = 0; i < all.size(); ++i)
                    EXPECT_EQ(bool(all[i].handle), left[i]) << i;
                EXPECT_FALSE(end(event, receiver, kind));
            }
    EXPECT_FALSE(ZTBase::unsubscribe(nullptr, nothing, nullptr, nothing));
}

TEST_F(Unsubscribing, ByHandle)
{
    for (Kind kind : {Function, Described, Callable}) {
        addAll();
        ZTSubscription twice = add(said, &a, kind);
        EXPECT_TRUE(ZTBase::unsubscribe(twice));
        EXPECT_FALSE(twice);
        EXPECT_FALSE(ZTBase::unsubscribe(twice));
        // With one subscription of an invokable the same ones fall.
        for (const One& one : all)
            EXPECT_EQ(bool(one.handle), one.event != said || one.receiver != &a ||
                                            one.kind != kind || kind != Described);
    }
    EXPECT_FALSE(ZTBase::unsubscribe(ZTSubscription()));
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

TEST_F(Subscription, ScopedOneEndsWithItsHolder)
{
    auto note = [this](int number) { diary.add(std::to_string(number)); };
    auto make = [&] { return ZTBase::subscribe(speaker.get(), &Speaker::said, note); };
    {
        ZTScopedSubscription held = make(), ended = make();
        ended.reset();
        ZTScopedSubscription moved = std::move(held);
        EXPECT_FALSE(held);
        EXPECT_FALSE(ended);
        EXPECT_TRUE(moved);
        EXPECT_EQ(say(1), "1");
        moved = make();
        auto& itself = moved;
        moved = std::move(itself);
        EXPECT_EQ(say(2), "2");
    }
    EXPECT_EQ(say(3), "");
    ZTScopedSubscription again(make().release());
    EXPECT_EQ(say(4), "4");
    speaker.reset();
    EXPECT_FALSE(again);
}

TEST(SubscriptionHandle, EqualsThatOfTheSameEventAlone)
{
    Speaker speaker, other;
    Diary diary;
    Hearer hearer("h", diary);
    const ZTMetaInvokable* any = hearer.metaClass()->invokable<void()>("hearAny");
    auto handle = [&](Speaker& sender, auto event) {
        return ZTBase::subscribe(&sender, event, &hearer, any);
    };
    const ZTSubscription one = handle(speaker, &Speaker::said);
    EXPECT_EQ(one, handle(speaker, &Speaker::said));
    EXPECT_FALSE(one == handle(speaker, &Speaker::told));
    EXPECT_FALSE(one == handle(other, &Speaker::said));

    ZTScopedSubscription scoped(handle(speaker, &Speaker::said));
    scoped.reset();
    EXPECT_TRUE(one);
}
} // namespace
