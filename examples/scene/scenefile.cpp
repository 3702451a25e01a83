#include "scenefile.h"

#include "classdeclarations.h"
#include "converters.h"
#include "fit.h"
#include "jsonfile.h"
#include "members.h"
#include "mistake.h"
#include "population.h"

#include <optional>

namespace scene
{
namespace
{
class SceneReader
{
public:
    explicit SceneReader(const Classes& classes) : m_classes(classes) {}

    ScenePlan read(const Node& file)
    {
        file.allowOnly({"classes", "tree", "connections", "actions"});
        ScenePlan plan;
        plan.root = readObject(file["tree"], {});
        for (const Node& node : file.elements("connections"))
            plan.connections.push_back(readConnection(node));
        for (const Node& node : file.elements("actions"))
            plan.actions.push_back(readAction(node));
        return plan;
    }

private:
    ObjectPlan readObject(const Node& node, const std::string& parent)
    {
        node.allowOnly({"class", "name", "properties", "dynamic", "children"});
        ObjectPlan object;
        object.sceneClass = &m_classes.named(node["class"].name(), node["class"].place());
        object.name = node["name"].name();
        const ZTMetaClass& metaClass = *object.sceneClass->metaClass;
        m_population.add(object.name, metaClass, parent, node["name"].place());
        for (const auto& [name, value] : node.members("properties"))
            object.properties.push_back(readDeclared(metaClass, name, value, value));
        for (const auto& [name, value] : node.members("dynamic"))
            object.properties.push_back(readDynamic(metaClass, name, value, value));
        for (const Node& child : node.elements("children"))
            object.children.push_back(readObject(child, object.name));
        return object;
    }

    /// @param naming  where the file names the property
    static PropertyPlan readDeclared(const ZTMetaClass& metaClass, const std::string& name,
                                     const Node& naming, const Node& value)
    {
        const ZTMetaProperty* property = metaClass.property(name);
        if (!property)
            throw Mistake(naming.place(), unknownProperty(metaClass, name));
        std::string fullName = nameOf(metaClass) + "." + name;
        if (!property->canSet())
            throw Mistake(naming.place(), fullName + " can only be read");
        return {name, fit(value, fullName, property->metaType()), false};
    }

    static PropertyPlan readDynamic(const ZTMetaClass& metaClass, const std::string& name,
                                    const Node& naming, const Node& value)
    {
        if (metaClass.property(name))
            throw Mistake(naming.place(), nameOf(metaClass) + "." + name +
                                              " is a property of the class, not a dynamic one");
        if (!isName(name))
            throw Mistake(naming.place(), "a property needs a name of printable characters");
        return {name, value.value(), true};
    }

    ConnectionPlan readConnection(const Node& node) const
    {
        node.allowOnly({"from", "event", "to", "method"});
        ConnectionPlan connection{node.place(), node["from"].name(), nullptr, node["to"].name(),
                                  nullptr};
        auto events = find(Kind::Event, connection.sender, node["from"], node["event"]);
        auto methods = find(Kind::Method, connection.receiver, node["to"], node["method"]);
        for (const ZTMetaInvokable* event : events) {
            for (const ZTMetaInvokable* method : methods) {
                if (!takes(*method, *event))
                    continue;
                connection.event = event;
                connection.method = method;
                return connection;
            }
        }
        throw Mistake(node.place(), std::string(methods[0]->name()) + parametersOf(*methods[0]) +
                                        " of " + connection.receiver + " cannot take what " +
                                        std::string(events[0]->name()) + parametersOf(*events[0]) +
                                        " of " + connection.sender + " sends");
    }

    /// The methods or events of the object that bear the name; at least one.
    std::vector<const ZTMetaInvokable*> find(Kind kind, const std::string& object,
                                             const Node& objectNode, const Node& nameNode) const
    {
        const ZTMetaClass& metaClass = m_population.classOf(object, objectNode.place());
        std::string name = nameNode.name();
        auto found = invokablesNamed(metaClass, kind, name);
        if (found.empty())
            throw Mistake(nameNode.place(), unknownInvokable(metaClass, kind, name));
        return found;
    }

    ActionPlan readAction(const Node& node)
    {
        if (node.has("set"))
            return readSet(node);
        if (node.has("call"))
            return readCall(node);
        if (node.has("move"))
            return readMove(node);
        if (node.has("delete"))
            return readDelete(node);
        throw Mistake(node.place(), "an action has one of set, call, move, delete");
    }

    ActionPlan readSet(const Node& node) const
    {
        node.allowOnly({"set", "property", "value", "dynamic"});
        ActionPlan action{node.place(), node["set"].name(), {}};
        const ZTMetaClass& metaClass = m_population.classOf(action.object, node["set"].place());
        bool dynamic = node.has("dynamic") && node["dynamic"].truth();
        auto read = dynamic ? &readDynamic : &readDeclared;
        std::string name = node["property"].name();
        action.what = SetProperty{read(metaClass, name, node["property"], node["value"])};
        return action;
    }

    ActionPlan readCall(const Node& node) const
    {
        node.allowOnly({"call", "method", "arguments"});
        ActionPlan action{node.place(), node["call"].name(), {}};
        auto methods = find(Kind::Method, action.object, node["call"], node["method"]);
        auto given = node.elements("arguments");
        std::optional<Mistake> misfitting;
        for (const ZTMetaInvokable* method : methods) {
            if (method->parameterCount() != given.size())
                continue;
            CallMethod call{method, {}};
            auto wrong = readArguments(given, call);
            if (!wrong) {
                action.what = std::move(call);
                return action;
            }
            if (!misfitting)
                misfitting = wrong;
        }
        if (misfitting)
            throw *misfitting;
        throw Mistake(node.place(), std::string(methods[0]->name()) + parametersOf(*methods[0]) +
                                        " of " + action.object + " cannot be called with " +
                                        std::to_string(given.size()) + " argument" +
                                        (given.size() == 1 ? "" : "s"));
    }

    /// @return what does not fit
    static std::optional<Mistake> readArguments(const std::vector<Node>& given, CallMethod& call)
    {
        for (unsigned int i = 0; i < given.size(); ++i) {
            const ZTMetaType& type = call.method->parameterMetaType(i);
            auto fitting = convert(given[i].value(), type);
            if (!fitting)
                return misfit(given[i],
                              "parameter " + std::to_string(i + 1) + " of " +
                                  std::string(call.method->name()),
                              type);
            call.arguments[i] = *std::move(fitting);
        }
        return std::nullopt;
    }

    ActionPlan readMove(const Node& node)
    {
        node.allowOnly({"move", "to"});
        ActionPlan action{node.place(), node["move"].name(), MoveObject{node["to"].name()}};
        const std::string& parent = std::get<MoveObject>(action.what).parent;
        m_population.classOf(action.object, node["move"].place());
        m_population.classOf(parent, node["to"].place());
        m_population.move(action.object, parent, node.place());
        return action;
    }

    ActionPlan readDelete(const Node& node)
    {
        node.allowOnly({"delete"});
        ActionPlan action{node.place(), node["delete"].name(), DeleteObject{}};
        m_population.classOf(action.object, node["delete"].place());
        m_population.remove(action.object, node.place());
        return action;
    }

    const Classes& m_classes;
    Population m_population;
};
} // namespace

ScenePlan readScene(const std::string& file, Classes& classes)
{
    Json document = readJson(file);
    Node scene(document);
    declareClasses(scene, classes);
    return SceneReader(classes).read(scene);
}
} // namespace scene
