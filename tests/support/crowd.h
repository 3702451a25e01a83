#pragma once

#include "hostclasses.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <random>
#include <vector>

namespace host
{
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
        checkActive();
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
        int receiver = -1;
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
            endByHandle(recentSubscription());
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
    Subscription& recentSubscription()
    {
        int count = int(m_subscriptions.size());
        return m_subscriptions[std::size_t(count - 1 - below(std::min(count, 30)))];
    }

    void subscribe(int sender, int receiver)
    {
        auto handler = [this, number = m_subscriptions.size()] { called(number); };
        Speaker* from = m_objects[sender].speaker;
        ZTSubscription handle =
            receiver < 0
                ? ZTBase::subscribe(from, &Speaker::said, handler).release()
                : ZTBase::subscribe(from, &Speaker::said, m_objects[receiver].speaker, handler);
        m_subscriptions.push_back({sender, receiver, true, handle});
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
        walk.receiver = m_subscriptions[number].receiver;
        checkActive();
        for (int i = below(3); i > 0; --i) {
            act();
            checkActive();
        }
    }
    /// Each object knows the innermost event that is being delivered to it, and who sent it.
    void checkActive()
    {
        for (const auto& [id, object] : m_objects) {
            const ZTBase* sender = nullptr;
            bool active = false;
            for (const Walk& walk : m_walks)
                if (walk.receiver == id) {
                    auto found = m_objects.find(walk.sender);
                    sender = found == m_objects.end() ? nullptr : found->second.speaker;
                    active = true;
                }
            ASSERT_EQ(object.speaker->activeEventIndex(), active ? 4 : -1);
            ASSERT_EQ(object.speaker->eventSender(), sender);
        }
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

    void endByHandle(Subscription& one)
    {
        bool wasAlive = std::exchange(one.alive, false);
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
        Speaker* kept = bury(to);
        Speaker* former = std::exchange(m_objects[from].speaker, kept);
        *kept = std::move(*former);
        delete former;
    }
    void destroy(int id) { delete bury(id); }
    /// Takes the object and all below it out of the model.
    Speaker* bury(int id)
    {
        leave(id);
        while (!m_objects[id].children.empty())
            bury(m_objects[id].children.front());
        forget([&](const Subscription& one) { return one.sender == id || one.receiver == id; });
        return m_objects.extract(id).mapped().speaker;
    }

    std::mt19937 m_random;
    std::map<int, Object> m_objects;
    int m_nextId = 0;
    std::vector<Subscription> m_subscriptions;
    std::vector<Walk> m_walks;
};
} // namespace host
