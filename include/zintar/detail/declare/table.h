#pragma once

#include <zintar/detail/declare/record.h>
#include <zintar/detail/values/objectpointers.h>
#include <zintar/staticmetaclass.h>

#include <atomic>
#include <cstddef>
#include <memory>
#include <string_view>
#include <typeindex>

/// @file
/// The table of a declared class, made from the list of its members. The list is constant data;
/// everything that works on it is compiled once, in the library.

namespace zt::detail
{
/// The position among the invokables of a list of the member function to which the variable holds
/// the pointer, of the last one if there are several; or -1.
[[nodiscard]] ZT_EXPORT int positionInList(const MemberRecord* members, std::size_t count,
                                           const void* variable);

/// What a class table is made from, as constant data.
struct ClassDeclaration {
    const ObjectPointer* pointer = nullptr; ///< the type of pointers to const objects of the class
    const MemberRecord* members = nullptr;
    std::size_t memberCount = 0;
    const InfoText* infos = nullptr;
    const ListedDefault* defaults = nullptr;
    /// Gives the super class, complete; null for the root.
    ClassFunction superClass = nullptr;
    /// What the table's callbacks are: they ask the class, since a host may have a copy of its
    /// table in a descriptor of its own.
    int (*positionByFunction)(const ZTMetaClass* self, void* function) = nullptr;
    int (*positionBySignature)(const ZTMetaClass* self, std::string_view name, bool isConst,
                               const std::type_index& signature) = nullptr;
    const ConstructorList* constructors = nullptr;
};

/// The table of a declared class and its descriptor, complete when it is made.
///
/// Classes name each other in the types of their members, in any order and in circles. That makes
/// no circle here: a pointer type asks for its class when somebody wants to know it. A table needs
/// its super classes alone, and threads that make tables never wait for each other.
///
/// The table of a class is never destroyed: a static object of the host may use its class to its
/// last breath.
class ZT_EXPORT ClassTable : private ZTStaticMetaClassData
{
public:
    explicit ClassTable(const ClassDeclaration& declaration);
    ClassTable(const ClassTable&) = delete;
    ClassTable& operator=(const ClassTable&) = delete;
    ~ClassTable();

    [[nodiscard]] const ZTMetaClass& metaClass() const { return *m_descriptor; }

    /// Makes the enumerations those of their types, where no class has listed them yet, and their
    /// values convert. To be called on the one table of a class.
    void publishEnumerations() const;
    static bool publishEnumeration(const MemberRecord& record, const InfoText* texts);

    // Among the own invokables, of the last one that fits; -1 when there is none.
    [[nodiscard]] int positionOf(const void* function) const;
    [[nodiscard]] int positionOf(std::string_view name, bool isConst,
                                 const std::type_index& signature) const;

private:
    struct Records;
    struct RareRecords;
    struct LoneEnumeration;

    void joinSuperClass();
    void linkChangeEvents();
    void indexProperties();
    void indexInvokables();

    const ClassDeclaration& m_declaration;
    std::unique_ptr<Records> m_records;
    std::unique_ptr<ZTStaticMetaClass> m_descriptor;
    std::unique_ptr<PropertyIndex> m_propertyIndex;
    std::unique_ptr<InvokableIndex> m_invokableIndex;
};

/// The one table of a class, made when it is asked for.
struct DeclaredClass {
    const ClassDeclaration& declaration;
    std::atomic<ClassTable*> table = nullptr;
    /// Of the table, once it is there.
    std::atomic<const ZTMetaClass*> descriptor = nullptr;
};

/// Two threads may both make a table, and take the one that is ready first.
[[nodiscard]] ZT_EXPORT ClassTable& tableOf(DeclaredClass& declared);

[[nodiscard]] inline const ZTMetaClass& classIn(DeclaredClass& declared)
{
    const ZTMetaClass* known = declared.descriptor.load(std::memory_order_acquire);
    return known ? *known : tableOf(declared).metaClass();
}
} // namespace zt::detail
