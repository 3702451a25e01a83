#pragma once

#include <zintar/detail/lent.h>
#include <zintar/detail/makehandler.h>
#include <zintar/detail/subscriptionoptions.h>
#include <zintar/detail/typedevent.h>
#include <zintar/export.h>
#include <zintar/fwd.h>
#include <zintar/metaclass.h>
#include <zintar/subscription.h>
#include <zintar/typedvalue.h>
#include <zintar/variant.h>

#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// A delivery, as the handler that it calls sees it.
struct ZTDeliveryInfo {
    /// By the class of the sender, and good as long as that class.
    const ZTMetaInvokable* event = nullptr;
    int index = -1; ///< the class-wide one of the event
    /// Null when it has died meanwhile.
    ZTBase* sender = nullptr;
    /// Null for a handler that has none, and when it has died meanwhile.
    ZTBase* receiver = nullptr;
};

/// The root of every object that the library reflects.
///
/// An object has a parent that deletes it, named properties, events that others can subscribe to,
/// and a class that tells all of it at run time. Derive from it, or from `ZTDynamicBase` for an
/// object whose class is chosen at run time, and declare the class with `declare.h`:
///
///     class Lamp : public ZTBase {
///         ZT_OBJECT(Lamp, ZTBase)
///     ...
///
///     auto* lamp = new Lamp(&room);        // the room deletes it
///     lamp->setProperty("on", true);
///     ZTBase::subscribe(lamp, &Lamp::switched, &journal, &Journal::note);
///
/// `ZTBase` must be the first of an object's bases that has virtual functions, and is not to be
/// inherited virtually.
///
/// Moving hands over everything that an object is: its place in the tree, its children,
/// subscriptions in both directions, references to it. The moved-from object can only be destroyed
/// or assigned to. Objects are not copied.
///
/// Threads: an object, its tree and whatever is subscribed to it belong to one thread at a time.
struct ZT_EXPORT ZTBase {
public:
    /// @param parent  takes the object as its child, as `setParent` does; null for a root object
    explicit ZTBase(ZTBase* parent = nullptr);
    ZTBase(ZTBase&& other) noexcept;
    /// The object becomes what `other` was. Its children are destroyed and it leaves its parent;
    /// `destroyed` is not sent. A handler that throws meanwhile ends the process; one may delete
    /// the parent of either object, but neither of the two. An object whose own destruction has
    /// reached `ZTBase` takes nothing over, and `other` stays what it is.
    ZTBase& operator=(ZTBase&& other) noexcept;

    [[nodiscard]] virtual const ZTMetaClass* metaClass() const;
    /// Sends `destroyed`, ends all subscriptions, leaves the parent, and deletes the children from
    /// first to last. A handler that throws meanwhile ends the process.
    virtual ~ZTBase();

    [[nodiscard]] static const ZTMetaClass& typeMetaClass();

    /// Moves the object to the end of the children of another parent, which deletes it from then
    /// on; null makes it a root object that nobody deletes.
    ///
    /// A parent that dies while its child is in the hands of `ZTBase`'s constructor, assignment or
    /// destructor lets go of it. While the body of a derived class's constructor or destructor
    /// runs it must live on.
    ///
    /// `childRemoved` of the old parent comes first, then `childAdded` of the new one. A call on
    /// the same object from a handler of that `childRemoved` does nothing: the outer call's
    /// parent stands. An object as its own parent is refused with an error line.
    void setParent(ZTBase* parent);
    /// Null for a root object.
    [[nodiscard]] ZTBase* parent() const;
    /// The children in the order of their joining. Good as long as the object; shows later
    /// changes. While the object is being destroyed, a child that is gone reads null.
    [[nodiscard]] const std::vector<ZTBase*>& children() const;

