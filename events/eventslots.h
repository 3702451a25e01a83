#pragma once

#include "eventslot.h"

#include <zintar/detail/words.h>

#include <cstdint>
#include <memory>
#include <vector>

/// The slots of the events of one sender that somebody has subscribed to. They do not move, and
/// none goes before the sender does. A single one, which is what most senders have, needs no table.
class ZTEventSlots
{
public:
    ZTEventSlots() = default;
    ZTEventSlots(const ZTEventSlots&) = delete;
    ZTEventSlots& operator=(const ZTEventSlots&) = delete;
    ~ZTEventSlots() { clear(); }

    [[nodiscard]] bool areNone() const { return m_word == 0; }
    /// The slot of the event with that class-wide index; null where nobody ever subscribed.
    [[nodiscard]] ZTEventSlot* find(int index) const
    {
        if (isTable()) [[unlikely]]
            return findInTable(index);
        return findSingle(index);
    }
    /// The same, where it is the only slot; otherwise null.
    [[nodiscard]] ZTEventSlot* findSingle(int index) const
    {
        return m_word != 0 && !isTable() && single()->index == index ? single() : nullptr;
    }
    /// May throw, and changes nothing then.
    ZTEventSlot& findOrMake(int index);
    template <class Action>
    void forEach(const Action& action) const
    {
        if (isTable())
            for (const auto& slot : table())
                action(*slot);
        else if (m_word != 0)
            action(*single());
    }
    void clear() noexcept;

private:
    /// In ascending order of their indices.
    using Table = std::vector<std::unique_ptr<ZTEventSlot>>;

    [[nodiscard]] bool isTable() const { return m_word & 1; }
    [[nodiscard]] ZTEventSlot* single() const { return zt::detail::pointerIn<ZTEventSlot>(m_word); }
    [[nodiscard]] Table& table() const { return *zt::detail::pointerIn<Table>(m_word - 1); }
    [[nodiscard]] ZTEventSlot* findInTable(int index) const;

    /// The address of the only slot, or one more than that of a table; 0 for none.
    std::uintptr_t m_word = 0;
};
