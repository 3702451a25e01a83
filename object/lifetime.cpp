#include "../events/eventslot.h"
#include "baseprivate.h"

#include <memory>
#include <utility>

ZTBasePrivate::ZTBasePrivate(ZTBase* owner) : object(owner) {}

namespace
{
[[gnu::tls_model("initial-exec")]] thread_local ZTBasePrivate::Farewell* farewells = nullptr;
} // namespace

ZTBasePrivate::Farewell::Farewell(const ZTBase* object) noexcept
    : m_object(object), m_outer(std::exchange(farewells, this))
{}

ZTBasePrivate::Farewell::~Farewell() { farewells = m_outer; }

bool ZTBasePrivate::Farewell::isDying(const ZTBase* object) noexcept
{
    for (const Farewell* one = farewells; one; one = one->m_outer)
        if (one->m_object == object)
            return true;
    return false;
}

/// Whatever names the object by its address follows it to the new one.
void ZTBasePrivate::moveTo(ZTBase* newObject)
{
    const std::size_t place = placeAmongChildren(); // as long as the entry has a record
    if (parent && place < parent->children.size())
        parent->children[place] = newObject;
    pointReferencesTo(newObject);
    object->priv = nullptr;
    newObject->priv = this;
    object = newObject;
    stage = ZTLifeStage::Alive; // the object that was dying stays behind
}

bool ZTBasePrivate::hasRecordToGive(const ZTBase& object)
{
    return object.priv && object.priv->stage < ZTLifeStage::TornDown;
}

void ZTBasePrivate::replace(ZTBase* object, ZTBase& other)
{
    ZTBasePrivate* old = object->priv;
    ZTBasePrivate* incoming = hasRecordToGive(other) ? other.priv : nullptr;
    // Out of the parent's list first: with the new record's entry in the same list, the two could
    // not be told apart.
    if (old)
        old->hasLeftParent = old->leaveChildren();
    object->priv = nullptr;
    if (incoming) {
        // What was below the object cannot stay there: the object would be its own child.
        if (old && incoming->descendsFrom(old)) {
            incoming->leaveChildren();
            incoming->parent = nullptr;
        }
        incoming->moveTo(object);
    }
    Beginning assigned(incoming); // the assignment goes on behind this
    end(old);
}

bool ZTBasePrivate::isAlone() const
{
    return !parent && children.empty() && !senders && !eventSlots && !refImpl && !strongRefImpl &&
           !sentEventBlockers && !receivedEventBlockers && !dynamicProperties && !activeEvents &&
           !watches;
}

// The order is what hosts rely on. Handlers run until the last child is gone, and find the record
// in its place. Then everything is taken apart at once, and what belongs to the host goes last.
void ZTBasePrivate::end(ZTBasePrivate* record) noexcept
{
    if (!record || record->isAlone()) {
        delete record;
        return;
    }
    ZTLetGo ended;
    std::unique_ptr<zt::detail::DynamicProperties> properties;
    record->stage = ZTLifeStage::TornDown;
    record->endReceived(ended);
    if (record->parent)
        record->setParent(nullptr);
    record->deleteChildren();

    record->endReceived(ended); // what a handler has subscribed meanwhile
    record->clearWeakReferences();
    record->clearBlockers();
    const bool wasHeld = record->clearStrongReferences();
    while (record->activeEvents)
        record->activeEvents = record->activeEvents->receiverDied();
    for (ZTLifeWatch* watch = record->watches; watch; watch = watch->m_below)
        watch->m_record = nullptr;
    record->endSent(ended);
    properties = std::move(record->dynamicProperties);
    if (record->object->priv == record)
        record->object->priv = nullptr;
    delete record;
    if (wasHeld)
        warnOfHeldObject();
}
