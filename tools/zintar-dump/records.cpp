#include "records.h"

#include "text.h"

#include <zintar/classrecord.h>
#include <zintar/metaclass.h>
#include <zintar/metaclassbuilder.h>

#include <string_view>

namespace dump
{
namespace
{
// The fewest bytes that one entry of each list takes: every text has a length of 8, every count 4.
constexpr std::size_t smallestType = 8;
constexpr std::size_t smallestAnnotation = 8 + 8;
constexpr std::size_t smallestEnumerator = 8 + 4;
constexpr std::size_t smallestEnum = 8 + 8;
constexpr std::size_t smallestInvokable = 8 + 8 + 2 + 4 + 4;
constexpr std::size_t smallestProperty = 8 + 8 + 4 + 1 + 4;

/// Ends the reading of a record whose damage has been noted.
struct Unreadable {};

class ClassReader
{
public:
    ClassReader(ByteStream& stream, ClassRecord& record, std::vector<Damage>& damages)
        : m_stream(stream), m_class(record), m_damages(damages)
    {}

    void read()
    {
        readText(m_class.name, "the name of a class");
        m_isNamed = true;
        readText(m_class.super, "the name of its super class");
        readList<unsigned int>(m_class.annotations, "annotations", smallestAnnotation,
                               [&](Annotation& annotation) { readAnnotation(annotation); });
        readMembers(m_class.enums, &ClassReader::readEnum, "enumeration", "enumerations",
                    smallestEnum);
        readMembers(m_class.invokables, &ClassReader::readInvokable, "invokable", "invokables",
                    smallestInvokable);
        readMembers(m_class.properties, &ClassReader::readProperty, "property", "properties",
                    smallestProperty);
    }

private:
    void readAnnotation(Annotation& annotation)
    {
        readText(annotation.key, "the key of an annotation");
        readText(annotation.value, "the value of an annotation");
    }

    void readEnum(EnumRecord& metaEnum)
    {
        readText(metaEnum.name, "its name");
        readList<unsigned long long>(metaEnum.enumerators, "enumerators", smallestEnumerator,
                                     [&](Enumerator& enumerator) {
                                         readText(enumerator.name, "the name of an enumerator");
                                         readNumber(enumerator.value, "the value of an enumerator");
                                     });
    }

    void readInvokable(InvokableRecord& invokable)
    {
        readText(invokable.name, "its name");
        readText(invokable.returnType, "its return type");
        auto flags = readFlags(ZTClassRecordFlags::AllOfInvokable);
        invokable.isConst = flags & ZTClassRecordFlags::ConstInvokable;
        invokable.isEvent = flags & ZTClassRecordFlags::Event;
        readAccess(invokable.access);
        readList<unsigned int>(
            invokable.parameterTypes, "parameters", smallestType,
            [&](std::string& type) { readText(type, "the type of a parameter"); });
    }

    void readProperty(PropertyRecord& property)
    {
        readText(property.name, "its name");
        readText(property.type, "its type");
        readChangeEvent(property.changeEvent);
        auto flags = readFlags(ZTClassRecordFlags::AllOfProperty);
        property.canGet = flags & ZTClassRecordFlags::Readable;
        property.canSet = flags & ZTClassRecordFlags::Writable;
        readList<unsigned int>(property.annotations, "annotations", smallestAnnotation,
                               [&](Annotation& annotation) { readAnnotation(annotation); });
    }

    /// @param all  those that have a meaning; a writer leaves the others at 0
    template <class Flags>
    Flags readFlags(Flags all)
    {
        std::size_t offset = m_stream.position();
        Flags flags = 0;
        readNumber(flags, "its flags");
        if (flags > all)
            note(offset, "its flags",
                 "the value " + std::to_string(flags) + ", where " + std::to_string(all) +
                     " is the most");
        return flags;
    }

    void readAccess(int& access)
    {
        std::size_t offset = m_stream.position();
        readNumber(access, "its access");
        if (access < 0 || access > static_cast<int>(ZTAccessSpecifier::Public))
            note(offset, "its access",
                 "the value " + std::to_string(access) + ", neither private, protected nor public");
    }

