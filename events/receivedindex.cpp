#include "receivedindex.h"

#include <bit>
#include <utility>

void ZTReceivedList::insertFirst(ZTSubscriptionPrivate& record)
{
    record.previous = nullptr;
    record.next = std::exchange(first, &record);
    if (record.next)
        record.next->previous = &record;
}

void ZTReceivedList::insertBehind(ZTSubscriptionPrivate& record, ZTSubscriptionPrivate& other)
{
    record.previous = &other;
    record.next = std::exchange(other.next, &record);
    if (record.next)
        record.next->previous = &record;
}

void ZTReceivedList::remove(ZTSubscriptionPrivate& record)
{
    (record.previous ? record.previous->next : first) = record.next;
    if (record.next)
        record.next->previous = record.previous;
    record.previous = nullptr;
    record.next = nullptr;
}

ZTReceivedIndex::ZTReceivedIndex(ZTReceivedList list)
{
    std::size_t count = 0;
    for (const auto* record = list.first; record; record = record->next)
        ++count;
    rebuild(4 * count);
    ZTSubscriptionPrivate* next = std::exchange(list.first, nullptr);
    while (ZTSubscriptionPrivate* record = next) {
        next = record->next;
        insert(list, *record);
    }
}

void ZTReceivedIndex::reserve()
{
    if (4 * (m_used + 2) > 3 * m_places.size())
        rebuild(4 * (m_groups + 2));
}

/// @param size  how many places there should be at least
void ZTReceivedIndex::rebuild(std::size_t size)
{
    std::vector<std::uintptr_t> old(std::bit_ceil(size));
    old.swap(m_places);
    m_used = m_groups = 0;
    for (const std::uintptr_t place : old)
        if (place != never && place != gone) {
            const ZTSubscriptionPrivate& record = firstOf(place);
            add(static_cast<Group>(place & 1), record, keyOf(record));
        }
}

ZTReceivedIndex::Key ZTReceivedIndex::keyOf(const ZTSubscriptionPrivate& record)
{
    return {record.sender, record.eventIndex, zt::detail::identityOf(record.handler)};
}

bool ZTReceivedIndex::isOf(Group group, const ZTSubscriptionPrivate& record, const Key& key)
{
    return record.sender == key.sender && record.eventIndex == key.eventIndex &&
           (group == Event || zt::detail::identityOf(record.handler) == key.handler);
}

bool ZTReceivedIndex::isOf(std::uintptr_t place, Group group, const Key& key)
{
    return place != gone && (place & 1) == group && isOf(group, firstOf(place), key);
}

std::size_t ZTReceivedIndex::hashOf(Group group, const Key& key) const
{
    constexpr std::uint64_t factor = 0x9E3779B97F4A7C15u;
    std::uint64_t hash = (reinterpret_cast<std::uintptr_t>(key.sender) >> 4) * factor;
    hash = (hash ^ hash >> 32 ^ static_cast<unsigned int>(key.eventIndex)) * factor;
    if (group == Handler)
        hash = (hash ^ hash >> 32 ^ key.handler.word ^ std::uint64_t(key.handler.found) << 60 ^ 1) *
               factor;
    return static_cast<std::size_t>(hash >> 32) & (m_places.size() - 1);
}

std::size_t ZTReceivedIndex::find(Group group, const Key& key) const
{
    std::size_t i = hashOf(group, key);
    while (m_places[i] != never && !isOf(m_places[i], group, key))
        i = (i + 1) & (m_places.size() - 1);
    return i;
}

/// There is no such group. It takes the place of one that is gone, where it can: the searches for
/// one that comes and goes all the time would get longer and longer.
void ZTReceivedIndex::add(Group group, const ZTSubscriptionPrivate& record, const Key& key)
{
    std::size_t i = hashOf(group, key);
    while (m_places[i] != never && m_places[i] != gone)
        i = (i + 1) & (m_places.size() - 1);
    m_used += m_places[i] == never ? 1 : 0;
    ++m_groups;
    m_places[i] = placeFor(group, record);
}

void ZTReceivedIndex::insert(ZTReceivedList list, ZTSubscriptionPrivate& record)
{
    const Key key = keyOf(record);
    if (const std::uintptr_t place = m_places[find(Handler, key)]; place != never)
        return ZTReceivedList::insertBehind(record, firstOf(place));
    const std::uintptr_t event = m_places[find(Event, key)];
    // In front of the others of the event, or there: behind them would be within a group.
    ZTSubscriptionPrivate* before = event != never ? firstOf(event).previous : nullptr;
    if (before)
        ZTReceivedList::insertBehind(record, *before);
    else
        list.insertFirst(record);
    if (event != never)
        m_places[find(Event, key)] = placeFor(Event, record);
    else
        add(Event, record, key);
    add(Handler, record, key);
}

/// If the record is the first of its group, the next one is that from now on, if there is one.
void ZTReceivedIndex::removeFirst(Group group, const ZTSubscriptionPrivate& record, const Key& key)
{
    if (record.previous && isOf(group, *record.previous, key))
        return;
    std::uintptr_t& place = m_places[find(group, key)];
    const bool hasNext = record.next && isOf(group, *record.next, key);
    place = hasNext ? placeFor(group, *record.next) : gone;
    if (!hasNext)
        --m_groups;
}

void ZTReceivedIndex::remove(ZTReceivedList list, ZTSubscriptionPrivate& record)
{
    const Key key = keyOf(record);
    removeFirst(Handler, record, key);
    removeFirst(Event, record, key);
    list.remove(record);
}
