#include <zintar/detail/declare/table.h>

#include "../../types/metatypeprivate.h"
#include "../classlist.h"
#include "../membersbyname.h"
#include "../ownorinherited.h"

#include <algorithm>
#include <cstring>
#include <forward_list>
#include <vector>

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

/// As many records as are counted first, and their addresses.
template <class Record>
class RecordList
{
public:
    explicit RecordList(unsigned int count)
        : m_records(count ? std::make_unique<Record[]>(count) : nullptr),
          m_addresses(count ? std::make_unique<const Record*[]>(count) : nullptr)
    {}
    void add(const Record& record)
    {
        m_records[m_count] = record;
        m_addresses[m_count] = &m_records[m_count];
        ++m_count;
    }
    [[nodiscard]] Record& operator[](std::size_t position) { return m_records[position]; }
    [[nodiscard]] unsigned int count() const { return m_count; }
    [[nodiscard]] const Record* const* addresses() const { return m_addresses.get(); }

private:
    std::unique_ptr<Record[]> m_records;
    std::unique_ptr<const Record*[]> m_addresses;
    unsigned int m_count = 0;
};

/// How much a list has of each kind.
struct Counts {
    explicit Counts(const ClassDeclaration& declaration)
    {
        for (std::size_t i = 0; i < declaration.memberCount; ++i) {
            const MemberRecord& member = declaration.members[i];
            infos += member.kind == MemberKind::Info;
            enums += member.kind == MemberKind::Enumeration;
            properties += member.kind == MemberKind::Property;
            if (member.kind == MemberKind::Property)
                propertyInfos += member.count;
            if (member.isInvokable()) {
                ++invokables;
                parameters += member.invokable.signature->parameterCount;
            }
        }
    }

    unsigned int infos = 0;
    unsigned int enums = 0;
    unsigned int properties = 0;
    unsigned int invokables = 0;
    unsigned int propertyInfos = 0;
    unsigned int parameters = 0;
};

/// Calls with each invokable of a list, or each property, and its position among them.
template <class Visit>
void forEachInvokable(const MemberRecord* members, std::size_t count, const Visit& visit)
{
    unsigned int position = 0;
    for (const MemberRecord* member = members; member != members + count; ++member)
        if (member->isInvokable())
            visit(*member, position++);
}
template <class Visit>
void forEachProperty(const ClassDeclaration& declaration, const Visit& visit)
{
    unsigned int position = 0;
    const MemberRecord* end = declaration.members + declaration.memberCount;
    for (const MemberRecord* member = declaration.members; member != end; ++member)
        if (member->kind == MemberKind::Property)
            visit(*member, position++);
}
} // namespace

int positionInList(const MemberRecord* members, std::size_t count, const void* variable)
{
    int found = -1;
    forEachInvokable(members, count, [&](const MemberRecord& member, unsigned int position) {
        if (isSameMember(member.invokable.key, variable))
            found = static_cast<int>(position);
    });
    return found;
}

namespace
{
/// Without its annotations and the names that differ from the enumerators.
ZTStaticMetaEnumData enumerationIn(const MemberRecord& member)
{
    const ListedEnumeration& listed = member.enumeration;
    ZTStaticMetaEnumData enumeration(member.name, member.count, listed.enumerators, listed.values);
    enumeration.metaType = &listed.type->type();
    enumeration.isFlags = listed.type->isFlags;
    return enumeration;
}
} // namespace

/// What few members have, behind their records.
struct ClassTable::RareRecords {
    void describe(ZTStaticMetaEnumData& enumeration, const InfoText* texts, unsigned int count)
    {
        const auto named = [](const InfoText& text) {
            return text.kind == TextKind::EnumeratorName;
        };
        if (std::any_of(texts, texts + count, named)) {
            auto& names = views.emplace_front(enumeration.enumerators,
                                              enumeration.enumerators + enumeration.count);
            for (const InfoText* text = texts; text != texts + count; ++text)
                if (named(*text))
                    names[static_cast<std::size_t>(text->part)] = text->key;
            enumeration.enumerators = names.data();
        }
        const std::vector<ZTPartInfo>& infos = infosIn(texts, count);
        enumeration.infoCount = static_cast<unsigned int>(infos.size());
        enumeration.infos = infos.data();
    }

