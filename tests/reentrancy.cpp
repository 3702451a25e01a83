#include "support/hostclasses.h"

#include <algorithm>
#include <map>
#include <random>
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
    b->then = [&] { EXPECT_TRUE(speaker->unsubscribe(b.get())); };
    EXPECT_EQ(say(3), "b:3 d:3");
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
    ZTSubscription byHandle, byKey, byReceiver, byDeath;
    Hearer e("e", diary);
    auto f = std::make_unique<Hearer>("f", diary);
    a->then = [&] {
        byHandle = listen(*d);
        EXPECT_TRUE(byHandle && ZTBase::unsubscribe(byHandle));
        byKey = listen(*d);
        EXPECT_TRUE(ZTBase::unsubscribe(speaker.get(), &Speaker::said, d.get(), &Hearer::hear));
        byReceiver = listen(e);
        EXPECT_TRUE(speaker->unsubscribe(&e));
        byDeath = listen(*f);
        f.reset();
        a->then = nullptr;
        EXPECT_FALSE(byHandle || byKey || byReceiver || byDeath);
    };
    EXPECT_EQ(say(1), "a:1 b:1 c:1");
    EXPECT_EQ(say(2), "a:2 b:2 c:2");
}

TEST_F(Reentrancy, NestedSendSkipsWhatHasEnded)
{
    b->then = [&] {
        b->then = nullptr;
        speaker->unsubscribe(a.get());
        c->then = [&] { c.reset(); };
        speaker->said(2);
    };
    EXPECT_EQ(say(1), "a:1 b:1 b:2 c:2");
    EXPECT_EQ(say(3), "b:3");
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

    speaker = std::make_unique<Speaker>();
    listen(*c);
    listen(*a);
    c->then = [&] {
        c.reset();
        speaker.reset();
    };
    speaker->said(2);
    EXPECT_EQ(diary.take(), "c:2");
    EXPECT_EQ(a->active(), "idle");
}

