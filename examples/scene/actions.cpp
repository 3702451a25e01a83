#include "actions.h"

#include "mistake.h"

#include <zintar/metaclass.h>

#include <variant>

namespace scene
{
namespace
{
/// One action on an object; an overload for each kind.
class Step
{
public:
    Step(const ActionPlan& action, const Scene& scene, Trace& trace)
        : m_action(action), m_scene(scene), m_trace(trace), m_object(living(action.object))
    {}

    void operator()(const PropertyPlan& set) const
    {
        const auto& [name, value, dynamic] = set;
        m_trace.line("set " + m_action.object + "." + name + " = " + m_trace.show(value) +
                     (dynamic ? " (dynamic)" : ""));
        Trace::Level nested(m_trace);
        m_object.setProperty(name, value, dynamic);
    }

    void operator()(const ZTCheckedCall& call) const
    {
        const ZTMetaInvokable& method = *call.invokable;
        m_trace.line("call " + m_action.object + "." + std::string(method.name()) +
                     m_trace.show(call.arguments, method.parameterCount()));
        Trace::Level nested(m_trace);
        ZTVariant result = method.invoke(ZTVariant(&m_object), call.arguments);
        if (result.isValid())
            m_trace.line("returned " + m_trace.show(result));
    }

    void operator()(const MoveObject& move) const
    {
        ZTBase& parent = living(move.parent);
        if (findBelow(m_object, [&](const ZTBase* object) { return object == &parent; }))
            throw Mistake(m_action.place, "\"" + move.parent + "\" has come below \"" +
                                              m_action.object + "\" by a method");
        m_trace.line("move " + m_action.object + " to " + move.parent);
        Trace::Level nested(m_trace);
        m_object.setParent(&parent);
    }

    void operator()(const DeleteObject&) const
    {
        m_trace.line("delete " + m_action.object);
        Trace::Level nested(m_trace);
        delete &m_object;
    }

private:
    ZTBase& living(const std::string& name) const
    {
        if (ZTBase* object = m_scene.find(name))
            return *object;
        throw Mistake(m_action.place, "\"" + name + "\" is gone, deleted by a method");
    }

    const ActionPlan& m_action;
    const Scene& m_scene;
    Trace& m_trace;
    ZTBase& m_object;
};
} // namespace

void carryOut(const std::vector<ActionPlan>& actions, Scene& scene, Trace& trace)
{
    Trace::Level nested(trace);
    for (const ActionPlan& action : actions) {
        std::visit(Step(action, scene, trace), action.what);
        if (std::string place = trace.takeTooDeep(); !place.empty())
            throw Mistake(place, "deliveries nest more than " +
                                     std::to_string(Trace::deepestDelivery) +
                                     " deep; do the connections run in a circle?");
    }
}
} // namespace scene
