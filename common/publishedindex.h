#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <vector>

namespace zt::detail
{
/// Finds things by a hash, in a time that does not grow with their number, while others are added
/// beside it. Things tell their `hash()`; they stay where they are and are never taken out.
///
/// 1. Readers take no lock. Writers are serialised by whoever has the index.
/// 2. A thing is complete when it is added, and a place that is taken never changes again.
/// 3. A table that has become too small is kept, since somebody may still be reading it. All of
///    these together are smaller than the last one.
/// 4. It is never destroyed: code that ends with the process may still read it.
template <class Thing>
class PublishedIndex
{
public:
    PublishedIndex() = default;
    PublishedIndex(const PublishedIndex&) = delete;
    PublishedIndex& operator=(const PublishedIndex&) = delete;

    /// The first thing with that hash that `fits`, or null.
    template <class Fits>
    [[nodiscard, gnu::always_inline]] inline Thing* find(std::size_t hash, Fits fits) const
    {
        const Table* table = m_table.load(std::memory_order_acquire);
        if (!table)
            return nullptr;
        for (std::size_t i = hash & table->mask;; i = table->next(i)) {
            Thing* thing = table->places[i].load(std::memory_order_acquire);
            if (!thing || fits(*thing)) [[likely]]
                return thing;
        }
    }
    /// Sees to it that the next so many additions cannot fail.
    void makeRoom(std::size_t count)
    {
        const Table* table = m_table.load(std::memory_order_relaxed);
        std::size_t places = table ? table->places.size() : 8;
        while (places < 4 * (m_count + count))
            places *= 2;
        if (table && places == table->places.size())
            return;
        auto larger = std::make_unique<Table>(places, table);
        for (std::size_t i = 0; table && i < table->places.size(); ++i)
            if (Thing* thing = table->places[i].load(std::memory_order_relaxed))
                larger->place(thing);
        m_table.store(larger.release(), std::memory_order_release);
    }
    /// From now on others can find the thing. There must be room for it.
    void add(Thing* thing) noexcept
    {
        m_table.load(std::memory_order_relaxed)->place(thing);
        ++m_count;
    }

private:
    /// Mostly empty, so that hardly two things want the same place.
    struct Table {
        Table(std::size_t count, const Table* outgrown)
            : mask(count - 1), places(count), smaller(outgrown)
        {}
        [[nodiscard]] std::size_t next(std::size_t place) const { return (place + 1) & mask; }
        void place(Thing* thing)
        {
            std::size_t i = thing->hash() & mask;
            while (places[i].load(std::memory_order_relaxed))
                i = next(i);
            places[i].store(thing, std::memory_order_release);
        }

        const std::size_t
            mask; ///< the number of places is a power of two, of which this is one less
        std::vector<std::atomic<Thing*>> places;
        const Table* const smaller; ///< the one in whose place this came
    };

    std::atomic<Table*> m_table = nullptr;
    std::size_t m_count = 0;
};
} // namespace zt::detail
