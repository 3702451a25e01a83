#pragma once

#include "../events/eventblockers.h"
#include "../events/receivedindex.h"
#include "dynamicproperties.h"
#include "references.h"

#include <zintar/detail/blocks.h>
#include <zintar/detail/words.h>

#include <cstdint>
#include <memory>
#include <utility>

/// What few objects have, and its place in the record: one word, as long as there is nothing, or
/// nothing but blockers. Those take no memory, so that silencing an object cannot fail.
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
    };

    ZTExtras() = default;
    ZTExtras(ZTExtras&& other) noexcept : m_word(std::exchange(other.m_word, 0)) {}
    ZTExtras& operator=(ZTExtras&&) = delete;
    ~ZTExtras() { delete parts(); }

    [[nodiscard]] bool areNone() const { return m_word == 0; }
    /// Null as long as nobody needed them.
    [[nodiscard]] Parts* parts() const
    {
        return m_word & 1 ? nullptr : zt::detail::pointerIn<Parts>(m_word);
    }
    /// May throw, and changes nothing then.
    Parts& needParts();

    /// Null as long as the object has few subscriptions to others.
    [[nodiscard]] ZTReceivedIndex* receivedIndex() const
    {
        const Parts* all = parts();
        return all ? all->receivedIndex.get() : nullptr;
    }
    [[nodiscard]] ZTEventBlockers blockers() const
    {
        return m_word & 1 ? ZTEventBlockers(zt::detail::pointerIn<ZTEventBlocker>(m_word - 1))
               : m_word   ? parts()->blockers
                          : ZTEventBlockers();
    }
    template <class Change>
    void changeBlockers(const Change& change)
    {
        ZTEventBlockers changed = blockers();
        change(changed);
        if (Parts* all = parts())
            all->blockers = changed;
        else
            m_word = changed.areNone() ? 0 : reinterpret_cast<std::uintptr_t>(changed.first()) + 1;
    }

private:
    /// The address of the parts, or one more than that of the first blocker; 0 for none.
    std::uintptr_t m_word = 0;
};

inline ZTExtras::Parts& ZTExtras::needParts()
{
    if (!parts()) {
        auto made = std::make_unique<Parts>();
        made->blockers = blockers();
        m_word = reinterpret_cast<std::uintptr_t>(made.release());
    }
    return *parts();
}
