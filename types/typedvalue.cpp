#include <zintar/typedvalue.h>

#include "metatypeprivate.h"

#include <zintar/log.h>

#include <string>

namespace zt::detail
{
namespace
{
std::string warningHead(std::string_view askedType)
{
    return "Zintar Warning: Retrieved default-constructed value of type \"" +
           std::string(askedType) + "\"";
}

void* storedPointer(const ZTVariant& variant)
{
    return variant.data() ? *static_cast<void**>(variant.data()) : nullptr;
}
} // namespace

void warnFailedConversion(std::string_view askedType, const ZTMetaType& from)
{
    ztLog(warningHead(askedType) +
              " while converting from ZTVariant. Conversion failed from type type \"" +
              from.name() + "\".",
          ZTLogType::Info);
}

void warnInvalidVariant(std::string_view askedType)
{
    ztLog(warningHead(askedType) + " converting from invalid ZTVariant.", ZTLogType::Info);
}

bool convertOrWarn(const ZTVariant& variant, const ZTMetaType& target, void* result,
                   std::string_view askedType)
{
    // A variant of the type itself gets here only without a block: it has no value to give.
    if (&variant.type() != &target && variant.type().convert(variant.data(), target, result))
        return true;
    warnFailedConversion(askedType, variant.type());
    return false;
}

bool hasObject(const ZTVariant& variant, void*& object)
{
    const ZTMetaTypePrivate& type = ZTMetaTypePrivate::of(variant.type());
    if (!type.referred && !variant.type().metaClass())
        return false;
    if (!type.referred)
        object = storedPointer(variant);
    else
        object = variant.data() ? type.referred(variant.data()) : nullptr;
    return true;
}

bool holdsPointer(const ZTVariant& variant)
{
    void* object = nullptr;
    return hasObject(variant, object) && object;
}

namespace
{
/// The object behind a reference, along the class tree as pointers go. A converter of the host
/// knows better.
bool retrieveReferred(const ZTVariant& variant, const ZTMetaType& target, void*& result)
{
    bool yieldsNull = false;
    if (!isReference(variant.type()) || isReference(target) || variant.type().canConvert(target) ||
        !classTreeSettles(variant.type(), target, yieldsNull))
        return false;
    if (yieldsNull)
        result = nullptr;
    else
        (void)hasObject(variant, result);
    return true;
}
} // namespace

bool retrieveRelated(const ZTVariant& variant, const ZTMetaType& target, const ZTMetaType* nonConst,
                     void*& result)
{
    bool yieldsNull = false;
    if (nonConst && &variant.type() == nonConst) {
        result = storedPointer(variant);
        return true;
    }
    if (can_convert_meta_class(variant.type(), target, yieldsNull)) {
        result = yieldsNull ? nullptr : storedPointer(variant);
        return true;
    }
    return retrieveReferred(variant, target, result);
}

bool retrievePointer(const ZTVariant& variant, const ZTMetaType& target, const ZTMetaType* nonConst,
                     void*& result, std::string_view askedType)
{
    return retrieveRelated(variant, target, nonConst, result) ||
           convertOrWarn(variant, target, &result, askedType);
}
} // namespace zt::detail
