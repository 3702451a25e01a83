#include "support/hostclasses.h"

#include <algorithm>
#include <memory>
#include <random>

namespace
{
using namespace host;

const ZTMetaInvokable* const said = Speaker::typeMetaClass().invokable(4U);
const ZTMetaInvokable* const told = Speaker::typeMetaClass().invokable(5U);
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
    const std::string text = ztMetaType<std::string>().name();
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
    EXPECT_EQ(refusal(speaker.get(), nothing, &a, hear), "");
    EXPECT_EQ(refusal(speaker.get(), nothing, &a, &Hearer::hear), "");
    EXPECT_EQ(refusal(speaker.get(), mute, &a, hearAny), "");
    EXPECT_EQ(refusal(speaker.get(), mute, &a, &Hearer::hearAny), "");
    EXPECT_EQ(refusal(speaker.get(), said, &a, nothing), "");
    EXPECT_EQ(refusal(speaker.get(), said, &a, noMethod), "");
    EXPECT_EQ(say(1), "");
}

TEST_F(Subscribing, TellsOfInvokablesThatDoNotFit)
{
    auto* from = speaker.get();
    EXPECT_EQ(refusal(from, said, noObject, hear), head + "said and handler hear" + tooMany);
    EXPECT_EQ(refusal(from, said, &a, hearTold), head + "said and handler hearTold" + tooMany);
    EXPECT_EQ(refusal(from, said, &a, hearText),
              head +
                  "said and handler hearText. Parameter type mismatch at position 0. Event "
                  "parameter type \"int\", handler type \"" +
                  text + "\".\n");

    ZTMetaClassBuilder builder;
    auto invokable = builder.addInvokable();
    invokable.setName("take");
    invokable.setParameterMetaTypes({&ztMetaType<std::string>(), &ZTMetaType::ZTBadMetaType});
    const std::unique_ptr<ZTMetaClass> metaClass(builder.toMetaClass());
    EXPECT_EQ(refusal(from, told, &a, metaClass->invokable(0U)),
              head + "told and handler take. Parameter type mismatch at position 1. Event "
                     "parameter type \"int\", handler type \"ZTBadMetaType\".\n");
}

