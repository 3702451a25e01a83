#include "methodbody.h"

#include "fit.h"
#include "members.h"
#include "mistake.h"

#include <zintar/base.h>
#include <zintar/checked.h>
#include <zintar/kind.h>
#include <zintar/reference.h>
#include <zintar/typedvalue.h>

#include <algorithm>
#include <limits>

namespace scene
{
namespace
{
/// Whether every value of the one type has a place in the other.
bool alwaysFits(const ZTMetaType& from, const ZTMetaType& to)
{
    const ZTKind source = ztKind(from);
    const ZTKind target = ztKind(to);
    return from == to || to == ztMetaType<ZTVariant>() || target == ZTKind::Text ||
           (source == ZTKind::Integer && target == ZTKind::Floating && source.bits < target.bits);
}

bool isNumber(const ZTMetaType& type)
{
    const ZTKind kind = ztKind(type);
    return isValueType(type) && (kind == ZTKind::Integer || kind == ZTKind::Floating);
}

/// A whole number that would leave its range stays at the end of it.
ZTVariant sum(const ZTVariant& a, const ZTVariant& b)
{
    if (a.type() == ztMetaType<double>())
        return ZTVariant(ztVariantValue<double>(a) + ztVariantValue<double>(b));
    using Limits = std::numeric_limits<int>;
    long long whole = static_cast<long long>(ztVariantValue<int>(a)) + ztVariantValue<int>(b);
    return ZTVariant(static_cast<int>(std::clamp<long long>(whole, Limits::min(), Limits::max())));
}
} // namespace

class MethodBody::Reader
{
public:
    explicit Reader(const ZTMetaClass& metaClass) : m_class(metaClass) {}

    MethodBody read(const Node& node)
    {
        node.allowOnly({"parameters", "do"});
        readParameters(node);
        (void)node["do"];
        for (const Node& step : node.elements("do"))
            m_body.m_steps.push_back(readStep(step));
        return std::move(m_body);
    }

private:
    void readParameters(const Node& node)
    {
        for (const auto& [name, type] : node.members("parameters")) {
            if (m_body.m_parameterNames.size() == ZTMetaInvokable::MaxParamCount)
                throw Mistake(type.place(), "a method has at most " +
                                                std::to_string(ZTMetaInvokable::MaxParamCount) +
                                                " parameters");
            m_body.m_parameterNames.push_back(name);
            m_body.m_parameterTypes.push_back(&readType(type));
        }
    }

    Step readStep(const Node& node) const
    {
        if (node.has("set"))
            return readSet(node);
        if (node.has("add"))
            return readAdd(node);
        if (node.has("raise"))
            return readRaise(node);
        throw Mistake(node.place(), "a step has one of set, add, raise");
    }

    Step readSet(const Node& node) const
    {
        node.allowOnly({"set", "value"});
        const ZTMetaProperty& property = ownProperty(node["set"]);
        if (!property.canSet())
            throw Mistake(node["set"].place(), fullName(property) + " can only be read");
        return Set{std::string(property.name()),
                   readOperand(node["value"], fullName(property), property.metaType())};
    }

    Step readAdd(const Node& node) const
    {
        node.allowOnly({"add", "value"});
        const ZTMetaProperty& property = ownProperty(node["add"]);
        if (!property.canSet() || !isNumber(property.metaType()))
            throw Mistake(node["add"].place(),
                          fullName(property) + " is not a number that can be set");
        return Add{std::string(property.name()),
                   readOperand(node["value"], fullName(property), property.metaType())};
    }

    Step readRaise(const Node& node) const
    {
        node.allowOnly({"raise", "arguments"});
        std::string name = node["raise"].name();
        auto events = invokablesNamed(m_class, Kind::Event, name);
        if (events.empty())
            throw Mistake(node["raise"].place(), unknownInvokable(m_class, Kind::Event, name));
        auto given = node.elements("arguments");
        for (const ZTMetaInvokable* event : events) {
            if (event->parameterCount() != given.size())
                continue;
            Raise raise{static_cast<unsigned int>(event->index()), {}};
            for (unsigned int i = 0; i < given.size(); ++i)
                raise.arguments.push_back(
                    readOperand(given[i], nameOf(*event, i), event->parameterMetaType(i)));
            return raise;
        }
        throw Mistake(node.place(), name + parametersOf(*events[0]) + " cannot be raised with " +
                                        std::to_string(given.size()) + " argument" +
                                        (given.size() == 1 ? "" : "s"));
    }

