#pragma once

#include <zintar/export.h>
#include <zintar/metaclass.h>

#include <string_view>
#include <typeindex>

/// @file
/// The records of a class table: what a generator lays out, and what `declare.h` makes of a list of
/// members. `staticmetaclass.h` tells how a table becomes a class.
///
/// The records own nothing: what they point to lives as long as any descriptor on them, as a rule
/// for the life of the process.

namespace zt::detail
{
struct ConstructorList;

// clang-format off
/// One key/value annotation of a property.
struct ZT_EXPORT ZTPropertyInfo {
    ZTPropertyInfo() noexcept;
    constexpr ZTPropertyInfo(std::string_view k, std::string_view v) noexcept : key(k), value(v) {}
    ZTPropertyInfo(const ZTPropertyInfo&) noexcept = default;
    ZTPropertyInfo& operator=(const ZTPropertyInfo& other) noexcept;
    ZTPropertyInfo& operator=(ZTPropertyInfo&& other) noexcept;

    std::string_view key;
    std::string_view value;
};

/// One key/value annotation of a method, an event or an enumeration, or of one of its parts: of a
/// parameter or an enumerator.
struct ZTPartInfo {
    static constexpr int Whole = -1;

    std::string_view key;
    std::string_view value;
    int part = Whole; ///< the position of the parameter or the enumerator
};

/// One key/value annotation of a class.
struct ZT_EXPORT ZTStaticMetaClassInfoData {
    ZTStaticMetaClassInfoData() noexcept;
    ZTStaticMetaClassInfoData(std::string_view key, std::string_view value) noexcept;
    ZTStaticMetaClassInfoData(const ZTStaticMetaClassInfoData&) noexcept = default;
    ZTStaticMetaClassInfoData& operator=(const ZTStaticMetaClassInfoData& other) noexcept;
    ZTStaticMetaClassInfoData& operator=(ZTStaticMetaClassInfoData&& other) noexcept;

    std::string_view key;
    std::string_view value;
};

/// An enumeration. Without a list of names or values its enumerators have empty names, or are -1.
struct ZT_EXPORT ZTStaticMetaEnumData {
    ZTStaticMetaEnumData() noexcept;
    ZTStaticMetaEnumData(std::string_view name, unsigned int count,
                         const std::string_view* enumerators, const int* values) noexcept;
    ZTStaticMetaEnumData(const ZTStaticMetaEnumData&) noexcept = default;
    ZTStaticMetaEnumData& operator=(const ZTStaticMetaEnumData& other) noexcept;
    ZTStaticMetaEnumData& operator=(ZTStaticMetaEnumData&& other) noexcept;

    std::string_view name;
    unsigned int count = 0;
    const std::string_view* enumerators = nullptr;
    const int* values = nullptr;
    const ZTMetaType* metaType = nullptr; ///< null stands for the invalid type
    bool isFlags = false;
    unsigned int infoCount = 0;
    const ZTPartInfo* infos = nullptr;
};

/// A property. The constructor takes what is constant; the rest is set when its types and the event
/// are known.
struct ZT_EXPORT ZTStaticMetaPropertyData {
    /// Both get a variant that holds a pointer to the object. Nothing was checked before.
    using Getter = ZTVariant (*)(const ZTVariant& object);
    using Setter = ZTVariant (*)(const ZTVariant& object, const ZTVariant& value);

    ZTStaticMetaPropertyData() noexcept;
    ZTStaticMetaPropertyData(std::string_view name, Getter getter, Setter setter,
                             unsigned int propInfoCount, const ZTPropertyInfo* propInfos) noexcept;
    ZTStaticMetaPropertyData(const ZTStaticMetaPropertyData&) noexcept = default;
    ZTStaticMetaPropertyData& operator=(const ZTStaticMetaPropertyData& other) noexcept;
    ZTStaticMetaPropertyData& operator=(ZTStaticMetaPropertyData&& other) noexcept;

    std::string_view name;
    Getter getter = nullptr;
    Setter setter = nullptr;
    int changeEventIndex = -1; ///< class-wide
    const ZTMetaInvokable* changeEvent = nullptr;
    unsigned int propInfoCount = 0;
    const ZTPropertyInfo* propInfos = nullptr;
    const ZTMetaType* metaType = nullptr; ///< null stands for the invalid type
};

/// What few methods and events have.
struct ZTStaticMetaInvokableDetails {
    const std::string_view* parameterNames = nullptr; ///< as many as parameters, or null
    unsigned int defaultCount = 0;
    const ZTVariant* defaultArguments = nullptr; ///< of the last parameters
    unsigned int infoCount = 0;
    const ZTPartInfo* infos = nullptr;
};

/// A method or an event.
struct ZT_EXPORT ZTStaticMetaInvokableData {
    /// Gets a variant that holds a pointer to the object, and the arguments as the caller gave them.
    /// @return the result, or an invalid variant
    using Function = ZTVariant (*)(const ZTVariant& object, const ZTArgumentArray& arguments);

