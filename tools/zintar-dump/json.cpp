#include "contents.h"
#include "text.h"
#include "words.h"

#include <zintar/metatype.h>
#include <zintar/typedvalue.h>

#include <nlohmann/json.hpp>

#include <cmath>
#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>

namespace dump
{
namespace
{
using Json = nlohmann::ordered_json;

/// Writes JSON piece by piece, so that no more of it is in memory than one text. What stands in
/// an object or a list is written by a callable.
class JsonWriter
{
public:
    explicit JsonWriter(std::ostream& out) : m_out(out) {}

    /// A text, a number, a boolean or null. What of a text is no UTF-8 becomes the replacement
    /// character.
    void value(const Json& scalar)
    {
        m_out << escapedJson(scalar.dump(-1, ' ', false, Json::error_handler_t::replace));
    }
    template <class Members>
    void object(Members writeMembers)
    {
        enclosed('{', '}', writeMembers);
    }
    template <class Entries, class WriteOne>
    void list(const Entries& entries, WriteOne writeOne)
    {
        enclosed('[', ']', [&] {
            for (const auto& entry : entries) {
                nextLine();
                writeOne(entry);
            }
        });
    }
    /// Within an object.
    void key(std::string_view name)
    {
        nextLine();
        value(name);
        m_out << ": ";
    }
    void member(std::string_view name, const Json& scalar)
    {
        key(name);
        value(scalar);
    }
    template <class Entries, class WriteOne>
    void listMember(std::string_view name, const Entries& entries, WriteOne writeOne)
    {
        key(name);
        list(entries, writeOne);
    }

private:
    template <class Write>
    void enclosed(char open, char close, Write write)
    {
        m_out << open;
        m_isFirst = true;
        ++m_depth;
        write();
        --m_depth;
        if (!m_isFirst)
            indent();
        m_isFirst = false;
        m_out << close;
    }
    void nextLine()
    {
        if (!m_isFirst)
            m_out << ',';
        m_isFirst = false;
        indent();
    }
    void indent() { m_out << '\n' << std::string(2 * m_depth, ' '); }

    std::ostream& m_out;
    std::size_t m_depth = 0;
    bool m_isFirst = true; ///< of the entries of what is being written
};

Json indexOr(bool isKnown, std::size_t index) { return isKnown ? Json(index) : Json(nullptr); }

/// Numbers and text are JSON's own, as far as it has them.
template <class T>
Json scalarOf(const T& value)
{
    if constexpr (std::is_floating_point_v<T>) {
        if (std::isnan(value))
            return "NaN";
        if (std::isinf(value))
            return value < 0 ? "-Infinity" : "Infinity";
    }
    return value;
}

/// @return nothing unless the variant holds a `T`
template <class T>
std::optional<Json> scalarIn(const ZTVariant& variant)
{
    const T* held = ztVariantPointer<T>(variant);
    return held ? std::optional<Json>(scalarOf(*held)) : std::nullopt;
}

template <class... T>
std::optional<Json> scalarOfAny(const ZTVariant& variant)
{
    std::optional<Json> found;
    (void)((found = scalarIn<T>(variant)) || ...);
    return found;
}

class Printer
{
public:
    Printer(std::ostream& out, const Hierarchy& hierarchy) : m_json(out), m_hierarchy(hierarchy) {}

    void print(const std::vector<Contents>& files)
    {
        m_json.object([&] {
            m_json.listMember("files", files, [this](const Contents& one) { printFile(one); });
        });
    }

private:
    void printFile(const Contents& contents)
    {
        m_json.object([&] {
            m_json.member("name", contents.file);
            m_json.member("size", contents.size);
            m_json.listMember("classes", contents.shownClasses(),
                              [this](const ClassRecord& record) { printClass(record); });
            m_json.listMember("variants", contents.shownVariants(),
                              [this](const VariantRecord& variant) { printVariant(variant); });
            m_json.listMember("damages", contents.damages,
                              [this](const Damage& damage) { printDamage(damage); });
        });
    }

    void printDamage(const Damage& damage)
    {
        m_json.object([&] {
            m_json.member("offset", damage.offset);
            m_json.member("what", damage.what);
        });
    }

