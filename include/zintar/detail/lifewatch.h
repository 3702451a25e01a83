#pragma once

#include <zintar/export.h>
#include <zintar/fwd.h>

/// Tells on the stack whether an object is still there after code of the host has run. It follows
/// the object when that is moved.
class ZT_EXPORT ZTLifeWatch
{
public:
    /// @param object  may be null or moved-from, which reads as dead
    explicit ZTLifeWatch(const ZTBase* object) noexcept;
    explicit ZTLifeWatch(ZTBasePrivate* record) noexcept;
    ZTLifeWatch(const ZTLifeWatch&) = delete;
    ZTLifeWatch& operator=(const ZTLifeWatch&) = delete;
    ~ZTLifeWatch();

    /// Whether it is the living object: it has not died, nor been moved elsewhere.
    [[nodiscard]] bool isStill(const ZTBase* object) const noexcept;
    [[nodiscard]] explicit operator bool() const noexcept { return m_record != nullptr; }
    /// Null once the object has died.
    [[nodiscard]] ZTBasePrivate* record() const noexcept { return m_record; }

private:
    template <class Node>
    friend class ZTThreadList;
    friend struct ZTBasePrivate;

    ZTBasePrivate* m_record;
    /// Among the watches of this thread.
    ZTLifeWatch* m_below = nullptr;
};
