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
    friend struct ZTBasePrivate;

    ZTBasePrivate* m_record;
    /// The watch of the same object that was there before.
    ZTLifeWatch* m_below = nullptr;
};
