#pragma once

#include <zintar/export.h>
#include <zintar/fwd.h>
#include <zintar/variant.h>

#include <chrono>
#include <functional>

struct ZTEventMonitorPrivate;

/// A delivery that is over, as a monitor is told of it.
struct ZTMonitoredDelivery {
    /// Null when it has died meanwhile.
    ZTBase* sender;
    /// By the class of the sender, and good as long as that class.
    const ZTMetaInvokable* event;
    int index; ///< the class-wide one of the event
    /// As many as the event has parameters; of one that was raised with an array, what stands in
    /// the array at the end. Good during the call. What a pointer among them points to may have
    /// been destroyed by a handler.
    const ZTArgumentArray& values;
    /// How many handlers were called, the one that threw included.
    int receivers;
    /// Within how many other deliveries of this thread it was raised.
    int depth;
    std::chrono::steady_clock::time_point start;
    /// With all that the handlers did, deliveries included. Those are told before this one.
    std::chrono::steady_clock::duration duration;
    bool hasThrown; ///< a handler has; what it threw goes on to the sender
};

/// Is told of every delivery of every object of the process, as long as it lives: for tests, and
/// for a look into a running program. What is raised and reaches no subscription, since there is
/// none or since it is blocked, is no delivery.
///
///     ZTEventMonitor monitor([](const ZTMonitoredDelivery& one) {
///         std::cerr << one.event->name() << " reached " << one.receivers << "\n";
///     });
///
/// It is told when the delivery is over, of those that begin while the monitor lives. Its callback
/// may do what a handler may; what it raises itself is delivered, and not monitored. An exception
/// of the callback passes to the sender as one of a handler does, unless a handler has thrown; that
/// one passes then. An empty callback is told nothing.
/// Threads: monitors come and go on any thread. The callback is called on the thread of the
/// delivery, one call at a time for all threads and all monitors, so it needs no lock of its own;
/// it must not wait for a thread that may raise events.
/// Cost: none as long as there is no monitor. While there is one, deliveries on all threads wait
/// for each other at their ends.
class ZT_EXPORT ZTEventMonitor
{
public:
    using Callback = std::function<void(const ZTMonitoredDelivery& delivery)>;

    explicit ZTEventMonitor(Callback callback);
    ZTEventMonitor(const ZTEventMonitor&) = delete;
    ZTEventMonitor& operator=(const ZTEventMonitor&) = delete;
    /// Once it has returned the callback runs on no thread any more, but for a call that this is
    /// within.
    ~ZTEventMonitor();

private:
    ZTEventMonitorPrivate* priv;
};
