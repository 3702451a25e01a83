#include "world.h"

#include <algorithm>

// What the library shows is compared with the model, as far as the rules tell it now.

namespace stress
{
void World::check()
{
    HostCode hostCode;
    std::string found = differences();
    if (!found.empty())
        mismatch(found);
}

std::string World::differences()
{
    ++m_muted;
    std::string found;
    for (const auto& [id, soul] : m_model.souls)
        if (found.empty() && m_model.isSettled(id))
            found = differencesOf(id);
    for (auto part : {&World::differencesOfHandles, &World::differencesOfReferences,
                      &World::differencesOfRecorders})
        if (found.empty())
            found = (this->*part)();
    --m_muted;
    return found;
}

std::string World::differencesOf(Id id)
{
    const Soul& soul = m_model.souls.at(id);
    const ZTBase& object = *m_objects.at(soul.body);
    if (object.isBlockingSentEvents() != (soul.sentBlockers > 0) ||
        object.isBlockingReceivedEvents() != (soul.receivedBlockers > 0))
        return "an object tells wrongly whether it is blocked";
    std::string found = differencesOfChildren(id, object);
    if (found.empty())
        found = differencesOfProperties(soul, object);
    const Body& body = m_model.bodies.at(soul.body);
    if (found.empty() && !body.isDying && !body.isBeingMade && !m_model.isReturning(id))
        found = differencesOfDeliveries(id, soul);
    return found;
}

std::string World::differencesOfChildren(Id id, const ZTBase& object)
{
    std::vector<Id> expected, found;
    for (Id child : m_model.souls.at(id).children)
        if (m_model.isPlaceKnown(child))
            expected.push_back(child);
    for (const ZTBase* child : object.children()) {
        Id body = bodyAt(child);
        Id soul = body == none ? none : m_model.bodies.at(body).soul;
        if (soul == none)
            return "a list of children names an object that is gone";
        if (m_model.isPlaceKnown(soul))
            found.push_back(soul);
    }
    return expected == found ? "" : "the children of an object are others";
}

Value World::valueOf(const ZTVariant& variant) const
{
    if (const int* number = ztVariantPointer<int>(variant))
        return {1, *number};
    if (const Cargo* cargo = ztVariantPointer<Cargo>(variant))
        return {2, cargo->number};
    return {};
}

std::string World::differencesOfProperties(const Soul& soul, const ZTBase& object)
{
    std::vector<std::string_view> names = object.dynamicProperties();
    for (int i = 0; i < nameCount; ++i) {
        std::string name = "p" + std::to_string(i);
        auto expected = soul.properties.find(i);
        bool exists = expected != soul.properties.end();
        if (exists && (expected->second.writers || expected->second.isOpen))
            continue;
        if (std::count(names.begin(), names.end(), name) != exists)
            return "a dynamic property is listed wrongly";
        if (exists && !(valueOf(object.property(name)) == expected->second))
            return "a dynamic property has another value";
    }
    return "";
}

std::string World::differencesOfDeliveries(Id id, const Soul& soul)
{
    const auto* actor = static_cast<const Actor*>(m_objects.at(soul.body));
    const Frame* delivery = m_model.activeOf(id);
    if (actor->activeEventIndex() != (delivery ? indexOf(delivery->event) : -1))
        return "an object knows another event as the one that is delivered to it";
    if (!delivery)
        return actor->eventSender() ? "an object without a delivery knows a sender" : "";
    const Soul& sender = m_model.souls.at(delivery->sender);
    if (sender.isGone)
        return actor->eventSender() ? "a receiver knows a sender that is gone" : "";
    bool isSettled = m_model.isSettled(delivery->sender);
    return isSettled && actor->eventSender() != m_objects.at(sender.body)
               ? "a receiver knows another sender"
               : "";
}

std::string World::differencesOfHandles()
{
    for (const auto& [id, handle] : m_handles) {
        const Subscription& one = m_model.subscriptions.at(id);
        if (handle && !one.isAlive)
            return "a subscription that has ended tests true";
        if (!handle && m_model.isCertain(one))
            return "a subscription has ended by itself";
        if (!handle && !(handle == ZTSubscription()))
            return "a handle that tests false differs from an empty one";
    }
    return "";
}

std::string World::differencesOfReferences()
{
    for (std::size_t i = 0; i < holderCount; ++i) {
        Id id = m_weakSouls[i];
        if (id == none || m_model.isSettled(id)) {
            ZTBase* object = id == none ? nullptr : m_objects.at(m_model.souls.at(id).body);
            if (m_weak[i].get() != object)
                return "a weak reference refers to something else";
        } else if (m_model.souls.at(id).isGone && m_weak[i]) {
            return "a weak reference refers to a dead object";
        }
        Id held = m_strong[i].soul();
        if (held != none && m_model.isSettled(held) &&
            m_strong[i].object() != m_objects.at(m_model.souls.at(held).body))
            return "a strong reference refers to something else";
        if (held != none && m_model.souls.at(held).isGone && m_strong[i].object())
            return "a strong reference refers to a dead object";
    }
    return "";
}
} // namespace stress
