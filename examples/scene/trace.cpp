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

void Trace::deliver(const ConnectionPlan& connection, ZTBase& receiver,
                    const ZTArgumentArray& values)
{
    if (refusesDelivery(connection.place))
        return;
    const ZTMetaInvokable& event = *connection.event;
    line(connection.sender + "." + std::string(event.name()) +
         show(values, event.parameterCount()) + " -> " + connection.receiver + "." +
         std::string(connection.method->name()));
    Level nested(*this);
    connection.method->invoke(ZTVariant(&receiver), values);
}
} // namespace scene