TEST_F(Subscribing, TellsOfFunctionsThatDoNotFit)
{
    auto* from = speaker.get();
    const std::string null = "said and handler. The handler is a member function, but the "
                             "subscriber was null\n";
    EXPECT_EQ(refusal(from, said, nobody, &Hearer::hear), head + null);
    EXPECT_EQ(refusal(from, said, nobody, &Hearer::hearThree), head + null);
    EXPECT_EQ(refusal(from, said, &a, &Hearer::hearTold),
              head + "said and " + typed(&Hearer::hearTold) + tooMany);
    auto late = [](const std::string&, double) {};
    EXPECT_EQ(refusal(from, told, &a, late),
              head + "told and " + typed(late) +
                  ". Parameter type mismatch at position 1. Event parameter type \"int\", handler "
                  "type \"double\".\n");
    auto variant = [](const ZTVariant&) {};
    EXPECT_EQ(refusal(from, said, variant),
              head + "said and " + typed(variant) +
                  ". Parameter type mismatch at position 0. Event parameter type \"int\", handler "
                  "type \"struct ZTVariant\".\n");
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

/// Two receivers with several subscriptions each, and one handler that is nobody's.
class Unsubscribing : public SpeechTest
{
protected:
    Unsubscribing()
    {
        for (Hearer* one : {&a, &b}) {
            auto note = [this, one] { diary.add(nameOf(one) + ":lambda"); };
            ZTBase::subscribe(speaker.get(), &Speaker::said, one, &Hearer::hear);
            ZTBase::subscribe(speaker.get(), said, one, hearAny);
            lambdas.push_back(ZTBase::subscribe(speaker.get(), said, one, note));
            ZTBase::subscribe(speaker.get(), &Speaker::told, one, &Hearer::hearText);
        }
        free = ZTBase::subscribe(speaker.get(), said, [this] { diary.add("free"); }).release();
    }
    std::string left()
    {
        speaker->said(1);
        speaker->told("t", 1);
        return diary.take();
    }

    Hearer a{"a", diary}, b{"b", diary};
    std::vector<ZTSubscription> lambdas;
    ZTSubscription free;
    static constexpr const ZTMetaInvokable* any = nullptr;
};

TEST_F(Unsubscribing, OfAReceiver)
{
    EXPECT_TRUE(speaker->unsubscribe(&a));
    EXPECT_FALSE(speaker->unsubscribe(&a));
    EXPECT_EQ(left(), "b:1 b:any b:lambda free b:t");
    EXPECT_TRUE(ZTBase::unsubscribe(speaker.get(), nullptr, &b, nullptr));
    EXPECT_EQ(left(), "free");
    listen(a);
    ZTBase::subscribe(speaker.get(), &Speaker::told, &a, &Hearer::hearText);
    EXPECT_TRUE(ZTBase::unsubscribe(speaker.get(), &Speaker::told, nullptr, nullptr));
    EXPECT_FALSE(ZTBase::unsubscribe(speaker.get(), told, nullptr, any));
    EXPECT_EQ(left(), "free a:1");
    EXPECT_TRUE(ZTBase::unsubscribe(speaker.get(), said, &a, any));
    EXPECT_TRUE(speaker->unsubscribe(nullptr));
    EXPECT_FALSE(free || speaker->unsubscribe(nullptr));
    EXPECT_EQ(left(), "");
}

TEST_F(Unsubscribing, OfAHandler)
{
    EXPECT_TRUE(ZTBase::unsubscribe(speaker.get(), said, &a, hearAny));
    EXPECT_TRUE(ZTBase::unsubscribe(speaker.get(), &Speaker::said, &b, &Hearer::hear));
    EXPECT_TRUE(ZTBase::unsubscribe(speaker.get(), nullptr, &b, &Hearer::hearText));
    EXPECT_EQ(left(), "a:1 a:lambda b:any b:lambda free a:t");
    // An invokable is not found as a function, nor the reverse.
    EXPECT_FALSE(ZTBase::unsubscribe(speaker.get(), said, &a, hear));
    EXPECT_FALSE(ZTBase::unsubscribe(speaker.get(), said, &b, &Hearer::hearAny));
}

TEST_F(Unsubscribing, OfWhatDoesNotExist)
{
    Hearer other("other", diary);
    EXPECT_LOGS_NOTHING([&] {
        EXPECT_FALSE(ZTBase::unsubscribe(nullptr, any, nullptr, any));
        EXPECT_FALSE(ZTBase::unsubscribe(speaker.get(), mute, nullptr, any));
        EXPECT_FALSE(ZTBase::unsubscribe(speaker.get(), said, nullptr, hearAny));
        EXPECT_FALSE(ZTBase::unsubscribe(speaker.get(), said, nullptr, &Hearer::hear));
        EXPECT_FALSE(speaker->unsubscribe(&other));
        EXPECT_FALSE(a.unsubscribe(speaker.get()) || a.unsubscribe(nullptr));
        EXPECT_FALSE(ZTBase::unsubscribe(ZTSubscription()));
    });
    EXPECT_EQ(left(), "a:1 a:any a:lambda b:1 b:any b:lambda free a:t b:t");
}

TEST_F(Unsubscribing, ByHandle)
{
    EXPECT_TRUE(ZTBase::unsubscribe(lambdas[0]));
    EXPECT_FALSE(lambdas[0] || ZTBase::unsubscribe(lambdas[0]));
    EXPECT_TRUE(ZTBase::unsubscribe(free));
    EXPECT_EQ(left(), "a:1 a:any b:1 b:any b:lambda a:t b:t");
    // With one subscription of an invokable the same ones fall.
    ZTSubscription again = ZTBase::subscribe(speaker.get(), said, &a, hearAny);
    EXPECT_TRUE(ZTBase::unsubscribe(again));
    EXPECT_EQ(left(), "a:1 b:1 b:any b:lambda a:t b:t");
    ZTSubscription twice = ZTBase::subscribe(speaker.get(), &Speaker::said, &a, &Hearer::hear);
    EXPECT_TRUE(ZTBase::unsubscribe(twice));
    EXPECT_EQ(left(), "a:1 b:1 b:any b:lambda a:t b:t");
}

class Subscription : public SpeechTest
{
protected:
    std::unique_ptr<Hearer> a{new Hearer("a", diary)};
};

TEST_F(Subscription, EndsWithEitherObject)
{
    ZTSubscription first = listen(*a);
    EXPECT_TRUE(first);
    a.reset();
    EXPECT_FALSE(first);
    Hearer b("b", diary);
    ZTSubscription second = listen(b);
    auto free = ZTBase::subscribe(speaker.get(), &Speaker::said, [] {});
    speaker.reset();
    EXPECT_FALSE(second || free);
    EXPECT_TRUE(free == ZTSubscription());
}

TEST_F(Subscription, HandlesCompareByWhatTheyName)
{
    const ZTSubscription none;
    EXPECT_TRUE(!none && none == ZTSubscription());
    ZTSubscription member = listen(*a), same = listen(*a);
    EXPECT_FALSE(member == same || member == none);
    ZTSubscription copy = member;
    EXPECT_TRUE(copy == member);
    ZTSubscription described = ZTBase::subscribe(speaker.get(), said, a.get(), hear);
    EXPECT_TRUE(described == ZTBase::subscribe(speaker.get(), said, a.get(), hear));
    EXPECT_FALSE(described == ZTBase::subscribe(speaker.get(), said, a.get(), hearAny));
    EXPECT_FALSE(described == member);

    ZTSubscription moved = std::move(member);
    EXPECT_TRUE(moved == copy && moved);
    EXPECT_FALSE(member);
    EXPECT_TRUE(ZTBase::unsubscribe(moved));
    EXPECT_FALSE(moved || copy);
    EXPECT_TRUE(copy == none && same);
}

TEST_F(Subscription, ScopedOneEndsWithItsHolder)
{
    auto note = [this](int number) { diary.add(std::to_string(number)); };
    auto make = [&] { return ZTBase::subscribe(speaker.get(), &Speaker::said, note); };
    {
        ZTScopedSubscription held = make();
        ZTScopedSubscription moved = std::move(held);
        EXPECT_TRUE(!held && moved);
        EXPECT_EQ(say(1), "1");
        moved = make();
        auto& itself = moved;
        moved = std::move(itself);
        EXPECT_EQ(say(2), "2");
        ZTScopedSubscription ended = make();
        ended.reset();
        EXPECT_FALSE(ended);
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
        while (hearers.size() > 2)
            hearers.pop_back();
        int first = std::stoi(nameOf(hearers[0].get())),
            second = std::stoi(nameOf(hearers[1].get()));
        if (first > second)
            std::swap(first, second);
        EXPECT_EQ(say(1), std::to_string(first) + ":1 " + std::to_string(second) + ":1");
    }
}
} // namespace

namespace
{
int joined = 0;
void countJoin(ZTBase*) { ++joined; }
} // namespace

TEST(SubscribedFunction, IsFoundAgainByItsValue)
{
    ZTBase parent;
    ZTBase receiver;
    const ZTMetaInvokable* event = ZTBase::typeMetaClass().invokable(2);
    ZTBase::subscribe(&parent, event, &receiver, &countJoin);
    auto owned = ZTBase::subscribe(&parent, event, &receiver,
                                   [number = std::make_unique<int>(1)] { joined += *number; });
    parent.childAdded(nullptr);
    EXPECT_EQ(joined, 2);
    EXPECT_TRUE(ZTBase::unsubscribe(&parent, event, &receiver, &countJoin));
    parent.childAdded(nullptr);
    EXPECT_EQ(joined, 3);
    EXPECT_TRUE(owned);
}
