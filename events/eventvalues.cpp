#include "eventvalues.h"

namespace
{
/// A pointer to an object of a derived class is a value of a pointer to the base.
bool isValueOf(const ZTMetaType& type, const ZTMetaType& declared)
{
    if (&type == &declared)
        return true;
    if (zt::detail::isReference(type) || zt::detail::isReference(declared))
        return false;
    const ZTMetaClass* from = type.metaClass();
    const ZTMetaClass* to = declared.metaClass();
    return from && to && !from->isDynamic() && !to->isDynamic() && from->isDerivedFrom(to);
}
} // namespace

bool ztFits(const ZTVariant& value, const ZTMetaType& declared)
{
    return &declared == &::ztMetaType<ZTVariant>() || isValueOf(value.type(), declared);
}

bool ZTEventValues::isValueOf(unsigned int position, const ZTMetaType& type) const
{
    if (!m_declared)
        return ztFits((*m_array)[position], type);
    return position < m_declared->parameterCount() &&
           m_declared->parameterMetaType(position) == type;
}

void ZTEventValues::fitToOther(const ZTMetaInvokable& event)
{
    if (zt::detail::haveSameParameters(*m_declared, event))
        return;
    (void)array();
    m_addresses = nullptr;
}

const ZTArgumentArray& ZTEventValues::array()
{
    if (m_array)
        return *m_array;
    m_lent.emplace();
    const ZTMetaType& variantType = ::ztMetaType<ZTVariant>();
    const unsigned int count = m_declared->parameterCount();
    for (unsigned int i = 0; i < count; ++i) {
        const ZTMetaType& type = m_declared->parameterMetaType(i);
        if (&type == &variantType)
            m_lent->lend(i, *static_cast<const ZTVariant*>(m_addresses[i]));
        else
            m_lent->lend(i, type, m_addresses[i]);
    }
    m_array = &static_cast<const ZTArgumentArray&>(*m_lent);
    return *m_array;
}

/// A value of another type than the handler takes is not handed to it as if it were one.
void* ZTEventValues::addressFor(unsigned int position, const ZTMetaType& taken) const
{
    const ZTVariant& value = (*m_array)[position];
    if (taken == ::ztMetaType<ZTVariant>())
        return const_cast<ZTVariant*>(&value);
    return ::isValueOf(value.type(), taken) ? value.data() : nullptr;
}