    const ZTStaticMetaInvokableDetails& detailsOf(const MemberRecord& member,
                                                  const ClassDeclaration& declaration)
    {
        const ListedInvokable& listed = member.invokable;
        const InfoText* texts = declaration.infos + member.firstInfo;
        ZTStaticMetaInvokableDetails& made = details.emplace_front();
        made.parameterNames = namesIn(texts, member.count, listed.signature->parameterCount);
        const std::vector<ZTPartInfo>& infos = infosIn(texts, member.count);
        made.infoCount = static_cast<unsigned int>(infos.size());
        made.infos = infos.data();
        if (listed.defaultCount > 0) {
            auto& values = defaultArguments.emplace_front();
            for (unsigned int i = 0; i < listed.defaultCount; ++i) {
                const ListedDefault& value = declaration.defaults[listed.firstDefault + i];
                values.push_back(value.make(value));
            }
            made.defaultCount = listed.defaultCount;
            made.defaultArguments = values.data();
        }
        return made;
    }

private:
    const std::string_view* namesIn(const InfoText* texts, unsigned int count,
                                    unsigned int parameterCount)
    {
        std::vector<std::string_view>* names = nullptr;
        for (const InfoText* text = texts; text != texts + count; ++text) {
            if (text->kind != TextKind::ParameterName)
                continue;
            if (!names)
                names = &views.emplace_front(parameterCount, emptyView);
            (*names)[static_cast<std::size_t>(text->part)] = text->key;
        }
        return names ? names->data() : nullptr;
    }
    const std::vector<ZTPartInfo>& infosIn(const InfoText* texts, unsigned int count)
    {
        auto& infos = partInfos.emplace_front();
        for (const InfoText* text = texts; text != texts + count; ++text)
            if (text->kind == TextKind::Info)
                infos.push_back({text->key, text->value, text->part});
        return infos;
    }

    // Nothing moves any more once it is made.
    std::forward_list<ZTStaticMetaInvokableDetails> details;
    std::forward_list<std::vector<std::string_view>> views;
    std::forward_list<std::vector<ZTPartInfo>> partInfos;
    std::forward_list<std::vector<ZTVariant>> defaultArguments;
};

/// What the class data points to.
struct ClassTable::Records {
    explicit Records(const ClassDeclaration& declaration)
        : Records(declaration, Counts(declaration))
    {}

    RecordList<ZTStaticMetaClassInfoData> classInfos;
    RecordList<ZTStaticMetaEnumData> enums;
    RecordList<ZTStaticMetaPropertyData> properties;
    RecordList<ZTStaticMetaInvokableData> invokables;
    std::unique_ptr<ZTPropertyInfo[]> propertyInfos;
    std::unique_ptr<const ZTMetaType*[]> parameterTypes;
    std::unique_ptr<RareRecords> rare; ///< null in most classes

private:
    Records(const ClassDeclaration& declaration, const Counts& counts)
        : classInfos(counts.infos),
          enums(counts.enums),
          properties(counts.properties),
          invokables(counts.invokables),
          propertyInfos(counts.propertyInfos
                            ? std::make_unique<ZTPropertyInfo[]>(counts.propertyInfos)
                            : nullptr),
          parameterTypes(counts.parameters
                             ? std::make_unique<const ZTMetaType*[]>(counts.parameters)
                             : nullptr)
    {
        for (std::size_t i = 0; i < declaration.memberCount; ++i)
            add(declaration.members[i], declaration);
    }

    void add(const MemberRecord& member, const ClassDeclaration& declaration)
    {
        switch (member.kind) {
        case MemberKind::Info:
            classInfos.add({member.name, member.info});
            break;
        case MemberKind::Enumeration:
            addEnumeration(member, declaration.infos);
            break;
        case MemberKind::Property:
            addProperty(member, declaration.infos);
            break;
        case MemberKind::Method:
        case MemberKind::Event:
            addInvokable(member, declaration);
            break;
        }
    }

    RareRecords& rareRecords()
    {
        if (!rare)
            rare = std::make_unique<RareRecords>();
        return *rare;
    }

    void addEnumeration(const MemberRecord& member, const InfoText* texts)
    {
        ZTStaticMetaEnumData enumeration = enumerationIn(member);
        if (const unsigned int count = member.enumeration.textCount; count > 0)
            rareRecords().describe(enumeration, texts + member.firstInfo, count);
        enums.add(enumeration);
    }

    void addProperty(const MemberRecord& member, const InfoText* texts)
    {
        ZTPropertyInfo* infos = propertyInfos.get() + m_propertyInfos;
        for (std::size_t i = 0; i < member.count; ++i) {
            const InfoText& text = texts[member.firstInfo + i];
            infos[i] = ZTPropertyInfo(text.key, text.value);
        }
        m_propertyInfos += member.count;
        const ListedProperty& listed = member.property;
        ZTStaticMetaPropertyData property(member.name, listed.getter, listed.setter, member.count,
                                          member.count ? infos : nullptr);
        property.metaType = &listed.type();
        properties.add(property);
    }

