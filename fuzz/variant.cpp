#include <zintar/datastream.h>
#include <zintar/typedvalue.h>
#include <zintar/variant.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

// Reads whatever bytes as variants, in a row. What could be read whole is a fixed point: written,
// read and written again it gives the same bytes.

namespace
{
ZTVariant readVariant(ZTDataStream& stream)
{
    ZTVariant variant;
    stream >> variant;
    return variant;
}

std::string bytesOf(const ZTVariant& variant)
{
    ZTDataStream stream;
    stream << variant;
    return stream.data();
}

/// A type that a host registers: an enumeration, which travels as its integer.
enum class Colour : short { Red, Green };
[[maybe_unused]] const ZTMetaType& colourType = ztMetaType<Colour>();
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    ZTDataStream stream(std::string(data, data + size));
    do {
        const ZTVariant variant = readVariant(stream);
        const ZTVariant copy(variant);
        if (copy.type() != variant.type() || copy.isValid() != variant.isValid())
            std::abort();
        const std::string bytes = bytesOf(variant);
        ZTDataStream again;
        again.setData(bytes);
        if (bytesOf(readVariant(again)) != bytes || !again.good())
            std::abort();
    } while (stream.good());
    return 0;
}
