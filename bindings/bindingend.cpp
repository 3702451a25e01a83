#include "bindingend.h"

#include "../checked/sentences.h"
#include "../reflection/descriptorlives.h"

#include <zintar/checked.h>
#include <zintar/detail/lent.h>
#include <zintar/typedvalue.h>

#include <algorithm>

using zt::detail::LentVariant;
using zt::detail::memberName;

namespace
{
bool hasDynamicProperty(const ZTBase* object, std::string_view name)
{
    if (!object || object->metaClass()->property(name))
        return false;
    const auto names = object->dynamicProperties();
    return std::find(names.begin(), names.end(), name) != names.end();
}

ZTBase* objectIn(const ZTVariant& value)
{
    return value.type().metaClass() ? ztVariantValue<ZTBase*>(value) : nullptr;
}

/// Whether a change event brings nothing, the new value, or the new and the old one.
bool hasParametersOf(const ZTMetaInvokable& event, const ZTMetaProperty& property)
{
    if (event.parameterCount() > 2)
        return false;
    for (unsigned int i = 0; i < event.parameterCount(); ++i)
        if (&event.parameterMetaType(i) != &property.metaType())
            return false;
    return true;
}

std::string refusalOfEvent(const ZTMetaClass& metaClass, const ZTMetaProperty& property)
{
    const ZTMetaInvokable* event = property.changeEvent();
    if (!event)
        return memberName(metaClass, property.name()) + " has no change event";
    if (!hasParametersOf(*event, property))
        return "the change event " + zt::detail::signatureText(*event) + " of " +
               memberName(metaClass, property.name()) +
               " brings something else than the value and the one before";
    return {};
}
} // namespace

ZTBindingEnd::ZTBindingEnd(ZTBase* root, std::string_view path) : m_root(root)
{
    while (true) {
        const std::size_t dot = path.find('.');
        m_names.emplace_back(path.substr(0, dot));
        if (dot == std::string_view::npos)
            return;
        path.remove_prefix(dot + 1);
    }
}

std::string ZTBindingEnd::refusal(bool isRead, bool isSet, const ZTMetaType*& type) const
{
    type = &ZTMetaType::ZTBadMetaType;
    const ZTBase* object = m_root.get();
    if (!object)
        return zt::detail::noObject;
    const ZTMetaClass* metaClass = object->metaClass();
    for (std::size_t i = 0; i < m_names.size(); ++i) {
        const bool isLast = i + 1 == m_names.size();
        if (isLast && hasDynamicProperty(object, m_names[i]))
            return {};
        const ZTOutcome<const ZTMetaProperty*> found = ztTryFindProperty(*metaClass, m_names[i]);
        if (!found)
            return found.error();
        const ZTMetaProperty& property = **found;
        if (isRead || !isLast) {
            if (!property.canGet())
                return memberName(*metaClass, property.name()) + " can only be set";
            std::string why = refusalOfEvent(*metaClass, property);
            if (!why.empty())
                return why;
        }
        if (isLast) {
            if (isSet && !property.canSet())
                return memberName(*metaClass, property.name()) + " can only be read";
            type = &property.metaType();
            return {};
        }
        const ZTMetaClass* next = property.metaType().metaClass();
        if (!next)
            return memberName(*metaClass, property.name()) + " leads to no object";
        object = object ? objectIn(object->property(property.name())) : nullptr;
        metaClass = object ? object->metaClass() : next;
    }
    return {};
}

void ZTBindingEnd::watchProperty(ZTBase& object, const std::string& name, const ZTBase* receiver,
                                 const std::function<void()>& changed)
{
    const ZTMetaProperty* property = object.metaClass()->property(name);
    const ZTMetaInvokable* event = property ? property->changeEvent() : nullptr;
    m_watched.reserve(m_watched.size() + 1); // so that none is lost that was made
    ZTSubscription watched;
    if (event)
        watched = ZTBase::subscribe(&object, event, receiver, [changed] { changed(); });
    else if (!property)
        watched = ZTBase::subscribe(&object, &ZTBase::dynamicPropertyChanged, receiver,
                                    [changed, name](const std::string& which, const ZTVariant&) {
                                        if (which == name)
                                            changed();
                                    });
    if (watched)
        m_watched.push_back(std::move(watched));
}

void ZTBindingEnd::watch(const ZTBase* receiver, const Reactions& reactions)
{
    unwatch();
    ZTRef<ZTBase> object = m_root;
    for (std::size_t i = 0; i < m_names.size() && object; ++i) {
        const bool isLast = i + 1 == m_names.size();
        const std::function<void()>& reaction = isLast ? reactions.changed : reactions.moved;
        if (reaction)
            watchProperty(*object, m_names[i], receiver, reaction);
        if (!isLast)
            object.reset(objectIn(object->property(m_names[i])));
    }
    m_holder = object;
}

ZTVariant ZTBindingEnd::value(std::string& why) const
{
    const ZTBase* object = holder();
    if (const ZTMetaProperty* getter = find(*object->metaClass()).getter) [[likely]]
        return getter->get(LentVariant(object));
    ZTOutcome<ZTVariant> got = ztTryGet(object, name());
    why = got.error();
    return got ? *std::move(got) : ZTVariant();
}

std::string ZTBindingEnd::set(const ZTVariant& value) const
{
    ZTBase* object = holder();
    const Found& found = find(*object->metaClass());
    if (!found.setter || found.type != &value.type()) [[unlikely]]
        return ztTrySet(object, name(), value).error();
    found.setter->set(LentVariant(object), value);
    return {};
}

const ZTBindingEnd::Found& ZTBindingEnd::find(const ZTMetaClass& metaClass) const
{
    const unsigned int ended = zt::detail::descriptorsEnded.load(std::memory_order_relaxed);
    if (&metaClass == m_class && ended == m_descriptorsEnded) [[likely]]
        return m_found;
    const ZTMetaProperty* property = metaClass.property(name());
    m_found = {property && property->canGet() ? property : nullptr,
               property && property->canSet() ? property : nullptr,
               property ? &property->metaType() : nullptr};
    m_class = metaClass.isDynamic() ? nullptr : &metaClass;
    m_descriptorsEnded = ended;
    return m_found;
}

void ZTBindingEnd::unwatch()
{
    const std::vector<ZTSubscription> before = std::exchange(m_watched, {});
    for (const ZTSubscription& one : before)
        ZTBase::unsubscribe(one);
}