    void readChangeEvent(int& position)
    {
        std::size_t offset = m_stream.position();
        readNumber(position, "its change event");
        std::size_t count = m_class.invokables.size();
        if (position >= 0 && static_cast<std::size_t>(position) >= count)
            note(offset, "its change event",
                 "position " + std::to_string(position) + " among " + std::to_string(count) +
                     " invokables");
    }

    template <class Number>
    void readNumber(Number& number, std::string_view field)
    {
        if (m_stream.left() < sizeof(Number))
            fail(m_stream.position(), field, endsAfter(sizeof(Number)));
        m_stream >> number;
    }

    void readText(std::string& text, std::string_view field)
    {
        std::size_t offset = m_stream.position();
        unsigned long long length = 0;
        readNumber(length, field);
        if (length > m_stream.left())
            fail(offset, field,
                 "a length of " + std::to_string(length) + ", where " +
                     std::to_string(m_stream.left()) + " bytes are left");
        text = m_stream.take(static_cast<std::size_t>(length));
    }

    /// A count is held against the bytes that are left before anything is made for it.
    template <class Count, class Entry, class ReadOne>
    void readList(std::vector<Entry>& entries, std::string_view kind, std::size_t smallest,
                  ReadOne readOne)
    {
        std::size_t offset = m_stream.position();
        Count count = 0;
        std::string field = "the number of " + std::string(kind);
        readNumber(count, field);
        if (count > m_stream.left() / smallest)
            fail(offset, field,
                 std::to_string(count) + ", for which the " + std::to_string(m_stream.left()) +
                     " bytes that are left are too few");
        entries.reserve(static_cast<std::size_t>(count));
        for (Count i = 0; i < count; ++i)
            readOne(entries.emplace_back());
    }

    template <class Member>
    void readMembers(std::vector<Member>& members, void (ClassReader::*readMember)(Member&),
                     std::string_view kind, std::string_view plural, std::size_t smallest)
    {
        readList<unsigned int>(members, plural, smallest, [&](Member& member) {
            m_memberKind = kind;
            m_memberName = &member.name;
            m_memberNumber = members.size();
            (this->*readMember)(member);
            m_memberKind = {};
        });
    }

    [[nodiscard]] std::string endsAfter(std::size_t wanted) const
    {
        return "the bytes end after " + std::to_string(m_stream.left()) + " of " +
               std::to_string(wanted);
    }

    void note(std::size_t offset, std::string_view field, const std::string& problem)
    {
        std::string where;
        if (m_isNamed)
            where = "class " + shownReference(m_class.name) + ", ";
        if (!m_memberKind.empty()) {
            where += std::string(m_memberKind) + " " + std::to_string(m_memberNumber);
            where += m_memberName->empty() ? ", " : " (" + shownReference(*m_memberName) + "), ";
        }
        m_damages.push_back({offset, where + std::string(field) + ": " + problem});
    }

    [[noreturn]] void fail(std::size_t offset, std::string_view field, const std::string& problem)
    {
        note(offset, field, problem);
        m_stream.seek(offset);
        throw Unreadable();
    }

    ByteStream& m_stream;
    ClassRecord& m_class;
    std::vector<Damage>& m_damages;

    bool m_isNamed = false;
    // The member that is being read, counted from 1; without a kind there is none.
    std::string_view m_memberKind;
    const std::string* m_memberName = nullptr;
    std::size_t m_memberNumber = 0;
};
} // namespace

ClassRecord readClass(ByteStream& stream, std::vector<Damage>& damages)
{
    ClassRecord record;
    record.offset = stream.position();
    try {
        ClassReader(stream, record, damages).read();
        record.isComplete = true;
    } catch (const Unreadable&) {
        // Told already; the caller sees it by the record.
    }
    record.end = stream.position();
    return record;
}

ClassRecord recordOf(const ZTMetaClass& metaClass)
{
    ZTDataStream written;
    written << metaClass;
    ByteStream bytes(written.data());
    std::vector<Damage> none;
    return readClass(bytes, none);
}
} // namespace dump
