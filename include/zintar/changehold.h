#pragma once

#include <zintar/export.h>
#include <zintar/reference.h>

/// Holds back the change events of an object for as long as it lives, and sends the last one of
/// each property at its end.
///
///     {
///         const ZTChangeHold hold(&thermostat);
///         thermostat.setProperty("target", 21.5);
///         thermostat.setProperty("target", 22.0);
///     } // whoever follows "target" hears of it here, once
///
/// Change events are those that a property of the object's class names, and
/// `dynamicPropertyChanged`. They are sent in the order in which the properties changed first, with
/// the values of the last one; where an event brings the value and the one before, that is the one
/// before the first change. What nobody hears, or what is blocked, is not kept when it is raised,
/// and asked for again when it is sent. All else goes on as ever: setters run, properties read what
/// was set.
///
/// Holds nest: the one that ends last sends. An object that dies takes what was held along.
/// Cost: one allocation for each property that changes; while it lasts each event of the object
/// costs a walk over the properties of its class.
/// Threads: belongs to the thread of its object.
class ZT_EXPORT ZTChangeHold
{
public:
    /// @param object  null holds nothing
    explicit ZTChangeHold(ZTBase* object);
    ZTChangeHold(const ZTChangeHold&) = delete;
    ZTChangeHold& operator=(const ZTChangeHold&) = delete;
    /// What handlers throw then is told in the log.
    ~ZTChangeHold();

    /// Ends it before. All events are sent whatever handlers throw; the first exception comes out
    /// behind the last event. Harmless when it has ended.
    void end();

private:
    ZTRef<ZTBase> m_object;
};
