#include "slotindex.h"

#include "eventslot.h"

#include <bit>
#include <cstdint>

ZTSlotIndex::ZTSlotIndex(const std::vector<ZTSlotEntry>& entries)
    : m_heads(std::bit_ceil(2 * entries.size())), m_links(entries.size())
{
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (entries[i].record)
            link(entries[i], i);
}

std::size_t ZTSlotIndex::bucketOf(const ZTBasePrivate* subscriber, bool isComparable) const
{
    auto key = reinterpret_cast<std::uintptr_t>(subscriber) + (isComparable ? 1 : 0);
    return static_cast<std::size_t>((key * 0x9E3779B97F4A7C15u) >> 32) & (m_heads.size() - 1);
}

std::size_t ZTSlotIndex::bucketOf(const ZTSlotEntry& entry) const
{
    return bucketOf(entry.record->subscriber,
                    zt::detail::HandlerView{entry.record->handler}.isComparable());
}

void ZTSlotIndex::link(const ZTSlotEntry& entry, std::size_t position)
{
    std::size_t& head = m_heads[bucketOf(entry)];
    m_links[position] = {head, 0};
    if (head != 0)
        m_links[head - 1].previous = position + 1;
    head = position + 1;
}

void ZTSlotIndex::add(const ZTSlotEntry& entry)
{
    m_links.resize(entry.record->position + 1);
    link(entry, entry.record->position);
}

void ZTSlotIndex::remove(const ZTSlotEntry& entry)
{
    Link& gone = m_links[entry.record->position];
    (gone.previous != 0 ? m_links[gone.previous - 1].next : m_heads[bucketOf(entry)]) = gone.next;
    if (gone.next != 0)
        m_links[gone.next - 1].previous = gone.previous;
    gone = {};
}
