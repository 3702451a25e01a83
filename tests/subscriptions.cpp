#include "support/hostclasses.h"

#include <algorithm>
#include <memory>
#include <random>

namespace
{
using namespace host;

const ZTMetaInvokable* const said = Speaker::typeMetaClass().invokable(4U);
const ZTMetaInvokable* const told = Speaker::typeMetaClass().invokable(5U);
const ZTMetaInvokable* const carried = Speaker::typeMetaClass().invokable(6U);
const ZTMetaInvokable* const mute = Speaker::typeMetaClass().invokable(7U);
const ZTMetaInvokable* const hear = Hearer::typeMetaClass().invokable(4U);
const ZTMetaInvokable* const hearTold = Hearer::typeMetaClass().invokable(5U);
const ZTMetaInvokable* const hearText = Hearer::typeMetaClass().invokable(6U);
const ZTMetaInvokable* const hearAny = Hearer::typeMetaClass().invokable(7U);

class Subscribing : public SpeechTest
{
protected:
    /// What is logged when a subscription is refused.
    template <class... Arguments>
    std::string refusal(Arguments... arguments)
    {
        support::CapturedLog log;
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
    const std::string tooMany = ". Handler requires more parameters than event supplies\n";
    Hearer a{"a", diary};
    Hearer* nobody = nullptr;
    ZTBase* noObject = nullptr;
    const ZTMetaInvokable* nothing = nullptr;
};

TEST_F(Subscribing, NeedsASenderAnEventAndAHandler)
{
    Speaker* noSpeaker = nullptr;
    void (Hearer::*noMethod)(int) = nullptr;
    EXPECT_EQ(refusal(noSpeaker, &Speaker::said, &a, &Hearer::hear), "");
    EXPECT_EQ(refusal(noObject, said, &a, hear), "");
    for (const ZTMetaInvokable* event : {nothing, mute}) {
        EXPECT_EQ(refusal(speaker.get(), event, &a, hearAny), "");
        EXPECT_EQ(refusal(speaker.get(), event, &a, &Hearer::hearAny), "");
    }
    EXPECT_EQ(refusal(speaker.get(), said, &a, nothing), "");
    EXPECT_EQ(refusal(speaker.get(), said, &a, noMethod), "");
    EXPECT_EQ(say(1), "");
}

TEST_F(Subscribing, TellsOfHandlersThatDoNotFit)
{
    auto* from = speaker.get();
    const std::string mismatch = ". Parameter type mismatch at position ";
    EXPECT_EQ(refusal(from, said, noObject, hear), head + "said and handler hear" + tooMany);
    EXPECT_EQ(refusal(from, said, &a, hearTold), head + "said and handler hearTold" + tooMany);
    EXPECT_EQ(refusal(from, said, &a, hearText),
              head + "said and handler hearText" + mismatch +
                  "0. Event parameter type \"int\", handler type \"" +
                  ztMetaType<std::string>().name() + "\".\n");
    ZTMetaClassBuilder builder;
    builder.addInvokable().setParameterMetaTypes({&ZTMetaType::ZTBadMetaType});
    const std::unique_ptr<ZTMetaClass> metaClass(builder.toMetaClass());
    EXPECT_EQ(refusal(from, said, &a, metaClass->invokable(0U)),
              head + "said and handler " + mismatch +
                  "0. Event parameter type \"int\", handler type \"ZTBadMetaType\".\n");
    // Functions and callables go by the spelled name of their type.
    EXPECT_EQ(refusal(from, said, nobody, &Hearer::hearThree),
              head + "said and handler. The handler is a member function, but the subscriber was "
                     "null\n");
    EXPECT_EQ(refusal(from, said, &a, &Hearer::hearTold),
              head + "said and " + typed(&Hearer::hearTold) + tooMany);
    auto variant = [](const ZTVariant&) {};
    EXPECT_EQ(refusal(from, said, variant),
              head + "said and " + typed(variant) + mismatch +
                  "0. Event parameter type \"int\", handler type \"struct ZTVariant\".\n");
}

TEST_F(Subscribing, RefusesTheEventOfAnotherClass)
{
    EXPECT_EQ(refusal(&a, said, &a, hear),
              head + "said and handler hear. The class struct host::Hearer of the sender does not "
                     "have the event\n");
    EXPECT_EQ(refusal(speaker.get(), &Speaker::mute, &a, &Hearer::hearAny), "");
    EXPECT_EQ(refusal(&a, &Hearer::active, &a, &Hearer::hearAny),
              "Zintar: Subscription failed. The member function is not an event of class struct "
              "host::Hearer\n");
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

TEST_F(Unsubscribing, ByAFunctionOrAnObjectAlone)
{
    addAll();
    EXPECT_TRUE(ZTBase::unsubscribe(speaker.get(), &Speaker::said, &a, &Hearer::hearAny));
    EXPECT_TRUE(speaker->unsubscribe(&a));
    EXPECT_FALSE(speaker->unsubscribe(&a) || a.unsubscribe(nullptr));
    EXPECT_TRUE(ZTBase::unsubscribe(speaker.get(), &Speaker::told, nullptr, nullptr));
    EXPECT_EQ(say(1), "b:any b:any any free");
    EXPECT_TRUE(speaker->unsubscribe(nullptr));
    EXPECT_EQ(say(2), "");
}

TEST_F(Unsubscribing, ByHandle)
{
    for (Kind kind : {Function, Described, Callable}) {
        addAll();
        ZTSubscription twice = add(said, &a, kind);
        EXPECT_TRUE(ZTBase::unsubscribe(twice));
        EXPECT_FALSE(twice || ZTBase::unsubscribe(twice));
        // With one subscription of an invokable the same ones fall.
        for (const One& one : all)
            EXPECT_EQ(bool(one.handle), one.event != said || one.receiver != &a ||
                                            one.kind != kind || kind != Described);
    }
    EXPECT_FALSE(ZTBase::unsubscribe(ZTSubscription()));
}

class Subscription : public SpeechTest
{
protected:
    std::unique_ptr<Hearer> a{new Hearer("a", diary)};
};

TEST_F(Subscription, HandlesCompareByWhatTheyName)
{
    const ZTSubscription none;
    EXPECT_TRUE(!none && none == ZTSubscription());
    ZTSubscription member = listen(*a), same = listen(*a), copy = member;
    EXPECT_TRUE(copy == member && !(member == same) && !(member == none));
    ZTSubscription described = ZTBase::subscribe(speaker.get(), said, a.get(), hear);
    EXPECT_TRUE(described == ZTBase::subscribe(speaker.get(), said, a.get(), hear));
    EXPECT_FALSE(described == ZTBase::subscribe(speaker.get(), said, a.get(), hearAny));
    EXPECT_FALSE(described == member);

    ZTSubscription moved = std::move(member);
    EXPECT_TRUE(moved == copy && moved && !member);
    EXPECT_TRUE(ZTBase::unsubscribe(moved));
    EXPECT_TRUE(!moved && !copy && copy == none && same);
    a.reset(); // the end of either object ends it too
    Hearer b("b", diary);
    ZTSubscription other = listen(b);
    EXPECT_TRUE(!same && other);
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
        EXPECT_TRUE(!held && !ended && moved);
        EXPECT_EQ(say(1), "1");
        moved = make();
        auto& itself = moved;
        moved = std::move(itself);
        EXPECT_EQ(say(2), "2");
    }
    EXPECT_EQ(say(3), "");
    ZTSubscription kept = make().release();
    EXPECT_EQ(say(4), "4");
    ZTScopedSubscription again(kept);
    speaker.reset();
    EXPECT_FALSE(again);
}

TEST_F(Subscription, MassesEndInAnyOrder)
{
    std::mt19937 random(1);
    for (int order = 0; order < 3; ++order) {
        std::vector<std::unique_ptr<Hearer>> hearers;
        for (int i = 0; i < 30000; ++i)
            hearers.push_back(listening(std::to_string(i)));
        if (order == 1)
            std::reverse(hearers.begin(), hearers.end());
        if (order == 2)
            std::shuffle(hearers.begin(), hearers.end(), random);
        hearers.resize(2);
        const auto [first, second] =
            std::minmax({std::stoi(nameOf(hearers[0].get())), std::stoi(nameOf(hearers[1].get()))});
        EXPECT_EQ(say(1), std::to_string(first) + ":1 " + std::to_string(second) + ":1");
    }
}
} // namespace
