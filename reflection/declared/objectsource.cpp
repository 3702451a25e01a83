#include <zintar/detail/calls.h>

namespace zt::detail
{
namespace
{
/// The pointer that the variant gives by what its type and the asked one have to do with each
/// other.
void* retrieveObject(const ZTVariant& object, const ObjectPointer& pointer)
{
    if (!object.isValid()) {
        warnInvalidVariant(nameOf(pointer));
        return nullptr;
    }
    const ZTMetaType& target = typeOf(pointer);
    if (&object.type() == &target && object.data())
        return *static_cast<void* const*>(object.data());
    const ZTMetaType* nonConst = pointer.nonConst ? &typeOf(*pointer.nonConst) : nullptr;
    void* result = nullptr;
    if (!retrieveRelated(object, target, nonConst, result))
        convertOrWarn(object, target, &result, nameOf(pointer));
    return result;
}

/// Remembers where the object came from, if it came as others may that are no more than the variant
/// says.
void* askForObject(const ZTVariant& object, ObjectSource& source)
{
    void* address = retrieveObject(object, source.pointer);
    if (address && comesAlongClassTree(object.type(), typeOf(source.pointer)))
        source.knownPointer.store(&object.type(), std::memory_order_relaxed);
    return address;
}

bool isOf(const ZTBase& object, ObjectSource& source)
{
    if (source.isOf && !source.isOf(object))
        return false;
    source.knownClass.store(&typeid(object), std::memory_order_relaxed);
    return true;
}
} // namespace

ZTBase* objectOtherwise(const ZTVariant& object, ObjectSource& source)
{
    const bool isKnown = &object.type() == source.knownPointer.load(std::memory_order_relaxed);
    void* address = isKnown && object.data() ? *static_cast<void* const*>(object.data()) : nullptr;
    if (!address)
        address = askForObject(object, source);
    auto* base = static_cast<ZTBase*>(address);
    const bool isOther = base ? !isOf(*base, source) : holdsPointer(object);
    if (isOther)
        warnFailedConversion(nameOf(source.pointer), object.type());
    return isOther ? nullptr : base;
}
} // namespace zt::detail