    void addInvokable(const MemberRecord& member, const ClassDeclaration& declaration)
    {
        const ListedInvokable& listed = member.invokable;
        const unsigned int count = listed.signature->parameterCount;
        const ZTMetaType** types = parameterTypes.get() + m_parameters;
        for (unsigned int i = 0; i < count; ++i)
            types[i] = &listed.signature->parameterTypes[i]();
        m_parameters += count;
        ZTStaticMetaInvokableData invokable(member.name, member.isConst, count, listed.function,
                                            member.access);
        invokable.returnMetaType = &listed.signature->result();
        invokable.parameterMetaTypes = count ? types : nullptr;
        invokable.isEvent = member.kind == MemberKind::Event;
        if (member.count > 0 || listed.defaultCount > 0)
            invokable.details = &rareRecords().detailsOf(member, declaration);
        invokables.add(invokable);
    }

    std::size_t m_propertyInfos = 0;
    std::size_t m_parameters = 0;
};

ClassTable::ClassTable(const ClassDeclaration& declaration)
    : m_declaration(declaration), m_records(std::make_unique<Records>(declaration))
{
    static_cast<ZTStaticMetaClassData&>(*this) =
        ZTStaticMetaClassData(m_records->classInfos.count(), m_records->classInfos.addresses(),
                              m_records->enums.count(), m_records->enums.addresses(),
                              m_records->properties.count(), m_records->properties.addresses(),
                              m_records->invokables.count(), m_records->invokables.addresses(),
                              m_declaration.positionByFunction, m_declaration.positionBySignature);
    const ZTStaticMetaClassData* table = this;
    constructors = m_declaration.constructors;
    m_descriptor = std::make_unique<ZTStaticMetaClass>(table);
    joinSuperClass();
    typeName = m_declaration.pointer->className;
    metaType = &registerPointer(*m_declaration.pointer->nonConst);
    registerPointer(*m_declaration.pointer);
    linkChangeEvents();
    indexProperties();
    indexInvokables();
}

ClassTable::~ClassTable() = default;

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
    for (unsigned int i = 0; i < invokableCount; ++i)
        m_records->invokables[i].index = static_cast<int>(invokableOffset + i);
}

void ClassTable::linkChangeEvents()
{
    forEachProperty(m_declaration, [&](const MemberRecord& member, unsigned int position) {
        const void* event = member.property.changeEventKey;
        if (!event)
            return;
        // Not through the descriptor: its callbacks ask for this table, which is still being made.
        const int own = positionOf(event);
        const int index = own >= 0     ? static_cast<int>(invokableOffset) + own
                          : superClass ? superClass->indexOfInvokable(const_cast<void*>(event))
                                       : -1;
        ZTStaticMetaPropertyData& property = m_records->properties[position];
        property.changeEventIndex = index;
        property.changeEvent = m_descriptor->invokable(static_cast<unsigned int>(index));
    });
}

/// With what is inherited from other classes that have an index.
void ClassTable::indexProperties()
{
    m_propertyIndex = std::make_unique<PropertyIndex>();
    const ZTMetaClass* next = m_descriptor.get();
    m_descriptor->propertyIndex = m_propertyIndex.get();
    m_propertyIndex->names.reserve(next->propertyCount());
    for (; next; next = next->superClass()) {
        const auto* indexed = dynamic_cast<const ZTStaticMetaClass*>(next);
        if (!indexed || !indexed->propertyIndex)
            break;
        for (const ZTStaticMetaProperty& property : indexed->properties)
            m_propertyIndex->add(property.name(), property);
    }
    m_propertyIndex->beyond = next;
}

void ClassTable::indexInvokables()
{
    if (invokableCount == 0)
        return;
    m_invokableIndex = std::make_unique<InvokableIndex>();
    m_descriptor->invokableIndex = m_invokableIndex.get();
    m_invokableIndex->names.reserve(invokableCount);
    // From the last to the first: of two that fit, the later one is found.
    unsigned int position = invokableCount;
    for (std::size_t i = m_declaration.memberCount; i-- > 0;) {
        const MemberRecord& member = m_declaration.members[i];
        if (member.isInvokable())
            m_invokableIndex->names.add(member.name,
                                        {m_records->invokables[--position].index, member.isConst,
                                         member.invokable.signature->key()});
    }
}

