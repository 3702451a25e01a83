#include "metatypeprivate.h"

#include <zintar/metaclass.h>

bool ZTMetaType::canConvert(const ZTMetaType& to) const
{
    if (!to)
        return false;
    return *this == to || priv->converterTo(to);
}

bool ZTMetaType::convert(void* source, const ZTMetaType& to, void* target) const
{
    if (!to)
        return false;
    const ZTConverter* found = priv->converterTo(to);
    auto function = found ? found->function.load(std::memory_order_acquire) : nullptr;
    return (function && function(source, target)) || *this == to;
}

namespace zt::detail
{
void ztRegisterConverter(const ZTMetaType& from, const ZTMetaType& to, ConverterFunction converter)
{
    ztMetaTypeRegistry().setConverter(from, to, converter);
}

bool can_convert_meta_class(const ZTMetaType& from, const ZTMetaType& to, bool& yieldsNull)
{
    if (!from || !to)
        return false;
    const ZTMetaClass* fromClass = from.metaClass();
    const ZTMetaClass* toClass = to.metaClass();
    if (!fromClass || !toClass)
        return false;
    // A class made at run time has no place in the rule, and `isDerivedFrom` complains about one.
    bool dynamic = toClass->isDynamic() || fromClass->isDynamic();
    yieldsNull =
        dynamic || !(toClass->isDerivedFrom(fromClass) || fromClass->isDerivedFrom(toClass));
    return true;
}
} // namespace zt::detail