    /// The value of a property of the class, or else of a dynamic property of this object; an
    /// invalid variant when there is none. Logs nothing.
    [[nodiscard]] ZTVariant property(std::string_view name) const;
    /// The same as a `T`; a default value, with a warning, where it is none.
    template <class T>
    [[nodiscard]] T property(std::string_view name) const
    {
        if (const ZTMetaProperty* declared = declaredProperty(name))
            return ztVariantValue<T>(declared->get(zt::detail::LentVariant(this)));
        using Held = zt::detail::Canonical<zt::detail::RetrievedType<T>>;
        if constexpr (zt::detail::isPlainCopy<Held, Held>) {
            const ZTVariant* own = dynamicProperty(name);
            if (const auto* held = own ? zt::detail::heldAs<Held>(*own) : nullptr)
                return static_cast<T>(*held);
        }
        // From a copy, since code of the host that copies or converts may change the property.
        return ztVariantValue<T>(copyOfDynamicProperty(name));
    }

    /// Sets a property of the class, or else a dynamic property of this object.
    ///
    /// A setter converts the value by a registered converter where it has to; what it cannot take
    /// is told in the log and leaves the property as it was. A property that the class declares
    /// without a setter stays unchanged and still answers true. A dynamic property that changes
    /// sends `dynamicPropertyChanged`.
    /// @param createDynamic  store the value under a name that the class does not know; also
    ///                       needed to write an existing dynamic property
    /// @return false when the class does not know the name and `createDynamic` is false
    bool setProperty(std::string_view name, const ZTVariant& value, bool createDynamic = false);
    template <zt::detail::VariantValue T>
    bool setProperty(std::string_view name, T&& value, bool createDynamic = false)
    {
        const zt::detail::LentCopy<T> copy(std::forward<T>(value));
        const ZTVariant& variant = copy;
        return setProperty(name, variant, createDynamic);
    }
    /// The names of the dynamic properties, in no order. A view stays good as long as the object
    /// has the property.
    [[nodiscard]] std::vector<std::string_view> dynamicProperties() const;
    /// Takes a dynamic property away. `dynamicPropertyChanged` is sent with an invalid variant.
    /// @return false when the object has none of that name; one of its class stays
    /// Cost: a step for each dynamic property of the object.
    bool removeDynamicProperty(std::string_view name);

    // Events. Each of these raises the event of its name on this object.
    /// Sent by the destructor, when the object is a plain `ZTBase` already.
    void destroyed(ZTBase* object);
    void dynamicPropertyChanged(const std::string& name, const ZTVariant& value);
    void childAdded(ZTBase* child);
    void childRemoved(ZTBase* child);

    [[nodiscard]] bool isBlockingSentEvents() const;
    [[nodiscard]] bool isBlockingReceivedEvents() const;

    /// Whether a send of the event would call a handler now: what is costly to work out need not
    /// be when nobody hears of it. A subscription that is blocked, as its sender, its receiver or
    /// by itself, hears nothing.
    /// @param event  a descriptor, or a member function: `isHeard(&Self::measured)`. Nobody hears
    ///               null, a method, or an event that the class of this object does not have
    /// Cost: stops at the first that hears. A member function is looked up in its class.
    [[nodiscard]] bool isHeard(const ZTMetaInvokable* event) const;
    /// How many handlers it would call. Cost: a step for each subscription to the event.
    [[nodiscard]] int listenerCount(const ZTMetaInvokable* event) const;
    template <zt::detail::MemberFunction Event>
        requires zt::detail::HasTraits<Event>
    [[nodiscard]] bool isHeard(Event event) const { return isHeard(zt::detail::findEvent(event)); }
    template <zt::detail::MemberFunction Event>
        requires zt::detail::HasTraits<Event>
    [[nodiscard]] int listenerCount(Event event) const
    {
        return listenerCount(zt::detail::findEvent(event));
    }

    /// The innermost delivery of this thread: for a handler without a receiver, which has nobody
    /// to ask for `activeEvent`. Nulls and -1 outside of a delivery.
    [[nodiscard]] static ZTDeliveryInfo delivery();

    /// Subscribes an invokable of the subscriber to an event of the sender.
    ///
    /// The handler's parameters must be the event's leading ones, type by type. The subscription
    /// ends with either object. What is subscribed while the event is being delivered takes part
    /// from the next send on.
    /// @return an empty handle when it is refused; mismatches are told in the log, a null sender
    ///         or event, or an event that is a method, are not
    /// Cost: does not depend on how many others are subscribed.
    static ZTSubscription subscribe(const ZTBase* sender, const ZTMetaInvokable* event,
                                    const ZTBase* subscriber, const ZTMetaInvokable* handler);