TEST_F(Reentrancy, DyingSenderIsTakenApartByItsHandlers)
{
    auto destroyed = &ZTBase::destroyed;
    auto note = [this](ZTBase* object) { diary.add("~" + nameOf(object)); };
    ZTBase::subscribe(speaker.get(), destroyed, a.get(), [&] {
        speaker.release()->unsubscribe(b.get());
        c.reset();
    });
    ZTBase::subscribe(speaker.get(), destroyed, b.get(), note);
    ZTBase::subscribe(speaker.get(), destroyed, c.get(), note);
    ZTBase::subscribe(speaker.get(), destroyed, d.get(), note);
    delete speaker.get();
    EXPECT_EQ(diary.take(), "~speaker");
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

TEST_F(Reentrancy, ActiveEventStaysUntilTheHandlerReturns)
{
    b->then = [&] {
        EXPECT_TRUE(speaker->unsubscribe(b.get()));
        diary.add(b->active());
    };
    EXPECT_EQ(say(1), "a:1 b:1 said 4 of speaker c:1");
    EXPECT_EQ(b->active(), "idle");
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

/// Objects that hear each other, stand in trees, and do at random whatever a host may do, also
/// from within handlers. A model that knows the rules only says what must happen.
class Crowd
{
public:
    explicit Crowd(unsigned int seed) : m_random(seed) {}
    ~Crowd()
    {
        while (!m_objects.empty())
            destroy(m_objects.begin()->first);
    }

    void step()
    {
        act();
        for (const auto& [id, object] : m_objects)
            ASSERT_EQ(childrenOf(object.speaker), object.children);
    }
    void checkHandles() const
    {
        for (const Subscription& one : m_subscriptions)
            ASSERT_EQ(bool(one.handle), one.alive);
    }
    std::size_t calls = 0;

private:
    struct Object {
        Speaker* speaker = nullptr;
        int parent = -1;
        std::vector<int> children{};
    };
    struct Subscription {
        int sender, receiver;
        bool alive;
        ZTSubscription handle;
    };
    /// A running delivery: of the subscriptions before `end` those from `next` on are to come.
    struct Walk {
        int sender;
        std::size_t next, end;
    };
    struct Stop {};

    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(m_random); }
    int any() { return std::next(m_objects.begin(), below(int(m_objects.size())))->first; }

    std::vector<int> childrenOf(Speaker* speaker) const
    {
        std::vector<int> ids;
        for (const ZTBase* child : speaker->children())
            for (const auto& [id, object] : m_objects)
                if (object.speaker == child)
                    ids.push_back(id);
        return ids;
    }

    void act()
    {
        if (m_objects.size() < 8) {
            m_objects[m_nextId++] = {new Speaker};
            return;
        }
        int choice = below(40);
        if (choice < 15)
            subscribe(any(), below(4) ? any() : -1);
        else if (choice < 22)
            send(any());
        else if (choice < 25 && !m_subscriptions.empty())
            endByHandle(m_subscriptions[m_subscriptions.size() - 1 - oldness()]);
        else if (choice < 27)
            endByPattern(any(), below(5) ? any() : -1);
        else if (choice < 35)
            place(any(), below(3) ? any() : -1);
        else if (choice < 37)
            move(any());
        else if (choice < 38)
            assign(any(), any());
        else if (choice < 39)
            destroy(any());
        else if (!m_walks.empty())
            throw Stop();
    }
    std::size_t oldness()
    {
        return std::size_t(below(int(std::min<std::size_t>(m_subscriptions.size(), 30))));
    }

    void subscribe(int sender, int receiver)
    {
        std::size_t number = m_subscriptions.size();
        auto handler = [this, number] { called(number); };
        Speaker* from = m_objects[sender].speaker;
        auto& added = m_subscriptions.emplace_back(Subscription{sender, receiver, true, {}});
        if (receiver < 0)
            added.handle = ZTBase::subscribe(from, &Speaker::said, handler).release();
        else
            added.handle =
                ZTBase::subscribe(from, &Speaker::said, m_objects[receiver].speaker, handler);
    }

    std::size_t nextOf(const Walk& walk) const
    {
        std::size_t number = walk.next;
        while (number < walk.end &&
               !(m_subscriptions[number].alive && m_subscriptions[number].sender == walk.sender))
            ++number;
        return number;
    }
    void called(std::size_t number)
    {
        ++calls;
        Walk& walk = m_walks.back();
        EXPECT_EQ(number, nextOf(walk));
        walk.next = number + 1;
        for (int i = below(3); i > 0; --i)
            act();
    }
    void send(int sender)
    {
        if (m_walks.size() >= 5)
            return;
        Walk walk{sender, 0, m_subscriptions.size()};
        for (const Walk& outer : m_walks)
            if (outer.sender == sender)
                walk.end = std::min(walk.end, outer.end);
        m_walks.push_back(walk);
        bool stopped = false;
        try {
            m_objects[sender].speaker->said(1);
        } catch (const Stop&) {
            stopped = true;
        }
        if (!stopped && m_objects.count(sender)) {
            EXPECT_EQ(nextOf(m_walks.back()), walk.end);
        }
        m_walks.pop_back();
    }

    void endByHandle(const Subscription& one)
    {
        bool wasAlive = one.alive;
        forget([&](const Subscription& other) { return &other == &one; });
        EXPECT_EQ(ZTBase::unsubscribe(one.handle), wasAlive);
    }
    void endByPattern(int sender, int receiver)
    {
        bool any = forget([&](const Subscription& one) {
            return one.sender == sender && (receiver < 0 || one.receiver == receiver);
        });
        Speaker* subscriber = receiver < 0 ? nullptr : m_objects[receiver].speaker;
        EXPECT_EQ(m_objects[sender].speaker->unsubscribe(subscriber), any);
    }
    template <class Condition>
    bool forget(Condition condition)
    {
        bool any = false;
        for (Subscription& one : m_subscriptions)
            if (one.alive && condition(one)) {
                one.alive = false;
                any = true;
            }
        return any;
    }

    bool descends(int id, int ancestor)
    {
        for (; id >= 0; id = m_objects[id].parent)
            if (id == ancestor)
                return true;
        return false;
    }
    void leave(int id)
    {
        int parent = std::exchange(m_objects[id].parent, -1);
        if (parent >= 0)
            std::erase(m_objects[parent].children, id);
    }
    void place(int id, int parent)
    {
        if (parent >= 0 && descends(parent, id))
            return;
        leave(id);
        m_objects[id].parent = parent;
        if (parent >= 0)
            m_objects[parent].children.push_back(id);
        m_objects[id].speaker->setParent(parent < 0 ? nullptr : m_objects[parent].speaker);
    }
    void move(int id)
    {
        Speaker* former = m_objects[id].speaker;
        m_objects[id].speaker = new Speaker(std::move(*former));
        delete former;
    }
    /// The object `to` ends, and `from` lives on in its place of memory.
    void assign(int to, int from)
    {
        if (to == from)
            return;
        if (descends(from, to))
            leave(from);
        Speaker* kept = m_objects[to].speaker;
        bury(to);
        Speaker* former = std::exchange(m_objects[from].speaker, kept);
        *kept = std::move(*former);
        delete former;
    }
    void destroy(int id)
    {
        Speaker* speaker = m_objects[id].speaker;
        bury(id);
        delete speaker;
    }
    void bury(int id)
    {
        leave(id);
        while (!m_objects[id].children.empty())
            bury(m_objects[id].children.front());
        forget([&](const Subscription& one) { return one.sender == id || one.receiver == id; });
        m_objects.erase(id);
    }

    std::mt19937 m_random;
    std::map<int, Object> m_objects;
    int m_nextId = 0;
    std::vector<Subscription> m_subscriptions;
    std::vector<Walk> m_walks;
};

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
