#include "lifetime.h"

#include <ostream>

ZTBase::ZTBase(ZTBase* parent) : priv(new ZTBasePrivate(this))
{
    if (!parent)
        return;
    ZTBeginning made(priv);
    try {
        setParent(parent);
    } catch (...) { // no destructor runs for this object then
        ZTFarewell farewell(this);
        ZTBasePrivate::end(priv);
        throw;
    }
}

ZTBase::ZTBase(ZTBase&& other) noexcept : priv(nullptr)
{
    if (ZTBasePrivate::hasRecordToGive(other))
        other.priv->moveTo(this);
}

ZTBase& ZTBase::operator=(ZTBase&& other) noexcept
{
    // An object whose own end has come so far has no use for another record.
    bool isDying = priv ? priv->stage >= ZTLifeStage::Dying : ZTFarewell::isDying(this);
    if (this != &other && !isDying)
        ZTBasePrivate::replace(this, other);
    return *this;
}

ZTBase::~ZTBase()
{
    if (!priv)
        return;
    if (priv->isAlone()) {
        ZTBasePrivate::end(priv);
        return;
    }
    ZTFarewell farewell(this);
    priv->stage = ZTLifeStage::Dying;
    if (!priv->events.eventSlots.areNone()) // somebody may listen
        destroyed(this);
    ZTBasePrivate::end(priv);
}

void ZTBase::setParent(ZTBase* parent)
{
    if (priv)
        priv->setParent(parent);
}

ZTBase* ZTBase::parent() const { return priv && priv->parent ? priv->parent->object : nullptr; }

const std::vector<ZTBase*>& ZTBase::children() const
{
    static const auto& none = *new std::vector<ZTBase*>(); // for objects that die at exit
    return priv ? priv->children : none;
}

std::ostream& operator<<(std::ostream& stream, const ZTBase* object)
{
    return stream << static_cast<const void*>(object);
}
