#include "../types/shapes.h"
#include "datastreamprivate.h"
#include "nestingdepth.h"

#include <zintar/datastream.h>
#include <zintar/log.h>
#include <zintar/variant.h>

ZTDataStream& operator<<(ZTDataStream& stream, const ZTMetaType& type)
{
    return stream << std::string_view(ZTMetaTypePrivate::of(type).name);
}

namespace
{
/// The type that a stream names; the invalid one with a warning where nobody bears the name.
const ZTMetaType& typeOnStream(std::string_view name)
{
    if (const ZTMetaType* found = ztMetaTypeRegistry().find(name))
        return *found;
    ztLog("Zintar: ZTMetaType deserialization failed. Did not find meta type with name \"" +
              std::string(name) + "\".",
          ZTLogType::Warning);
    return ZTMetaType::ZTBadMetaType;
}

/// Of a stream whose medium is another one, or that does not hold all of the name.
[[gnu::noinline]] const ZTMetaType& readTypeTheLongWay(ZTDataStream& stream)
{
    const ZTMetaType* type = nullptr;
    zt::detail::readWhole(stream, [&] {
        std::string name;
        stream >> name;
        type = &typeOnStream(name);
    });
    return *type;
}

[[gnu::noinline]] void warnOfValue(std::string_view operation, const std::string& typeName)
{
    ztLog("Zintar: ZTVariant " + std::string(operation) + " failed for type " + typeName + ".",
          ZTLogType::Warning);
}
} // namespace

ZTDataStream& operator>>(ZTDataStream& stream, const ZTMetaType*& type)
{
    auto* plain = ZTDataStreamPrivate::ofPlain(stream);
    const auto name = plain ? plain->nextText() : std::nullopt;
    if (!name) [[unlikely]] {
        type = &readTypeTheLongWay(stream);
        return stream;
    }
    if (plain->lastType && *name == ZTMetaTypePrivate::of(*plain->lastType).name) {
        type = plain->lastType;
    } else {
        type = &typeOnStream(*name);
        // Only a name that leads to its own type is remembered: a type that was found by an alias
        // may share its first name with another one, who owns it.
        if (*name == ZTMetaTypePrivate::of(*type).name)
            plain->lastType = type;
    }
    plain->takeText(*name);
    return stream;
}

ZTDataStream& operator<<(ZTDataStream& stream, const ZTVariant& variant)
{
    const ZTMetaTypePrivate& type = ZTMetaTypePrivate::of(variant.type());
    zt::detail::writeWhole(stream, [&](ZTDataStream& target) {
        target << std::string_view(type.name);
        if (type.serialize)
            type.serialize(target, variant.data());
        else if (zt::detail::canWriteParts(type))
            zt::detail::writeParts(target, type, variant.data());
        else if (variant.isValid())
            warnOfValue("serialization", type.name);
    });
    return stream;
}

namespace
{
ZTVariant readVariant(ZTDataStream& stream)
{
    const ZTMetaType* type = nullptr;
    stream >> type;
    if (!*type)
        return {};
    const zt::detail::NestingDepth nesting;
    const ZTMetaTypePrivate& record = ZTMetaTypePrivate::of(*type);
    const bool isReadable = record.deserialize || zt::detail::canReadParts(record);
    if (zt::detail::NestingDepth::isTooDeep() || !isReadable) {
        warnOfValue("deserialization", record.name);
        return {};
    }
    ZTVariant variant(*type, nullptr);
    if (record.deserialize)
        record.deserialize(stream, variant.data());
    else
        zt::detail::readParts(stream, *type, variant.data());
    return variant;
}
} // namespace

ZTDataStream& operator>>(ZTDataStream& stream, ZTVariant& variant)
{
    zt::detail::readWhole(stream, [&] { variant = readVariant(stream); });
    return stream;
}
