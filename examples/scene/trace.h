#pragma once

#include "names.h"
#include "plan.h"

#include <zintar/staticmetaclass.h>

#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

namespace scene
{
/// Prints what happens, each delivery below the one that caused it.
class Trace
{
public:
    Trace(std::ostream& out, const Names& names) : m_out(out), m_names(names) {}

    /// A line at the present depth.
    void line(const std::string& text) const;
    std::string show(const ZTVariant& value) const;
    std::string show(const ZTArgumentArray& arguments, unsigned int count) const;

    /// What happens as long as it lives is told one level further in.
    class Level
    {
    public:
        explicit Level(Trace& trace) : m_trace(trace) { ++m_trace.m_depth; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;
        ~Level() { --m_trace.m_depth; }

    private:
        Trace& m_trace;
    };

    /// The place of the connection whose delivery was nested too deep since the last call, or
    /// empty. Until it has been asked for, nothing is delivered.
    std::string takeTooDeep() { return std::exchange(m_tooDeep, {}); }
    /// Also true for the first delivery that would be nested too deep, whose place is kept.
    bool refusesDelivery(const std::string& place);
    /// More than any chain of causes that a file means; a circle of connections has no end.
    static constexpr int deepestDelivery = 20;

private:
    std::ostream& m_out;
    const Names& m_names;
    int m_depth = 0;
    std::string m_tooDeep;
};

/// The handler of a connection: the method itself, told of before each call.
///
/// It stands in for the method's own descriptor, with the method's name and parameters, so that
/// the library checks and ends the subscription as if it were the method: the receiver is the
/// subscriber, and knows the sender while it is called.
class TracedMethod : public ZTStaticMetaInvokable
{
public:
    TracedMethod(const ConnectionPlan& connection, Trace& trace);
    TracedMethod(const TracedMethod&) = delete; // the base class points into the object
    TracedMethod& operator=(const TracedMethod&) = delete;

    ZTVariant invoke(const ZTVariant& object, const ZTArgumentArray& arguments) const override;
    using ZTStaticMetaInvokable::invoke;

private:
    const ConnectionPlan& m_connection;
    Trace& m_trace;
    std::vector<const ZTMetaType*> m_parameterTypes;
    zt::detail::ZTStaticMetaInvokableData m_record;
};
} // namespace scene
