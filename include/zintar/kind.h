#pragma once

#include <zintar/export.h>
#include <zintar/fwd.h>

/// What sort of values a type has, as far as the library can handle them without knowing the type:
/// what an editor chooses its widget by, and a bridge its own type.
///
///     switch (ztKind(property->metaType())) {
///     case ZTKind::Boolean: return checkBox(property);
///     case ZTKind::Integer: return spinBox(property, ztKind(property->metaType()).bits);
///     default: return textLine(property);
///     }
struct ZTKind {
    enum Value : unsigned char {
        Other, ///< any type that none of the others fits, the invalid type among them
        Void,
        Boolean,
        Integer, ///< `char` and its relatives, too
        Floating,
        Text,          ///< `std::string`
        Enumeration,   ///< `bits` and `isSigned` are those of the underlying integer
        Flags,         ///< an enumeration that a class lists as flags; the same
        ObjectPointer, ///< `metaClass()` of the type tells the class
        Reference,     ///< a `ZTRef` or a `ZTStrongRef`
        Sequence,      ///< for a `ZTSequenceView`
        Association,   ///< for a `ZTAssociationView`
        Optional,      ///< for a `ZTOptionalView`
        Record,        ///< for a `ZTRecordView`: what `ZT_RECORD` names, and a `std::pair`
    };

    Value value = Other;
    bool isSigned = false;
    unsigned short bits = 0; ///< of numbers and enumerations; otherwise 0

    constexpr operator Value() const noexcept { return value; }
};

/// Cost: a look into the record of the type, and its enumeration if it has one. Makes no class
/// complete.
[[nodiscard]] ZT_EXPORT ZTKind ztKind(const ZTMetaType& type);
