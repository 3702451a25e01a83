#include "baseprivate.h"

#include <memory>
#include <ostream>
#include <utility>

ZTBase::ZTBase(ZTBase* parent) : priv(new ZTBasePrivate(this))
{
    if (!parent)
        return;
    ZTBasePrivate::Beginning made(priv);
    try {
        setParent(parent);
    } catch (...) { // of a handler; no destructor runs for this object then
        delete std::exchange(priv, nullptr);
        throw;
    }
}

ZTBase::ZTBase(ZTBase&& other) noexcept : priv(ZTBasePrivate::takeFrom(other))
{
    if (priv)
        priv->moveTo(this);
}

ZTBase& ZTBase::operator=(ZTBase&& other) noexcept
{
    // An object whose own end has come so far has no use for another record.
    if (this != &other && !(priv && priv->stage >= ZTLifeStage::TornDown))
        ZTBasePrivate::replace(this, ZTBasePrivate::takeFrom(other));
    return *this;
}

ZTBase::~ZTBase()
{
    if (priv) {
        priv->stage = ZTLifeStage::Dying;
        priv->mayHaveChangedClass = true;
        destroyed(this);
    }
    delete priv;
}

void ZTBase::setParent(ZTBase* parent)
{
    if (priv)
        priv->setParent(parent);
}

const std::vector<ZTBase*>& ZTBase::children() const
{
    static const std::vector<ZTBase*> none;
    return priv ? priv->children : none;
}

std::ostream& operator<<(std::ostream& stream, const ZTBase* object)
{
    return stream << static_cast<const void*>(object);
}
