#pragma once

#include <zintar/detail/declare/names.h>
#include <zintar/detail/signature.h>
#include <zintar/detail/staticrecords.h>
#include <zintar/export.h>

#include <cstddef>
#include <string_view>
#include <typeindex>

/// @file
/// What is listed: one constant record for each member of a class.

namespace zt::detail
{
enum class MemberKind : unsigned char { Info, Enumeration, Property, Method, Event };

/// What a text behind a member says.
enum class TextKind : unsigned char { Info, ParameterName, EnumeratorName };

/// A key and a value, as constant data; or a name alone, which is the key.
struct InfoText {
    std::string_view key;
    std::string_view value;
    TextKind kind = TextKind::Info;
    int part = ZTPartInfo::Whole; ///< the position of the parameter or enumerator that it is of
};

/// The default argument of a parameter: what was written, and the function that makes a variant of
/// the parameter's type of it.
struct ListedDefault {
    ZTVariant (*make)(const ListedDefault& listed) = nullptr;
    long long integer = 0; ///< also of an enumerator
    double number = 0;
    std::string_view text;
};

/// The type of an enumeration, and how its values convert. Made once for each.
struct EnumerationType {
    TypeGetter type;
    bool isFlags;
    ConverterFunction toText;
    ConverterFunction fromText;
    ConverterFunction toInt;
    ConverterFunction fromInt;
};

/// What methods and events of one signature have in common.
struct Signature {
    TypeGetter result;
    const TypeGetter* parameterTypes;
    std::type_index (*key)();
    unsigned int parameterCount;
};

// Without initialisers, so that an assignment is enough to put one in the place of another.

struct ListedEnumeration {
    const std::string_view* enumerators;
    const int* values;
    const EnumerationType* type;
    unsigned int textCount;
};

struct ListedProperty {
    TypeGetter type;
    ZTStaticMetaPropertyData::Getter getter;
    ZTStaticMetaPropertyData::Setter setter; ///< null for one that is only read
    const void* changeEventKey;              ///< the variable that holds the pointer to it, or null
};

struct ListedInvokable {
    const Signature* signature;
    ZTStaticMetaInvokableData::Function function;
    const void* key; ///< the variable that holds the pointer to the member
    unsigned int defaultCount;
    unsigned int firstDefault; ///< where those begin in the list's default arguments
};

/// One member as the class declares it.
struct MemberRecord {
    constexpr MemberRecord() : info() {}

    std::string_view name;     ///< the key of an annotation
    union {                    // by the kind
        std::string_view info; ///< the value of an annotation
        ListedEnumeration enumeration;
        ListedProperty property;
        ListedInvokable invokable;
    };
    MemberKind kind = MemberKind::Info;
    bool isConst = false; ///< of a method or an event
    ZTAccessSpecifier access = ZTAccessSpecifier::Public;
    unsigned int count = 0;     ///< of enumerators, or of the texts of another member
    unsigned int firstInfo = 0; ///< where its texts begin among those of the list

    [[nodiscard]] constexpr bool isInvokable() const
    {
        return kind == MemberKind::Method || kind == MemberKind::Event;
    }
};

/// Makes an enumeration that stands by itself the one of its type, where it has none yet.
/// @param texts  of the record; both stay good
/// @return true, for a static of the host
ZT_EXPORT bool publishEnumeration(const MemberRecord& record, const InfoText* texts);
} // namespace zt::detail
