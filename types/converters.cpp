#include "metatypeprivate.h"

#include <zintar/metatypeof.h>

namespace
{
/// A null pointer is one to any class once the host wants it so, and there is no end of classes.
bool isNullObject(const ZTMetaType& from, const ZTMetaType& to)
{
    const ZTMetaTypePrivate& target = ZTMetaTypePrivate::of(to);
    return ztMetaTypeRegistry().nullIsAnyObject.load(std::memory_order_acquire) &&
           &from == &ztMetaType<std::nullptr_t>() && target.pointsToObject();
}

void makeNull(const ZTMetaType& to, void* target)
{
    if (auto refer = ZTMetaTypePrivate::of(to).refer)
        refer(target, nullptr);
    else
        *static_cast<void**>(target) = nullptr;
}
} // namespace

bool ZTMetaType::canConvert(const ZTMetaType& to) const
{
    if (!to)
        return false;
    return priv->converterTo(to) || *this == to || isNullObject(*this, to);
}

bool ZTMetaType::convert(void* source, const ZTMetaType& to, void* target) const
{
    if (!to)
        return false;
    const ZTConverter* found = priv->converterTo(to);
    auto function = found ? found->function.load(std::memory_order_acquire) : nullptr;
    if ((function && function(source, target)) || *this == to)
        return true;
    if (found || !isNullObject(*this, to))
        return false;
    makeNull(to, target);
    return true;
}

namespace zt::detail
{
void ztRegisterConverter(const ZTMetaType& from, const ZTMetaType& to, ConverterFunction converter)
{
    ztMetaTypeRegistry().setConverter(from, to, converter);
}
} // namespace zt::detail
