#include "contents.h"
#include "text.h"
#include "words.h"

#include <zintar/metatype.h>
#include <zintar/typedvalue.h>

#include <nlohmann/json.hpp>

#include <ostream>

namespace dump
{
namespace
{
using Json = nlohmann::ordered_json;

template <class Entries, class Tell>
Json listOf(const Entries& entries, Tell tell)
{
    Json list = Json::array();
    for (const auto& entry : entries)
        list.push_back(tell(entry));
    return list;
}

Json indexOr(bool isKnown, std::size_t index) { return isKnown ? Json(index) : Json(nullptr); }

Json annotationsOf(const std::vector<Annotation>& annotations)
{
    return listOf(annotations, [](const Annotation& annotation) {
        return Json{{"key", annotation.key}, {"value", annotation.value}};
    });
}

Json enumOf(const EnumRecord& metaEnum)
{
    return {{"name", metaEnum.name},
            {"enumerators", listOf(metaEnum.enumerators, [](const Enumerator& enumerator) {
                 return Json{{"name", enumerator.name}, {"value", enumerator.value}};
             })}};
}

Json invokableOf(const InvokableRecord& invokable, const Json& index)
{
    bool isNamed = invokable.access >= 0 && invokable.access <= 2;
    return {{"name", invokable.name},
            {"index", index},
            {"event", invokable.isEvent},
            {"const", invokable.isConst},
            {"access", isNamed ? Json(accessName(invokable.access)) : Json(invokable.access)},
            {"returnType", invokable.returnType},
            {"parameterTypes", invokable.parameterTypes}};
}

class ClassJson
{
public:
    ClassJson(const ClassRecord& record, const Hierarchy& hierarchy)
        : m_class(record), m_hierarchy(hierarchy), m_lineage(hierarchy.of(record))
    {}

    [[nodiscard]] Json make() const
    {
        Json super = m_lineage.kind == SuperKind::None ? Json(nullptr) : Json(m_class.super);
        return {{"name", m_class.name},
                {"super", super},
                {"offset", m_class.offset},
                {"end", m_class.end},
                {"complete", m_class.isComplete},
                {"annotations", annotationsOf(m_class.annotations)},
                {"enums", listOf(m_class.enums, enumOf)},
                {"invokables", invokables()},
                {"properties", properties()}};
    }

private:
    [[nodiscard]] Json invokables() const
    {
        std::size_t index = m_lineage.invokableOffset;
        return listOf(m_class.invokables, [&](const InvokableRecord& invokable) {
            return invokableOf(invokable, indexOr(m_lineage.isKnown, index++));
        });
    }

    [[nodiscard]] Json properties() const
    {
        std::size_t index = m_lineage.propertyOffset;
        return listOf(m_class.properties, [&](const PropertyRecord& property) {
            return propertyOf(property, indexOr(m_lineage.isKnown, index++));
        });
    }

    [[nodiscard]] Json propertyOf(const PropertyRecord& property, const Json& index) const
    {
        return {{"name", property.name},
                {"index", index},
                {"type", property.type},
                {"canGet", property.canGet},
                {"canSet", property.canSet},
                {"changeEvent", changeEventOf(property)},
                {"annotations", annotationsOf(property.annotations)}};
    }

    [[nodiscard]] Json changeEventOf(const PropertyRecord& property) const
    {
        if (property.changeEvent == -1)
            return nullptr;
        const InvokableRecord* event = m_hierarchy.changeEventRecord(m_class, property);
        return {{"position", property.changeEvent},
                {"name", event ? Json(shortened(event->name)) : Json(nullptr)}};
    }

    const ClassRecord& m_class;
    const Hierarchy& m_hierarchy;
    const Lineage& m_lineage;
};

Json valueOf(const ZTVariant& variant);

/// Appends nothing but the value, when the variant holds a `T`.
template <class T>
bool takeValue(const ZTVariant& variant, Json& value)
{
    const T* held = ztVariantPointer<T>(variant);
    if (held)
        value = *held;
    return held;
}

template <class... T>
bool takeAnyOf(const ZTVariant& variant, Json& value)
{
    return (takeValue<T>(variant, value) || ...);
}

/// Numbers and text are JSON's own; what JSON does not have is text as the library prints it.
Json valueOf(const ZTVariant& variant)
{
    Json value;
    if (!variant.isValid())
        return value;
    if (const auto* inner = ztVariantPointer<ZTVariant>(variant))
        return {{"type", inner->type().name()}, {"value", valueOf(*inner)}};
    if (!takeAnyOf<bool, unsigned char, short, unsigned short, int, unsigned int, long long,
                   unsigned long long, float, double, std::string>(variant, value))
        value = printedValue(variant);
    return value;
}

Json variantOf(const VariantRecord& variant)
{
    Json json{{"type", variant.type}, {"value", valueOf(variant.value)}};
    if (!variant.unreadBytes.empty())
        json["bytes"] = hex(variant.unreadBytes).substr(1);
    json["offset"] = variant.offset;
    json["end"] = variant.end;
    return json;
}

Json fileOf(const Contents& contents, const Hierarchy& hierarchy)
{
    return {{"name", contents.file},
            {"size", contents.size},
            {"classes", listOf(contents.shownClasses(),
                               [&](const ClassRecord& record) {
                                   return ClassJson(record, hierarchy).make();
                               })},
            {"variants", listOf(contents.shownVariants(), variantOf)},
            {"damages", listOf(contents.damages, [](const Damage& damage) {
                 return Json{{"offset", damage.offset}, {"what", damage.what}};
             })}};
}
} // namespace

void printJson(std::ostream& out, const std::vector<Contents>& files, const Hierarchy& hierarchy)
{
    Json json{{"files", listOf(files, [&](const Contents& contents) {
                   return fileOf(contents, hierarchy);
               })}};
    out << json.dump(2, ' ', false, Json::error_handler_t::replace) << "\n";
}
} // namespace dump
