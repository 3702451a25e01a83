#include <zintar/kind.h>

#include "../types/metatypeprivate.h"

#include <zintar/detail/values/shape.h>
#include <zintar/enumeration.h>
#include <zintar/metaclass.h>

namespace
{
/// Whether an enumeration is one of flags its class alone can tell.
bool areFlags(const ZTMetaType& type)
{
    const ZTMetaEnum* enumeration = ztEnumeration(type);
    return enumeration && enumeration->isFlags();
}
} // namespace

ZTKind ztKind(const ZTMetaType& type)
{
    const ZTMetaTypePrivate& record = ZTMetaTypePrivate::of(type);
    if (record.shape) {
        ZTKind kind = record.shape->kind;
        if (kind == ZTKind::Enumeration && areFlags(type))
            kind.value = ZTKind::Flags;
        return kind;
    }
    if (record.referred)
        return {ZTKind::Reference};
    if (record.findClass || record.metaClass.load(std::memory_order_acquire))
        return {ZTKind::ObjectPointer};
    return {};
}
