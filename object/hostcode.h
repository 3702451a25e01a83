#pragma once

#include <zintar/detail/lifewatch.h>
#include <zintar/fwd.h>

// Where code of the host runs inside the library, and what holds there.
//
// It runs wherever a handler, a getter, a setter, a method, a converter or a constructor is called;
// where a value or a callable is copied, compared, streamed or destroyed; and where a line is
// logged. At each such point anything may happen to any object: it may die, move, change its
// parent, subscribe and unsubscribe, raise the same event, set the same property.
//
// 1. An operation takes out what it ends, brings all its records into order, and lets go of what
//    belongs to the host as its very last act. Behind that it touches nothing, not even `this`.
//    Handlers go by `ZTLetGo`, values by a local variant or container; both are declared first, so
//    that they are destroyed last.
// 2. Where it must go on behind code of the host, it watches what it goes on with: an object by
//    `ZTLifeWatch`, the value of a dynamic property by `ZTValueReading`, the walk over a slot by
//    `ZTDelivery`, a handler that runs by `KeptHandler::Call`.
// 3. An operation takes the memory that it needs before it changes anything, so that a failing
//    allocation leaves all as it was. Where code of the host stands in between, room is kept:
//    `ZTJoining`. What destroys or ends something takes no memory at all.
//
// clang-format off
// operation               code of the host runs               rule
// ----------------------  ----------------------------------  --------------------------------
// setParent               childRemoved, childAdded            watches object and new parent
// ~ZTBase, and            destroyed                           the record may be moved away
//  assignment over an     childRemoved, ends of the children  the record is still in its place
//  object                 a line in the log                   the object has no record any more
//                         ends of properties and handlers     last act
// reading a dynamic or    copy of the value                   ZTValueReading
//  stored property
// setting one             conversion, comparison, copies      watches the object, looks it up again
//                         dynamicPropertyChanged, or its own  told by values made before
//                         end of the old value                last act
// subscribe               end of a handler that is refused    last act
// unsubscribe             ends of the handlers                last act
// raising an event        copies of typed values              watches sender, looks slot up again
//                         handlers                            ZTDelivery
//                         end of a handler that has ended     when it has returned: Call
//  through a queue        copies of the values                keeps the subscription
//                         the condition of a subscription     keeps it, asks whether it is active
//  held back              copies of the values                watches the sender, looks the hold up
// the end of a hold       handlers                            asks its reference for the object
// a binding's update      getters, conversions, setters       keeps itself, asks its ends for objects
// delivery of a queue     handlers, ends of dropped values    keeps the queue, takes out one by one
//                         ends of handlers that others ended  last act
// declared property,      copies, conversions of values       watches the object
//  method by name         getter, setter, method              nothing is used behind it
// ZTEventMonitor          its callback                        within the ZTDelivery that it is told of
//                         ends of callbacks                   last act
// ZTEventListener         copies of what it records           watches the listener
//                         ends of records                     last act
// clang-format on

/// The handlers that an operation has ended. They are destroyed when this is, in the order of being
/// added.
class ZTLetGo
{
public:
    ZTLetGo() = default;
    ZTLetGo(const ZTLetGo&) = delete;
    ZTLetGo& operator=(const ZTLetGo&) = delete;
    ~ZTLetGo();

    /// @param handler  null adds nothing
    void add(zt::detail::KeptHandler* handler) noexcept;
    /// All that `other` has.
    void take(ZTLetGo& other) noexcept;

private:
    zt::detail::KeptHandler* m_first = nullptr;
    zt::detail::KeptHandler** m_end = &m_first;
};
