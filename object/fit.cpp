#include "fit.h"

#include "../types/metatypeprivate.h"

#include <zintar/base.h>
#include <zintar/typedvalue.h>

#include <cstddef>
#include <optional>

namespace zt::detail
{
namespace
{
/// How many steps up the class tree the one is from the other. `isDerivedFrom` would complain of
/// classes made at run time.
std::optional<unsigned int> stepsUp(const ZTMetaClass* from, const ZTMetaClass* to)
{
    unsigned int steps = 0;
    for (; from && from != to; from = from->superClass())
        ++steps;
    return from ? std::optional(steps) : std::nullopt;
}

Fit atLeast(Fit least, unsigned int steps)
{
    return static_cast<Fit>(static_cast<unsigned int>(least) + steps);
}

/// The core hands such a pointer on as one to an object that may change.
bool isToConst(const ZTMetaType& pointer)
{
    return ZTMetaTypePrivate::of(pointer).name.starts_with("const ");
}

Fit fitOfPointer(const ZTVariant& value, const ZTMetaClass& target)
{
    if (auto steps = stepsUp(value.type().metaClass(), &target))
        return atLeast(Fit::Derived, *steps);
    // The pointer says less than the object does.
    const auto* object = ztVariantValue<const ZTBase*>(value);
    if (!object)
        return stepsUp(&target, value.type().metaClass()) ? Fit::ByObject : Fit::None;
    auto steps = stepsUp(object->metaClass(), &target);
    return steps ? atLeast(Fit::ByObject, *steps) : Fit::None;
}
} // namespace

Fit fitOf(const ZTVariant& value, const ZTMetaType& type, ZTVariant& converted)
{
    // A function made at run time may leave its types open.
    if (&value.type() == &type || !type)
        return Fit::Exact;
    if (&type == &::ztMetaType<ZTVariant>())
        return Fit::AsVariant;
    if (!value)
        return Fit::None;
    if (const ZTMetaClass* target = type.metaClass()) {
        if (value.type().metaClass())
            return isToConst(value.type()) && !isToConst(type) ? Fit::None
                                                               : fitOfPointer(value, *target);
        if (&value.type() == &::ztMetaType<std::nullptr_t>()) {
            converted = ZTVariant(type, nullptr);
            return Fit::Converted;
        }
    }
    converted = ZTVariant(type, nullptr);
    const bool fits = value.data() && converted.data() &&
                      value.type().convert(value.data(), type, converted.data());
    return fits ? Fit::Converted : Fit::None;
}

namespace
{
/// As a pointer, or a reference, of that type.
ZTVariant along(const ZTVariant& value, const ZTMetaType& type)
{
    auto* object = ztVariantValue<ZTBase*>(value);
    if (!isReference(type))
        return {type, &object};
    ZTVariant reference(type, nullptr);
    ZTMetaTypePrivate::of(type).refer(reference.data(), object);
    return reference;
}
} // namespace

ZTVariant typed(Fit fit, const ZTVariant& value, const ZTMetaType& type, const ZTVariant& converted)
{
    switch (fit) {
    case Fit::Exact:
        return value;
    case Fit::Converted:
        return converted;
    case Fit::AsVariant:
        return {type, &value};
    case Fit::None:
        return {};
    default:
        return along(value, type);
    }
}

std::optional<ZTVariant> fitted(const ZTVariant& value, const ZTMetaType& type)
{
    ZTVariant converted;
    const Fit fit = fitOf(value, type, converted);
    if (fit == Fit::None)
        return std::nullopt;
    return typed(fit, value, type, converted);
}
} // namespace zt::detail
