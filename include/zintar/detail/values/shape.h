#pragma once

#include <zintar/detail/values/untyped.h>
#include <zintar/kind.h>

#include <cstddef>
#include <string_view>

/// @file
/// What values of a type consist of, the elements of a container, the fields of a record, and the
/// functions that reach them through untyped pointers.

namespace zt::detail
{
/// Where an element is shown that is in memory otherwise than as the library knows it: a bit of a
/// `std::vector<bool>`, an 8-byte `long`.
struct Scratch {
    alignas(8) unsigned char bytes[8];
};

/// A place in a walk over a container.
struct Cursor {
    Scratch scratch;
    Scratch second; ///< for the value beside a key
    alignas(void*) unsigned char iterator[4 * sizeof(void*)];
};

struct Shape {
    ZTKind kind;
    /// Moves a value over another one; null where the type has no assignment.
    void (*move)(void* target, void* source) = nullptr;
    /// Whether a default value can be made and filled part by part.
    bool canFill = false;
};

// In what follows a `void*` to a value that is put somewhere is one of the type that the element
// has in the library, and is moved from. Null functions: the container cannot do that.

struct SequenceShape : Shape {
    static constexpr ZTKind::Value ofKind = ZTKind::Sequence;
    TypeGetter elementType;
    std::size_t stride; ///< from one element to the next, or 0 where they are not in a row
    bool hasPositions;  ///< false where the container itself puts what is inserted in its place
    bool isFixed;       ///< the type tells the size, as that of a `std::array` does
    std::size_t (*size)(const void* sequence);
    void (*begin)(const void* sequence, Cursor& cursor);
    /// The address of the element, and a step to the next one.
    const void* (*next)(Cursor& cursor);
    const void* (*at)(const void* sequence, std::size_t index, Scratch& scratch);
    void (*set)(void* sequence, std::size_t index, void* value);
    void (*insert)(void* sequence, std::size_t index, void* value);
    void (*erase)(void* sequence, std::size_t index);
    void (*clear)(void* sequence);
};

struct Entry {
    const void* key;
    const void* value;
};

struct AssociationShape : Shape {
    static constexpr ZTKind::Value ofKind = ZTKind::Association;
    TypeGetter keyType;
    TypeGetter valueType;
    std::size_t (*size)(const void* association);
    void (*begin)(const void* association, Cursor& cursor);
    Entry (*next)(Cursor& cursor);
    const void* (*find)(const void* association, const void* key, Scratch& scratch);
    /// Adds an entry, whether there is one of that key or not.
    void (*add)(void* association, void* key, void* value);
    /// Puts another value into the first entry of that key; false where there is none.
    bool (*replace)(void* association, const void* key, void* value);
    bool (*erase)(void* association, const void* key);
    void (*clear)(void* association);
};

struct OptionalShape : Shape {
    static constexpr ZTKind::Value ofKind = ZTKind::Optional;
    TypeGetter valueType;
    const void* (*get)(const void* optional, Scratch& scratch); ///< null where there is none
    void (*set)(void* optional, void* value);
    void (*reset)(void* optional);
};

struct RecordField {
    std::string_view name;
    TypeGetter type;
    const void* (*get)(const void* record, Scratch& scratch);
    void (*set)(void* record, void* value); ///< null for a constant field
};

struct RecordShape : Shape {
    static constexpr ZTKind::Value ofKind = ZTKind::Record;
    const RecordField* fields;
    unsigned int count;
    bool isDeclared; ///< by `ZT_RECORD`
};
} // namespace zt::detail
