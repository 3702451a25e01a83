#include <zintar/variant.h>

#include "shapes.h"

#include <zintar/log.h>

#include <ostream>

ZTVariant::ZTVariant(const ZTMetaType& type, const void* value)
    : m_type(&type), m_data(type.create(value))
{}

// A source without a block gives a copy with a default value, if the type has one.
ZTVariant::ZTVariant(const ZTVariant& other) : m_type(other.m_type), m_data(nullptr)
{
    const ZTMetaTypePrivate& type = ZTMetaTypePrivate::of(*m_type);
    if (other.m_data && type.isPlain())
        m_data = type.copyPlain(other.m_data);
    else if (other.m_data && type.create)
        m_data = type.create(other.m_data);
    else if (other.isValid())
        m_data = m_type->create(other.m_data);
}

ZTVariant& ZTVariant::operator=(const ZTVariant& other)
{
    // The copy is made first: `other` may live in the block that this variant gives up.
    if (!zt::detail::assignInPlace(*this, other) && this != &other)
        *this = ZTVariant(other);
    return *this;
}

ZTVariant& ZTVariant::operator=(ZTVariant&& other) noexcept
{
    if (this != &other) {
        ZTVariant old(std::move(*this));
        m_type = std::exchange(other.m_type, &ZTMetaType::ZTBadMetaType);
        m_data = std::exchange(other.m_data, nullptr);
    }
    return *this;
}

void ZTVariant::reset() noexcept { ZTVariant old(std::move(*this)); }

ZTPartialOrdering ZTVariant::compare(const ZTVariant& other) const
{
    return m_type->compare(m_data, other.m_data);
}

bool ZTVariant::operator==(const ZTVariant& other) const
{
    if (m_type != other.m_type)
        return false;
    return !isValid() || compare(other) == ZTPartialOrdering::Equivalent;
}

ZTPartialOrdering zt::detail::compareNested(const ZTVariant& left, const ZTVariant& right)
{
    if (left.type() != right.type())
        return ZTPartialOrdering::Greater;
    if (!left.isValid())
        return ZTPartialOrdering::Equivalent;
    ZTPartialOrdering order = left.type().compare(left.data(), right.data());
    return order == ZTPartialOrdering::Unordered ? ZTPartialOrdering::Greater : order;
}

bool ZTVariant::operator!=(const ZTVariant& other) const { return !(*this == other); }

bool ZTVariant::operator<(const ZTVariant& other) const
{
    return m_type == other.m_type && isValid() && compare(other) == ZTPartialOrdering::Less;
}

bool ZTVariant::operator>(const ZTVariant& other) const
{
    return m_type == other.m_type && isValid() && compare(other) == ZTPartialOrdering::Greater;
}

bool ZTVariant::operator<=(const ZTVariant& other) const
{
    if (m_type != other.m_type)
        return false;
    return !isValid() || compare(other) != ZTPartialOrdering::Greater;
}

bool ZTVariant::operator>=(const ZTVariant& other) const
{
    if (m_type != other.m_type)
        return false;
    return !isValid() || compare(other) != ZTPartialOrdering::Less;
}

bool ZTVariant::canConvert(const ZTMetaType& target) const
{
    if (!target || !isValid())
        return false;
    return m_type == &target || m_type->canConvert(target);
}

std::ostream& operator<<(std::ostream& stream, const ZTVariant& variant)
{
    const ZTMetaTypePrivate& type = ZTMetaTypePrivate::of(variant.type());
    // Made before anything is printed, since memory may fail.
    std::string failure;
    const bool byParts = !type.print && variant.isValid() && zt::detail::canPrintParts(type);
    if (variant.isValid() && !type.print && !byParts)
        failure = "Zintar: ZTVariant print failed for type " + type.name + ".";
    stream << "ZTVariant(" << type.name << ", ";
    if (type.print && variant.isValid())
        type.print(stream, variant.data());
    else if (byParts)
        zt::detail::printParts(stream, type, variant.data());
    stream << ")";
    if (!failure.empty())
        ztLog(failure, ZTLogType::Warning);
    return stream;
}
