#pragma once

#include <zintar/export.h>
#include <zintar/fwd.h>

#include <atomic>
#include <utility>

/// @file
/// The control blocks of the references to an object, and one counted reference on such a block.

namespace zt::detail
{
/// The control block of the weak references to one object.
struct ZT_EXPORT ZTRefImpl {
private:
    template <class Impl>
    friend class Reference;
    friend struct ::ZTReferences;

    explicit ZTRefImpl(const ZTBase* of) noexcept;
    ~ZTRefImpl() = default;
    /// The block of the object with one more reference on it; null for null.
    static ZTRefImpl* get(const ZTBase* object);
    /// Called by whoever takes `refCount` down to 0. Touches nothing of the object.
    void endReferences() noexcept { letGo(); }
    /// Ends the block with the last of its holders.
    void letGo() noexcept;

    std::atomic<int> refCount;
    /// The record of the object is one, and all references together are another.
    std::atomic<int> holders;
    std::atomic<const ZTBase*> object; ///< null once the object has died
};

/// The control block of the strong references to one object. Its end is the object's end.
struct ZT_EXPORT ZTStrongRefImpl {
private:
    template <class Impl>
    friend class Reference;
    friend struct ::ZTReferences;

    explicit ZTStrongRefImpl(ZTBasePrivate* of) noexcept;
    ~ZTStrongRefImpl();
    static ZTStrongRefImpl* get(const ZTBase* object);
    void endReferences() noexcept { delete this; }
    /// Ends the block of which the caller has the only reference, and leaves the object alone.
    /// @return the object; null, with nothing changed, where there are further references or the
    ///         object has died
    [[nodiscard]] static ZTBase* release(ZTStrongRefImpl* block) noexcept;

    std::atomic<int> refCount;
    std::atomic<const ZTBase*> object; ///< null once the object has died by other means
    /// Good while `object` is set. An object that is assigned to has another one already while this
    /// one ends.
    ZTBasePrivate* record;
};

/// One counted reference on a control block.
template <class Impl>
class Reference
{
public:
    Reference() noexcept = default;
    explicit Reference(const ZTBase* object) : m_impl(Impl::get(object)) {}
    Reference(const Reference& other) noexcept : m_impl(other.m_impl)
    {
        if (m_impl)
            ++m_impl->refCount;
    }
    Reference(Reference&& other) noexcept : m_impl(std::exchange(other.m_impl, nullptr)) {}
    Reference& operator=(Reference other) noexcept
    {
        std::swap(m_impl, other.m_impl);
        return *this;
    }
    ~Reference()
    {
        Impl* impl = std::exchange(m_impl, nullptr);
        if (impl && --impl->refCount == 0)
            impl->endReferences();
    }

    [[nodiscard]] ZTBase* object() const noexcept
    {
        if (!m_impl)
            return nullptr;
        return const_cast<ZTBase*>(m_impl->object.load(std::memory_order_acquire));
    }

    /// What orders references: it stays when the object dies or moves.
    [[nodiscard]] const Impl* block() const noexcept { return m_impl; }
    [[nodiscard]] ZTBase* release() noexcept
    {
        ZTBase* object = m_impl ? Impl::release(m_impl) : nullptr;
        if (object)
            m_impl = nullptr;
        return object;
    }

private:
    Impl* m_impl = nullptr;
};
} // namespace zt::detail
