#include "lifetime.h"

#include "../events/queuedsubscription.h"

#include <utility>

namespace
{
[[gnu::tls_model("initial-exec")]] thread_local ZTFarewell* farewells = nullptr;
} // namespace

ZTFarewell::ZTFarewell(const ZTBase* object) noexcept
    : m_object(object), m_outer(std::exchange(farewells, this))
{}

ZTFarewell::~ZTFarewell() { farewells = m_outer; }

bool ZTFarewell::isDying(const ZTBase* object) noexcept
{
    for (const ZTFarewell* one = farewells; one; one = one->m_outer)
        if (one->m_object == object)
            return true;
    return false;
}

/// Whatever names the object by its address follows it to the new one.
void ZTBasePrivate::moveTo(ZTBase* newObject)
{
    ZTBase* oldObject = object;
    standFor(newObject);
    if (ZTExtras::Parts* parts = extras.parts())
        parts->references.pointTo(newObject);
    oldObject->priv = nullptr;
    newObject->priv = this;
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
    ZTBeginning assigned(incoming); // the assignment goes on behind this
    end(old);
}

bool ZTBasePrivate::isAlone() const
{
    return !parent && children.empty() && events.areNone() && extras.areNone();
}

void ZTBasePrivate::end(ZTBasePrivate* record) noexcept
{
    if (!record)
        return;
    if (record->isAlone())
        record->vanish();
    else
        record->takeApart();
}

// The order is what hosts rely on. Handlers run until the last child is gone, and find the record
// in its place. Then everything is taken apart at once, and what belongs to the host goes last.
void ZTBasePrivate::takeApart() noexcept
{
    ZTLetGo ended;
    stage = ZTLifeStage::TornDown;
    ZTEventEnds::endReceived(*this, ended);
    if (parent)
        setParent(nullptr);
    deleteChildren(); // as deep as the tree is, so here is little on the stack
    takeRestApart(ended);
}

[[gnu::noinline]] void ZTBasePrivate::takeRestApart(ZTLetGo& ended) noexcept
{
    ZTEventEnds::endReceived(*this, ended); // what a handler has subscribed meanwhile
    const ZTExtras lastParts = std::move(extras);
    bool wasHeld = false;
    if (ZTExtras::Parts* parts = lastParts.parts()) {
        parts->references.clearWeak();
        wasHeld = parts->references.clearStrong();
    }
    lastParts.blockers().clear();
    events.endSent(ended);
    if (ZTQueueEnds* queueEnds = lastParts.queueEnds())
        ZTQueuedSubscription::leaveSender(*queueEnds, ended);
    if (object->priv == this)
        object->priv = nullptr;
    vanish();
    if (wasHeld)
        ZTReferences::warnOfHeldObject();
}

[[gnu::noinline]] void ZTBasePrivate::vanish() noexcept
{
    ZTEventEnds::leaveDeliveries(*this);
    tellWatches();
    delete this;
}
