#pragma once

#include "names.h"
#include "plan.h"

#include <zintar/base.h>

#include <iosfwd>
#include <string>
#include <utility>

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
    /// The handler of a connection: tells of the event, and hands it on to the method.
    void deliver(const ConnectionPlan& connection, ZTBase& receiver, const ZTArgumentArray& values);
    /// More than any chain of causes that a file means; a circle of connections has no end.
    static constexpr int deepestDelivery = 20;

private:
    /// Also true for the first delivery that would be nested too deep, whose place is kept.
    bool refusesDelivery(const std::string& place);

    std::ostream& m_out;
    const Names& m_names;
    int m_depth = 0;
    std::string m_tooDeep;
};
} // namespace scene
