#include "conversion.h"

#include <zintar/base.h>
#include <zintar/typedvalue.h>

namespace zt::detail
{
namespace
{
bool isObjectOf(const ZTVariant& value, const ZTMetaType& type)
{
    if (!value.data() || !comesAlongClassTree(value.type(), type))
        return false;
    const auto* object = *static_cast<const ZTBase* const*>(value.data());
    const ZTMetaClass* one = object ? object->metaClass() : type.metaClass();
    while (one && one != type.metaClass())
        one = one->superClass();
    return one != nullptr;
}
} // namespace

Conversion conversionTo(const ZTMetaType& type, const ZTVariant& value)
{
    if (&value.type() == &type)
        return Conversion::None;
    if (&type == &::ztMetaType<ZTVariant>())
        return Conversion::IntoVariant;
    if (isObjectOf(value, type))
        return Conversion::AlongClassTree;
    return value.canConvert(type) ? Conversion::ByConverter : Conversion::Impossible;
}

std::optional<ZTVariant> convertedTo(const ZTMetaType& type, const ZTVariant& value)
{
    switch (conversionTo(type, value)) {
    case Conversion::None:
        return value;
    case Conversion::IntoVariant:
        return ZTVariant(type, &value);
    case Conversion::AlongClassTree:
        return ZTVariant(type, value.data()); // the same address
    case Conversion::ByConverter: {
        ZTVariant converted(type, nullptr);
        if (converted.data() && value.type().convert(value.data(), type, converted.data()))
            return converted;
        break;
    }
    case Conversion::Impossible:
        break;
    }
    return std::nullopt;
}
} // namespace zt::detail
