#pragma once

#include <zintar/detail/declare/record.h>
#include <zintar/staticmetaclass.h>

#include <cstddef>
#include <memory>
#include <string_view>
#include <typeindex>
#include <vector>

/// @file
/// The table of a declared class, made from the list of its members. The list is constant data;
/// everything that works on it is compiled once, in the library.

namespace zt::detail
{
/// The position among the invokables of a list of the member function to which the variable holds
/// the pointer, of the last one if there are several; or -1.
[[nodiscard]] ZT_EXPORT int positionInList(const MemberRecord* members, std::size_t count,
                                           const void* variable);

/// What a class table is made from.
struct ClassDeclaration {
    std::string_view typeName;
    const MemberRecord* members = nullptr;
    std::size_t memberCount = 0;
    const InfoText* infos = nullptr;
    /// Gives the super class, complete; null for the root.
    const ZTMetaClass& (*superClass)() = nullptr;
    /// Registers the types of pointers to the class and gives the one without `const`.
    const ZTMetaType& (*registerPointers)() = nullptr;
    /// What the table's callbacks are: they ask the class, since a host may have a copy of its
    /// table in a descriptor of its own.
    int (*positionByFunction)(const ZTMetaClass* self, void* function) = nullptr;
    int (*positionBySignature)(const ZTMetaClass* self, std::string_view name, bool isConst,
                               const std::type_index& signature) = nullptr;
};

/// The table of a declared class and its descriptor, complete when it is made.
///
/// Classes name each other in the types of their members, in any order and in circles. That makes
/// no circle here: a pointer type asks for its class when somebody wants to know it. A table needs
/// its super classes alone, so threads that make tables never wait for each other in a circle.
///
/// Never destroyed: a static object of the host may use its class to its last breath.
class ZT_EXPORT ClassTable : private ZTStaticMetaClassData
{
public:
    explicit ClassTable(const ClassDeclaration& declaration);
    ClassTable(const ClassTable&) = delete;
    ClassTable& operator=(const ClassTable&) = delete;
    ~ClassTable() = delete;

    [[nodiscard]] const ZTMetaClass& metaClass() const { return *m_descriptor; }

    /// Among the own invokables, of the last one that fits; -1 when there is none.
    [[nodiscard]] int positionOf(const void* function) const;
    [[nodiscard]] int positionOf(std::string_view name, bool isConst,
                                 const std::type_index& signature) const;

private:
    void addMembers();
    void joinSuperClass();
    void fillTypes();
    void indexProperties();
    void indexInvokables();
    void linkChangeEvents();

    ClassDeclaration m_declaration;

    std::vector<ZTStaticMetaClassInfoData> m_classInfos;
    std::vector<ZTStaticMetaEnumData> m_enums;
    std::vector<ZTStaticMetaPropertyData> m_properties;
    std::vector<ZTStaticMetaInvokableData> m_invokables;
    std::vector<ZTPropertyInfo> m_propertyInfos;
    std::vector<const ZTMetaType*> m_parameterTypes;

    // The list's properties and invokables, in its order.
    std::vector<const MemberRecord*> m_propertyRecords;
    std::vector<const MemberRecord*> m_invokableRecords;

    // What the class data points to.
    std::vector<const ZTStaticMetaClassInfoData*> m_classInfoList;
    std::vector<const ZTStaticMetaEnumData*> m_enumList;
    std::vector<const ZTStaticMetaPropertyData*> m_propertyList;
    std::vector<const ZTStaticMetaInvokableData*> m_invokableList;

    std::unique_ptr<ZTStaticMetaClass> m_descriptor;
    std::unique_ptr<PropertyIndex> m_propertyIndex;
    std::unique_ptr<InvokableIndex> m_invokableIndex;
};
} // namespace zt::detail
