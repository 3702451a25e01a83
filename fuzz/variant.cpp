#include <zintar/containers.h>
#include <zintar/datastream.h>
#include <zintar/record.h>
#include <zintar/typedvalue.h>
#include <zintar/variant.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

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

// Types that a host registers: an enumeration, which travels as its integer, a record that holds
// others of its kind, and containers.

enum class Colour : short { Red, Green };

struct Room {
    std::string name;
    bool isLit = false;
    std::map<int, std::optional<Colour>> walls;
    std::vector<Room> closets;
    std::vector<ZTVariant> notes;
};
ZT_RECORD(Room, name, isLit, walls, closets, notes)

[[maybe_unused]] const ZTMetaType* const types[] = {
    &ztMetaType<Colour>(), &ztMetaType<Room>(), &ztMetaType<std::vector<ZTVariant>>(),
    &ztMetaType<std::set<std::string>>(), &ztMetaType<std::array<bool, 3>>()};
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
