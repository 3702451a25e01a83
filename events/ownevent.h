#pragma once

#include "../reflection/parameters.h"

#include <zintar/base.h>

namespace zt::detail
{
/// Whether the class of the sender has that event: an event of another class has an index that
/// means something else to this sender, or nothing.
inline bool isEventOf(const ZTMetaInvokable& event, const ZTBase& sender)
{
    const ZTMetaInvokable* own = sender.metaClass()->invokable(event.index());
    return own == &event || (own && own->isEvent() && own->name() == event.name() &&
                             haveSameParameters(*own, event));
}
} // namespace zt::detail
