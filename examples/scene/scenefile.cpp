#include "scenefile.h"

#include "classdeclarations.h"
#include "classes.h"
#include "fit.h"
#include "jsonfile.h"
#include "members.h"
#include "mistake.h"
#include "population.h"

#include <zintar/checked.h>

namespace scene
{
namespace
{
class SceneReader
{
public:
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
        object.metaClass = &classNamed(node["class"].name(), node["class"].place());
        object.name = node["name"].name();
        const ZTMetaClass& metaClass = *object.metaClass;
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
        auto property = ztTryFindProperty(metaClass, name);
        if (!property)
            naming.fail(property.error());
        const ZTVariant given = value.value();
        if (auto fitting = ztTryFit(given, metaClass, **property); !(*property)->canSet())
            naming.fail(fitting.error());
        return {name, fit(value, nameOf(metaClass) + "." + name, (*property)->metaType()), false};
    }

    static PropertyPlan readDynamic(const ZTMetaClass& metaClass, const std::string& name,
                                    const Node& naming, const Node& value)
    {
        if (metaClass.property(name))
            naming.fail(nameOf(metaClass) + "." + name +
                        " is a property of the class, not a dynamic one");
        if (!isName(name))
            naming.fail("a property needs a name of printable characters");
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
        node.fail(std::string(methods[0]->name()) + parametersOf(*methods[0]) + " of " +
                  connection.receiver + " cannot take what " + std::string(events[0]->name()) +
                  parametersOf(*events[0]) + " of " + connection.sender + " sends");
    }

    /// The methods or events of the object that bear the name; at least one.
    std::vector<const ZTMetaInvokable*> find(Kind kind, const std::string& object,
                                             const Node& objectNode, const Node& nameNode) const
    {
        const ZTMetaClass& metaClass = m_population.classOf(object, objectNode.place());
        std::string name = nameNode.name();
        auto found = invokablesNamed(metaClass, kind, name);
        if (found.empty())
            nameNode.fail(unknownInvokable(metaClass, kind, name));
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
        node.fail("an action has one of set, call, move, delete");
    }

    ActionPlan readSet(const Node& node) const
    {
        node.allowOnly({"set", "property", "value", "dynamic"});
        ActionPlan action{node.place(), node["set"].name(), {}};
        const ZTMetaClass& metaClass = m_population.classOf(action.object, node["set"].place());
        bool dynamic = node.has("dynamic") && node["dynamic"].truth();
        auto read = dynamic ? &readDynamic : &readDeclared;
        std::string name = node["property"].name();
        action.what = read(metaClass, name, node["property"], node["value"]);
        return action;
    }

    ActionPlan readCall(const Node& node) const
    {
        node.allowOnly({"call", "method", "arguments"});
        ActionPlan action{node.place(), node["call"].name(), {}};
        // Events are raised by their senders alone.
        auto methods = find(Kind::Method, action.object, node["call"], node["method"]);
        const std::vector<Node> given = node.elements("arguments");
        std::vector<ZTVariant> arguments;
        arguments.reserve(given.size());
        for (const Node& argument : given)
            arguments.push_back(argument.value());
        auto call = ztTryFindCall(m_population.classOf(action.object, node["call"].place()),
                                  methods[0]->name(), arguments);
        // What a converter would take, but the file cannot mean, is refused as well.
        const ZTMetaInvokable& method = call ? *call->invokable : *methods[0];
        const bool isMeant = call || methods.size() == 1;
        for (unsigned int i = 0; isMeant && i < given.size() && i < method.parameterCount(); ++i)
            (void)fit(given[i], nameOf(method, i), method.parameterMetaType(i));
        if (!call)
            node.fail(call.error());
        action.what = *std::move(call);
        return action;
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

    Population m_population;
};
} // namespace

ScenePlan readScene(const std::string& file, ZTClassStore& store)
{
    Json document = readJson(file);
    Node scene(document);
    declareClasses(scene, store);
    return SceneReader().read(scene);
}
} // namespace scene
