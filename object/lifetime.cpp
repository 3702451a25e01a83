#include "../events/eventslot.h"
#include "baseprivate.h"

#include <algorithm>
#include <utility>

ZTBasePrivate::ZTBasePrivate(ZTBase* owner) : object(owner) {}

/// Whatever names the object by its address follows it to the new one.
void ZTBasePrivate::moveTo(ZTBase* newObject)
{
    if (parent)
        std::replace(parent->children.begin(), parent->children.end(), object, newObject);
    pointReferencesTo(newObject);
    object = newObject;
    mayHaveChangedClass = true;
    stage = ZTLifeStage::Alive; // the object that was dying stays behind
}

ZTBasePrivate* ZTBasePrivate::takeFrom(ZTBase& object)
{
    bool isWhole = object.priv && object.priv->stage < ZTLifeStage::TornDown;
    return isWhole ? std::exchange(object.priv, nullptr) : nullptr;
}

void ZTBasePrivate::replace(ZTBase* object, ZTBasePrivate* newRecord)
{
    ZTBasePrivate* old = std::exchange(object->priv, newRecord);
    // Out of the parent's list first: with the new record's entry in the same list, the two could
    // not be told apart.
    if (old)
        old->hasLeftParent = old->leaveChildren();
    if (newRecord) {
        // What was below the object cannot stay there: the object would be its own child.
        if (old && newRecord->descendsFrom(old)) {
            newRecord->leaveChildren();
            newRecord->parent = nullptr;
        }
        newRecord->moveTo(object);
    }
    Beginning assigned(newRecord); // the assignment goes on behind this
    delete old;
}

bool ZTBasePrivate::isAlone() const
{
    return !parent && children.empty() && !senders && !eventSlots && !refImpl && !strongRefImpl &&
           !sentEventBlockers && !receivedEventBlockers && !dynamicProperties && !activeEvents &&
           !watches;
}

// The order is what hosts rely on. As a sender the object stays subscribed to until the last step,
// so that a receiver that dies during one of the others is still taken out of the slots.
ZTBasePrivate::~ZTBasePrivate()
{
    if (isAlone())
        return;
    stage = ZTLifeStage::TornDown;
    endReceived();
    if (parent)
        setParent(nullptr);
    deleteChildren();
    clearWeakReferences();
    clearBlockers();
    clearStrongReferences();
    while (activeEvents)
        activeEvents = activeEvents->receiverDied();
    stage = ZTLifeStage::Ending;
    dynamicProperties.reset();
    // The callables that die here run code of the host, which may use the object for a last time.
    endSent();
    endReceived();
    deleteChildren();
    clearWeakReferences();
    clearBlockers();
    clearStrongReferences();
    for (; watches; watches = watches->below())
        watches->recordDied();
}
