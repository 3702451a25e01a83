#pragma once

#include "../events/eventblockers.h"
#include "../events/heldchanges.h"
#include "../events/queueends.h"
#include "../events/receivedindex.h"
#include "dynamicproperties.h"
#include "references.h"

#include <zintar/detail/blocks.h>
#include <zintar/detail/words.h>

#include <atomic>
#include <cstdint>
#include <memory>

/// What few objects have, and its place in the record: one word, as long as there is nothing, or
/// nothing but blockers. Those take no memory, so that silencing an object cannot fail.
///
/// The parts may come into being on another thread than the object's, for its subscriptions through
/// queues; all that is in them, those apart, is for the thread of the object.
class ZTExtras
{
public:
    struct Parts : zt::detail::InBlocks {
        ZTReferences references;
        ZTDynamicProperties dynamicProperties;
        /// Those of properties of the class, under their keys; null as long as none was set.
        std::unique_ptr<ZTDynamicProperties> storedValues;
        ZTEventBlockers blockers;
        std::unique_ptr<ZTReceivedIndex> receivedIndex;
        /// Null as long as none were held back.
        std::unique_ptr<ZTHeldChanges> heldChanges;
        /// Owned; null as long as no subscription through a queue needed them.
        std::atomic<ZTQueueEnds*> queueEnds = nullptr;

        Parts() = default;
        Parts(const Parts&) = delete;
        Parts& operator=(const Parts&) = delete;
        ~Parts() { delete queueEnds.load(std::memory_order_relaxed); }
    };

    ZTExtras() = default;
    ZTExtras(ZTExtras&& other) noexcept : m_word(other.m_word.exchange(0)) {}
    ZTExtras& operator=(ZTExtras&&) = delete;
    ~ZTExtras() { delete parts(); }

    [[nodiscard]] bool areNone() const { return m_word.load(std::memory_order_relaxed) == 0; }
    /// Whether nothing of them has to be seen to where an event is raised or delivered, as with the
    /// references to an object and its dynamic properties.
    [[nodiscard]] bool leaveEventsAlone() const
    {
        return (m_word.load(std::memory_order_relaxed) & (isBlocker | concernsEvents)) == 0;
    }
    /// To be called when something has come that has to be.
    /// Threads: any, as long as the object lives.
    void noteForEvents() { m_word.fetch_or(concernsEvents); }
    /// Null as long as nobody needed them.
    [[nodiscard]] Parts* parts() const { return partsIn(word()); }
    /// May throw, and changes nothing then.
    /// Threads: any, as long as the object lives.
    Parts& needParts();

    /// Null as long as the object has few subscriptions to others.
    [[nodiscard]] ZTReceivedIndex* receivedIndex() const
    {
        const Parts* all = parts();
        return all ? all->receivedIndex.get() : nullptr;
    }
    /// Null as long as none of the object's were held back.
    [[nodiscard]] ZTHeldChanges* heldChanges() const
    {
        const Parts* all = parts();
        return all ? all->heldChanges.get() : nullptr;
    }
    /// Null as long as the object has had no subscription through a queue.
    [[nodiscard]] ZTQueueEnds* queueEnds() const
    {
        const Parts* all = parts();
        return all ? all->queueEnds.load(std::memory_order_acquire) : nullptr;
    }
    [[nodiscard]] ZTEventBlockers blockers() const
    {
        const std::uintptr_t now = word();
        const Parts* all = partsIn(now);
        return all ? all->blockers : blockersIn(now);
    }
    template <class Change>
    void changeBlockers(const Change& change)
    {
        std::uintptr_t before = word();
        ZTEventBlockers changed = blockers();
        change(changed);
        const std::uintptr_t after =
            changed.areNone() ? 0 : reinterpret_cast<std::uintptr_t>(changed.first()) | isBlocker;
        // Parts that have come meanwhile have the blockers of before.
        if (partsIn(before) || !m_word.compare_exchange_strong(before, after)) {
            parts()->blockers = changed;
            noteForEvents();
        }
    }

private:
    [[nodiscard]] std::uintptr_t word() const { return m_word.load(std::memory_order_acquire); }
    static Parts* partsIn(std::uintptr_t word)
    {
        return word & isBlocker ? nullptr : zt::detail::pointerIn<Parts>(word & ~concernsEvents);
    }
    static ZTEventBlockers blockersIn(std::uintptr_t word)
    {
        return word & isBlocker
                   ? ZTEventBlockers(zt::detail::pointerIn<ZTEventBlocker>(word & ~isBlocker))
                   : ZTEventBlockers();
    }

    // In the last bits of the address.
    static constexpr std::uintptr_t isBlocker = 1; ///< that of the first blocker; there is no more
    /// That of parts of which one concerns events, or did once: what another thread may have set is
    /// not taken back.
    static constexpr std::uintptr_t concernsEvents = 2;

    /// The address of the parts or of the first blocker, and what it is; 0 for none.
    std::atomic<std::uintptr_t> m_word = 0;
};

inline ZTExtras::Parts& ZTExtras::needParts()
{
    std::uintptr_t now = word();
    if (!partsIn(now)) {
        auto made = std::make_unique<Parts>();
        std::uintptr_t after = 0;
        do {
            if (partsIn(now))
                return *partsIn(now);
            made->blockers = blockersIn(now);
            after = reinterpret_cast<std::uintptr_t>(made.get()) |
                    (made->blockers.areNone() ? 0 : concernsEvents);
        } while (!m_word.compare_exchange_weak(now, after, std::memory_order_acq_rel));
        return *made.release();
    }
    return *partsIn(now);
}
