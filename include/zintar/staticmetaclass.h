#pragma once

#include <zintar/export.h>
#include <zintar/metaclass.h>

#include <memory>
#include <string_view>
#include <typeindex>
#include <vector>

/// @file
/// Class descriptors over constant tables. `declare.h` makes the tables of a declared class; a
/// generator may lay them out itself. The records own nothing: what they point to lives as long
/// as any descriptor on them, as a rule for the life of the process. The tables are trusted; a
/// count that is larger than its array is a fault of the generator.

namespace zt::detail
{
class ClassTable;
struct InvokableIndex;
struct PropertyIndex;

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

struct ZT_EXPORT ZTStaticMetaClassInfoData {
    ZTStaticMetaClassInfoData() noexcept;
    ZTStaticMetaClassInfoData(std::string_view key, std::string_view value) noexcept;
    ZTStaticMetaClassInfoData(const ZTStaticMetaClassInfoData&) noexcept = default;
    ZTStaticMetaClassInfoData& operator=(const ZTStaticMetaClassInfoData& other) noexcept;
    ZTStaticMetaClassInfoData& operator=(ZTStaticMetaClassInfoData&& other) noexcept;

    std::string_view key;
    std::string_view value;
};

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
};

struct ZT_EXPORT ZTStaticMetaPropertyData {
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

struct ZT_EXPORT ZTStaticMetaInvokableData {
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
};

/// The table of a class. Its counts are those of the class's own members.
struct ZT_EXPORT ZTStaticMetaClassData {
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
    /// Both give the position in the class's own list, or a negative number.
    IndexByFunction indexOfInvokableByFunction = nullptr;
    IndexBySignature indexOfInvokableBySignature = nullptr;
    void* userData = nullptr;
};
// clang-format on

/// A new descriptor on a table, which stays the caller's.
[[nodiscard]] ZT_EXPORT std::unique_ptr<ZTMetaClass>
createStaticMetaClass(const ZTStaticMetaClassData* data);
} // namespace zt::detail

struct ZT_EXPORT ZTStaticMetaClassInfo : ZTMetaClassInfo {
public:
    explicit ZTStaticMetaClassInfo(const zt::detail::ZTStaticMetaClassInfoData* record) noexcept;
    [[nodiscard]] std::string_view key() const override;
    [[nodiscard]] std::string_view value() const override;

private:
    const zt::detail::ZTStaticMetaClassInfoData* data;
};

struct ZT_EXPORT ZTStaticMetaEnum : ZTMetaEnum {
public:
    explicit ZTStaticMetaEnum(const zt::detail::ZTStaticMetaEnumData* record) noexcept;
    [[nodiscard]] std::string_view name() const override;
    [[nodiscard]] unsigned int count() const override;
    [[nodiscard]] std::string_view enumerator(unsigned int index) const override;
    [[nodiscard]] int value(unsigned int index) const override;

private:
    const zt::detail::ZTStaticMetaEnumData* data;
};

struct ZT_EXPORT ZTStaticMetaProperty : ZTMetaProperty {
public:
    explicit ZTStaticMetaProperty(const zt::detail::ZTStaticMetaPropertyData* record) noexcept;
    [[nodiscard]] std::string_view name() const override;
    [[nodiscard]] const ZTMetaType& metaType() const override;
    [[nodiscard]] int changeEventIndex() const override;
    [[nodiscard]] const ZTMetaInvokable* changeEvent() const override;
    [[nodiscard]] bool canGet() const override;
    [[nodiscard]] bool canSet() const override;
    [[nodiscard]] unsigned int propInfoCount() const override;
    [[nodiscard]] std::string_view propInfoKey(unsigned int index) const override;
    [[nodiscard]] std::string_view propInfoValue(unsigned int index) const override;
    [[nodiscard]] ZTVariant get(const ZTVariant& object) const override;
    ZTVariant set(const ZTVariant& object, const ZTVariant& value) const override;
    using ZTMetaProperty::get;
    using ZTMetaProperty::set;

    [[nodiscard]] zt::detail::ZTStaticMetaPropertyData::Getter getter() const noexcept;
    [[nodiscard]] zt::detail::ZTStaticMetaPropertyData::Setter setter() const noexcept;

private:
    const zt::detail::ZTStaticMetaPropertyData* data;
};

