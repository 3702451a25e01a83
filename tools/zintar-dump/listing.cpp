#include "contents.h"
#include "text.h"
#include "words.h"

#include <zintar/metaclass.h>

#include <ostream>
#include <string_view>

namespace dump
{
namespace
{
/// Prints one class. A heading stands only over what there is.
class ClassListing
{
public:
    ClassListing(std::ostream& out, const ClassRecord& record, const Hierarchy& hierarchy)
        : m_out(out), m_class(record), m_hierarchy(hierarchy), m_lineage(hierarchy.of(record))
    {}

    void print()
    {
        printHead();
        printList("annotations", m_class.annotations, [](const Annotation& annotation) {
            return shownName(annotation.key) + " " + quoted(annotation.value);
        });
        printList("enumerations", m_class.enums, enumeration);
        printProperties();
        printInvokables("methods", false);
        printInvokables("events", true);
        if (!m_class.isComplete)
            m_out << "  (damaged here)\n";
    }

private:
    void printHead()
    {
        m_out << "class " << shownName(m_class.name);
        if (m_lineage.kind != SuperKind::None)
            m_out << " : " << shownName(m_class.super);
        m_out << "  [bytes " << m_class.offset << " to " << m_class.end << "]\n";
        if (m_lineage.kind == SuperKind::Missing)
            m_out << "  (its super class is not here, so indices are unknown)\n";
        else if (m_lineage.kind == SuperKind::Circular)
            m_out << "  (its super classes go in a circle)\n";
    }

    template <class Entry, class Tell>
    void printList(std::string_view heading, const std::vector<Entry>& entries, Tell tell)
    {
        if (!entries.empty())
            m_out << "  " << heading << "\n";
        for (const Entry& entry : entries)
            m_out << "    " << tell(entry) << "\n";
    }

    void printProperties()
    {
        std::size_t index = m_lineage.propertyOffset;
        printList("properties", m_class.properties, [&](const PropertyRecord& property) {
            return numbered(index++) + tellProperty(property);
        });
    }

    /// Methods and events share one space of indices.
    void printInvokables(std::string_view heading, bool events)
    {
        bool isFirst = true;
        std::size_t index = m_lineage.invokableOffset;
        for (const InvokableRecord& invokable : m_class.invokables) {
            std::string number = numbered(index++);
            if (invokable.isEvent != events)
                continue;
            if (isFirst)
                m_out << "  " << heading << "\n";
            isFirst = false;
            m_out << "    " << number << signature(invokable);
            if (invokable.access != static_cast<int>(ZTAccessSpecifier::Public))
                m_out << ", " << accessName(invokable.access);
            m_out << "\n";
        }
    }

    [[nodiscard]] std::string numbered(std::size_t index) const
    {
        return m_lineage.isKnown ? "#" + std::to_string(index) + " " : "";
    }

    [[nodiscard]] std::string tellProperty(const PropertyRecord& property) const
    {
        std::vector<std::string> parts{shownName(property.name) + ": " + shownType(property.type)};
        std::string limit = accessLimit(property);
        if (!limit.empty())
            parts.push_back(limit);
        for (const Annotation& annotation : property.annotations)
            parts.push_back(shownName(annotation.key) + " " + quoted(annotation.value));
        if (auto event = m_hierarchy.changeEvent(m_class, property))
            parts.push_back("notifies " + *event);
        return joined(parts);
    }

    std::ostream& m_out;
    const ClassRecord& m_class;
    const Hierarchy& m_hierarchy;
    const Lineage& m_lineage;
};

void printFile(std::ostream& out, const Contents& contents, const Hierarchy& hierarchy)
{
    std::string_view gap;
    for (const ClassRecord& record : contents.shownClasses()) {
        out << gap;
        ClassListing(out, record, hierarchy).print();
        gap = "\n";
    }
    if (!contents.shownVariants().empty())
        out << gap;
    for (const VariantRecord& variant : contents.shownVariants())
        out << printed(variant) << "  [bytes " << variant.offset << " to " << variant.end << "]\n";
    if (contents.size == 0)
        out << "(nothing in it)\n";
}
} // namespace

void printListing(std::ostream& out, const std::vector<Contents>& files, const Hierarchy& hierarchy)
{
    std::string_view gap;
    for (const Contents& contents : files) {
        if (files.size() > 1)
            out << gap << shownName(contents.file) << ":\n";
        printFile(out, contents, hierarchy);
        gap = "\n";
    }
}
} // namespace dump
