#include "scene.h"

#include <zintar/create.h>
#include <zintar/metaclass.h>

namespace scene
{
Scene::Scene(const ScenePlan& plan, Names& names, Trace& trace) : m_names(names)
{
    if (plan.root)
        build(*plan.root, &m_top);
    for (const ConnectionPlan& connection : plan.connections)
        connect(connection, trace);
}

void Scene::build(const ObjectPlan& plan, ZTBase* parent)
{
    ZTBase* object = ztCreate(*plan.metaClass, parent);
    m_names.add(object, plan.name);
    for (const PropertyPlan& property : plan.properties)
        object->setProperty(property.name, property.value, property.dynamic);
    for (const ObjectPlan& child : plan.children)
        build(child, object);
}

void Scene::connect(const ConnectionPlan& plan, Trace& trace)
{
    ZTBase* receiver = find(plan.receiver);
    m_subscriptions.emplace_back(
        ZTBase::subscribe(find(plan.sender), plan.event, receiver,
                          [&plan, &trace, receiver](const ZTArgumentArray& values) {
                              trace.deliver(plan, *receiver, values);
                          }));
}

ZTBase* findBelow(const ZTBase& top, const std::function<bool(const ZTBase*)>& isMeant)
{
    for (ZTBase* child : top.children()) {
        if (isMeant(child))
            return child;
        if (ZTBase* found = findBelow(*child, isMeant))
            return found;
    }
    return nullptr;
}

ZTBase* Scene::find(const std::string& name) const
{
    const ZTBase* address = m_names.addressOf(name);
    return findBelow(m_top, [&](const ZTBase* object) { return object == address; });
}
} // namespace scene
