#include "../types/metatypeprivate.h"

#include <zintar/datastream.h>
#include <zintar/log.h>
#include <zintar/variant.h>

ZTDataStream& operator<<(ZTDataStream& stream, const ZTMetaType& type)
{
    return stream << ZTMetaTypePrivate::of(type).name;
}

ZTDataStream& operator>>(ZTDataStream& stream, const ZTMetaType*& type)
{
    std::string name;
    stream >> name;
    type = &ztMetaType(name);
    if (!*type && name != ZTMetaTypePrivate::of(*type).name)
        ztLog("Zintar: ZTMetaType deserialization failed. Did not find meta type with name \"" +
                  name + "\".",
              ZTLogType::Warning);
    return stream;
}

ZTDataStream& operator<<(ZTDataStream& stream, const ZTVariant& variant)
{
    stream << variant.type();
    if (variant.isValid() && !variant.type().serialize(stream, variant.data()))
        ztLog("Zintar: ZTVariant serialization failed for type " + variant.type().name() + ".",
              ZTLogType::Warning);
    return stream;
}

namespace
{
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

ZTDataStream& operator>>(ZTDataStream& stream, ZTVariant& variant)
{
    const ZTMetaType* type = nullptr;
    stream >> type;
    if (!*type) {
        variant.reset();
        return stream;
    }
    NestingDepth nesting;
    variant = ZTVariant(*type, nullptr);
    if (NestingDepth::isTooDeep() || !type->deserialize(stream, variant.data())) {
        variant.reset();
        ztLog("Zintar: ZTVariant deserialization failed for type " + type->name() + ".",
              ZTLogType::Warning);
    }
    return stream;
}
