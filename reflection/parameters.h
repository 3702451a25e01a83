#pragma once

#include <zintar/metaclass.h>

#include <algorithm>
#include <vector>

/// @file
/// Whether parameters agree: those of events, methods and handlers, and values for them. What has
/// parameters tells them as `ZTMetaInvokable` does, by `parameterCount` and `parameterMetaType`.

namespace zt::detail
{
/// How many values an event hands over: those that an argument array can carry.
inline unsigned int suppliedCount(const ZTMetaInvokable& event)
{
    return std::min(event.parameterCount(), ZTMetaInvokable::MaxParamCount);
}

/// The position of the first parameter that `agrees`, asked with each position and type, denies;
/// the number of parameters where there is none.
template <class Taker, class Agrees>
unsigned int firstMisfit(const Taker& taker, const Agrees& agrees)
{
    unsigned int position = 0;
    while (position < taker.parameterCount() && agrees(position, taker.parameterMetaType(position)))
        ++position;
    return position;
}

/// Whether the parameters of `taker` are the leading ones of `giver`.
template <class Taker, class Giver>
bool takesLeadingOf(const Taker& taker, const Giver& giver)
{
    const unsigned int count = taker.parameterCount();
    return count <= giver.parameterCount() &&
           firstMisfit(taker, [&](unsigned int position, const ZTMetaType& type) {
               return giver.parameterMetaType(position) == type;
           }) == count;
}

/// By identity.
inline bool takesExactly(const ZTMetaInvokable& taker, const std::vector<const ZTMetaType*>& types)
{
    return taker.parameterCount() == types.size() &&
           firstMisfit(taker, [&](unsigned int position, const ZTMetaType& type) {
               return &type == types[position];
           }) == types.size();
}

inline bool haveSameParameters(const ZTMetaInvokable& a, const ZTMetaInvokable& b)
{
    return &a == &b || (a.parameterCount() == b.parameterCount() && takesLeadingOf(a, b));
}
} // namespace zt::detail