struct ZT_EXPORT ZTStaticMetaInvokable : ZTMetaInvokable {
public:
    explicit ZTStaticMetaInvokable(const zt::detail::ZTStaticMetaInvokableData* record) noexcept;
    [[nodiscard]] std::string_view name() const override;
    [[nodiscard]] bool isConst() const override;
    [[nodiscard]] bool isEvent() const override;
    [[nodiscard]] const ZTMetaType& returnMetaType() const override;
    [[nodiscard]] unsigned int parameterCount() const override;
    [[nodiscard]] ZTAccessSpecifier accessSpecifier() const override;
    [[nodiscard]] const ZTMetaType& parameterMetaType(unsigned int index) const override;
    [[nodiscard]] int index() const override;
    ZTVariant invoke(const ZTVariant& object, const ZTArgumentArray& arguments) const override;
    using ZTMetaInvokable::invoke;

private:
    const zt::detail::ZTStaticMetaInvokableData* data;
};

/// A class over a table.
///
/// A copy reads the same table but has member descriptors of its own, so it is not the same class
/// to `isDerivedFrom`, and pointers into the one are not pointers into the other. User data lives
/// in the table and is shared. A moved-from descriptor is only to be destroyed or assigned to.
/// Assign to a class only while it has no objects: they remember its members.
struct ZT_EXPORT ZTStaticMetaClass : ZTMetaClass {
public:
    explicit ZTStaticMetaClass(const zt::detail::ZTStaticMetaClassData* table);
    ZTStaticMetaClass(const ZTStaticMetaClass& other);
    ZTStaticMetaClass(ZTStaticMetaClass&& other) noexcept;
    ZTStaticMetaClass& operator=(const ZTStaticMetaClass& other);
    ZTStaticMetaClass& operator=(ZTStaticMetaClass&& other) noexcept;
    ~ZTStaticMetaClass() override;

    [[nodiscard]] const ZTMetaClass* superClass() const override;
    [[nodiscard]] std::string_view typeName() const override;
    [[nodiscard]] const ZTMetaType& metaType() const override;
    [[nodiscard]] unsigned int classInfoOffset() const override;
    [[nodiscard]] unsigned int classInfoCount() const override;
    [[nodiscard]] unsigned int enumOffset() const override;
    [[nodiscard]] unsigned int enumCount() const override;
    [[nodiscard]] unsigned int propertyOffset() const override;
    [[nodiscard]] unsigned int propertyCount() const override;
    [[nodiscard]] unsigned int invokableOffset() const override;
    [[nodiscard]] unsigned int invokableCount() const override;
    [[nodiscard]] const ZTMetaClassInfo* classInfo(std::string_view key) const override;
    [[nodiscard]] const ZTMetaClassInfo* classInfo(unsigned int index) const override;
    [[nodiscard]] const ZTMetaEnum* metaEnum(unsigned int index) const override;
    [[nodiscard]] const ZTMetaProperty* property(unsigned int index) const override;
    [[nodiscard]] const ZTMetaProperty* property(std::string_view name) const override;
    [[nodiscard]] const ZTMetaInvokable* invokable(unsigned int index) const override;
    using ZTMetaClass::indexOfInvokable;
    using ZTMetaClass::invokable;
    [[nodiscard]] int indexOfInvokable(void* function) const override;
    [[nodiscard]] void* userData() const override;
    void setUserData(void* word) override;

    /// The table, as it was given.
    [[nodiscard]] const zt::detail::ZTStaticMetaClassData* table() const noexcept { return data; }

protected:
    [[nodiscard]] int indexOfInvokable(std::string_view name, bool isConst,
                                       const std::type_index& signature) const override;

private:
    friend class zt::detail::ClassTable;

    [[nodiscard]] const ZTMetaProperty* propertyInTable(std::string_view name) const;
    [[nodiscard]] int indexInTable(std::string_view name, bool isConst,
                                   const std::type_index& signature) const;
    [[nodiscard]] int indexInSuperClass(std::string_view name, bool isConst,
                                        const std::type_index& signature) const;

    const zt::detail::ZTStaticMetaClassData* data;
    // Over a table that the library has to itself; otherwise null, since a host may change the
    // names in a table of its own.
    const zt::detail::PropertyIndex* propertyIndex = nullptr;
    const zt::detail::InvokableIndex* invokableIndex = nullptr;
    std::vector<ZTStaticMetaClassInfo> classInfos;
    std::vector<ZTStaticMetaEnum> enums;
    std::vector<ZTStaticMetaProperty> properties;
    std::vector<ZTStaticMetaInvokable> invokables;
};