namespace
{
void convertByEnumeration(const ZTMetaType& type, const EnumerationType& listed)
{
    ZTMetaTypeRegistry& registry = ztMetaTypeRegistry();
    const ZTMetaType& text = ::ztMetaType<std::string>();
    const ZTMetaType& number = ::ztMetaType<int>();
    // What the host has said for a pair holds.
    registry.addConverter(type, text, listed.toText);
    registry.addConverter(text, type, listed.fromText);
    registry.addConverter(type, number, listed.toInt);
    registry.addConverter(number, type, listed.fromInt);
}
} // namespace

/// Never destroyed, also when a class has listed the enumeration meanwhile: somebody may have asked
/// before.
struct ClassTable::LoneEnumeration : ZTStaticMetaEnum {
    LoneEnumeration(const MemberRecord& member, const InfoText* texts)
        : ZTStaticMetaEnum(&m_record), m_record(enumerationIn(member))
    {
        if (member.enumeration.textCount > 0)
            m_rare.describe(m_record, texts, member.enumeration.textCount);
    }
    /// Keeps it within reach.
    void keep()
    {
        static constinit std::atomic<const LoneEnumeration*> kept = nullptr;
        m_next = kept.load(std::memory_order_relaxed);
        while (!kept.compare_exchange_weak(m_next, this, std::memory_order_release))
            continue;
    }

private:
    const LoneEnumeration* m_next = nullptr;
    ZTStaticMetaEnumData m_record;
    RareRecords m_rare;
};

void ClassTable::publishEnumerations() const
{
    unsigned int position = enumOffset;
    for (std::size_t i = 0; i < m_declaration.memberCount; ++i) {
        const MemberRecord& member = m_declaration.members[i];
        if (member.kind != MemberKind::Enumeration)
            continue;
        const EnumerationType& listed = *member.enumeration.type;
        const ZTMetaType& type = listed.type();
        auto& known = ZTMetaTypePrivate::of(type).enumeration;
        const ZTMetaEnum* own = m_descriptor->metaEnum(position++);
        const ZTMetaEnum* replaced = known.load(std::memory_order_acquire);
        const auto isLone = [](const ZTMetaEnum* one) {
            return dynamic_cast<const LoneEnumeration*>(one) != nullptr;
        };
        while ((!replaced || isLone(replaced)) &&
               !known.compare_exchange_weak(replaced, own, std::memory_order_acq_rel))
            continue;
        if (!replaced)
            convertByEnumeration(type, listed);
    }
}

bool ClassTable::publishEnumeration(const MemberRecord& record, const InfoText* texts)
{
    const EnumerationType& listed = *record.enumeration.type;
    const ZTMetaType& type = listed.type();
    auto& known = ZTMetaTypePrivate::of(type).enumeration;
    // Each file that includes the declaration comes here.
    if (known.load(std::memory_order_acquire))
        return true;
    auto lone = std::make_unique<LoneEnumeration>(record, texts);
    const ZTMetaEnum* none = nullptr;
    if (known.compare_exchange_strong(none, lone.get(), std::memory_order_acq_rel)) {
        lone.release()->keep();
        convertByEnumeration(type, listed);
    }
    return true;
}

bool publishEnumeration(const MemberRecord& record, const InfoText* texts)
{
    return ClassTable::publishEnumeration(record, texts);
}

int ClassTable::positionOf(const void* function) const
{
    return function ? positionInList(m_declaration.members, m_declaration.memberCount, function)
                    : -1;
}

int ClassTable::positionOf(std::string_view name, bool isConst,
                           const std::type_index& signature) const
{
    const int index = m_invokableIndex ? m_invokableIndex->find(name, isConst, signature) : -1;
    return index < 0 ? -1 : index - static_cast<int>(invokableOffset);
}

ClassTable& tableOf(DeclaredClass& declared)
{
    ClassTable* table = declared.table.load(std::memory_order_acquire);
    if (table)
        return *table;
    auto made = std::make_unique<ClassTable>(declared.declaration);
    ClassListing listing(made->metaClass());
    const bool isFirst =
        declared.table.compare_exchange_strong(table, made.get(), std::memory_order_acq_rel);
    if (isFirst)
        table = made.release();
    table->publishEnumerations();
    declared.descriptor.store(&table->metaClass(), std::memory_order_release);
    if (isFirst) {
        listing.enter();
        listing.tell();
    }
    return *table;
}
} // namespace zt::detail
