#include "../types/metatypeprivate.h"
#include "datastreamprivate.h"

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

/// How deep variants are nested in the one that is being read. A damaged stream can nest them as
/// often as it has bytes for, which the call stack must not have to bear.
class NestingDepth
{
public:
    NestingDepth() { ++depth; }
    NestingDepth(const NestingDepth&) = delete;
    NestingDepth& operator=(const NestingDepth&) = delete;
    ~NestingDepth() { --depth; }
    [[nodiscard]] static bool isTooDeep() { return depth > limit; }

private:
    static constexpr int limit = 500;
    [[gnu::tls_model("initial-exec")]] inline static thread_local int depth = 0;
};
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
    NestingDepth nesting;
    const ZTMetaTypePrivate& record = ZTMetaTypePrivate::of(*type);
    if (NestingDepth::isTooDeep() || !record.deserialize) {
        warnOfValue("deserialization", record.name);
        return {};
    }
    ZTVariant variant(*type, nullptr);
    record.deserialize(stream, variant.data());
    return variant;
}
} // namespace

ZTDataStream& operator>>(ZTDataStream& stream, ZTVariant& variant)
{
    zt::detail::readWhole(stream, [&] { variant = readVariant(stream); });
    return stream;
}