    void printClass(const ClassRecord& record)
    {
        const Lineage& lineage = m_hierarchy.of(record);
        m_json.object([&] {
            m_json.member("name", record.name);
            m_json.member("super",
                          lineage.kind == SuperKind::None ? Json(nullptr) : Json(record.super));
            m_json.member("offset", record.offset);
            m_json.member("end", record.end);
            m_json.member("complete", record.isComplete);
            printAnnotations(record.annotations);
            m_json.listMember("enums", record.enums,
                              [this](const EnumRecord& metaEnum) { printEnum(metaEnum); });
            std::size_t index = lineage.invokableOffset;
            m_json.listMember("invokables", record.invokables, [&](const InvokableRecord& one) {
                printInvokable(one, indexOr(lineage.isKnown, index++));
            });
            index = lineage.propertyOffset;
            m_json.listMember("properties", record.properties, [&](const PropertyRecord& one) {
                printProperty(record, one, indexOr(lineage.isKnown, index++));
            });
        });
    }

    void printAnnotations(const std::vector<Annotation>& annotations)
    {
        m_json.listMember("annotations", annotations, [this](const Annotation& annotation) {
            m_json.object([&] {
                m_json.member("key", annotation.key);
                m_json.member("value", annotation.value);
            });
        });
    }

    void printEnum(const EnumRecord& metaEnum)
    {
        m_json.object([&] {
            m_json.member("name", metaEnum.name);
            m_json.listMember("enumerators", metaEnum.enumerators, [this](const Enumerator& one) {
                m_json.object([&] {
                    m_json.member("name", one.name);
                    m_json.member("value", one.value);
                });
            });
        });
    }

    void printInvokable(const InvokableRecord& invokable, const Json& index)
    {
        const bool isNamed = invokable.access >= 0 && invokable.access <= 2;
        m_json.object([&] {
            m_json.member("name", invokable.name);
            m_json.member("index", index);
            m_json.member("event", invokable.isEvent);
            m_json.member("const", invokable.isConst);
            m_json.member("access",
                          isNamed ? Json(accessName(invokable.access)) : Json(invokable.access));
            m_json.member("returnType", invokable.returnType);
            m_json.listMember("parameterTypes", invokable.parameterTypes,
                              [this](const std::string& type) { m_json.value(type); });
        });
    }

    void printProperty(const ClassRecord& record, const PropertyRecord& property, const Json& index)
    {
        m_json.object([&] {
            m_json.member("name", property.name);
            m_json.member("index", index);
            m_json.member("type", property.type);
            m_json.member("canGet", property.canGet);
            m_json.member("canSet", property.canSet);
            m_json.key("changeEvent");
            printChangeEvent(record, property);
            printAnnotations(property.annotations);
        });
    }

    void printChangeEvent(const ClassRecord& record, const PropertyRecord& property)
    {
        if (property.changeEvent == -1)
            return m_json.value(nullptr);
        const InvokableRecord* event = m_hierarchy.changeEventRecord(record, property);
        m_json.object([&] {
            m_json.member("position", property.changeEvent);
            m_json.member("name", event ? Json(shortened(event->name)) : Json(nullptr));
        });
    }

    void printVariant(const VariantRecord& variant)
    {
        m_json.object([&] {
            m_json.member("type", variant.type);
            m_json.key("value");
            printValue(variant.value);
            if (!variant.unreadBytes.empty())
                m_json.member("bytes", hex(variant.unreadBytes).substr(1));
            m_json.member("offset", variant.offset);
            m_json.member("end", variant.end);
        });
    }

    /// What JSON does not have is text as the library prints it.
    void printValue(const ZTVariant& variant)
    {
        if (!variant.isValid())
            return m_json.value(nullptr);
        if (const auto* inner = ztVariantPointer<ZTVariant>(variant))
            return m_json.object([&] {
                m_json.member("type", inner->type().name());
                m_json.key("value");
                printValue(*inner);
            });
        const auto scalar =
            scalarOfAny<bool, unsigned char, short, unsigned short, int, unsigned int, long long,
                        unsigned long long, float, double, std::string>(variant);
        m_json.value(scalar ? *scalar : Json(printedValue(variant)));
    }

    JsonWriter m_json;
    const Hierarchy& m_hierarchy;
};
} // namespace

void printJson(std::ostream& out, const std::vector<Contents>& files, const Hierarchy& hierarchy)
{
    Printer(out, hierarchy).print(files);
    out << "\n";
}
} // namespace dump
