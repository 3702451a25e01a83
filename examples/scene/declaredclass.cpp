#include "declaredclass.h"

#include "classes.h"
#include "fit.h"
#include "members.h"
#include "methodbody.h"
#include "mistake.h"

#include <zintar/checked.h>
#include <zintar/classes.h>
#include <zintar/typedvalue.h>

#include <set>

namespace scene
{
namespace
{
/// A chain of classes is walked by functions that call themselves: a file is not to exhaust the
/// stack.
constexpr int deepestClass = 60;

class Finisher
{
public:
    Finisher(ZTMetaClassBuilder& builder, Node::Place place)
        : m_builder(builder), m_place(std::move(place)), m_name(builder.typeName())
    {}

    std::unique_ptr<ZTMetaClass> finish()
    {
        checkClass();
        for (unsigned int i = 0; i < count(m_builder.invokableCount()); ++i)
            if (m_builder.invokable(i).isEvent())
                finishEvent(i);
        for (unsigned int i = 0; i < count(m_builder.propertyCount()); ++i)
            finishProperty(i);
        // The methods are checked against a class that has all else.
        std::unique_ptr<ZTMetaClass> shape(m_builder.toMetaClass());
        for (unsigned int i = 0; i < count(m_builder.invokableCount()); ++i)
            if (!m_builder.invokable(i).isEvent())
                finishMethod(i, *shape);
        return std::unique_ptr<ZTMetaClass>(m_builder.toMetaClass());
    }

private:
    static unsigned int count(int own) { return static_cast<unsigned int>(own); }

    [[noreturn]] static void fail(const Node::Place& place, const std::string& what)
    {
        throw Mistake(place.to_string(), what);
    }

    void checkClass() const
    {
        if (!isIdentifier(m_name))
            fail(m_place / "name", "a class needs a name of letters, digits and _");
        if (m_name.starts_with("ZT"))
            fail(m_place / "name", "names that begin with ZT are the library's");
        if (ztClass(m_name))
            fail(m_place / "name", "there is a class \"" + m_name + "\" already");
        int depth = 0;
        for (auto* super = m_builder.superClass(); super; super = super->superClass())
            ++depth;
        if (depth > deepestClass)
            fail(m_place,
                 "the class has more than " + std::to_string(deepestClass) + " super classes");
        if (!m_builder.superClass() || !superClassNamed(nameOf(*m_builder.superClass())))
            fail(m_place / "super", "the class does not derive from ZTDynamicBase");
    }

    /// Refuses a name that no member can have, or that another one has.
    void takeName(const std::string& name, const Node::Place& place, bool isMethod)
    {
        if (!isIdentifier(name))
            fail(place, "a member of a class needs a name of letters, digits and _");
        if (!m_taken.insert(name).second)
            fail(place, m_name + " has two members of the name \"" + name + "\"");
        const ZTMetaClass& super = *m_builder.superClass();
        bool isTaken = super.property(name) || !invokablesNamed(super, Kind::Event, name).empty() ||
                       (!isMethod && !invokablesNamed(super, Kind::Method, name).empty());
        if (isTaken)
            fail(place, nameOf(super) + " has a member \"" + name + "\" already");
    }

    void finishEvent(unsigned int index)
    {
        auto event = m_builder.invokable(index);
        std::string name(event.name());
        Node::Place place = m_place / "events" / name;
        takeName(name, place, false);
        auto types = event.parameterMetaTypes();
        if (types.size() > ZTMetaInvokable::MaxParamCount)
            fail(place, "an event or a method has at most " +
                            std::to_string(ZTMetaInvokable::MaxParamCount) + " parameters");
        for (const ZTMetaType* type : types)
            if (!isValueType(*type))
                fail(place, "a parameter cannot be of type " + nameOf(*type));
        event.setEvent(types);
    }

    void finishProperty(unsigned int index)
    {
        auto property = m_builder.property(index);
        std::string name(property.name());
        Node::Place place = m_place / "properties" / name;
        takeName(name, place, false);
        if (!isValueType(property.metaType()))
            fail(place, "a property cannot be of type " + nameOf(property.metaType()));
        checkChangeEvent(property, place);
        property.setStored(startOf(property, place));
    }

    static ZTVariant startOf(const ZTMetaPropertyBuilder& property, const Node::Place& place)
    {
        for (unsigned int i = 0; i < property.propInfoCount(); ++i) {
            if (property.propInfoKey(i) != startKey)
                continue;
            std::string text(property.propInfoValue(i));
            if (auto start = ztTryConvert(ZTVariant(text), property.metaType()))
                return *std::move(start);
            fail(place / "start", Json(text).dump(-1, ' ', true, Json::error_handler_t::replace) +
                                      " does not fit the type " + nameOf(property.metaType()));
        }
        return {property.metaType(), nullptr};
    }

    void checkChangeEvent(const ZTMetaPropertyBuilder& property, const Node::Place& place)
    {
        if (property.changeEventIndex() < 0)
            return;
        auto inherited = m_builder.superClass()->invokableCount();
        auto event =
            m_builder.invokable(static_cast<unsigned int>(property.changeEventIndex()) - inherited);
        auto types = event.parameterMetaTypes();
        bool fits = types.empty() || (types.size() == 1 && *types[0] == property.metaType());
        if (!event.isEvent() || !fits)
            fail(place / "event",
                 std::string(event.name()) + " cannot announce " + std::string(property.name()) +
                     ": it needs no parameter, or one of type " + nameOf(property.metaType()));
    }

    void finishMethod(unsigned int index, const ZTMetaClass& shape)
    {
        auto method = m_builder.invokable(index);
        std::string name(method.name());
        Node::Place place = m_place / "methods" / name;
        takeName(name, place, true);
        Json text = readBodyText(name, place);
        auto body = std::make_shared<const MethodBody>(MethodBody::read(Node(text, place), shape));
        method.setParameterMetaTypes(body->parameterTypes());
        method.setParameterNames(body->parameterNames());
        method.setFunction([body](const ZTVariant& object, const ZTArgumentArray& arguments) {
            if (auto* self = ztVariantValue<ZTBase*>(object))
                body->run(*self, arguments);
            return ZTVariant();
        });
    }

    Json readBodyText(const std::string& name, const Node::Place& place)
    {
        const std::string key = std::string(methodKey) + name;
        if (m_builder.indexOfClassInfo(key) < 0)
            fail(place, "the class does not say what the method does");
        try {
            return parseJson(std::string(m_builder.classInfo(key).value()));
        } catch (const Mistake& mistake) {
            fail(place, mistake.where() + " of what it does: " + mistake.what());
        }
    }

    ZTMetaClassBuilder& m_builder;
    Node::Place m_place;
    std::string m_name;
    std::set<std::string> m_taken;
};
} // namespace

std::unique_ptr<ZTMetaClass> finishClass(ZTMetaClassBuilder& builder, const Node::Place& place)
{
    return Finisher(builder, place).finish();
}
} // namespace scene
