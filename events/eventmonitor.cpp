#include <zintar/eventmonitor.h>

#include "../reflection/descriptorlives.h"
#include "monitoring.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

// Who monitors, and how deliveries come to know.
//
// 1. Whether there are monitors stands in a bit of `descriptorsEnded`, which a delivery compares
//    anyway: while it is set each goes the long way of a slot that has to ask anew.
// 2. The list is changed, and callbacks are called, under one lock.
// 3. A monitor that ends while some are being told stays in the list, as one that has ended, until
//    they have been: its callback may be the one that runs.
// 4. A thread that is within a callback monitors nothing. So nobody is told twice at a time.

struct ZTEventMonitorPrivate {
    ZTEventMonitor::Callback callback;
    unsigned long number = 0;
    bool hasEnded = false;
};

namespace
{
using Monitor = std::unique_ptr<ZTEventMonitorPrivate>;

/// The monitors of the process. Never destroyed: objects die at its end.
struct Monitors {
    /// Recursive, since a callback may make a monitor, and end one.
    std::recursive_mutex mutex;
    std::vector<Monitor> list;
    bool isTelling = false;
    std::atomic<unsigned long> lastNumber = 0;

    static Monitors& all()
    {
        static Monitors& made = *new Monitors;
        return made;
    }
    /// Takes one out that has ended; null when there is none.
    [[nodiscard]] Monitor takeEnded()
    {
        const auto ended = std::find_if(list.begin(), list.end(),
                                        [](const Monitor& one) { return one->hasEnded; });
        if (ended == list.end())
            return nullptr;
        Monitor taken = std::move(*ended);
        list.erase(ended);
        return taken;
    }
    /// Lets deliveries know whether there is anybody to tell.
    void show() const
    {
        using namespace zt::detail;
        const bool isAny = std::any_of(list.begin(), list.end(),
                                       [](const Monitor& one) { return !one->hasEnded; });
        if (isAny)
            descriptorsEnded.fetch_or(areMonitored, std::memory_order_relaxed);
        else
            descriptorsEnded.fetch_and(~areMonitored, std::memory_order_relaxed);
    }
};

/// Whether this thread is within a callback.
thread_local constinit bool isWithin = false;
} // namespace

ZTEventMonitor::ZTEventMonitor(Callback callback) : priv(nullptr)
{
    if (!callback)
        return;
    auto made = std::make_unique<ZTEventMonitorPrivate>();
    made->callback = std::move(callback);
    Monitors& monitors = Monitors::all();
    const std::scoped_lock lock(monitors.mutex);
    made->number = monitors.lastNumber.load(std::memory_order_relaxed) + 1;
    monitors.list.push_back(std::move(made));
    priv = monitors.list.back().get();
    monitors.lastNumber.store(priv->number, std::memory_order_relaxed);
    monitors.show();
}

ZTEventMonitor::~ZTEventMonitor()
{
    if (!priv)
        return;
    Monitor ended; // with what its callback has captured: the last to go
    Monitors& monitors = Monitors::all();
    const std::scoped_lock lock(monitors.mutex);
    priv->hasEnded = true;
    monitors.show();
    if (!monitors.isTelling)
        ended = monitors.takeEnded();
}

ZTMonitoring::ZTMonitoring()
    : m_start(std::chrono::steady_clock::now()),
      m_last(isWithin ? 0 : Monitors::all().lastNumber.load(std::memory_order_relaxed))
{}

ZTMonitoring::Telling::Telling(const ZTMonitoring& monitoring) : m_monitoring(monitoring)
{
    if (m_monitoring.m_last == 0)
        return;
    Monitors& monitors = Monitors::all();
    monitors.mutex.lock();
    monitors.isTelling = isWithin = true;
}

ZTMonitoring::Telling::~Telling()
{
    if (m_monitoring.m_last == 0)
        return;
    Monitors& monitors = Monitors::all();
    monitors.isTelling = isWithin = false;
    // One by one: what a callback has captured may make and end monitors when it goes.
    while (monitors.takeEnded()) {
    }
    monitors.mutex.unlock();
}

ZTEventMonitorPrivate* ZTMonitoring::Telling::next()
{
    if (m_monitoring.m_last == 0)
        return nullptr;
    const std::vector<Monitor>& list = Monitors::all().list;
    while (m_next < list.size()) {
        ZTEventMonitorPrivate* monitor = list[m_next++].get();
        if (!monitor->hasEnded && monitor->number <= m_monitoring.m_last)
            return monitor;
    }
    return nullptr;
}

void ZTMonitoring::Telling::call(ZTEventMonitorPrivate& monitor,
                                 const ZTMonitoredDelivery& delivery)
{
    monitor.callback(delivery);
}
