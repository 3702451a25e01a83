#pragma once

#include <zintar/detail/lifewatch.h>
#include <zintar/subscription.h>

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
//    `ZTDelivery`, a handler that runs by `DescribedHandler::Call`.
// 3. An operation takes the memory that it needs before it changes anything, so that a failing
//    allocation leaves all as it was. Where code of the host stands in between, room is kept:
//    `ZTJoining`. What destroys or ends something takes no memory at all.
//
// operation             code of the host runs              rule
// --------------------  ---------------------------------
// ------------------------------------------ setParent             childRemoved, childAdded watches
// the object and the new parent ~ZTBase               destroyed                          as the
// object; then its record ends:
//  and assignment over  childRemoved of the parent         the record is there until the next line
//  an object            ends of the children               the record is there until the next line
//                       a line in the log                  the object has no record any more
//                       ends of properties and handlers    the record is gone; last act
// dynamic property,     copy of the value                  ZTValueReading
//  reading
//  setting              comparison, copy                   watches the object, looks the name up
//  again
//                       dynamicPropertyChanged             nothing is used behind it
//                       end of the old value               last act
// subscribe             end of a handler that is refused   last act
// unsubscribe           ends of the handlers               last act
// raising an event      copies of typed values             watches the sender, looks the slot up
// again
//                       handlers                           ZTDelivery
//                       end of a handler that ended        within `Call`, when it has returned
// declared property,    copies and conversions of values   before the object is asked for
//  method by name       getter, setter, method             nothing is used behind it
// ZTEventListener       copies of what it records          watches the listener, which takes them
// last
//                       ends of records                    last act

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
    void add(zt::detail::ZTHandlerBase* handler) noexcept;

private:
    zt::detail::ZTHandlerBase* m_first = nullptr;
    zt::detail::ZTHandlerBase** m_end = &m_first;
};
