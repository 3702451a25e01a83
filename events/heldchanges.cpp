#include "heldchanges.h"

#include "../object/baseprivate.h"
#include "eventvalues.h"

#include <zintar/changehold.h>
#include <zintar/detail/lifewatch.h>
#include <zintar/detail/typedevent.h>
#include <zintar/log.h>

#include <algorithm>
#include <exception>
#include <string>
#include <utility>

namespace
{
bool isDynamicChange(int index)
{
    using Event =
        zt::detail::TypedEvent<&ZTBase::dynamicPropertyChanged,
                               zt::detail::Parameters<const std::string&, const ZTVariant&>>;
    return index == Event::declared().index;
}

/// The property of a class that the event announces; null if there is none.
const ZTMetaProperty* announcedBy(const ZTMetaClass& metaClass, const ZTMetaInvokable& event)
{
    for (unsigned int i = 0; i < metaClass.propertyCount(); ++i) {
        const ZTMetaProperty* property = metaClass.property(i);
        if (property->changeEvent() == &event)
            return property;
    }
    return nullptr;
}

bool bringsOld(const ZTMetaInvokable& event, const ZTMetaProperty& property)
{
    return event.parameterCount() == 2 && &event.parameterMetaType(0) == &property.metaType() &&
           &event.parameterMetaType(1) == &property.metaType();
}

/// Sends one that was held back, if the object still has such an event.
void send(const ZTBase& sender, const ZTHeldChanges::Change& change)
{
    if (static_cast<unsigned int>(change.index) < sender.metaClass()->invokableCount())
        zt::detail::EventRaiser::raise(sender, change.index, change.values);
}
} // namespace

void ZTHeldChanges::enter(ZTExtras& extras)
{
    auto& held = extras.needParts().heldChanges;
    if (held) {
        ++held->m_holds;
        return;
    }
    held = std::make_unique<ZTHeldChanges>();
    extras.noteForEvents();
}

std::vector<ZTHeldChanges::Change> ZTHeldChanges::leave(ZTExtras& extras)
{
    if (ZTHeldChanges* held = extras.heldChanges(); !held || --held->m_holds > 0)
        return {};
    const std::unique_ptr<ZTHeldChanges> ended = std::move(extras.parts()->heldChanges);
    return std::move(ended->m_changes);
}

/// @param change  gets what is not needed any more
void ZTHeldChanges::add(Change& change)
{
    const auto before = std::find_if(m_changes.begin(), m_changes.end(), [&](const Change& one) {
        return one.index == change.index && (!one.isDynamic || one.values[0] == change.values[0]);
    });
    if (before == m_changes.end()) {
        m_changes.push_back(std::move(change));
        return;
    }
    if (change.bringsOld)
        std::swap(change.values[1], before->values[1]);
    std::swap(change.values, before->values);
}

bool ZTHeldChanges::keep(ZTBasePrivate& sender, int index, ZTEventValues&& values)
{
    const ZTMetaClass& metaClass = *sender.object->metaClass();
    const ZTMetaInvokable* event = metaClass.invokable(static_cast<unsigned int>(index));
    Change change{index, false, isDynamicChange(index), {}};
    if (!change.isDynamic) {
        const ZTMetaProperty* property = event ? announcedBy(metaClass, *event) : nullptr;
        if (!property)
            return false;
        change.bringsOld = bringsOld(*event, *property);
    }
    const ZTLifeWatch watch(&sender);
    values.fitTo(*event);
    change.values = values.array();
    const ZTBasePrivate* record = watch.record();
    if (ZTHeldChanges* held = record ? record->extras.heldChanges() : nullptr)
        held->add(change);
    else if (record)
        send(*record->object, change);
    return true;
}

ZTChangeHold::ZTChangeHold(ZTBase* object) : m_object(object)
{
    if (ZTBasePrivate* record = ZTBasePrivate::of(object))
        ZTHeldChanges::enter(record->extras);
}

ZTChangeHold::~ZTChangeHold()
{
    try {
        end();
    } catch (const std::exception& thrown) {
        ztLog("Zintar Warning: A handler of a change that was held back has thrown: " +
                  std::string(thrown.what()),
              ZTLogType::Warning);
    } catch (...) {
        ztLog("Zintar Warning: A handler of a change that was held back has thrown.",
              ZTLogType::Warning);
    }
}

void ZTChangeHold::end()
{
    const ZTRef<ZTBase> object = std::exchange(m_object, {});
    ZTBasePrivate* record = ZTBasePrivate::of(object.get());
    if (!record)
        return;
    const std::vector<ZTHeldChanges::Change> changes = ZTHeldChanges::leave(record->extras);
    std::exception_ptr thrown;
    for (const ZTHeldChanges::Change& change : changes) {
        try {
            if (object)
                send(*object, change);
        } catch (...) {
            if (!thrown)
                thrown = std::current_exception();
        }
    }
    if (thrown)
        std::rethrow_exception(thrown);
}
