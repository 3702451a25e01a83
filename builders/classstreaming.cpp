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
#include "metaclassbuilderprivate.h"

#include <zintar/base.h>
#include <zintar/classrecord.h>
#include <zintar/datastream.h>
#include <zintar/log.h>
#include <zintar/metaclassbuilder.h>

#include <set>
#include <string>
#include <unordered_map>
#include <utility>

namespace
{
using Flags = ZTClassRecordFlags;

void write(ZTDataStream& stream, const ZTMetaClassInfo& info)
{
    stream << info.key() << info.value();
}

void write(ZTDataStream& stream, const ZTMetaEnum& metaEnum)
{
    stream << metaEnum.name() << static_cast<unsigned long long>(metaEnum.count());
    for (unsigned int i = 0; i < metaEnum.count(); ++i)
        stream << metaEnum.enumerator(i) << metaEnum.value(i);
}

void write(ZTDataStream& stream, const ZTMetaInvokable& invokable)
{
    auto flags = static_cast<unsigned short>((invokable.isConst() ? Flags::ConstInvokable : 0) |
                                             (invokable.isEvent() ? Flags::Event : 0));
    stream << invokable.name() << invokable.returnMetaType() << flags
           << static_cast<int>(invokable.accessSpecifier()) << invokable.parameterCount();
    for (unsigned int i = 0; i < invokable.parameterCount(); ++i)
        stream << invokable.parameterMetaType(i);
}

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
} // namespace

ZTDataStream& operator<<(ZTDataStream& stream, const ZTMetaClass& metaClass)
{
    zt::detail::writeWhole(stream, [&](ZTDataStream& target) { write(target, metaClass); });
    return stream;
}

namespace
{
using Classes = std::unordered_map<std::string, const ZTMetaClass*>;

const ZTMetaClass* findSuperClass(const std::string& name, const Classes& metaClasses)
{
    auto found = metaClasses.find(name);
    if (found != metaClasses.end())
        return found->second;
    if (name == "ZTBase" || name == ZTBase::typeMetaClass().typeName())
        return &ZTBase::typeMetaClass();
    ztLog("Zintar: ZTMetaClassBuilder failed to set super class. No meta class with name \"" +
              name + "\" provided.",
          ZTLogType::Warning);
    return nullptr;
}

/// Reads the parts of a class from a stream, up to the first read that fails.
class ClassReader
{
public:
    ClassReader(ZTDataStream& stream, ZTDynamicMetaClass& metaClass)
        : m_stream(stream), m_class(metaClass)
    {}

    void readMembers()
    {
        readList<unsigned int>([this] { readClassInfo(); });
        readList<unsigned int>([this] { readEnum(); });
        readList<unsigned int>([this] { readInvokable(); });
        readList<unsigned int>([this] { readProperty(); });
    }

private:
    template <class... Values>
    bool read(Values&... values)
    {
        return (... && (m_stream >> values, m_stream.good()));
    }

    /// A damaged count ends with the bytes.
    template <class Count, class ReadOne>
    void readList(ReadOne readOne)
    {
        Count count = 0;
        if (!m_stream.good() || !read(count))
            return;
        for (Count i = 0; i < count && m_stream.good(); ++i)
            readOne();
    }

    void readClassInfo()
    {
        m_class.m_classInfos.push_back(std::make_shared<ZTDynamicMetaClassInfo>());
        ZTDynamicMetaClassInfo& info = *m_class.m_classInfos.back();
        read(info.m_key, info.m_value);
    }

    /// A name or a value that is there already is read and left out, as a builder refuses it. They
    /// are sorted and not hashed: hashes of a known kind can be made to collide.
    void readEnum()
    {
        m_class.m_enums.push_back(std::make_shared<ZTDynamicMetaEnum>());
        ZTDynamicMetaEnum& metaEnum = *m_class.m_enums.back();
        if (!read(metaEnum.m_name))
            return;
        std::set<std::string> names;
        std::set<int> values;
        readList<unsigned long long>([&] {
            std::string name;
            int value = 0;
            if (!read(name, value) || names.count(name) || values.count(value))
                return;
            metaEnum.m_enumerators.push_back(name);
            metaEnum.m_values.push_back(value);
            names.insert(std::move(name));
            values.insert(value);
        });
    }

    void readInvokable()
    {
        m_class.addInvokable();
        ZTDynamicMetaInvokable& invokable = *m_class.m_invokables.back();
        unsigned short flags = 0;
        int access = 0;
        if (!read(invokable.m_name, invokable.m_returnMetaType, flags, access))
            return;
        invokable.m_isConst = flags & Flags::ConstInvokable;
        invokable.m_isEvent = flags & Flags::Event;
        invokable.m_access = static_cast<ZTAccessSpecifier>(access);
        readList<unsigned int>([&] {
            const ZTMetaType* type = nullptr;
            if (read(type))
                invokable.m_parameterMetaTypes.push_back(type);
        });
    }

    void readProperty()
    {
        m_class.m_properties.push_back(std::make_shared<ZTDynamicMetaProperty>());
        ZTDynamicMetaProperty& property = *m_class.m_properties.back();
        int event = -1;
        if (!read(property.m_name, property.m_metaType, event))
            return;
        if (event >= 0 && static_cast<std::size_t>(event) < m_class.m_invokables.size())
            property.m_changeEvent = m_class.m_invokables[static_cast<std::size_t>(event)];
        if (!read(property.m_accessFlags))
            return;
        readList<unsigned int>([&] {
            std::string key;
            std::string value;
            if (read(key, value))
                property.m_propInfos.emplace_back(std::move(key), std::move(value));
        });
    }

    ZTDataStream& m_stream;
    ZTDynamicMetaClass& m_class;
};

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
} // namespace

void ZTMetaClassBuilder::deserialize(ZTDataStream& stream, const Classes& metaClasses)
{
    zt::detail::readWhole(stream, [&] {
        Addition added(*priv->metaClass);
        std::string name;
        stream >> name;
        setTypeName(name);
        stream >> name;
        setSuperClass(findSuperClass(name, metaClasses));
        ClassReader(stream, *priv->metaClass).readMembers();
        added.keep();
    });
}
