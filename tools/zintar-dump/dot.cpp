#include "contents.h"
#include "text.h"
#include "words.h"

#include <map>
#include <ostream>
#include <string_view>
#include <unordered_map>

// A class is a node with up to five compartments: name, enumerations, properties, methods, events.
// A super class that is not shown is a node with its name alone: dashed when it is unknown, grey
// when it is one of the library's.

namespace dump
{
namespace
{
/// Text within the label of a record, which gives a meaning to braces, bars and angle brackets,
/// and within the double quotes around it; `&` would begin a character by its name.
std::string label(std::string_view text)
{
    std::string result;
    for (char c : text) {
        if (c == '&') {
            result += "&amp;";
            continue;
        }
        if (std::string_view("{}|<>\"\\").find(c) != std::string_view::npos)
            result += '\\';
        result += c;
    }
    return result;
}

std::string line(const std::string& text) { return label(text) + "\\l"; }

/// In double quotes. Graphviz cannot read more than 16 KB of plain text in a row, but joins pieces.
std::string inQuotes(std::string_view text)
{
    constexpr std::size_t longestPiece = 8192;
    std::string result = "\"";
    while (text.size() > longestPiece) {
        std::size_t end = longestPiece;
        while (end > 0 && text[end - 1] == '\\') // which would escape the quote behind it
            --end;
        end = end > 0 ? end : longestPiece; // nothing but backslashes, two by two
        result += text.substr(0, end);
        result += "\" + \"";
        text.remove_prefix(end);
    }
    result += text;
    return result + "\"";
}

class Diagram
{
public:
    Diagram(std::ostream& out, const Hierarchy& hierarchy) : m_out(out), m_hierarchy(hierarchy) {}

    void print(const std::vector<Contents>& files)
    {
        m_out << "digraph classes {\n"
                 "    rankdir=BT;\n"
                 "    node [shape=record, fontname=\"Helvetica\", fontsize=10];\n"
                 "    edge [arrowhead=empty];\n";
        for (const Contents& contents : files)
            for (const ClassRecord& record : contents.shownClasses())
                printClass(record);
        for (const Contents& contents : files)
            for (const ClassRecord& record : contents.shownClasses())
                printArrow(record);
        m_out << "}\n";
    }

private:
    void printClass(const ClassRecord& record)
    {
        std::string compartments = label(shownName(record.name));
        for (const std::string& part : {enums(record), properties(record),
                                        invokables(record, false), invokables(record, true)})
            if (!part.empty())
                compartments += "|" + part;
        printNode(nodeOf(record), "{" + compartments + "}", record.isComplete ? "" : "color=red");
    }

    void printArrow(const ClassRecord& record)
    {
        const Lineage& lineage = m_hierarchy.of(record);
        if (lineage.kind == SuperKind::None)
            return;
        std::string super = lineage.super ? superNode(*lineage.super) : missingNode(record.super);
        m_out << "    " << nodeOf(record) << " -> " << super << ";\n";
    }

    [[nodiscard]] static std::string enums(const ClassRecord& record)
    {
        std::string lines;
        for (const EnumRecord& metaEnum : record.enums)
            lines += line("enum " + enumeration(metaEnum));
        return lines;
    }

    [[nodiscard]] std::string properties(const ClassRecord& record) const
    {
        std::string lines;
        for (const PropertyRecord& property : record.properties) {
            std::string text = shownName(property.name) + ": " + shownType(property.type);
            std::string limit = accessLimit(property);
            if (!limit.empty())
                text += ", " + limit;
            if (auto event = m_hierarchy.changeEvent(record, property))
                text += ", notifies " + *event;
            lines += line(text);
        }
        return lines;
    }

    [[nodiscard]] static std::string invokables(const ClassRecord& record, bool events)
    {
        std::string lines;
        for (const InvokableRecord& invokable : record.invokables)
            if (invokable.isEvent == events)
                lines += line((events ? "event " : "") + signature(invokable));
        return lines;
    }

    void printNode(const std::string& node, const std::string& text, std::string_view style)
    {
        m_out << "    " << node << " [label=" << inQuotes(text);
        if (!style.empty())
            m_out << ", " << style;
        m_out << "];\n";
    }

    std::string nodeOf(const ClassRecord& record)
    {
        auto [entry, isNew] = m_nodes.try_emplace(&record, "c" + std::to_string(m_nodes.size()));
        return entry->second;
    }

    std::string missingNode(const std::string& name)
    {
        auto [entry, isNew] =
            m_missing.try_emplace(name, "missing" + std::to_string(m_missing.size()));
        if (isNew)
            printNode(entry->second, label(shownName(name)), "style=dashed");
        return entry->second;
    }

    /// Those to be shown have their nodes already. One of the library's classes comes with the line
    /// above it.
    std::string superNode(const ClassRecord& record)
    {
        bool isNew = !m_nodes.count(&record);
        std::string node = nodeOf(record);
        if (!isNew)
            return node;
        bool isOfLibrary = Hierarchy::isOfLibrary(record);
        printNode(node, label(shownName(record.name)),
                  isOfLibrary ? "style=filled, fillcolor=lightgrey" : "");
        if (isOfLibrary)
            printArrow(record);
        return node;
    }

    std::ostream& m_out;
    const Hierarchy& m_hierarchy;
    std::unordered_map<const ClassRecord*, std::string> m_nodes;
    std::map<std::string, std::string> m_missing; // hashes can be made to collide
};
} // namespace

void printDot(std::ostream& out, const std::vector<Contents>& files, const Hierarchy& hierarchy)
{
    Diagram(out, hierarchy).print(files);
}
} // namespace dump
