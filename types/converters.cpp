#include "metatypeprivate.h"

bool ZTMetaType::canConvert(const ZTMetaType& to) const
{
    if (!to)
        return false;
    return priv->converterTo(to) || *this == to;
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
} // namespace zt::detail
