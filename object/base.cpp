#include "baseprivate.h"

#include <memory>
#include <ostream>
#include <utility>

ZTBase::ZTBase(ZTBase* parent)
{
    auto record = std::make_unique<ZTBasePrivate>(this);
    priv = record.get();
    // A handler of `childAdded` may throw, and then no destructor runs for this object.
    if (parent)
        setParent(parent);
    priv = record.release();
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