    ZTStaticMetaInvokableData() noexcept;
    ZTStaticMetaInvokableData(std::string_view name, bool isConst, unsigned int parameterCount,
                              Function function, ZTAccessSpecifier accessSpecifier) noexcept;
    ZTStaticMetaInvokableData(const ZTStaticMetaInvokableData&) noexcept = default;
    ZTStaticMetaInvokableData& operator=(const ZTStaticMetaInvokableData& other) noexcept;
    ZTStaticMetaInvokableData& operator=(ZTStaticMetaInvokableData&& other) noexcept;

    std::string_view name;
    bool isConst = false;
    const ZTMetaType* returnMetaType = nullptr; ///< null stands for the invalid type
    unsigned int parameterCount = 0;
    const ZTMetaType* const* parameterMetaTypes = nullptr; ///< a null entry: the invalid type
    Function function = nullptr;
    ZTAccessSpecifier accessSpecifier = ZTAccessSpecifier::Private;
    bool isEvent = false;
    int index = -1; ///< class-wide
    const ZTStaticMetaInvokableDetails* details = nullptr;
};

/// The table of a class. Its counts are those of the class's own members, its offsets the counts of
/// the super class's descriptor.
struct ZT_EXPORT ZTStaticMetaClassData {
    /// Both give the position in the class's own list, or a negative number. Super classes are none
    /// of their business, and the descriptor adds the offset.
    /// @param self      the descriptor that asks
    /// @param function  the address of a variable that holds a pointer to member function
    /// @param signature the identity of `void (*)(parameters as they are written...)`
    using IndexByFunction = int (*)(const ZTMetaClass* self, void* function);
    using IndexBySignature = int (*)(const ZTMetaClass* self, std::string_view name, bool isConst,
                                     const std::type_index& signature);

    ZTStaticMetaClassData() noexcept;
    /// A count of 0 makes the list null. What is not named here is left to the set-up, which may
    /// follow after the descriptor was made: it reads the table at each call.
    ZTStaticMetaClassData(unsigned int classInfoCount, const ZTStaticMetaClassInfoData* const* classInfos,
                          unsigned int enumCount, const ZTStaticMetaEnumData* const* enums,
                          unsigned int propertyCount, const ZTStaticMetaPropertyData* const* properties,
                          unsigned int invokableCount, const ZTStaticMetaInvokableData* const* invokables,
                          IndexByFunction indexOfInvokableByFunction,
                          IndexBySignature indexOfInvokableBySignature) noexcept;
    ZTStaticMetaClassData(const ZTStaticMetaClassData&) noexcept = default;
    ZTStaticMetaClassData& operator=(const ZTStaticMetaClassData& other) noexcept;
    ZTStaticMetaClassData& operator=(ZTStaticMetaClassData&& other) noexcept;

    const ZTMetaClass* superClass = nullptr;
    std::string_view typeName;
    const ZTMetaType* metaType = nullptr; ///< null stands for the invalid type
    bool reserved = false;
    unsigned int classInfoCount = 0;
    unsigned int classInfoOffset = 0;
    const ZTStaticMetaClassInfoData* const* classInfos = nullptr;
    unsigned int enumCount = 0;
    unsigned int enumOffset = 0;
    const ZTStaticMetaEnumData* const* enums = nullptr;
    unsigned int propertyCount = 0;
    unsigned int propertyOffset = 0;
    const ZTStaticMetaPropertyData* const* properties = nullptr;
    unsigned int invokableCount = 0;
    unsigned int invokableOffset = 0;
    const ZTStaticMetaInvokableData* const* invokables = nullptr;
    IndexByFunction indexOfInvokableByFunction = nullptr;
    IndexBySignature indexOfInvokableBySignature = nullptr;
    void* userData = nullptr; ///< of the host; shared by all descriptors on the table
    /// How `ztCreate` makes objects of the class; null where it cannot.
    const ConstructorList* constructors = nullptr;
};
// clang-format on
} // namespace zt::detail
