#pragma once

#include "program.h"

#include <map>
#include <string>
#include <vector>

/// @file
/// What the rules say, in plain C++ and without a pointer to anything.
///
/// 1. A soul is what an object is: its place in the tree, its subscriptions, its properties. A body
///    is the memory that it lives in. A move takes the soul to another body; an assignment ends the
///    soul that was there. Numbers are not given twice.
/// 2. The model is brought forward before the library is called, so that code of the host that runs
///    meanwhile finds the two alike.
/// 3. A soul that is coming to its end is not settled: the rules do not tell at which moment which
///    of its ties go, so nothing is expected of them until it is gone. While its `destroyed` is
///    being delivered all is still in place.
/// 4. The frames are the operations and deliveries in progress. Deliveries that an operation brings
///    about are noticed by their first call.

namespace stress
{
using Id = int;
constexpr Id none = -1;

/// Tells that the library and the model differ, and ends the process.
[[noreturn]] void mismatch(const std::string& what);

struct Body {
    Id soul = none;
    Class ofClass = Class::Actor;
    Sort sort = Sort::Nothing; ///< of the event that its class has now
    int heard = 0;             ///< the script that its member functions run
    bool isBeingMade = false;
    bool isDying = false;
    bool isGone = false;
    bool mayDie = false; ///< somebody deletes it, or dropped the last strong reference
    int locks = 0;       ///< assignments to or from it in progress
    Id kept = none;      ///< the subscription that its member ends
};

struct Value {
    int kind = 0; ///< none, a number, a cargo
    int number = 0;
    int writers = 0;          ///< in progress
    bool isContested = false; ///< two at once: the later of them is whichever
    bool isOpen = false;      ///< set when nothing was expected of the soul
    bool operator==(const Value& other) const
    {
        return kind == other.kind && (kind == 0 || number == other.number);
    }
};

struct Soul {
    Id body = none;
    Id parent = none;
    std::vector<Id> children{};
    bool isEnding = false; ///< another one has taken its body
    bool isGone = false;
    Id perhapsUnder = none; ///< an ending soul that may have become its parent
    int strong = 0;         ///< references
    int sentBlockers = 0;
    int receivedBlockers = 0;
    std::map<int, Value> properties{};
};

struct Subscription {
    Id sender, receiver;
    Event event;
    Kind kind;
    int script;
    Sort takes = Sort::Nothing; ///< of an event that carries one of them; nothing takes any
    bool isAlive = true;
    int blockers = 0;
};

struct Frame {
    enum Type { Operation, Raise, Implied } type = Operation;

    // Of an operation: the soul that is between two parents, and the one to come.
    Id placed = none, under = none;
    Id made = none;         ///< the body whose constructor it runs
    bool isPassing = false; ///< what a handler throws that is called meanwhile comes out of it
    bool hasThrown = false;

    // Of a delivery.
    Id sender = none;
    Id body = none; ///< that the sender had when it was noticed
    Event event = Event::Said;
    Id next = 0;
    Id certainEnd = 0; ///< those in front of it are called
    Id allowedEnd = 0; ///< those in front of it may be
    bool hasBegun = false;
    bool isBlocked = false;
    bool isLoose = false;   ///< what it reaches is open
    bool isRunning = false; ///< a handler runs
    Id receiver = none;
    int steps = 0;  ///< of the world when it was raised
    int number = 0; ///< the value
    Sort sort = Sort::Nothing;
    int arrayVersion = -1; ///< of the array that holds the value, if one does
};

class Model
{
public:
    std::map<Id, Body> bodies;
    std::map<Id, Soul> souls;
    std::map<Id, Subscription> subscriptions;
    std::vector<Frame> frames;
    int steps = 0; ///< operations so far
    int calls = 0; ///< of handlers so far

    // Objects.
    /// A body with a soul; both have the number.
    Id birth(Class ofClass, int heard);
    Id emptyBody(Class ofClass, int heard);
    [[nodiscard]] Soul* soulOf(Id body);
    /// Whether what the rules say of it holds now.
    [[nodiscard]] bool isSettled(Id soul) const;
    [[nodiscard]] bool isPlaceKnown(Id soul) const;
    void moveSoul(Id from, Id to);
    /// The object has another class from now on.
    void changeClass(Id soul);
    /// The soul that ends, or none.
    Id startAssigning(Id to, Id from);
    void finishAssigning(Id to, Id from, Id ended);
    /// The soul is to get another parent by the operation in progress; a body is made for it, or
    /// none.
    void startPlacing(Id soul, Id parent, Id made = none);
    void finishPlacing();
    /// The destructor of the object begins.
    void dies(Id body);
    /// Its memory is given back.
    void isGone(Id body);

    // Events.
    Id subscribe(const Subscription& one);
    [[nodiscard]] bool isCertain(const Subscription& one) const;
    /// Ends what fits; notes whether anything certainly or perhaps was alive.
    template <class Condition>
    void endWhere(Condition condition)
    {
        anyCertain = anyPossible = false;
        for (auto& [id, one] : subscriptions)
            if (one.isAlive && condition(id, one)) {
                anyCertain = anyCertain || isCertain(one);
                anyPossible = true;
                one.isAlive = false;
            }
    }
    bool anyCertain = false, anyPossible = false;
    /// How many handlers an event of the soul calls; -1 where that is open.
    [[nodiscard]] int audienceOf(Id sender, Event event) const;

    void begin()
    {
        frames.emplace_back();
        ++steps;
    }
    void end();
    void startRaise(Id sender, Event event, int number, int arrayVersion);
    /// Whether an exception of the running handler comes out of an operation: it is thrown then.
    bool startThrowing();
    void finishRaise(bool isComplete);
    /// A handler is called: of that subscription, or of the next one of that kind. Gives it.
    Id enter(Id subscription, Kind kind, Id receiver);
    void leave();
    /// The delivery whose handler runs.
    [[nodiscard]] const Frame& delivery() const { return frames.back(); }
    /// The innermost delivery to the soul, or null.
    [[nodiscard]] const Frame* activeOf(Id soul) const;
    /// Whether a handler of the soul has run, and what it captured may be about to go.
    [[nodiscard]] bool isReturning(Id soul) const;

private:
    void leaveParent(Id soul);
    void leaveBelow(Id soul, Id above);
    void join(Id soul, Id parent);
    void endSoul(Id soul);
    [[nodiscard]] bool isBelow(Id soul, Id above) const;
    [[nodiscard]] bool isBeingPlaced(Id soul) const;
    [[nodiscard]] bool fits(const Subscription& one) const;
    [[nodiscard]] bool isReached(const Subscription& one, const Frame& walk) const;
    /// The delivery on top of the frames that goes on with such a call, or a new one.
    Frame& walkOf(Id subscription);
    Frame& implyRaise(const Subscription& one);
    void limit(Frame& walk) const;
    void expectNoneBefore(const Frame& walk, Id end) const;

    Id m_next = 0;
};
} // namespace stress
