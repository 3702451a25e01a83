#pragma once

#include <zintar/detail/declare/names.h>
#include <zintar/detail/signature.h>
#include <zintar/detail/staticrecords.h>

#include <cstddef>
#include <string_view>
#include <typeindex>

/// @file
/// What is listed: one constant record for each member of a class.

namespace zt::detail
{
enum class MemberKind : unsigned char { Info, Enumeration, Property, Method, Event };

/// A key and a value, as constant data.
struct InfoText {
    std::string_view key;
    std::string_view value;
};

/// One member as the class declares it. What does not apply to its kind is empty.
struct MemberRecord {
    MemberKind kind = MemberKind::Info;
    std::string_view name;     ///< the key of an annotation
    std::string_view value;    ///< of an annotation
    MemberIdentity identity;   ///< of properties and invokables
    const void* key = nullptr; ///< the variable that holds the pointer to the member

    // Enumerations.
    const std::string_view* enumerators = nullptr;
    const int* values = nullptr;
    unsigned int count = 0; ///< of enumerators, annotations of a property, or parameters

    // Properties.
    ZTStaticMetaPropertyData::Getter getter = nullptr;
    ZTStaticMetaPropertyData::Setter setter = nullptr;
    MemberIdentity changeEvent;
    const void* changeEventKey = nullptr;
    std::size_t firstInfo = 0; ///< where its annotations begin in the list's texts

    // Properties and invokables.
    TypeGetter type = nullptr; ///< of the property, or of the result
    const TypeGetter* parameterTypes = nullptr;
    std::type_index (*signature)() = nullptr;
    ZTStaticMetaInvokableData::Function function = nullptr;
    ZTAccessSpecifier access = ZTAccessSpecifier::Public;
    bool isConst = false;
};
} // namespace zt::detail
