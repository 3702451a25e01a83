#include "shapes.h"

#include <zintar/detail/values/containerforms.h>
#include <zintar/metatypeof.h>

#include <algorithm>
#include <atomic>
#include <iomanip>
#include <ostream>
#include <string>
#include <typeinfo>
#include <vector>

namespace zt::detail
{
namespace
{
std::atomic<bool> containersHaveForms = false;

/// Whether a type that has no function of its own may do something part by part.
bool mayGoByParts(const ZTMetaTypePrivate& type)
{
    const auto* record = shapeAs<RecordShape>(type);
    return (record && record->isDeclared) || containersHaveForms.load(std::memory_order_relaxed);
}

// Abilities.

/// Whether all parts of a type can do something. A type within itself can if the rest can.
class AbilityOfParts
{
public:
    /// What a type can do without its parts: yes, no, or that they decide.
    enum class Own { Yes, No, Parts };
    using AskOwn = Own (*)(const ZTMetaTypePrivate& type);

    explicit AbilityOfParts(AskOwn own) : m_own(own) {}

    bool has(const ZTMetaTypePrivate& type)
    {
        const Own own = m_own(type);
        if (own != Own::Parts)
            return own == Own::Yes;
        if (std::find(m_asked.begin(), m_asked.end(), &type) != m_asked.end())
            return true;
        m_asked.push_back(&type);
        bool all = true;
        return visitShape(type, [&](const auto& shape) { all = hasAll(shape); }) && all;
    }

private:
    bool hasAll(const SequenceShape& shape) { return has(recordOf(shape.elementType)); }
    bool hasAll(const AssociationShape& shape)
    {
        return has(recordOf(shape.keyType)) && has(recordOf(shape.valueType));
    }
    bool hasAll(const OptionalShape& shape) { return has(recordOf(shape.valueType)); }
    bool hasAll(const RecordShape& shape)
    {
        return std::all_of(shape.fields, shape.fields + shape.count,
                           [&](const RecordField& field) { return has(recordOf(field.type)); });
    }

