#include <zintar/kind.h>

#include "metatypeprivate.h"

#include <zintar/detail/values/shapes.h>

ZTKind ztKind(const ZTMetaType& type)
{
    const ZTMetaTypePrivate& record = ZTMetaTypePrivate::of(type);
    if (record.shape)
        return record.shape->kind;
    if (record.referred)
        return {ZTKind::Reference};
    if (record.findClass || record.metaClass.load(std::memory_order_acquire))
        return {ZTKind::ObjectPointer};
    return {};
}

namespace zt::detail
{
const Shape* shapeOfType(const ZTMetaType& type) { return ZTMetaTypePrivate::of(type).shape; }
} // namespace zt::detail
