#include "eventslots.h"

#include <algorithm>

namespace
{
auto placeOf(std::vector<std::unique_ptr<ZTEventSlot>>& table, int index)
{
    return std::partition_point(table.begin(), table.end(),
                                [index](const auto& slot) { return slot->index < index; });
}
} // namespace

ZTEventSlot* ZTEventSlots::findInTable(int index) const
{
    const auto place = placeOf(table(), index);
    return place != table().end() && (*place)->index == index ? place->get() : nullptr;
}

ZTEventSlot& ZTEventSlots::findOrMake(int index)
{
    if (ZTEventSlot* found = find(index))
        return *found;
    auto made = std::make_unique<ZTEventSlot>(index);
    if (m_word == 0) {
        m_word = reinterpret_cast<std::uintptr_t>(made.get());
        return *made.release();
    }
    if (!isTable()) {
        auto table = std::make_unique<Table>();
        table->reserve(4);
        table->emplace_back(single());
        m_word = reinterpret_cast<std::uintptr_t>(table.release()) + 1;
    }
    return **table().insert(placeOf(table(), index), std::move(made));
}

void ZTEventSlots::clear() noexcept
{
    if (isTable())
        delete &table();
    else
        delete single();
    m_word = 0;
}
