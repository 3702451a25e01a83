#include <zintar/datastream.h>
#include <zintar/dynamicbase.h>
#include <zintar/metaclassbuilder.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

// Reads whatever bytes as class records, in a row. What could be read is a fixed point: written,
// read and written again it gives the same bytes.

namespace
{
std::unique_ptr<ZTMetaClass> readClass(ZTDataStream& stream)
{
    ZTMetaClassBuilder builder;
    builder.deserialize(
        stream, {{"struct ZTDynamicBase", &ZTDynamicBase::typeMetaClass()}, {"ZTNone", nullptr}});
    return std::unique_ptr<ZTMetaClass>(builder.toMetaClass());
}

std::string bytesOf(const ZTMetaClass& metaClass)
{
    ZTDataStream stream;
    stream << metaClass;
    return stream.data();
}

void checkMembers(const ZTMetaClass& metaClass)
{
    for (unsigned int i = 0; i < metaClass.invokableCount(); ++i)
        if (metaClass.invokable(i)->index() != static_cast<int>(i))
            std::abort();
    for (unsigned int i = metaClass.propertyOffset(); i < metaClass.propertyCount(); ++i) {
        const ZTMetaProperty& property = *metaClass.property(i);
        const ZTMetaInvokable* event = property.changeEvent();
        if (property.changeEventIndex() != (event ? event->index() : -1) || property.canGet())
            std::abort();
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    ZTDataStream stream(std::string(data, data + size));
    do {
        const auto metaClass = readClass(stream);
        checkMembers(*metaClass);
        const std::string bytes = bytesOf(*metaClass);
        ZTDataStream again;
        again.setData(bytes);
        if (bytesOf(*readClass(again)) != bytes || !again.good())
            std::abort();
    } while (stream.good());
    return 0;
}
