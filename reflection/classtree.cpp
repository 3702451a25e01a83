#include "../types/metatypeprivate.h"

#include <zintar/metaclass.h>
#include <zintar/typedvalue.h>

// How the relation of two classes decides what becomes of a pointer to an object.

namespace zt::detail
{
bool classTreeSettles(const ZTMetaType& from, const ZTMetaType& to, bool& yieldsNull)
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

bool can_convert_meta_class(const ZTMetaType& from, const ZTMetaType& to, bool& yieldsNull)
{
    const bool arePointers =
        !ZTMetaTypePrivate::of(from).referred && !ZTMetaTypePrivate::of(to).referred;
    return arePointers && classTreeSettles(from, to, yieldsNull);
}

bool comesAlongClassTree(const ZTMetaType& from, const ZTMetaType& to)
{
    bool yieldsNull = false;
    return can_convert_meta_class(from, to, yieldsNull) && !yieldsNull;
}
} // namespace zt::detail
