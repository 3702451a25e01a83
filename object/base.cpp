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

ZTBase::ZTBase(ZTBase&& other) noexcept : priv(std::exchange(other.priv, nullptr))
{
    if (priv)
        priv->moveTo(this);
}

ZTBase& ZTBase::operator=(ZTBase&& other) noexcept
{
    if (this != &other)
        ZTBasePrivate::replace(this, std::exchange(other.priv, nullptr));
    return *this;
}

ZTBase::~ZTBase()
{
    if (priv) {
        priv->isDying = true;
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
