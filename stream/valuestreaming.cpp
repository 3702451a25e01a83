#include <zintar/datastream.h>
#include <zintar/log.h>
#include <zintar/metatype.h>
#include <zintar/variant.h>

ZTDataStream& operator<<(ZTDataStream& stream, const ZTMetaType& type)
{
    return stream << type.name();
}

ZTDataStream& operator>>(ZTDataStream& stream, const ZTMetaType*& type)
{
    std::string name;
    stream >> name;
    type = &ztMetaType(name);
    if (!*type && name != type->name())
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

ZTDataStream& operator>>(ZTDataStream& stream, ZTVariant& variant)
{
    const ZTMetaType* type = nullptr;
    stream >> type;
    if (!*type) {
        variant.reset();
        return stream;
    }
    variant = ZTVariant(*type, nullptr);
    if (!type->deserialize(stream, variant.data())) {
        variant.reset();
        ztLog("Zintar: ZTVariant deserialization failed for type " + type->name() + ".",
              ZTLogType::Warning);
    }
    return stream;
}
