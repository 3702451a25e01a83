#pragma once

#include "subscriptionrecord.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// The list of the subscriptions of one subscriber, which runs through the records.
struct ZTReceivedList {
    void insertFirst(ZTSubscriptionPrivate& record);
    static void insertBehind(ZTSubscriptionPrivate& record, ZTSubscriptionPrivate& other);
    void remove(ZTSubscriptionPrivate& record);

    ZTSubscriptionPrivate*& first;
};

/// Finds the subscriptions of one subscriber to one event of one sender, when it has many.
///
/// 1. In the list of the subscriber those to one event of one sender stand side by side, and among
///    them those with one handler.
/// 2. A place of the table has the first of such a group, and whether it is one of an event or of a
///    handler. At least a quarter of the places is empty.
/// 3. Handlers that have to be asked what they are count as one, and so do those that cannot be
///    found by their value.
class ZTReceivedIndex
{
public:
    /// What has to be the same in a group of an event; in one of a handler, all.
    struct Key {
        const ZTBasePrivate* sender;
        int eventIndex;
        zt::detail::HandlerIdentity handler = {};
    };

    /// Brings a list into the order of the groups. May throw, and changes nothing then.
    explicit ZTReceivedIndex(ZTReceivedList list);

    /// Room for one more. May throw, and changes nothing then.
    void reserve();
    /// There is room.
    void insert(ZTReceivedList list, ZTSubscriptionPrivate& record);
    void remove(ZTReceivedList list, ZTSubscriptionPrivate& record);

    /// Calls `action` with each subscription to the event. It may end the one that it is given.
    template <class Action>
    void forEachOfEvent(const Key& key, Action& action) const
    {
        forEachOf(Event, key, action);
    }
    /// The same with those of the handler.
    template <class Action>
    void forEachOfHandler(const Key& key, Action& action) const
    {
        forEachOf(Handler, key, action);
    }

private:
    /// The last bit of a place; the rest is the address of the first record of a group.
    enum Group : std::uintptr_t { Event, Handler };
    static constexpr std::uintptr_t never = 0; ///< there was no group
    static constexpr std::uintptr_t gone = 2;  ///< there is none any more

    static Key keyOf(const ZTSubscriptionPrivate& record);
    static bool isOf(Group group, const ZTSubscriptionPrivate& record, const Key& key);
    static bool isOf(std::uintptr_t place, Group group, const Key& key);
    static ZTSubscriptionPrivate& firstOf(std::uintptr_t place)
    {
        return *zt::detail::pointerIn<ZTSubscriptionPrivate>(place & ~std::uintptr_t{1});
    }
    static std::uintptr_t placeFor(Group group, const ZTSubscriptionPrivate& record)
    {
        return reinterpret_cast<std::uintptr_t>(&record) | group;
    }
    [[nodiscard]] std::size_t hashOf(Group group, const Key& key) const;
    /// The place of a group; one that is empty where there is none.
    [[nodiscard]] std::size_t find(Group group, const Key& key) const;
    void add(Group group, const ZTSubscriptionPrivate& record, const Key& key);
    void removeFirst(Group group, const ZTSubscriptionPrivate& record, const Key& key);
    void rebuild(std::size_t size);

    template <class Action>
    void forEachOf(Group group, const Key& key, Action& action) const
    {
        const std::uintptr_t place = m_places[find(group, key)];
        ZTSubscriptionPrivate* record = place != never ? &firstOf(place) : nullptr;
        while (record && isOf(group, *record, key)) {
            ZTSubscriptionPrivate* next = record->next;
            action(*record);
            record = next;
        }
    }

    std::vector<std::uintptr_t> m_places;
    /// How many places are not `never`, and in how many there is a group.
    std::size_t m_used = 0;
    std::size_t m_groups = 0;
};