    const ZTMetaProperty& ownProperty(const Node& node) const
    {
        std::string name = node.name();
        auto property = ztTryFindProperty(m_class, name);
        if (!property)
            throw Mistake(node.place(), property.error());
        return **property;
    }

    std::string fullName(const ZTMetaProperty& property) const
    {
        return nameOf(m_class) + "." + std::string(property.name());
    }

    /// @param where  what the value is for
    Operand readOperand(const Node& node, const std::string& where, const ZTMetaType& type) const
    {
        if (!node.isObject())
            return {fit(node, where, type), &type};
        node.allowOnly({"parameter", "property"});
        if (node.has("parameter") == node.has("property"))
            throw Mistake(node.place(), "a value is plain, or has one of parameter, property");
        const ZTMetaType* given = nullptr;
        Operand operand{{}, &type};
        if (node.has("parameter")) {
            unsigned int index = parameterNamed(node["parameter"]);
            operand.source = OfParameter{index};
            given = m_body.m_parameterTypes[index];
        } else {
            const ZTMetaProperty& property = ownProperty(node["property"]);
            operand.source = OfProperty{std::string(property.name())};
            given = &property.metaType();
        }
        if (!alwaysFits(*given, type))
            throw Mistake(node.place(), "a value of type " + nameOf(*given) + " does not fit " +
                                            where + " of type " + nameOf(type));
        return operand;
    }

    unsigned int parameterNamed(const Node& node) const
    {
        std::string name = node.name();
        const std::vector<std::string>& known = m_body.m_parameterNames;
        auto found = std::find(known.begin(), known.end(), name);
        if (found != known.end())
            return static_cast<unsigned int>(found - known.begin());
        throw Mistake(node.place(), "the method has no parameter \"" + name + "\"; it has " +
                                        (known.empty() ? "none" : listed(known)));
    }

    const ZTMetaClass& m_class;
    MethodBody m_body;
};

/// One call of a method; an overload for each kind of step.
class MethodBody::Runner
{
public:
    Runner(ZTBase& object, const ZTArgumentArray& arguments)
        : m_object(object), m_arguments(arguments)
    {}

    void operator()(const Set& set) const
    {
        m_object.setProperty(set.property, valueOf(set.value));
    }

    void operator()(const Add& add) const
    {
        m_object.setProperty(add.property,
                             sum(m_object.property(add.property), valueOf(add.value)));
    }

    void operator()(const Raise& raise) const
    {
        ZTArgumentArray arguments;
        for (std::size_t i = 0; i < raise.arguments.size(); ++i)
            arguments[i] = valueOf(raise.arguments[i]);
        const ZTMetaInvokable* event = m_object.metaClass()->invokable(raise.event);
        event->invoke(ZTVariant(&m_object), arguments);
    }

private:
    ZTVariant valueOf(const Operand& operand) const
    {
        ZTVariant value;
        if (const auto* literal = std::get_if<ZTVariant>(&operand.source))
            value = *literal;
        else if (const auto* parameter = std::get_if<OfParameter>(&operand.source))
            value = m_arguments[parameter->index];
        else
            value = m_object.property(std::get<OfProperty>(operand.source).name);
        return ztTryConvert(value, *operand.type).valueOr(ZTVariant(*operand.type, nullptr));
    }

    ZTBase& m_object;
    const ZTArgumentArray& m_arguments;
};

MethodBody MethodBody::read(const Node& node, const ZTMetaClass& metaClass)
{
    return Reader(metaClass).read(node);
}

void MethodBody::run(ZTBase& object, const ZTArgumentArray& arguments) const
{
    ZTRef<ZTBase> living(&object);
    for (const Step& step : m_steps) {
        if (!living.get())
            return;
        std::visit(Runner(object, arguments), step);
    }
}
} // namespace scene
