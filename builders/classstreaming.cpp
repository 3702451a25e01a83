// The stream form of a class. Integers have the least significant byte first; a string is a u64
// length and the bytes; a type is its name as a string. There is no magic number and no length.
//
//   class        string typeName, string super class ("ZTNone" for none),
//                u32 n, n * info, u32 n, n * enum, u32 n, n * invokable, u32 n, n * property
//   info         string key, string value
//   enum         string name, u64 n, n * (string enumerator, i32 value)
//   invokable    string name, type result, u16 flags (1 const, 2 event), i32 access,
//                u32 n, n * type
//   property     string name, type, i32 position of the change event among the class's own
//                invokables (negative for none), u8 flags (1 readable, 2 writable),
//                u32 n, n * (string key, string value)
//
// Only own members are written. The invokables stand before the properties, which refer to them.

#include "../stream/datastreamprivate.h"
#include "classrecord.h"
#include "metaclassbuilderprivate.h"

#include <zintar/base.h>
#include <zintar/classrecord.h>
#include <zintar/datastream.h>
#include <zintar/log.h>
#include <zintar/metaclassbuilder.h>

#include <algorithm>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>

namespace
{
using Flags = ZTClassRecordFlags;
using Classes = std::unordered_map<std::string, const ZTMetaClass*>;

/// Reads one value after the other, as long as they are there.
template <class... Values>
bool readAll(ZTDataStream& stream, Values&... values)
{
    return (... && (stream >> values, stream.good()));
}

/// How the names of types and of the super class are read: what is not found is told in the log, or
/// noted for whoever asks what is missing.
class Names
{
public:
    Names(const Classes& metaClasses, bool areNoted)
        : m_metaClasses(metaClasses), m_areNoted(areNoted)
    {}

    bool readType(ZTDataStream& stream, const ZTMetaType*& type)
    {
        if (!m_areNoted)
            return readAll(stream, type);
        std::string name;
        if (!readAll(stream, name))
            return false;
        type = &ztMetaType(name);
        if (!*type && name != type->name())
            m_unknownTypes.insert(std::move(name));
        return true;
    }

    [[nodiscard]] const ZTMetaClass* findSuperClass(const std::string& name)
    {
        auto found = m_metaClasses.find(name);
        if (found != m_metaClasses.end())
            return found->second;
        if (name == "ZTBase" || name == ZTBase::typeMetaClass().typeName())
            return &ZTBase::typeMetaClass();
        if (!m_areNoted)
            ztLog(
                "Zintar: ZTMetaClassBuilder failed to set super class. No meta class with name \"" +
                    name + "\" provided.",
                ZTLogType::Warning);
        else if (name != "ZTNone")
            m_unknownSuperClass = name;
        return nullptr;
    }

