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
                type.fail("a method has at most " + std::to_string(ZTMetaInvokable::MaxParamCount) +
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
        node.fail("a step has one of set, add, raise");
    }

    Step readSet(const Node& node) const
    {
        node.allowOnly({"set", "value"});
        const ZTMetaProperty& property = ownProperty(node["set"]);
        if (!property.canSet())
            node["set"].fail(fullName(property) + " can only be read");
        return [name = std::string(property.name()),
                value = readOperand(node["value"], fullName(property), property.metaType())](
                   ZTBase& object, const ZTArgumentArray& arguments) {
            object.setProperty(name, value(object, arguments));
        };
    }

    Step readAdd(const Node& node) const
    {
        node.allowOnly({"add", "value"});
        const ZTMetaProperty& property = ownProperty(node["add"]);
        if (!property.canSet() || !isNumber(property.metaType()))
            node["add"].fail(fullName(property) + " is not a number that can be set");
        return [name = std::string(property.name()),
                value = readOperand(node["value"], fullName(property), property.metaType())](
                   ZTBase& object, const ZTArgumentArray& arguments) {
            object.setProperty(name, sum(object.property(name), value(object, arguments)));
        };
    }

    Step readRaise(const Node& node) const
    {
        node.allowOnly({"raise", "arguments"});
        std::string name = node["raise"].name();
        auto events = invokablesNamed(m_class, Kind::Event, name);
        if (events.empty())
            node["raise"].fail(unknownInvokable(m_class, Kind::Event, name));
        auto given = node.elements("arguments");
        for (const ZTMetaInvokable* event : events) {
            if (event->parameterCount() != given.size())
                continue;
            std::vector<Operand> values;
            for (unsigned int i = 0; i < given.size(); ++i)
                values.push_back(
                    readOperand(given[i], nameOf(*event, i), event->parameterMetaType(i)));
            return [index = static_cast<unsigned int>(event->index()),
                    values](ZTBase& object, const ZTArgumentArray& arguments) {
                ZTArgumentArray carried;
                for (std::size_t i = 0; i < values.size(); ++i)
                    carried[i] = values[i](object, arguments);
                object.metaClass()->invokable(index)->invoke(ZTVariant(&object), carried);
            };
        }
        node.fail(name + parametersOf(*events[0]) + " cannot be raised with " +
                  std::to_string(given.size()) + " argument" + (given.size() == 1 ? "" : "s"));
    }

    const ZTMetaProperty& ownProperty(const Node& node) const
    {
        std::string name = node.name();
        auto property = ztTryFindProperty(m_class, name);
        if (!property)
            node.fail(property.error());
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
            return [value = fit(node, where, type)](const auto&...) { return value; };
        node.allowOnly({"parameter", "property"});
        if (node.has("parameter") == node.has("property"))
            node.fail("a value is plain, or has one of parameter, property");
        auto converter = [&](const ZTMetaType& given) {
            if (!alwaysFits(given, type))
                node.fail("a value of type " + nameOf(given) + " does not fit " + where +
                          " of type " + nameOf(type));
            return [&type](const ZTVariant& value) {
                return ztTryConvert(value, type).valueOr(ZTVariant(type, nullptr));
            };
        };
        if (node.has("parameter")) {
            std::size_t index = parameterNamed(node["parameter"]);
            return [index, convert = converter(*m_body.m_parameterTypes[index])](
                       const ZTBase&, const ZTArgumentArray& arguments) {
                return convert(arguments[index]);
            };
        }
        const ZTMetaProperty& property = ownProperty(node["property"]);
        return [name = std::string(property.name()), convert = converter(property.metaType())](
                   const ZTBase& object, const ZTArgumentArray&) {
            return convert(object.property(name));
        };
    }

    std::size_t parameterNamed(const Node& node) const
    {
        std::string name = node.name();
        const std::vector<std::string>& known = m_body.m_parameterNames;
        auto found = std::find(known.begin(), known.end(), name);
        if (found != known.end())
            return static_cast<std::size_t>(found - known.begin());
        node.fail("the method has no parameter \"" + name + "\"; it has " +
                  (known.empty() ? "none" : listed(known)));
    }

    const ZTMetaClass& m_class;
    MethodBody m_body;
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
        step(object, arguments);
    }
}
} // namespace scene