    /// The same with a member function as the event, or with a member function of the receiver or
    /// a callable as the handler:
    ///
    ///     ZTBase::subscribe(lamp, &Lamp::switched, journal, &Journal::note);
    ///     ZTBase::subscribe(lamp, &Lamp::switched, journal, [=](bool on) { ... });
    ///
    /// A callable that takes a `const ZTArgumentArray&` fits every event and gets all arguments as
    /// variants. A callable lives until the subscription ends, so at most as long as the receiver;
    /// a null receiver is refused, which is told in the log.
    /// Where the compiler knows both, a handler may also take a pointer to a base class, or to
    /// const, where the event gives a pointer to an object.
    /// Whatever the compiler can see to be wrong does not compile.
    template <class Sender, class Event, class Receiver, class Handler>
        requires zt::detail::isSubscribeTemplate<Event, Receiver, Handler>
    static ZTSubscription subscribe(const Sender& sender, Event event, const Receiver& receiver,
                                    Handler handler)
    {
        using namespace zt::detail;
        constexpr SubscribeFault fault = faultOfSubscription<Sender, Event, Receiver, Handler>();
        tell<fault>();
        if constexpr (fault != SubscribeFault::None) {
            return {};
        } else {
            // Before there is a handler to lose.
            const ZTMetaInvokable* descriptor = eventOf(sender, event);
            if constexpr (isInvokablePointer<Handler>)
                return subscribe(sender, descriptor, receiver, handler);
            else
                return subscribeFor(
                    receiver, sender, descriptor,
                    makeHandler<std::remove_pointer_t<Receiver>, EventParams<Event>>(
                        std::move(handler)));
        }
    }

    /// Subscribes a function, or a callable without captures, that no object's life bounds; or a
    /// callable with captures, which gives a `ZTScopedSubscription`: what it captured is safe only
    /// as long as somebody holds the result.
    template <class Sender, class Event, class Handler>
    static zt::detail::FreeSubscription<Handler> subscribe(const Sender& sender, Event event,
                                                           Handler handler)
    {
        using namespace zt::detail;
        constexpr SubscribeFault fault = faultOfFreeSubscription<Sender, Event, Handler>();
        tell<fault>();
        if constexpr (fault != SubscribeFault::None) {
            return {};
        } else {
            const ZTMetaInvokable* descriptor = eventOf(sender, event);
            return FreeSubscription<Handler>(
                subscribeImpl(sender, descriptor, nullptr,
                              makeHandler<ZTBase, EventParams<Event>>(std::move(handler))));
        }
    }

    /// The same with options of `subscribeoptions.h` behind the handler.
    template <class Sender, class Event, class Receiver, class Handler, class... Options>
        requires(sizeof...(Options) > 0 && zt::detail::isReceiverAndHandler<Receiver, Handler>)
    static ZTSubscription subscribe(const Sender& sender, Event event, const Receiver& receiver,
                                    Handler handler, Options... options)
    {
        return subscribeWithOptions<false>(sender, event, nullptr, receiver, std::move(handler),
                                           std::move(options)...);
    }
    template <class Sender, class Event, class Handler, zt::detail::IsSubscribeOption First,
              zt::detail::IsSubscribeOption... Options>
    static zt::detail::FreeSubscription<Handler, First, Options...>
    subscribe(const Sender& sender, Event event, Handler handler, First first, Options... options)
    {
        return zt::detail::FreeSubscription<Handler, First, Options...>(subscribeWithOptions<false>(
            sender, event, nullptr, zt::detail::NoReceiver(), std::move(handler), std::move(first),
            std::move(options)...));
    }