    AskOwn m_own;
    std::vector<const ZTMetaTypePrivate*> m_asked;
};

using Own = AbilityOfParts::Own;

Own canWrite(const ZTMetaTypePrivate& type)
{
    if (type.serialize)
        return Own::Yes;
    return type.deserialize ? Own::No : Own::Parts;
}

Own canRead(const ZTMetaTypePrivate& type)
{
    if (!type.createDefault)
        return Own::No;
    if (type.deserialize)
        return Own::Yes;
    return type.serialize || !type.shape || !type.shape->canFill ? Own::No : Own::Parts;
}

Own canPrint(const ZTMetaTypePrivate& type)
{
    const bool isNumber = type.shape && type.shape->kind == ZTKind::Enumeration;
    return type.print || isNumber ? Own::Yes : Own::Parts;
}

Own canCompare(const ZTMetaTypePrivate& type) { return type.compare ? Own::Yes : Own::Parts; }

// Printing.

void printPart(std::ostream& stream, const ZTMetaType& type, const void* value);

template <class Integer>
void printAs(std::ostream& stream, const void* value)
{
    // A byte is a number here.
    stream << +*static_cast<const Integer*>(value);
}

/// An integer by its width, since that of an enumeration has no type here.
void printNumber(std::ostream& stream, ZTKind kind, const void* value)
{
    switch (kind.bits) {
    case 8:
        return kind.isSigned ? printAs<signed char>(stream, value)
                             : printAs<unsigned char>(stream, value);
    case 16:
        return kind.isSigned ? printAs<short>(stream, value)
                             : printAs<unsigned short>(stream, value);
    case 32:
        return kind.isSigned ? printAs<int>(stream, value) : printAs<unsigned int>(stream, value);
    default:
        return kind.isSigned ? printAs<long long>(stream, value)
                             : printAs<unsigned long long>(stream, value);
    }
}

void print(std::ostream& stream, const SequenceShape& shape, const void* value)
{
    const ZTMetaType& type = shape.elementType();
    stream << "[";
    Cursor cursor;
    const std::size_t size = shape.size(value);
    shape.begin(value, cursor);
    for (std::size_t i = 0; i < size; ++i) {
        stream << (i > 0 ? ", " : "");
        printPart(stream, type, shape.next(cursor));
    }
    stream << "]";
}

void print(std::ostream& stream, const AssociationShape& shape, const void* value)
{
    const ZTMetaType& keyType = shape.keyType();
    const ZTMetaType& valueType = shape.valueType();
    stream << "{";
    Cursor cursor;
    const std::size_t size = shape.size(value);
    shape.begin(value, cursor);
    for (std::size_t i = 0; i < size; ++i) {
        stream << (i > 0 ? ", " : "");
        const Entry entry = shape.next(cursor);
        printPart(stream, keyType, entry.key);
        stream << ": ";
        printPart(stream, valueType, entry.value);
    }
    stream << "}";
}

void print(std::ostream& stream, const OptionalShape& shape, const void* value)
{
    Scratch scratch;
    if (const void* held = shape.get(value, scratch))
        printPart(stream, shape.valueType(), held);
    else
        stream << "none";
}

void print(std::ostream& stream, const RecordShape& shape, const void* value)
{
    Scratch scratch;
    stream << (shape.isDeclared ? "{" : "(");
    for (unsigned int i = 0; i < shape.count; ++i) {
        const RecordField& field = shape.fields[i];
        stream << (i > 0 ? ", " : "");
        if (shape.isDeclared)
            stream << field.name << ": ";
        printPart(stream, field.type(), field.get(value, scratch));
    }
    stream << (shape.isDeclared ? "}" : ")");
}

/// A variant within something else shows what it holds: the names of types would hide the rest.
void printHeld(std::ostream& stream, const ZTVariant& variant)
{
    const ZTMetaType& type = variant.type();
    if (variant.data() && AbilityOfParts(&canPrint).has(ZTMetaTypePrivate::of(type)))
        printPart(stream, type, variant.data());
    else
        stream << variant;
}

/// Within something else a text has quotes around it, and a byte is a number.
void printPart(std::ostream& stream, const ZTMetaType& type, const void* value)
{
    const ZTMetaTypePrivate& record = ZTMetaTypePrivate::of(type);
    const ZTKind kind = record.shape ? record.shape->kind : ZTKind();
    if (&type == &::ztMetaType<ZTVariant>())
        printHeld(stream, *static_cast<const ZTVariant*>(value));
    else if (kind == ZTKind::Text)
        stream << std::quoted(*static_cast<const std::string*>(value));
    else if (kind == ZTKind::Integer && kind.bits == 8 && record.typeIndex != typeid(char))
        printNumber(stream, kind, value);
    else if (record.print)
        record.print(stream, value);
    else if (kind == ZTKind::Enumeration)
        printNumber(stream, kind, value);
    else
        visitShape(record, [&](const auto& shape) { print(stream, shape, value); });
}

// Comparing. The first parts that are not equal decide.

ZTPartialOrdering compare(const SequenceShape& shape, const void* left, const void* right)
{
    const ZTMetaType& type = shape.elementType();
    const std::size_t sizes[] = {shape.size(left), shape.size(right)};
    Cursor cursors[2];
    shape.begin(left, cursors[0]);
    shape.begin(right, cursors[1]);
    for (std::size_t i = 0; i < std::min(sizes[0], sizes[1]); ++i) {
        const void* element = shape.next(cursors[0]);
        const auto order = type.compare(element, shape.next(cursors[1]));
        if (order != ZTPartialOrdering::Equivalent)
            return order;
    }
    return sizes[0] == sizes[1]  ? ZTPartialOrdering::Equivalent
           : sizes[0] < sizes[1] ? ZTPartialOrdering::Less
                                 : ZTPartialOrdering::Greater;
}

/// Equal or not: the order of entries may say nothing.
ZTPartialOrdering compare(const AssociationShape& shape, const void* left, const void* right)
{
    const ZTMetaType& type = shape.valueType();
    std::size_t size = shape.size(left);
    if (size != shape.size(right))
        return ZTPartialOrdering::Unordered;
    Cursor cursor;
    Scratch scratch;
    for (shape.begin(left, cursor); size > 0; --size) {
        const Entry entry = shape.next(cursor);
        const void* other = shape.find(right, entry.key, scratch);
        if (!other || type.compare(entry.value, other) != ZTPartialOrdering::Equivalent)
            return ZTPartialOrdering::Unordered;
    }
    return ZTPartialOrdering::Equivalent;
}

/// None is below any.
ZTPartialOrdering compare(const OptionalShape& shape, const void* left, const void* right)
{
    Scratch scratches[2];
    const void* a = shape.get(left, scratches[0]);
    const void* b = shape.get(right, scratches[1]);
    if (a && b)
        return shape.valueType().compare(a, b);
    return !a && !b ? ZTPartialOrdering::Equivalent
           : b      ? ZTPartialOrdering::Less
                    : ZTPartialOrdering::Greater;
}

ZTPartialOrdering compare(const RecordShape& shape, const void* left, const void* right)
{
    Scratch scratches[2];
    for (unsigned int i = 0; i < shape.count; ++i) {
        const RecordField& field = shape.fields[i];
        const auto order =
            field.type().compare(field.get(left, scratches[0]), field.get(right, scratches[1]));
        if (order != ZTPartialOrdering::Equivalent)
            return order;
    }
    return ZTPartialOrdering::Equivalent;
}
} // namespace

bool canWriteParts(const ZTMetaTypePrivate& type)
{
    return mayGoByParts(type) && AbilityOfParts(&canWrite).has(type);
}

bool canReadParts(const ZTMetaTypePrivate& type)
{
    return mayGoByParts(type) && AbilityOfParts(&canRead).has(type);
}

bool canPrintParts(const ZTMetaTypePrivate& type)
{
    // An enumeration without a form of its own prints within others alone.
    return mayGoByParts(type) && type.shape && type.shape->kind != ZTKind::Enumeration &&
           AbilityOfParts(&canPrint).has(type);
}

void printParts(std::ostream& stream, const ZTMetaTypePrivate& type, const void* value)
{
    if (value)
        visitShape(type, [&](const auto& shape) { print(stream, shape, value); });
}

ZTPartialOrdering compareParts(const ZTMetaTypePrivate& type, const void* left, const void* right)
{
    if (!type.shape || !AbilityOfParts(&canCompare).has(type))
        return ZTPartialOrdering::Unordered;
    if (!left || !right)
        return left == right ? ZTPartialOrdering::Equivalent : ZTPartialOrdering::Unordered;
    auto order = ZTPartialOrdering::Unordered;
    visitShape(type, [&](const auto& shape) { order = compare(shape, left, right); });
    return order;
}

void useContainerForms() { containersHaveForms.store(true, std::memory_order_relaxed); }

const Shape* shapeOfType(const ZTMetaType& type) { return ZTMetaTypePrivate::of(type).shape; }
} // namespace zt::detail
