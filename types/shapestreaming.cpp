#include "../stream/datastreamprivate.h"
#include "../stream/nestingdepth.h"
#include "shapes.h"

#include <zintar/detail/values/containerforms.h>

#include <cstdint>

// Parts on a stream.
//
//     sequence, association  the number of elements or entries in 8 bytes, then each; a key stands
//                            in front of its value
//     fixed sequence, record each element or field
//     optional               a byte, 0 or 1, and the value behind a 1

namespace zt::detail
{
namespace
{
void writePart(ZTDataStream& stream, const ZTMetaType& type, const void* value);

void write(ZTDataStream& stream, const SequenceShape& shape, const void* value)
{
    const ZTMetaType& type = shape.elementType();
    std::size_t size = shape.size(value);
    if (!shape.isFixed)
        stream << static_cast<unsigned long long>(size);
    Cursor cursor;
    for (shape.begin(value, cursor); size > 0; --size)
        writePart(stream, type, shape.next(cursor));
}

void write(ZTDataStream& stream, const AssociationShape& shape, const void* value)
{
    const ZTMetaType& keyType = shape.keyType();
    const ZTMetaType& valueType = shape.valueType();
    std::size_t size = shape.size(value);
    stream << static_cast<unsigned long long>(size);
    Cursor cursor;
    for (shape.begin(value, cursor); size > 0; --size) {
        const Entry entry = shape.next(cursor);
        writePart(stream, keyType, entry.key);
        writePart(stream, valueType, entry.value);
    }
}

void write(ZTDataStream& stream, const OptionalShape& shape, const void* value)
{
    Scratch scratch;
    const void* held = shape.get(value, scratch);
    stream << (held != nullptr);
    if (held)
        writePart(stream, shape.valueType(), held);
}

void write(ZTDataStream& stream, const RecordShape& shape, const void* value)
{
    Scratch scratch;
    for (unsigned int i = 0; i < shape.count; ++i)
        writePart(stream, shape.fields[i].type(), shape.fields[i].get(value, scratch));
}

void writePart(ZTDataStream& stream, const ZTMetaType& type, const void* value)
{
    const ZTMetaTypePrivate& record = ZTMetaTypePrivate::of(type);
    if (record.serialize)
        record.serialize(stream, value);
    else
        visitShape(record, [&](const auto& shape) { write(stream, shape, value); });
}

/// No operation fails a stream but a read past its end. Another medium fails by itself, when the
/// bytes run out for what it claims to hold.
void fail(ZTDataStream& stream)
{
    if (auto* plain = ZTDataStreamPrivate::ofPlain(stream))
        plain->pastEnd = true;
}

/// The number of elements. One that there are no bytes for is refused at once.
std::uint64_t readCount(ZTDataStream& stream)
{
    unsigned long long count = 0;
    stream >> count;
    const auto* plain = ZTDataStreamPrivate::ofPlain(stream);
    if (plain && count > plain->left())
        fail(stream);
    return stream.good() ? count : 0;
}

bool readPart(ZTDataStream& stream, const ZTMetaType& type, void* fresh);

/// A default value, and then what the stream gives for it.
struct FreshPart {
    FreshPart(ZTDataStream& stream, const ZTMetaType& type)
        : part(type, nullptr), isRead(readPart(stream, type, part.data()))
    {}
    void* data() const { return part.data(); }

    ZTVariant part;
    bool isRead;
};

// Each fills a default value, and answers whether all was there.

bool read(ZTDataStream& stream, const SequenceShape& shape, void* fresh)
{
    const ZTMetaType& type = shape.elementType();
    if (!shape.isFixed)
        shape.clear(fresh);
    const std::uint64_t count = shape.isFixed ? shape.size(fresh) : readCount(stream);
    for (std::uint64_t i = 0; i < count; ++i) {
        const FreshPart element(stream, type);
        if (!element.isRead)
            return false;
        const std::size_t index = shape.isFixed ? i : shape.size(fresh);
        (shape.isFixed ? shape.set : shape.insert)(fresh, index, element.data());
    }
    return stream.good();
}

bool read(ZTDataStream& stream, const AssociationShape& shape, void* fresh)
{
    const ZTMetaType& keyType = shape.keyType();
    const ZTMetaType& valueType = shape.valueType();
    shape.clear(fresh);
    for (std::uint64_t left = readCount(stream); left > 0; --left) {
        const FreshPart key(stream, keyType);
        const FreshPart value(stream, valueType);
        if (!key.isRead || !value.isRead)
            return false;
        shape.add(fresh, key.data(), value.data());
    }
    return stream.good();
}

bool read(ZTDataStream& stream, const OptionalShape& shape, void* fresh)
{
    bool isHeld = false;
    stream >> isHeld;
    if (!isHeld || !stream.good()) {
        shape.reset(fresh);
        return stream.good();
    }
    const FreshPart value(stream, shape.valueType());
    if (value.isRead)
        shape.set(fresh, value.data());
    return value.isRead;
}

bool read(ZTDataStream& stream, const RecordShape& shape, void* fresh)
{
    for (unsigned int i = 0; i < shape.count; ++i) {
        const FreshPart field(stream, shape.fields[i].type());
        if (!field.isRead)
            return false;
        shape.fields[i].set(fresh, field.data());
    }
    return stream.good();
}

bool readPart(ZTDataStream& stream, const ZTMetaType& type, void* fresh)
{
    const ZTMetaTypePrivate& record = ZTMetaTypePrivate::of(type);
    if (record.deserialize) {
        record.deserialize(stream, fresh);
        return stream.good();
    }
    const NestingDepth nesting;
    if (NestingDepth::isTooDeep()) {
        fail(stream);
        return false;
    }
    bool isRead = false;
    visitShape(record, [&](const auto& shape) { isRead = read(stream, shape, fresh); });
    return isRead;
}
} // namespace

void writeParts(ZTDataStream& stream, const ZTMetaTypePrivate& type, const void* value)
{
    if (value)
        visitShape(type, [&](const auto& shape) { write(stream, shape, value); });
}

void readParts(ZTDataStream& stream, const ZTMetaType& type, void* value)
{
    readWhole(stream, [&] {
        const FreshPart whole(stream, type);
        if (whole.isRead)
            ZTMetaTypePrivate::of(type).shape->move(value, whole.data());
    });
}

void writeContainer(ZTDataStream& stream, const ZTMetaType& type, const void* value)
{
    writeWhole(stream, [&](ZTDataStream& target) { writePart(target, type, value); });
}

void readContainer(ZTDataStream& stream, const ZTMetaType& type, void* value)
{
    readParts(stream, type, value);
}
} // namespace zt::detail