    /// Subscribes through a queue: the handler runs when the queue delivers, on its thread. Sender
    /// and receiver may belong to different threads; see `eventqueue.h`.
    template <class Sender, class Event, class Receiver, class Handler, class... Options>
        requires(!zt::detail::IsSubscribeOption<Handler>)
    static ZTSubscription subscribe(const Sender& sender, Event event, ZTEventQueue& queue,
                                    const Receiver& receiver, Handler handler, Options... options)
    {
        return subscribeWithOptions<true>(sender, event, &queue, receiver, std::move(handler),
                                          std::move(options)...);
    }
    template <class Sender, class Event, class Handler, zt::detail::IsSubscribeOption... Options>
    static zt::detail::FreeSubscription<Handler, Options...>
    subscribe(const Sender& sender, Event event, ZTEventQueue& queue, Handler handler,
              Options... options)
    {
        return zt::detail::FreeSubscription<Handler, Options...>(
            subscribeWithOptions<true>(sender, event, &queue, zt::detail::NoReceiver(),
                                       std::move(handler), std::move(options)...));
    }

    // Unsubscribing. Each form ends every subscription that fits, at once, also while the event is
    // being delivered: what is ended is not called any more. Each answers whether anything ended,
    // and logs nothing. Cost: what ends, not what the sender has.

    /// Everything that `subscriber` has on this object; null means everybody.
    bool unsubscribe(const ZTBase* subscriber) const;
    /// The subscription of the handle, and with it every other one of the same invokable by the
    /// same subscriber to the same event.
    static bool unsubscribe(const ZTSubscription& subscription);
    /// Null for the event, the subscriber or the handler means any. A handler without a subscriber
    /// ends nothing.
    static bool unsubscribe(const ZTBase* sender, const ZTMetaInvokable* event,
                            const ZTBase* subscriber, const ZTMetaInvokable* handler);
    /// The same with member functions. A callable cannot be found again by its value, nor a
    /// function that was subscribed without a receiver: end its subscription through the handle.
    template <class Sender, class Event, class Receiver, class Handler>
        requires(!(zt::detail::isInvokableOrNull<Event> && zt::detail::isInvokableOrNull<Handler>))
    static bool unsubscribe(const Sender& sender, Event event, const Receiver& receiver,
                            Handler handler)
    {
        using namespace zt::detail;
        constexpr SubscribeFault fault = faultOfUnsubscription<Sender, Event, Receiver, Handler>();
        tell<fault>();
        if constexpr (fault == SubscribeFault::None) {
            const ZTMetaInvokable* descriptor = nullptr;
            if constexpr (!std::is_null_pointer_v<Event>) {
                descriptor = findEvent(event);
                if (isMemberPointer<Event> && !descriptor)
                    return false;
            }
            if constexpr (isInvokablePointer<Handler> || std::is_null_pointer_v<Handler>) {
                return unsubscribe(sender, descriptor, receiver, handler);
            } else {
                HandlerKey key = keyOf(handler);
                return unsubscribeImpl(sender, descriptor, receiver, &key);
            }
        } else {
            return false;
        }
    }

protected:
    /// Raises the event with that class-wide index, with its values in the leading elements.
    ///
    /// The receivers are called in the order of their subscribing, on this thread. An index that
    /// the class does not have is told in the log, and nothing is delivered. What a handler throws
    /// passes through; the receivers behind it are not called.
    /// @param arguments  not copied: each receiver gets what stands in it when its turn comes. A
    ///                   value of another type than the event declares is told in the log if
    ///                   anybody listens, and reaches typed handlers as a default value
    void sendEvent(int index, const ZTArgumentArray& arguments) const;

    /// Raises `Event`, a member function of the class that is declared as an event:
    ///
    ///     void targetChanged(double celsius) { sendEvent<&Self::targetChanged>(celsius); }
    ///
    /// The values are copied once, and only when somebody listens. Only then is it noticed, too,
    /// that an object has a class without the event.
    template <auto Event, class... Arguments>
    void sendEvent(Arguments&&... arguments) const
    {
        using Traits = zt::detail::MemberTraits<decltype(Event)>;
        zt::detail::TypedEvent<Event, typename Traits::Params>::send(
            *this, std::forward<Arguments>(arguments)...);
    }