    [[nodiscard]] ZTMissingInClass missing(bool isCut) const
    {
        return {m_unknownSuperClass, {m_unknownTypes.begin(), m_unknownTypes.end()}, isCut};
    }

private:
    const Classes& m_metaClasses;
    bool m_areNoted;
    std::string m_unknownSuperClass;
    std::set<std::string> m_unknownTypes;
};

/// A damaged count ends with the bytes, and gets no room for more than these can hold.
/// @param smallest  how many bytes an entry takes at least: 8 for a text, 4 for a count
/// @param list      what the entries go into
template <class Count, class List, class ReadOne>
void readList(ZTDataStream& stream, std::size_t smallest, List& list, ReadOne readOne)
{
    Count count = 0;
    if (!stream.good() || !readAll(stream, count))
        return;
    if (const auto* plain = ZTDataStreamPrivate::ofPlain(stream))
        list.reserve(list.size() + std::min<std::size_t>(count, plain->left() / smallest));
    for (Count i = 0; i < count && stream.good(); ++i)
        readOne();
}

// Annotations.

constexpr std::size_t smallestInfo = 8 + 8;

void write(ZTDataStream& stream, const ZTMetaClassInfo& info)
{
    stream << info.key() << info.value();
}

void read(ZTDataStream& stream, ZTDynamicMetaClassInfo& info)
{
    readAll(stream, info.m_key, info.m_value);
}

// Enumerations.

constexpr std::size_t smallestEnumerator = 8 + 4;
constexpr std::size_t smallestEnum = 8 + 8;

void write(ZTDataStream& stream, const ZTMetaEnum& metaEnum)
{
    stream << metaEnum.name() << static_cast<unsigned long long>(metaEnum.count());
    for (unsigned int i = 0; i < metaEnum.count(); ++i)
        stream << metaEnum.enumerator(i) << metaEnum.value(i);
}

/// What an enumeration has already, while it is read. Names and values are sorted and not hashed:
/// hashes of a known kind can be made to collide.
class KnownEnumerators
{
public:
    explicit KnownEnumerators(const ZTDynamicMetaEnum& metaEnum) : m_enum(metaEnum) {}
    [[nodiscard]] bool have(const std::string& name, int value)
    {
        const auto& names = m_enum.m_enumerators;
        const auto& values = m_enum.m_values;
        if (names.size() <= few)
            return std::find(names.begin(), names.end(), name) != names.end() ||
                   std::find(values.begin(), values.end(), value) != values.end();
        for (; m_sorted < names.size(); ++m_sorted) {
            m_names.insert(names[m_sorted]);
            m_values.insert(values[m_sorted]);
        }
        return m_names.count(name) || m_values.count(value);
    }

private:
    /// As many are compared one by one in less time than sets are made.
    static constexpr std::size_t few = 16;
    const ZTDynamicMetaEnum& m_enum;
    std::set<std::string> m_names;
    std::set<int> m_values;
    std::size_t m_sorted = 0; ///< how many are in the sets
};

/// A name or a value that is there already is read and left out, as a builder refuses it.
void read(ZTDataStream& stream, ZTDynamicMetaEnum& metaEnum)
{
    if (!readAll(stream, metaEnum.m_name))
        return;
    KnownEnumerators known(metaEnum);
    readList<unsigned long long>(stream, smallestEnumerator, metaEnum.m_enumerators, [&] {
        std::string name;
        int value = 0;
        if (!readAll(stream, name, value) || known.have(name, value))
            return;
        metaEnum.m_values.reserve(metaEnum.m_enumerators.capacity());
        metaEnum.m_values.push_back(value);
        metaEnum.m_enumerators.push_back(std::move(name));
    });
}

// Methods and events.

constexpr std::size_t smallestType = 8;
constexpr std::size_t smallestInvokable = 8 + 8 + 2 + 4 + 4;

void write(ZTDataStream& stream, const ZTMetaInvokable& invokable)
{
    auto flags = static_cast<unsigned short>((invokable.isConst() ? Flags::ConstInvokable : 0) |
                                             (invokable.isEvent() ? Flags::Event : 0));
    stream << invokable.name() << invokable.returnMetaType() << flags
           << static_cast<int>(invokable.accessSpecifier()) << invokable.parameterCount();
    for (unsigned int i = 0; i < invokable.parameterCount(); ++i)
        stream << invokable.parameterMetaType(i);
}

void read(ZTDataStream& stream, ZTDynamicMetaInvokable& invokable, Names& names)
{
    unsigned short flags = 0;
    int access = 0;
    if (!readAll(stream, invokable.m_name) || !names.readType(stream, invokable.m_returnMetaType) ||
        !readAll(stream, flags, access))
        return;
    invokable.m_isConst = flags & Flags::ConstInvokable;
    invokable.m_isEvent = flags & Flags::Event;
    invokable.m_access = static_cast<ZTAccessSpecifier>(access);
    readList<unsigned int>(stream, smallestType, invokable.m_parameterMetaTypes, [&] {
        const ZTMetaType* type = nullptr;
        if (names.readType(stream, type))
            invokable.m_parameterMetaTypes.push_back(type);
    });
}

// Properties, which refer to the invokables of their class.

constexpr std::size_t smallestProperty = 8 + 8 + 4 + 1 + 4;

void write(ZTDataStream& stream, const ZTMetaProperty& property, unsigned int invokableOffset)
{
    int event = property.changeEventIndex();
    if (event >= 0)
        event -= static_cast<int>(invokableOffset);
    auto flags = static_cast<unsigned char>((property.canGet() ? Flags::Readable : 0) |
                                            (property.canSet() ? Flags::Writable : 0));
    stream << property.name() << property.metaType() << event << flags << property.propInfoCount();
    for (unsigned int i = 0; i < property.propInfoCount(); ++i)
        stream << property.propInfoKey(i) << property.propInfoValue(i);
}

void read(ZTDataStream& stream, ZTDynamicMetaProperty& property,
          const std::vector<std::shared_ptr<ZTDynamicMetaInvokable>>& invokables, Names& names)
{
    int event = -1;
    if (!readAll(stream, property.m_name) || !names.readType(stream, property.m_metaType) ||
        !readAll(stream, event))
        return;
    if (event >= 0 && static_cast<std::size_t>(event) < invokables.size())
        property.m_changeEvent = invokables[static_cast<std::size_t>(event)];
    if (!readAll(stream, property.m_accessFlags))
        return;
    readList<unsigned int>(stream, smallestInfo, property.m_propInfos, [&] {
        std::string key;
        std::string value;
        if (readAll(stream, key, value))
            property.m_propInfos.emplace_back(std::move(key), std::move(value));
    });
}

// Classes.

void write(ZTDataStream& stream, const ZTMetaClass& metaClass)
{
    const ZTMetaClass* super = metaClass.superClass();
    stream << metaClass.typeName() << (super ? super->typeName() : std::string_view("ZTNone"));

    stream << metaClass.classInfoCount() - metaClass.classInfoOffset();
    for (unsigned int i = metaClass.classInfoOffset(); i < metaClass.classInfoCount(); ++i)
        write(stream, *metaClass.classInfo(i));
    stream << metaClass.enumCount() - metaClass.enumOffset();
    for (unsigned int i = metaClass.enumOffset(); i < metaClass.enumCount(); ++i)
        write(stream, *metaClass.metaEnum(i));
    stream << metaClass.invokableCount() - metaClass.invokableOffset();
    for (unsigned int i = metaClass.invokableOffset(); i < metaClass.invokableCount(); ++i)
        write(stream, *metaClass.invokable(i));
    stream << metaClass.propertyCount() - metaClass.propertyOffset();
    for (unsigned int i = metaClass.propertyOffset(); i < metaClass.propertyCount(); ++i)
        write(stream, *metaClass.property(i), metaClass.invokableOffset());
}

/// Up to the first read that fails.
void readMembers(ZTDataStream& stream, ZTDynamicMetaClass& metaClass, Names& names)
{
    readList<unsigned int>(stream, smallestInfo, metaClass.m_classInfos,
                           [&] { read(stream, metaClass.addClassInfo()); });
    readList<unsigned int>(stream, smallestEnum, metaClass.m_enums,
                           [&] { read(stream, metaClass.addEnum()); });
    readList<unsigned int>(stream, smallestInvokable, metaClass.m_invokables,
                           [&] { read(stream, metaClass.addInvokable(), names); });
    readList<unsigned int>(stream, smallestProperty, metaClass.m_properties, [&] {
        read(stream, metaClass.addProperty(), metaClass.m_invokables, names);
    });
}

/// Takes out of a class again what was read into it, if reading could not go on for lack of memory.
class Addition
{
public:
    explicit Addition(ZTDynamicMetaClass& metaClass)
        : m_class(&metaClass),
          m_superClass(metaClass.m_superClass),
          m_typeName(metaClass.m_typeName),
          m_infos(metaClass.m_classInfos.size()),
          m_enums(metaClass.m_enums.size()),
          m_invokables(metaClass.m_invokables.size()),
          m_properties(metaClass.m_properties.size())
    {}
    Addition(const Addition&) = delete;
    Addition& operator=(const Addition&) = delete;
    ~Addition()
    {
        if (!m_class)
            return;
        m_class->m_properties.resize(m_properties);
        m_class->m_invokables.resize(m_invokables);
        m_class->m_enums.resize(m_enums);
        m_class->m_classInfos.resize(m_infos);
        m_class->m_typeName.swap(m_typeName);
        m_class->setSuperClass(m_superClass);
    }
    void keep() { m_class = nullptr; }

private:
    ZTDynamicMetaClass* m_class;
    const ZTMetaClass* m_superClass;
    std::string m_typeName;
    std::size_t m_infos, m_enums, m_invokables, m_properties;
};

void readClass(ZTMetaClassBuilder& builder, ZTDataStream& stream, ZTDynamicMetaClass& metaClass,
               Names& names)
{
    zt::detail::readWhole(stream, [&] {
        Addition added(metaClass);
        std::string name;
        stream >> name;
        builder.setTypeName(name);
        stream >> name;
        builder.setSuperClass(names.findSuperClass(name));
        readMembers(stream, metaClass, names);
        added.keep();
    });
}
} // namespace

ZTDataStream& operator<<(ZTDataStream& stream, const ZTMetaClass& metaClass)
{
    zt::detail::writeWhole(stream, [&](ZTDataStream& target) { write(target, metaClass); });
    return stream;
}

void zt::detail::readClassRecord(ZTDataStream& stream, ZTDynamicMetaClass& metaClass,
                                 std::string& superName)
{
    const Classes none; // it is asked for no super class
    Names names(none, false);
    readWhole(stream, [&] {
        if (readAll(stream, metaClass.m_typeName, superName))
            readMembers(stream, metaClass, names);
    });
}

void ZTMetaClassBuilder::deserialize(ZTDataStream& stream, const Classes& metaClasses)
{
    Names names(metaClasses, false);
    readClass(*this, stream, *priv->metaClass, names);
}

ZTMissingInClass ZTMetaClassBuilder::read(ZTDataStream& stream, const Classes& metaClasses)
{
    Names names(metaClasses, true);
    readClass(*this, stream, *priv->metaClass, names);
    return names.missing(!stream.good());
}
