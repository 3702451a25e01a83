#include "trace.h"

#include "print.h"

#include <ostream>

namespace scene
{
void Trace::line(const std::string& text) const
{
    m_out << std::string(4 * static_cast<std::size_t>(m_depth), ' ') << text << "\n";
}

std::string Trace::show(const ZTVariant& value) const { return shown(value, m_names); }

std::string Trace::show(const ZTArgumentArray& arguments, unsigned int count) const
{
    return shown(arguments, count, m_names);
}

bool Trace::refusesDelivery(const std::string& place)
{
    // Noted instead of thrown: the delivery may be one that a destructor sends.
    // The action is at the first level, and what it causes begins at the second.
    if (m_depth > deepestDelivery + 1 && m_tooDeep.empty())
        m_tooDeep = place;
    return !m_tooDeep.empty();
}

TracedMethod::TracedMethod(const ConnectionPlan& connection, Trace& trace)
    : ZTStaticMetaInvokable(&m_record), m_connection(connection), m_trace(trace)
{
    const ZTMetaInvokable& method = *connection.method;
    for (unsigned int i = 0; i < method.parameterCount(); ++i)
        m_parameterTypes.push_back(&method.parameterMetaType(i));
    m_record.name = method.name();
    m_record.isConst = method.isConst();
    m_record.returnMetaType = &method.returnMetaType();
    m_record.parameterCount = method.parameterCount();
    m_record.parameterMetaTypes = m_parameterTypes.data();
}

ZTVariant TracedMethod::invoke(const ZTVariant& object, const ZTArgumentArray& arguments) const
{
    if (m_trace.refusesDelivery(m_connection.place))
        return {};
    const ZTMetaInvokable& event = *m_connection.event;
    m_trace.line(m_connection.sender + "." + std::string(event.name()) +
                 m_trace.show(arguments, event.parameterCount()) + " -> " + m_connection.receiver +
                 "." + std::string(name()));
    Trace::Level nested(m_trace);
    return m_connection.method->invoke(object, arguments);
}
} // namespace scene
