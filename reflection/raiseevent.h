#pragma once

#include <zintar/fwd.h>
#include <zintar/metaclass.h>

namespace zt::detail
{
/// Raises an event of a class made at run time on an object, for a call of the event as if it were
/// a method. An object whose class does not have this very event is left alone. What an object does
/// then is not known here; the folder of the events has it.
/// @param object  holds a pointer to the object
void raiseEvent(const ZTMetaInvokable& event, const ZTVariant& object,
                const ZTArgumentArray& arguments);
} // namespace zt::detail
