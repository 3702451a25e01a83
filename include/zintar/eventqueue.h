#pragma once

#include <zintar/base.h>
#include <zintar/detail/subscriptionoptions.h>
#include <zintar/export.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

class ZTQueueCore;

/// What a bounded queue does with an event when it is full.
enum class ZTOverflow {
    DropOldest,   ///< lets go of the one that waits longest
    RefuseNewest, ///< lets go of the new one
    Wait,         ///< the thread that raises waits for room; the one that delivers never does
};

/// Events on their way to another thread, or to a later moment on the same one.
///
/// A host makes a queue on the thread where handlers are to run, subscribes through it, and drains
/// it in its own loop:
///
///     ZTEventQueue queue;
///     ZTBase::subscribe(&sensor, &Sensor::measured, queue, &journal, &Journal::note);
///     ...                                   // sensor.measured(21.5) on any thread
///     while (isRunning)
///         if (queue.wait(std::chrono::milliseconds(100)))
///             queue.deliver();              // journal.note(21.5), here
///
/// Raising copies the values and touches nothing of the receiver. What waits is delivered in the
/// order of raising. It is dropped when its receiver dies and when its subscription is ended, not
/// when its sender dies. The end of the queue ends its subscriptions.
///
/// Inside the handler `activeEvent()` is the event and `eventSender()` null, since the sender may
/// be another thread's; likewise a pointer among the values may be of an object that has died.
/// (`activeEvent()` is null too where the event is one of a class made at run time, and any such
/// class has ended since.)
///
/// A handler that throws has had its turn; the exception comes out of `deliver`, and the rest stays
/// for the next one, in order. A handler may do anything, deliver and end the queue included.
///
/// Threads: a queue, and the receivers of its handlers, belong to the thread that delivers. Sender
/// and receiver may die on theirs at any time. Any thread may subscribe through a queue, post to
/// it, and end such a subscription by its handle, as long as what it names lives meanwhile. The
/// handler and what it captured are destroyed on the thread that delivers: at once where that ends
/// the subscription, or else with the next `deliver` or the queue.
class ZT_EXPORT ZTEventQueue
{
public:
    using Clock = std::chrono::steady_clock;

    struct Options {
        /// How many events may wait, those apart whose time has not come; 0 sets no bound.
        std::size_t capacity = 0;
        ZTOverflow overflow = ZTOverflow::DropOldest;
        /// Called when something has come that a waiting loop has to know of: on the thread that
        /// raises, and at the end of a `deliver` that leaves something behind. It must neither
        /// throw nor touch the queue; writing to a file descriptor is what it is for.
        std::function<void()> wake = {};
        /// What tells the time for throttled, debounced and delayed events; the steady clock where
        /// it is empty. Called on any thread that raises.
        std::function<Clock::time_point()> now = {};
    };

    ZTEventQueue();
    explicit ZTEventQueue(Options options);
    ZTEventQueue(const ZTEventQueue&) = delete;
    ZTEventQueue& operator=(const ZTEventQueue&) = delete;
    /// Ends all subscriptions through the queue, and drops what waits.
    ~ZTEventQueue();

    /// Calls the handlers of what waited when it was called.
    /// @return how many ran; a cancelled or blocked event is not counted
    std::size_t deliver();
    /// Stops after `most` handlers.
    std::size_t deliver(std::size_t most);
    /// Waits until there is something to deliver, at most that long.
    /// @return whether there is
    bool wait(std::chrono::nanoseconds timeout);

    /// How many events wait, those included whose time has not come and those that were cancelled.
    [[nodiscard]] std::size_t waitingCount() const;
    /// How many a bounded queue has let go of so far.
    [[nodiscard]] std::size_t droppedCount() const;
    /// When something is to be delivered that is not yet: for the timeout of a poll loop. None
    /// where nothing waits for its time; a time that has passed where something waits already.
    [[nodiscard]] std::optional<Clock::time_point> nextTime() const;

    /// Calls a callable without parameters when the queue delivers.
    template <class Callable>
    void post(Callable callable)
    {
        postTo(nullptr, std::chrono::nanoseconds(0), std::move(callable));
    }
    /// The same, unless the receiver has died by then or is blocked. A member function without
    /// parameters is called on the receiver. Null for the receiver posts nothing.
    template <class Receiver, class Callable>
    void post(Receiver* receiver, Callable callable)
    {
        if (receiver)
            postTo(receiver, std::chrono::nanoseconds(0), std::move(callable));
    }
    /// Calls it when that time has passed.
    template <class Callable>
    void postAfter(std::chrono::nanoseconds delay, Callable callable)
    {
        postTo(nullptr, delay, std::move(callable));
    }
    template <class Receiver, class Callable>
    void postAfter(std::chrono::nanoseconds delay, Receiver* receiver, Callable callable)
    {
        if (receiver)
            postTo(receiver, delay, std::move(callable));
    }

private:
    friend class ZTQueueCore;

    template <class Receiver, class Callable>
    void postTo(Receiver* receiver, std::chrono::nanoseconds delay, Callable callable)
    {
        using namespace zt::detail;
        constexpr SubscribeFault fault = faultOfHandlerParameters<Callable, Parameters<>>();
        static_assert(fault == SubscribeFault::None, "What is posted takes no parameters.");
        if constexpr (fault == SubscribeFault::None)
            postHandler(receiver, delay, makeHandler<Receiver, Parameters<>>(std::move(callable)));
    }
    template <class Callable>
    void postTo(std::nullptr_t, std::chrono::nanoseconds delay, Callable callable)
    {
        postTo(static_cast<ZTBase*>(nullptr), delay, std::move(callable));
    }
    void postHandler(const ZTBase* receiver, std::chrono::nanoseconds delay,
                     zt::detail::Handler handler);

    std::shared_ptr<ZTQueueCore> m_core;
};
