#pragma once

#include <zintar/variant.h>

namespace zt::detail
{
/// A variant of a pointer that is only shown to a function: its block is this object's member, so
/// that it costs no allocation. Copies of it are ordinary variants.
class BorrowedPointer
{
public:
    template <class T>
    explicit BorrowedPointer(T* pointer) : m_pointer(const_cast<std::remove_const_t<T>*>(pointer))
    {
        m_variant.m_type = &::ztMetaType<T*>();
        m_variant.m_data = &m_pointer;
    }
    BorrowedPointer(const BorrowedPointer&) = delete;
    BorrowedPointer& operator=(const BorrowedPointer&) = delete;
    ~BorrowedPointer() { m_variant.m_data = nullptr; }

    operator const ZTVariant&() const { return m_variant; }

private:
    void* m_pointer;
    ZTVariant m_variant;
};
} // namespace zt::detail
