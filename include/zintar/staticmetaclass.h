#pragma once

#include <zintar/detail/staticrecords.h>
#include <zintar/export.h>
#include <zintar/metaclass.h>

#include <memory>
#include <string_view>
#include <typeindex>
#include <vector>

/// @file
/// Class descriptors over constant tables.
///
/// Whoever writes classes by hand wants `declare.h`, which makes the tables; whoever makes a class
/// at run time wants `metaclassbuilder.h`. This is for a generator that lays out the tables itself,
/// and for code that is given a class and wants to see its table.
///
///     // What is constant. Lists are lists of pointers; records may stand anywhere.
///     ZTStaticMetaPropertyData level("level", &getLevel, &setLevel, 0, nullptr);
///     const ZTStaticMetaPropertyData* const properties[] = {&level};
///     ZTStaticMetaClassData table(0, nullptr, 0, nullptr, 1, properties, 0, nullptr, nullptr,
///                                 nullptr);
///     const ZTStaticMetaClass lamp(&table);
///
///     // What is known at load, in any order: the descriptor reads the table at each call.
///     table.superClass = &ZTBase::typeMetaClass();
///     table.propertyOffset = table.superClass->propertyCount(); // and the three others
///     table.typeName = ztTypeName<Lamp>();
///     table.metaType = &ztMetaType<Lamp*>();
///     level.metaType = &ztMetaType<double>();
///
/// Counts and lists are final before the descriptor is made, names before it is asked for one. The
/// tables are trusted: a count that is larger than its array is a fault of the generator.

namespace zt::detail
{
class ClassTable;
struct InvokableIndex;
struct PropertyIndex;
} // namespace zt::detail

// The descriptors of members. Each is a pointer to its record, which stays the generator's, and
// answers with what stands there; `metaclass.h` tells what each operation means. Copies are the
// same member to nobody who compares addresses.

/// An annotation of a class, over its record.
struct ZT_EXPORT ZTStaticMetaClassInfo : ZTMetaClassInfo {
public:
    explicit ZTStaticMetaClassInfo(const zt::detail::ZTStaticMetaClassInfoData* record) noexcept;
    [[nodiscard]] std::string_view key() const override;
    [[nodiscard]] std::string_view value() const override;

private:
    const zt::detail::ZTStaticMetaClassInfoData* data;
};

/// An enumeration, over its record.
struct ZT_EXPORT ZTStaticMetaEnum : ZTMetaEnum {
public:
    explicit ZTStaticMetaEnum(const zt::detail::ZTStaticMetaEnumData* record) noexcept;
    [[nodiscard]] std::string_view name() const override;
    [[nodiscard]] unsigned int count() const override;
    [[nodiscard]] std::string_view enumerator(unsigned int index) const override;
    [[nodiscard]] int value(unsigned int index) const override;
    using ZTMetaEnum::enumerator;
    using ZTMetaEnum::value;

    /// The record, as it was given.
    [[nodiscard]] const zt::detail::ZTStaticMetaEnumData* record() const noexcept { return data; }

private:
    const zt::detail::ZTStaticMetaEnumData* data;
};

/// A property, over its record. `get` and `set` hand on what they are given and give back what the
/// record's function returns; an invalid variant where there is none.
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
    using ZTMetaProperty::propInfoKey;
    using ZTMetaProperty::propInfoValue;
    using ZTMetaProperty::set;

    /// The record's functions, to be called without the descriptor; null where there is none.
    [[nodiscard]] zt::detail::ZTStaticMetaPropertyData::Getter getter() const noexcept;
    [[nodiscard]] zt::detail::ZTStaticMetaPropertyData::Setter setter() const noexcept;

private:
    const zt::detail::ZTStaticMetaPropertyData* data;
};

/// A method or an event, over its record. `invoke` hands on the object and the arguments as they
/// are and gives back what the record's function returns; an invalid variant where there is none.
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
    using ZTMetaInvokable::parameterMetaType;

    /// The record, as it was given.
    [[nodiscard]] const zt::detail::ZTStaticMetaInvokableData* record() const noexcept
    {
        return data;
    }

private:
    const zt::detail::ZTStaticMetaInvokableData* data;
};

/// A class over a table.
///
/// The descriptors of its own members are made with it and live as long as it does, or until it is
/// assigned to. A lookup by name takes the first own member, and the super class's where there is
/// none. In a table of a generator it compares name by name; a declared class has an index.
///
/// A copy reads the same table but has member descriptors of its own, so it is not the same class
/// to `isDerivedFrom`, and pointers into the one are not pointers into the other. User data lives
/// in the table and is shared. A moved-from descriptor is only to be destroyed or assigned to.
/// Assign to a class only while it has no objects: they remember its members.
///
/// Threads: reads may run in parallel; `setUserData`, and changes of the table, may not run beside
/// them.
struct ZT_EXPORT ZTStaticMetaClass : ZTMetaClass {
public:
    /// @param table  not null; read now and at each call
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
    using ZTMetaClass::classInfo;
    using ZTMetaClass::indexOfInvokable;
    using ZTMetaClass::invokable;
    using ZTMetaClass::metaEnum;
    using ZTMetaClass::property;
    /// Asks the table's `indexOfInvokableByFunction`, and then the super class.
    [[nodiscard]] int indexOfInvokable(void* function) const override;
    [[nodiscard]] void* userData() const override;
    /// Writes into the table, where every descriptor on it finds the word.
    void setUserData(void* word) override;
    using ZTMetaClass::setUserData;

    /// The table, as it was given.
    [[nodiscard]] const zt::detail::ZTStaticMetaClassData* table() const noexcept { return data; }

protected:
    /// Asks the table's `indexOfInvokableBySignature`, and then the super class.
    [[nodiscard]] int indexOfInvokable(std::string_view name, bool isConst,
                                       const std::type_index& signature) const override;

private:
    friend class zt::detail::ClassTable;

    [[nodiscard]] const ZTMetaProperty* propertyInTable(std::string_view name) const;

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

namespace zt::detail
{
/// A new descriptor on a table, which stays the caller's.
[[nodiscard]] ZT_EXPORT std::unique_ptr<ZTMetaClass>
createStaticMetaClass(const ZTStaticMetaClassData* data);
} // namespace zt::detail
