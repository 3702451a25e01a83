#include "classdeclarations.h"

#include "classes.h"
#include "declaredclass.h"
#include "fit.h"
#include "members.h"
#include "mistake.h"

#include <zintar/classes.h>
#include <zintar/classstore.h>

#include <algorithm>
#include <map>

namespace scene
{
namespace
{
/// Makes each class behind its super class, whatever their order in the file is.
class ClassReader
{
public:
    explicit ClassReader(ZTClassStore& store) : m_store(store) {}

    void read(const std::vector<Node>& nodes)
    {
        for (const Node& node : nodes) {
            node.allowOnly({"name", "super", "properties", "events", "methods"});
            std::string name = node["name"].name();
            auto [known, isNew] = m_waiting.emplace(name, node);
            if (!isNew)
                node["name"].fail("the class \"" + name + "\" is declared by " +
                                  known->second.place() + " already");
        }
        for (const Node& node : nodes)
            if (std::string name = node["name"].name(); !m_store.find(name))
                make(name);
    }

private:
    void make(const std::string& name)
    {
        const Node& node = m_waiting.at(name);
        ZTMetaClassBuilder builder;
        builder.setTypeName(name);
        builder.setSuperClass(&readSuperClass(name, node));
        readEvents(node, builder);
        readProperties(node, builder);
        readMethods(node, builder);
        m_store.add(finishClass(builder, node.pointer()));
    }

    const ZTMetaClass& readSuperClass(const std::string& name, const Node& node)
    {
        Node superNode = node["super"];
        std::string super = superNode.name();
        if (m_waiting.contains(super) && !m_store.find(super)) {
            m_open.push_back(name);
            refuseCircle(super, superNode);
            make(super);
            m_open.pop_back();
        }
        if (const ZTMetaClass* known = superClassNamed(super))
            return *known;
        if (ztClass(super))
            superNode.fail(super + " cannot be a super class: it does not derive from "
                                   "ZTDynamicBase");
        superNode.fail("unknown super class \"" + super + "\"; known are " +
                       namesOf(superClasses()));
    }

    void refuseCircle(const std::string& super, const Node& node) const
    {
        auto first = std::find(m_open.begin(), m_open.end(), super);
        if (first != m_open.end())
            node.fail("the super classes run in a circle: " + listed({first, m_open.end()}, " : ") +
                      " : " + super);
        if (m_open.size() > deepestChain)
            node.fail("more than " + std::to_string(deepestChain) +
                      " classes derive from each other");
    }

    static void readEvents(const Node& node, ZTMetaClassBuilder& builder)
    {
        for (const auto& [name, types] : node.members("events")) {
            std::vector<const ZTMetaType*> parameterTypes;
            for (const Node& type : node["events"].elements(name.c_str()))
                parameterTypes.push_back(&readType(type));
            auto event = builder.addInvokable();
            event.setName(name);
            event.setEvent(parameterTypes);
            event.setAccessSpecifier(ZTAccessSpecifier::Public);
        }
    }

    static void readProperties(const Node& node, ZTMetaClassBuilder& builder)
    {
        for (const auto& [name, described] : node.members("properties")) {
            described.allowOnly({"type", "start", "event"});
            auto property = builder.addProperty();
            property.setName(name);
            property.setMetaType(readType(described["type"]));
            if (described.has("start")) {
                ZTVariant start =
                    fit(described["start"], std::string(builder.typeName()) + "." + name,
                        property.metaType());
                property.addPropInfo(startKey, textOf(start));
            }
            if (described.has("event"))
                linkChangeEvent(described["event"], node, builder, property);
        }
    }

    static void linkChangeEvent(const Node& node, const Node& declaration,
                                ZTMetaClassBuilder& builder, ZTMetaPropertyBuilder& property)
    {
        std::string name = node.name();
        if (builder.indexOfInvokable(name) >= 0)
            return property.setChangeEvent(builder.invokable(name));
        std::vector<std::string> known;
        for (const auto& [event, types] : declaration.members("events"))
            known.push_back(event);
        node.fail(std::string(builder.typeName()) + " declares no event \"" + name +
                  "\"; it declares " + (known.empty() ? "none" : listed(known)));
    }

    static void readMethods(const Node& node, ZTMetaClassBuilder& builder)
    {
        for (const auto& [name, described] : node.members("methods")) {
            auto method = builder.addInvokable();
            method.setName(name);
            method.setReturnMetaType(ztMetaType<void>());
            method.setAccessSpecifier(ZTAccessSpecifier::Public);
            auto body = builder.addClassInfo();
            body.setKey(std::string(methodKey) + name);
            body.setValue(described.written());
        }
    }

    static constexpr std::size_t deepestChain = 60;

    ZTClassStore& m_store;
    std::map<std::string, Node> m_waiting;
    std::vector<std::string> m_open; ///< waiting for their super classes
};
} // namespace

void declareClasses(const Node& scene, ZTClassStore& store)
{
    ClassReader(store).read(scene.elements("classes"));
}
} // namespace scene
