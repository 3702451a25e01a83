#include <zintar/loghandler.h>

#include <atomic>
#include <iostream>
#include <mutex>
#include <utility>

/// A handler, and the one that was set before it.
///
/// 1. `below` is written once, and stays when the entry has ended: somebody who is within its
///    handler may still look for the next one.
/// 2. `hasEnded` is written and read under the lock.
struct ZTLogHandlerEntry {
    ZTLogHandler handler;
    std::shared_ptr<ZTLogHandlerEntry> below;
    bool hasEnded = false;
};

namespace
{
using Entry = std::shared_ptr<ZTLogHandlerEntry>;

/// The handlers of the process. Never destroyed: statics of a host log to the end.
struct Handlers {
    /// Recursive, since a handler may log, set a handler, and end one.
    std::recursive_mutex mutex;
    Entry top;
    /// Whether there is a handler at all, for those that take no lock.
    std::atomic<bool> isAny = false;

    static Handlers& all()
    {
        static Handlers& made = *new Handlers;
        return made;
    }
};

/// The entry whose handler this thread is within, or null.
thread_local constinit ZTLogHandlerEntry* running = nullptr;

Entry firstLiving(Entry entry)
{
    while (entry && entry->hasEnded)
        entry = entry->below;
    return entry;
}

void writeToStream(const std::string& message, ZTLogType type)
{
    (type == ZTLogType::Info ? std::cout : std::cerr) << message << "\n";
}

/// Marks the entry for its time.
class Running
{
public:
    explicit Running(ZTLogHandlerEntry& entry) : m_outer(std::exchange(running, &entry)) {}
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
    ~Running() { running = m_outer; }

private:
    ZTLogHandlerEntry* m_outer;
};

void handOver(const std::string& message, ZTLogType type)
{
    Handlers& handlers = Handlers::all();
    if (!handlers.isAny.load(std::memory_order_acquire))
        return writeToStream(message, type);
    const std::scoped_lock lock(handlers.mutex);
    const Entry entry = firstLiving(running ? running->below : handlers.top);
    if (!entry)
        return writeToStream(message, type);
    const Running mark(*entry);
    if (entry->handler)
        entry->handler(message, type);
}
} // namespace

void ztLog(const std::string& message, ZTLogType type)
{
    switch (type) {
    case ZTLogType::Info:
    case ZTLogType::Warning:
    case ZTLogType::Error:
        return handOver(message, type);
    }
    handOver("Zintar: Error unsupported log type " + std::to_string(static_cast<int>(type)) + ".",
             ZTLogType::Error);
}

ZTScopedLogHandler ztSetLogHandler(ZTLogHandler handler)
{
    auto entry = std::make_shared<ZTLogHandlerEntry>();
    entry->handler = std::move(handler);
    Handlers& handlers = Handlers::all();
    const std::scoped_lock lock(handlers.mutex);
    entry->below = handlers.top;
    handlers.top = entry;
    handlers.isAny.store(true, std::memory_order_release);
    return ZTScopedLogHandler(std::move(entry));
}

ZTScopedLogHandler::ZTScopedLogHandler(std::shared_ptr<ZTLogHandlerEntry> entry) noexcept
    : m_entry(std::move(entry))
{}

ZTScopedLogHandler::ZTScopedLogHandler(ZTScopedLogHandler&& other) noexcept = default;

ZTScopedLogHandler& ZTScopedLogHandler::operator=(ZTScopedLogHandler&& other) noexcept
{
    if (this != &other) {
        const ZTScopedLogHandler ended(std::move(*this));
        m_entry = std::move(other.m_entry);
    }
    return *this;
}

ZTScopedLogHandler::~ZTScopedLogHandler()
{
    if (!m_entry)
        return;
    Handlers& handlers = Handlers::all();
    const std::scoped_lock lock(handlers.mutex);
    m_entry->hasEnded = true;
    handlers.top = firstLiving(handlers.top);
    handlers.isAny.store(handlers.top != nullptr, std::memory_order_release);
}
