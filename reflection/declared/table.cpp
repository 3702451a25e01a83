#include <zintar/detail/declare/table.h>

#include "../membersbyname.h"

#include <cstring>

namespace zt::detail
{
namespace
{
/// Pointers to member functions of any class have one size and are compared as bytes.
using AnyMember = void (ZTMetaClass::*)();

bool isSameMember(const void* a, const void* b)
{
    return std::memcmp(a, b, sizeof(AnyMember)) == 0;
}

template <class Record>
std::vector<const Record*> addressesOf(const std::vector<Record>& records)
{
    std::vector<const Record*> addresses;
    addresses.reserve(records.size());
    for (const Record& record : records)
        addresses.push_back(&record);
    return addresses;
}

template <class List>
unsigned int sizeOf(const List& list)
{
    return static_cast<unsigned int>(list.size());
}
} // namespace

int positionInList(const MemberRecord* members, std::size_t count, const void* variable)
{
    int position = 0;
    int found = -1;
    for (std::size_t i = 0; i < count; ++i) {
        if (members[i].kind != MemberKind::Method && members[i].kind != MemberKind::Event)
            continue;
        if (isSameMember(members[i].key, variable))
            found = position;
        ++position;
    }
    return found;
}

ClassTable::ClassTable(const ClassDeclaration& declaration) : m_declaration(declaration)
{
    addMembers();
    m_classInfoList = addressesOf(m_classInfos);
    m_enumList = addressesOf(m_enums);
    m_propertyList = addressesOf(m_properties);
    m_invokableList = addressesOf(m_invokables);
    static_cast<ZTStaticMetaClassData&>(*this) =
        ZTStaticMetaClassData(sizeOf(m_classInfoList), m_classInfoList.data(), sizeOf(m_enumList),
                              m_enumList.data(), sizeOf(m_propertyList), m_propertyList.data(),
                              sizeOf(m_invokableList), m_invokableList.data(),
                              m_declaration.positionByFunction, m_declaration.positionBySignature);
    const ZTStaticMetaClassData* table = this;
    m_descriptor = std::make_unique<ZTStaticMetaClass>(table);
    joinSuperClass();
    typeName = m_declaration.typeName;
    metaType = &m_declaration.registerPointers();
    fillTypes();
    linkChangeEvents();
    indexProperties();
    indexInvokables();
}

void ClassTable::indexInvokables()
{
    m_invokableIndex = std::make_unique<InvokableIndex>();
    m_descriptor->invokableIndex = m_invokableIndex.get();
    // From the last to the first: of two that fit, the later one is found.
    for (std::size_t i = m_invokableRecords.size(); i-- > 0;) {
        const MemberRecord& member = *m_invokableRecords[i];
        m_invokableIndex->names.add(member.name,
                                    {m_invokables[i].index, member.isConst, member.signature()});
    }
}

/// With what is inherited from other classes that have an index.
void ClassTable::indexProperties()
{
    m_propertyIndex = std::make_unique<PropertyIndex>();
    const ZTMetaClass* next = m_descriptor.get();
    m_descriptor->propertyIndex = m_propertyIndex.get();
    for (; next; next = next->superClass()) {
        const auto* indexed = dynamic_cast<const ZTStaticMetaClass*>(next);
        if (!indexed || !indexed->propertyIndex)
            break;
        for (const ZTStaticMetaProperty& property : indexed->properties)
            m_propertyIndex->add(property.name(), property);
    }
    m_propertyIndex->beyond = next;
}

/// The records, with what is known without any other class or type.
void ClassTable::addMembers()
{
    std::size_t parameters = 0;
    std::size_t infos = 0;
    for (std::size_t i = 0; i < m_declaration.memberCount; ++i) {
        const MemberRecord& member = m_declaration.members[i];
        switch (member.kind) {
        case MemberKind::Info:
            m_classInfos.emplace_back(member.name, member.value);
            break;
        case MemberKind::Enumeration:
            m_enums.emplace_back(member.name, member.count, member.enumerators, member.values);
            break;
        case MemberKind::Property:
            m_propertyRecords.push_back(&member);
            infos += member.count;
            break;
        case MemberKind::Method:
        case MemberKind::Event:
            m_invokableRecords.push_back(&member);
            parameters += member.count;
            break;
        }
    }
    // Reserved, since the records point into these.
    m_propertyInfos.reserve(infos);
    m_parameterTypes.resize(parameters);
    for (const MemberRecord* property : m_propertyRecords) {
        const ZTPropertyInfo* first = m_propertyInfos.data() + m_propertyInfos.size();
        for (std::size_t i = 0; i < property->count; ++i) {
            const InfoText& text = m_declaration.infos[property->firstInfo + i];
            m_propertyInfos.emplace_back(text.key, text.value);
        }
        m_properties.emplace_back(property->name, property->getter, property->setter,
                                  property->count, property->count ? first : nullptr);
    }
    for (const MemberRecord* invokable : m_invokableRecords)
        m_invokables.emplace_back(invokable->name, invokable->isConst, invokable->count,
                                  invokable->function, invokable->access);
}

/// The counts of the super class are final: it is complete.
void ClassTable::joinSuperClass()
{
    if (m_declaration.superClass) {
        superClass = &m_declaration.superClass();
        classInfoOffset = superClass->classInfoCount();
        enumOffset = superClass->enumCount();
        propertyOffset = superClass->propertyCount();
        invokableOffset = superClass->invokableCount();
    }
    for (std::size_t i = 0; i < m_invokables.size(); ++i) {
        m_invokables[i].index = static_cast<int>(invokableOffset + i);
        m_invokables[i].isEvent = m_invokableRecords[i]->kind == MemberKind::Event;
    }
}

void ClassTable::fillTypes()
{
    for (std::size_t i = 0; i < m_properties.size(); ++i)
        m_properties[i].metaType = &m_propertyRecords[i]->type();
    const ZTMetaType** next = m_parameterTypes.data();
    for (std::size_t i = 0; i < m_invokables.size(); ++i) {
        const MemberRecord& listed = *m_invokableRecords[i];
        m_invokables[i].returnMetaType = &listed.type();
        m_invokables[i].parameterMetaTypes = listed.count ? next : nullptr;
        for (unsigned int parameter = 0; parameter < listed.count; ++parameter)
            *next++ = &listed.parameterTypes[parameter]();
    }
}

void ClassTable::linkChangeEvents()
{
    for (std::size_t i = 0; i < m_properties.size(); ++i) {
        if (!m_propertyRecords[i]->changeEvent.isSet())
            continue;
        const void* event = m_propertyRecords[i]->changeEventKey;
        // Not through the descriptor: its callbacks ask for this table, which is still being made.
        int position = positionOf(event);
        int index = position >= 0 ? m_invokables[static_cast<std::size_t>(position)].index
                    : superClass  ? superClass->indexOfInvokable(const_cast<void*>(event))
                                  : -1;
        m_properties[i].changeEventIndex = index;
        m_properties[i].changeEvent = m_descriptor->invokable(static_cast<unsigned int>(index));
    }
}

int ClassTable::positionOf(const void* function) const
{
    return function ? positionInList(m_declaration.members, m_declaration.memberCount, function)
                    : -1;
}

int ClassTable::positionOf(std::string_view name, bool isConst,
                           const std::type_index& signature) const
{
    int index = m_invokableIndex->find(name, isConst, signature);
    return index < 0 ? -1 : index - static_cast<int>(invokableOffset);
}
} // namespace zt::detail
