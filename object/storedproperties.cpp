#include "../reflection/raiseevent.h"
#include "../reflection/storedproperty.h"
#include "baseprivate.h"
#include "fit.h"

#include <zintar/detail/calls.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <optional>
#include <utility>

namespace
{
/// A number of its own, as bytes: they compare fast.
std::string nextKey()
{
    static std::atomic<std::uint64_t> last = 0;
    const std::uint64_t number = ++last;
    std::string key(sizeof(number), '\0');
    std::memcpy(key.data(), &number, sizeof(number));
    return key;
}
} // namespace

namespace zt::detail
{
namespace
{
/// The value that the object keeps, or null as long as it has never been set.
ZTDynamicProperty* findValue(const ZTBasePrivate* record, const StoredProperty& property)
{
    const ZTExtras::Parts* parts = record ? record->extras.parts() : nullptr;
    return parts && parts->storedValues ? parts->storedValues->find(property.key) : nullptr;
}

bool isDifferent(ZTDynamicProperty* kept, const StoredProperty& property, const ZTVariant& value)
{
    if (!kept)
        return property.start != value;
    const ZTValueReading reading(*kept);
    return reading.value() != value;
}

/// @param value  taken
/// @return what the object kept before
ZTVariant keepValue(ZTBasePrivate& record, const StoredProperty& property, ZTVariant& value)
{
    if (ZTDynamicProperty* kept = findValue(&record, property)) {
        kept->leaveToReaders();
        return std::exchange(kept->value, std::move(value));
    }
    auto& values = record.extras.needParts().storedValues;
    if (!values)
        values = std::make_unique<ZTDynamicProperties>();
    values->add(property.key, std::move(value));
    return {};
}

/// Whether there is room in the event for the value before the change, behind the one after it.
bool takesOldValue(const ZTMetaInvokable& changeEvent, const StoredProperty& property)
{
    const ZTMetaType& type = property.start.type();
    return changeEvent.parameterCount() > 1 && changeEvent.parameterMetaType(0) == type &&
           changeEvent.parameterMetaType(1) == type;
}

/// Runs code of the host.
ZTVariant copyOfValue(const ZTBasePrivate* record, const StoredProperty& property)
{
    ZTDynamicProperty* kept = findValue(record, property);
    if (!kept)
        return property.start;
    const ZTValueReading reading(*kept);
    return reading.value();
}

void warnOfMisfit(const ZTVariant& value, const ZTMetaType& type)
{
    if (value.isValid())
        warnFailedConversion(type.name(), value.type());
    else
        warnInvalidVariant(type.name());
}
} // namespace

StoredProperty::StoredProperty(const ZTVariant& first) : start(first), key(nextKey()) {}

ZTVariant storedValue(const StoredProperty& property, const ZTVariant& object)
{
    const ZTBase* self = objectIn<const ZTBase>(object);
    return self ? copyOfValue(ZTBasePrivate::of(self), property) : ZTVariant();
}

void setStoredValue(const StoredProperty& property, const ZTMetaInvokable* changeEvent,
                    const ZTVariant& object, const ZTVariant& value)
{
    const ZTBase* target = objectIn<ZTBase>(object);
    if (!target)
        return;
    ZTVariant old; // the last to go
    const ZTLifeWatch self(target);
    std::optional<ZTVariant> fitting = fitted(value, property.start.type());
    if (!fitting)
        return warnOfMisfit(value, property.start.type());
    if (!self || !isDifferent(findValue(self.record(), property), property, *fitting) || !self)
        return;
    std::optional<ZTArgumentArray> told;
    // Before the object changes: the copies may end it, or throw.
    if (changeEvent && !self.record()->events.eventSlots.areNone()) {
        told.emplace()[0] = *fitting;
        if (self && takesOldValue(*changeEvent, property))
            (*told)[1] = copyOfValue(self.record(), property);
    }
    if (!self)
        return;
    old = keepValue(*self.record(), property, *fitting);
    if (told) {
        ZTBase* sender = self.record()->object;
        raiseEvent(*changeEvent, LentVariant(sender), *told);
    }
}
} // namespace zt::detail
