#include "world.h"

#include <algorithm>

// The operations on events and subscriptions.

namespace stress
{
namespace
{
/// Of a text that an event carries: so long that it has memory of its own.
constexpr int leastLength = 40;

int numberOf(int number) { return number; }
int numberOf(long long number) { return int(number); }
int numberOf(const Cargo& cargo) { return cargo.number; }
int numberOf(const std::string& text) { return std::max(int(text.size()) - leastLength, -1); }
int numberOf(const ZTBase*) { return -1; }
int numberOf(const ZTArgumentArray& array) { return numberIn(array[0]); }

/// A callable that captures. It stays whole to its end, also when its subscription ends meanwhile.
template <class Argument>
struct Listener {
    void operator()(Argument argument) const
    {
        Id before = subscription;
        world().heard(subscription, kind, nullptr, numberOf(argument));
        if (subscription != before || cargo.hooks.atEnd < 0)
            mismatch("what a handler captured goes while it runs");
    }
    Id subscription;
    Kind kind;
    Cargo cargo;
};

template <class Argument>
struct Taking {};

template <class Argument>
ZTSubscription subscribeTo(ZTBase* sender, const ZTMetaInvokable* event, ZTBase* receiver, Id id,
                           Kind kind, Cargo cargo)
{
    // A descriptor: a sender that comes to its end is no object of its class any more.
    auto subscribe = [&](auto listener) {
        if (kind == Kind::Scoped || kind == Kind::Twin)
            return ZTBase::subscribe(sender, event, std::move(listener)).release();
        return ZTBase::subscribe(sender, event, receiver, std::move(listener));
    };
    if (kind == Kind::ArrayCallable || kind == Kind::Twin)
        return subscribe(Listener<const ZTArgumentArray&>{id, kind, std::move(cargo)});
    return subscribe(Listener<Argument>{id, kind, std::move(cargo)});
}

bool isOfRoot(Event event) { return event >= Event::Destroyed; }

bool isMember(Kind kind) { return kind >= Kind::Member; }

/// What of a kind fits the event and the two objects.
Kind fitting(Kind kind, Event event, const Body* receiver, bool isWhole)
{
    if ((isMember(kind) && (event != Event::Said || !isWhole)) ||
        (kind == Kind::LeadMember && receiver->ofClass != Class::Lead) ||
        (kind == Kind::Function && event != Event::Said))
        kind = Kind::Callable;
    bool needsReceiver = kind != Kind::Function && kind != Kind::Scoped;
    return needsReceiver && !receiver ? Kind::Scoped : kind;
}
} // namespace

int numberIn(const ZTVariant& variant)
{
    if (const auto* number = ztVariantPointer<int>(variant))
        return *number;
    if (const auto* number = ztVariantPointer<long long>(variant))
        return numberOf(*number);
    if (const auto* text = ztVariantPointer<std::string>(variant))
        return numberOf(*text);
    const auto* cargo = ztVariantPointer<Cargo>(variant);
    return cargo ? cargo->number : -1;
}

Event World::eventIn(int slot, int event)
{
    const Body* body = wholeBodyIn(slot);
    bool hasOwn = body && body->sort != Sort::Nothing;
    return Event(event) == Event::Shifted && !hasOwn ? Event::Said : Event(event);
}

const ZTMetaInvokable* World::eventOf(int slot, Event event)
{
    return event == Event::Shifted ? &ownClassOf(idIn(slot))->shifted : descriptorOf(event);
}

ZTSubscription World::subscribe(Id id, int senderSlot, int receiverSlot, Cargo cargo)
{
    const Subscription& one = m_model.subscriptions.at(id);
    ZTBase* sender = objectIn(senderSlot);
    ZTBase* receiver = receiverSlot == nobody ? nullptr : objectIn(receiverSlot);
    auto* actor = static_cast<Actor*>(isMember(one.kind) ? receiver : nullptr);
    auto* speaker = isOfRoot(one.event) ? nullptr : static_cast<Actor*>(sender);
    switch (one.kind) {
    case Kind::Member:
        return ZTBase::subscribe(speaker, &Actor::said, actor, &Actor::hear);
    case Kind::LeadMember:
        return ZTBase::subscribe(speaker, &Actor::said, static_cast<Lead*>(actor),
                                 &Lead::hearAsLead);
    case Kind::Descriptor:
        return ZTBase::subscribe(sender, eventOf(senderSlot, one.event), actor,
                                 Actor::typeMetaClass().invokable<void(int)>("note"));
    case Kind::Function:
        return ZTBase::subscribe(speaker, &Actor::said, [](int number) {
            world().heard(none, Kind::Function, nullptr, number);
        });
    default:
        break;
    }
    auto as = [&]<class Argument>(Taking<Argument>) {
        return subscribeTo<Argument>(sender, eventOf(senderSlot, one.event), receiver, id, one.kind,
                                     std::move(cargo));
    };
    switch (one.event) {
    case Event::Said:
        return as(Taking<int>());
    case Event::Told:
        return as(Taking<const Cargo&>());
    case Event::PropertyChanged:
        return as(Taking<const std::string&>());
    case Event::Shifted:
        return one.takes == Sort::Text ? as(Taking<std::string>()) : as(Taking<long long>());
    default:
        return as(Taking<ZTBase*>());
    }
}

void World::listen(const Operands& o)
{
    Body *sender = bodyIn(o[0]), *receiver = bodyIn(o[1]);
    Event event = eventIn(o[0], o[2]);
    if (!sender || (!isOfRoot(event) && !wholeBodyIn(o[0])))
        return;
    Kind kind = fitting(Kind(o[3]), event, receiver, wholeBodyIn(o[1]) != nullptr);
    bool hasReceiver = kind != Kind::Function && kind != Kind::Scoped;
    Id from = sender->soul, to = hasReceiver ? receiver->soul : none;
    bool isCapturing = !isMember(kind) && kind != Kind::Function;
    int captured[] = {isCapturing ? o[6] : 0, 0, 0, isCapturing ? o[7] : nobody};
    Cargo cargo = cargoOf(0, captured);
    if (from == none || (hasReceiver && to == none))
        return;
    bool isCertain = wholeBodyIn(o[0]) && (!hasReceiver || wholeBodyIn(o[1])) &&
                     m_model.isSettled(from) && (to == none || m_model.isSettled(to));
    Sort takes =
        event == Event::Shifted && kind != Kind::ArrayCallable ? sender->sort : Sort::Nothing;
    Id id = m_model.subscribe({from, to, event, kind, o[4], takes});
    ZTSubscription handle;
    Outcome outcome = library(
        [&] { handle = subscribe(id, o[0], hasReceiver ? o[1] : nobody, std::move(cargo)); });
    if (outcome != Outcome::Done)
        return void(m_model.subscriptions.at(id).isAlive = false);
    if (isCertain && !handle)
        mismatch("a subscription is refused");
    m_model.subscriptions.at(id).isAlive = bool(handle);
    m_handles[id] = handle;
    m_named[std::size_t(o[5])] = id;
    if (kind != Kind::Scoped)
        return;
    Held& held = m_scoped[std::size_t(o[5])];
    endInModel(std::exchange(held.subscription, id));
    held.scoped = ZTScopedSubscription(handle);
}

void World::endInModel(Id subscription)
{
    m_model.endWhere([&](Id id, const Subscription&) { return id == subscription; });
}

void World::scope(const Operands& o)
{
    auto holder = std::size_t(o[0]);
    if (m_named[holder] == none)
        return;
    Held& held = m_scoped[holder];
    ZTScopedSubscription next(m_handles[m_named[holder]]);
    endInModel(std::exchange(held.subscription, m_named[holder]));
    held.scoped = std::move(next);
}

void World::drop(const Operands& o)
{
    Held& held = m_scoped[std::size_t(o[0])];
    endInModel(std::exchange(held.subscription, none));
    library([&] { held.scoped.reset(); });
}

void World::keep(const Operands& o)
{
    Held& held = m_scoped[std::size_t(o[1])];
    if (wholeBodyIn(o[0]))
        giveKept(o[0], std::exchange(held.subscription, none), &held.scoped);
}

void World::take(const Operands& o)
{
    Body* other = wholeBodyIn(o[1]);
    if (wholeBodyIn(o[0]) && other && o[0] != o[1])
        giveKept(o[0], std::exchange(other->kept, none), &actorIn(o[1])->kept);
}

void World::let(const Operands& o)
{
    ZTScopedSubscription empty;
    if (wholeBodyIn(o[0]))
        giveKept(o[0], none, &empty);
}

void World::giveKept(int slot, Id next, ZTScopedSubscription* source)
{
    endInModel(std::exchange(bodyIn(slot)->kept, next));
    library([&] { actorIn(slot)->kept = std::move(*source); });
}

void World::endByHandle(const Operands& o)
{
    Id id = m_named[std::size_t(o[0])];
    if (id == none)
        return;
    Subscription named = m_model.subscriptions.at(id);
    m_model.endWhere([&](Id other, const Subscription& one) {
        bool isTwin = named.kind == Kind::Descriptor && one.kind == named.kind &&
                      one.sender == named.sender && one.receiver == named.receiver &&
                      one.event == named.event;
        return other == id || (isTwin && named.isAlive);
    });
    bool mustEnd = m_model.anyCertain, mayEnd = m_model.anyPossible;
    ZTSubscription handle = m_handles[id];
    bool ended = false;
    Outcome outcome = library([&] { ended = ZTBase::unsubscribe(handle); });
    if (outcome == Outcome::Done && ended ? !mayEnd : mustEnd && outcome == Outcome::Done)
        mismatch("ending a subscription by its handle answers wrongly");
}

void World::unsubscribe(const Operands& o)
{
    ZTBase* sender = objectIn(o[0]);
    ZTBase* receiver = o[1] == nobody ? nullptr : objectIn(o[1]);
    if (!sender || (o[1] != nobody && !receiver))
        return;
    auto event = Event(o[2]);
    Id from = soulIn(o[0]), to = o[1] == nobody ? none : soulIn(o[1]);
    auto form = Form(o[3]);
    bool isMember = form == Form::OfMember || form == Form::AnyMember;
    bool isNamed = isMember || form == Form::OfDescriptor || form == Form::AnyDescriptor;
    bool isAnyEvent = form == Form::All || form >= Form::AnyMember;
    if (isNamed || event == Event::Shifted) // whose descriptors come and go
        event = Event::Said;
    if (form == Form::OfMember && !wholeBodyIn(o[0]))
        return;
    bool isEmpty = from == none || (receiver && to == none) || (isNamed && !receiver);
    m_model.endWhere([&](Id, const Subscription& one) {
        bool isKind = !isNamed || one.kind == (isMember ? Kind::Member : Kind::Descriptor);
        return !isEmpty && one.sender == from && (!receiver || one.receiver == to) && isKind &&
               (isAnyEvent || one.event == event);
    });
    bool mustEnd = m_model.anyCertain, mayEnd = m_model.anyPossible;
    const ZTMetaInvokable* described = isAnyEvent ? nullptr : descriptorOf(event);
    const auto* note = isNamed ? Actor::typeMetaClass().invokable<void(int)>("note") : nullptr;
    bool ended = false;
    Outcome outcome = library([&] {
        if (form == Form::All)
            ended = sender->unsubscribe(receiver);
        else if (form == Form::OfMember)
            ended = ZTBase::unsubscribe(static_cast<Actor*>(sender), &Actor::said, receiver,
                                        &Actor::hear);
        else if (isMember)
            ended = ZTBase::unsubscribe(sender, nullptr, receiver, &Actor::hear);
        else
            ended = ZTBase::unsubscribe(sender, described, receiver, note);
    });
    if (outcome == Outcome::Done && (ended ? !mayEnd : mustEnd))
        mismatch("an unsubscribe answers wrongly");
}

/// Of the class that the object has now.
void World::raiseOwn(int slot, int number)
{
    Body& body = *bodyIn(slot);
    Actor* sender = actorIn(slot);
    ZTArgumentArray array;
    if (body.sort == Sort::Text)
        array[0] = ZTVariant(std::string(std::size_t(leastLength + number), 'x'));
    else
        array[0] = ZTVariant(static_cast<long long>(number));
    m_model.startRaise(body.soul, Event::Shifted, number, -1);
    Outcome outcome = library([&] { sender->sendEvent(indexOf(Event::Shifted), array); });
    m_model.finishRaise(outcome == Outcome::Done);
}

void World::changeArray(const Operands& o)
{
    ++m_arrayVersion; // before the old value goes, and behind that
    m_array[0] = o[0] == 2 ? ZTVariant(Cargo()) : o[0] == 1 ? ZTVariant(8) : ZTVariant();
    ++m_arrayVersion;
}

void World::raise(const Operands& o)
{
    Body* body = wholeBodyIn(o[0]);
    if (!body || body->soul == none)
        return;
    Event event = eventIn(o[0], o[1]);
    if (event == Event::Shifted)
        return raiseOwn(o[0], o[3]);
    auto way = Way(o[2]);
    Actor* sender = actorIn(o[0]);
    Id id = idIn(o[0]);
    ZTVariant value;
    Cargo cargo = event == Event::Told ? cargoOf(o[3], &o[4]) : Cargo();
    if (way != Way::Typed)
        value = event == Event::Said ? ZTVariant(o[3]) : ZTVariant(cargo);
    if (way == Way::ByIndex) {
        const ZTMetaType& type = value.type();
        m_array[0] = std::move(value);
        ++m_arrayVersion;
        if (&m_array[0].type() != &type) // what went with the last value has put in another one
            return;
    }
    ZTArgumentArray arguments{value};
    body = wholeBodyIn(o[0]); // code of the values has run
    if (!body || body->soul == none || idIn(o[0]) != id)
        return;
    m_model.startRaise(body->soul, event, way == Way::ByIndex ? numberOf(m_array) : o[3],
                       way == Way::ByIndex ? m_arrayVersion : -1);
    Outcome outcome = library([&] {
        if (way == Way::Typed)
            return event == Event::Said ? sender->said(o[3]) : sender->told(cargo);
        const ZTMetaInvokable* descriptor = descriptorOf(event);
        if (way == Way::ByIndex)
            return sender->sendEvent(descriptor->index(), m_array);
        if (event == Event::Said)
            descriptor->invoke(sender, o[3]);
        else
            descriptor->invoke(ZTVariant(static_cast<ZTBase*>(sender)), arguments);
    });
    m_model.finishRaise(outcome == Outcome::Done);
}
} // namespace stress
