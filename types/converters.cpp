#include "metatypeprivate.h"

#include <zintar/metaclass.h>

bool ZTMetaType::canConvert(const ZTMetaType& to) const
{
    if (!to)
        return false;
    return *this == to || priv->convertersTo.count(&to) != 0;
}

bool ZTMetaType::convert(void* source, const ZTMetaType& to, void* target) const
{
    if (!to)
        return false;
    auto found = priv->convertersTo.find(&to);
    bool converted =
        found != priv->convertersTo.end() && found->second && found->second(source, target);
    return converted || *this == to;
}

namespace zt::detail
{
void ztRegisterConverter(const ZTMetaType& from, const ZTMetaType& to, ConverterFunction converter)
{
    ZTMetaTypePrivate::of(from).convertersTo[&to] = converter;
    ZTMetaTypePrivate::of(to).convertersFrom[&from] = converter;
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
