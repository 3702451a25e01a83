#pragma once

#include <zintar/export.h>
#include <zintar/fwd.h>

/// Silences an object for as long as the blocker lives: what it sends, or what it receives.
///
///     ZTEventBlocker quiet(&thermostat, true);
///     thermostat.setProperty("target", 21.5); // nobody hears of it
///
/// Blockers nest. One that outlives its object, or was made for null, does nothing. What is
/// blocked is lost, not put off; subscriptions stay. Not copyable: a registration is one blocker's.
/// Threads: belongs to the thread of its object.
class ZT_EXPORT ZTEventBlocker
{
public:
    /// @param blockSent  true blocks what the object sends, false what it receives
    ZTEventBlocker(ZTBase* object, bool blockSent);
    ZTEventBlocker(const ZTEventBlocker&) = delete;
    /// Blocks what `other` blocks, in place of what it blocked before.
    ZTEventBlocker& operator=(const ZTEventBlocker& other);
    ~ZTEventBlocker();

private:
    friend class ZTEventBlockers;

    void enter();
    void leave();

    /// Of the object, which may move meanwhile; null where there is nothing to block.
    ZTBasePrivate* record;
    bool blockSent;
    // In the ring of the object's blockers.
    ZTEventBlocker* next = nullptr;
    ZTEventBlocker* previous = nullptr;
};