    // The event that is being delivered to this object: for handlers. Outside of a delivery null,
    // -1 and null; the sender is null as well when it has died meanwhile.
    [[nodiscard]] const ZTMetaInvokable* activeEvent() const;
    [[nodiscard]] int activeEventIndex() const;
    [[nodiscard]] ZTBase* eventSender() const;

private:
    friend struct ZTBasePrivate;
    friend struct zt::detail::ClassAccess;
    friend struct zt::detail::EventRaiser;
    friend struct zt::detail::ZTRefImpl;
    friend struct zt::detail::ZTStrongRefImpl;
    template <auto Event, class Params>
    friend struct zt::detail::TypedEvent;

    static ZTSubscription subscribeImpl(const ZTBase* sender, const ZTMetaInvokable* event,
                                        const ZTBase* subscriber, zt::detail::Handler handler);
    /// A handler that a receiver bounds: refused without one, like a member function.
    static ZTSubscription subscribeFor(const ZTBase* receiver, const ZTBase* sender,
                                       const ZTMetaInvokable* event, zt::detail::Handler handler);
    static bool unsubscribeImpl(const ZTBase* sender, const ZTMetaInvokable* event,
                                const ZTBase* subscriber, void* key);

    static ZTSubscription subscribeWith(const ZTBase* sender, const ZTMetaInvokable* event,
                                        const ZTBase* subscriber, zt::detail::Handler handler,
                                        zt::detail::SubscriptionOptions& options);
    /// @param queue     null where the handler is called at once
    /// @param receiver  a `NoReceiver` where there is none
    template <bool hasQueue, class Sender, class Event, class Receiver, class Handler,
              class... Options>
    static ZTSubscription subscribeWithOptions(const Sender& sender, Event event,
                                               ZTEventQueue* queue, const Receiver& receiver,
                                               Handler handler, Options... options)
    {
        using namespace zt::detail;
        constexpr bool isFree = std::is_same_v<Receiver, NoReceiver>;
        constexpr SubscribeFault fault =
            isFree ? faultOfFreeSubscription<Sender, Event, Handler>()
                   : faultOfSubscription<Sender, Event, Receiver, Handler>();
        tell<fault>();
        if constexpr (fault != SubscribeFault::None ||
                      !areOptions<Handler, EventParams<Event>, hasQueue, Options...>()) {
            return {};
        } else {
            const ZTMetaInvokable* descriptor = eventOf(sender, event);
            SubscriptionOptions all;
            all.queue = queue;
            all.needsReceiver = !isFree;
            (options.template addTo<EventParams<Event>>(all), ...);
            if constexpr (isInvokablePointer<Handler>) {
                return subscribeWith(sender, descriptor, receiver, invokableHandler(handler), all);
            } else {
                using Object = std::conditional_t<isFree, ZTBase, std::remove_pointer_t<Receiver>>;
                if constexpr ((Options::needsComparableHandler || ...))
                    all.key.emplace(keyOf(handler));
                return subscribeWith(sender, descriptor, receiver,
                                     makeHandler<Object, EventParams<Event>>(std::move(handler)),
                                     all);
            }
        }
    }

    /// The subscribers of that event; null when a send would reach nobody. Reports a negative
    /// index.
    [[nodiscard]] ZTEventSlot* heardSlot(int index) const;
    /// Sends values of the types that the event declares, given by their addresses, if anybody
    /// hears them. Values that cost nothing to copy are copied before that is asked.
    void sendValues(const zt::detail::DeclaredEvent& declared, void** values) const;
    void sendValues(ZTEventSlot& slot, const zt::detail::DeclaredEvent& declared,
                    void** values) const;

    /// The property of the class, or null.
    [[nodiscard]] const ZTMetaProperty* declaredProperty(std::string_view name) const;
    /// The value of the dynamic property, or null. Good until the property is set.
    [[nodiscard]] const ZTVariant* dynamicProperty(std::string_view name) const;
    [[nodiscard]] ZTVariant copyOfDynamicProperty(std::string_view name) const;

    static zt::detail::ClassTable& ztTable();

    ZTBasePrivate* priv;
};

/// Prints the address.
ZT_EXPORT std::ostream& operator<<(std::ostream& stream, const ZTBase* object);
