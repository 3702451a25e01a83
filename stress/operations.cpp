#include "world.h"

#include <algorithm>

// The operations on objects, references, blockers and properties. Each brings the model forward,
// calls the library, and looks up again what it needs behind that.

namespace stress
{
Body* World::bodyIn(int slot)
{
    return slot == nobody || idIn(slot) == none ? nullptr : &m_model.bodies.at(idIn(slot));
}

Body* World::wholeBodyIn(int slot)
{
    Body* body = bodyIn(slot);
    return body && !body->isDying && !body->isBeingMade ? body : nullptr;
}

/// Whether the library says what it means to move from the object now.
bool World::canBeMoved(const Body* body) const
{
    return body && !body->isBeingMade && !body->locks &&
           (!body->isDying || (body->soul != none && m_model.isSettled(body->soul)));
}

ZTBase* World::objectIn(int slot) { return bodyIn(slot) ? m_objects.at(idIn(slot)) : nullptr; }

Id World::soulIn(int slot)
{
    Body* body = bodyIn(slot);
    return body ? body->soul : none;
}

Grip World::gripOn(int slot)
{
    Body* body = wholeBodyIn(slot);
    bool isWanted = !m_failNext; // what it ends when it goes could not be taken back
    return isWanted && body && body->soul != none ? Grip(body->soul, objectIn(slot)) : Grip();
}

Cargo World::cargoOf(int number, const int* operands)
{
    return {number, gripOn(operands[3]), Hooks(operands)};
}

void World::compareCalls(const Expectation& expected, Outcome outcome) const
{
    bool isQuiet = expected.count >= 0 && expected.steps == m_model.steps;
    if (isQuiet && outcome == Outcome::Done && m_model.calls != expected.calls + expected.count)
        mismatch("an operation has called another number of handlers");
}

void World::makeObject(const Operands& o)
{
    Body* parent = bodyIn(o[1]);
    if (m_isClosing || idIn(o[0]) != none)
        return;
    ZTBase* under = parent ? objectIn(o[1]) : nullptr;
    Id underSoul = parent ? parent->soul : none;
    void* memory = ::operator new(sizeof(Lead));
    auto ofClass = Class(o[3]);
    Id id = m_model.birth(ofClass, o[2]);
    m_slots[std::size_t(o[0])] = id;
    m_objects[id] = static_cast<ZTBase*>(memory);
    m_model.bodies.at(id).isBeingMade = true;
    m_model.startPlacing(id, underSoul, id);
    Expectation expected =
        expect(underSoul == none ? 0 : m_model.audienceOf(underSoul, Event::ChildAdded));
    Outcome outcome = library([&] { construct(ofClass, memory, id, under); });
    Body& body = m_model.bodies.at(id);
    body.isBeingMade = false;
    if (outcome == Outcome::Done)
        return compareCalls(expected, outcome);
    body.isDying = true;
    givesBack(memory);
}

template <class... Arguments>
void World::construct(Class ofClass, void* memory, Arguments&&... arguments)
{
    if (ofClass == Class::Lead)
        new (memory) Lead(std::forward<Arguments>(arguments)...);
    else if (ofClass == Class::Shifter)
        new (memory) Shifter(std::forward<Arguments>(arguments)...);
    else
        new (memory) Actor(std::forward<Arguments>(arguments)...);
}

void World::deleteObject(const Operands& o)
{
    Body* body = wholeBodyIn(o[0]);
    if (!body || body->locks)
        return;
    body->mayDie = true;
    Id id = idIn(o[0]);
    bool isFree = body->soul == none || (m_model.souls.at(body->soul).parent == none &&
                                         m_model.souls.at(body->soul).children.empty() &&
                                         m_model.isPlaceKnown(body->soul));
    Expectation expected = expect(body->soul == none ? 0
                                  : isFree ? m_model.audienceOf(body->soul, Event::Destroyed)
                                           : -1);
    ZTBase* object = objectIn(o[0]);
    Outcome outcome = library([&] { delete object; });
    if (!m_model.bodies.at(id).isGone)
        mismatch("a deleted object is still there");
    compareCalls(expected, outcome);
}

void World::setParent(const Operands& o)
{
    Body* body = bodyIn(o[0]);
    if (!body)
        return;
    Body* parent = bodyIn(o[1]);
    Id underSoul = parent ? parent->soul : none;
    int count = -1;
    if (body->soul == none || parent == body) {
        count = 0;
    } else {
        Id before = m_model.souls.at(body->soul).parent;
        int removed = before == none ? 0 : m_model.audienceOf(before, Event::ChildRemoved);
        int added = underSoul == none ? 0 : m_model.audienceOf(underSoul, Event::ChildAdded);
        bool isKnown = removed >= 0 && added >= 0 && m_model.isPlaceKnown(body->soul);
        m_model.startPlacing(body->soul, underSoul);
        if (isKnown && m_model.frames.back().placed == body->soul)
            count = removed + added;
    }
    ZTBase *object = objectIn(o[0]), *under = objectIn(o[1] == nobody ? o[0] : o[1]);
    Expectation expected = expect(count);
    compareCalls(expected, library([&] { object->setParent(parent ? under : nullptr); }));
}

void World::moveObject(const Operands& o)
{
    Body* source = bodyIn(o[0]);
    if (m_isClosing || !canBeMoved(source) || idIn(o[1]) != none)
        return;
    // The handlers of a lead come along to another one.
    auto ofClass = Class(o[2]);
    if (ofClass == Class::Lead && (source->ofClass != Class::Lead || source->isDying))
        ofClass = Class::Actor;
    void* memory = ::operator new(sizeof(Lead));
    Id id = m_model.emptyBody(ofClass, source->heard);
    m_slots[std::size_t(o[1])] = id;
    m_objects[id] = static_cast<ZTBase*>(memory);
    m_model.moveSoul(idIn(o[0]), id);
    ZTBase& from = *objectIn(o[0]);
    library([&] { construct(ofClass, memory, id, std::move(from)); });
}

void World::assign(const Operands& o)
{
    Body* target = bodyIn(o[0]);
    if (!target || o[0] == o[1] || target->isBeingMade || target->locks ||
        !canBeMoved(bodyIn(o[1])))
        return;
    Id to = idIn(o[0]), from = idIn(o[1]);
    ZTBase *object = objectIn(o[0]), *source = objectIn(o[1]);
    // An object that is coming to its end becomes nothing else.
    bool isDying = target->isDying;
    Id ended = isDying ? none : m_model.startAssigning(to, from);
    library([&] { object->ZTBase::operator=(std::move(*source)); });
    if (!isDying)
        m_model.finishAssigning(to, from, ended);
}

void World::setProperty(const Operands& o)
{
    ZTBase* object = objectIn(o[0]);
    if (!object || bodyIn(o[0])->isBeingMade)
        return;
    std::string name = "p" + std::to_string(o[1]);
    Value set{o[2], o[3]};
    ZTVariant variant;
    if (set.kind == 1)
        variant = ZTVariant(set.number);
    else if (set.kind == 2)
        variant = ZTVariant(cargoOf(set.number, &o[4]));
    if (objectIn(o[0]) != object) // a copy of the value has ended it
        return;
    Id id = soulIn(o[0]);
    m_model.frames.back().isPassing = true;
    Expectation expected = expect(-1);
    if (id != none) {
        Soul& soul = m_model.souls.at(id);
        bool isNew = !soul.properties.count(o[1]);
        Value& value = soul.properties[o[1]];
        if (!value.writers && !value.isOpen)
            expected.count =
                isNew || !(value == set) ? m_model.audienceOf(id, Event::PropertyChanged) : 0;
        value.isContested = value.writers > 0;
        ++value.writers;
    }
    Outcome outcome = library([&] { object->setProperty(name, variant, true); });
    compareCalls(expected, outcome);
    if (id == none)
        return;
    Value& value = m_model.souls.at(id).properties[o[1]];
    if (--value.writers > 0)
        return;
    value.isOpen = !m_model.isSettled(id);
    if (value.isOpen)
        return;
    if (!value.isContested) {
        value = set;
        return;
    }
    Soul& soul = m_model.souls.at(id);
    const ZTBase& written = *m_objects.at(soul.body);
    auto names = written.dynamicProperties();
    ++m_muted;
    if (std::count(names.begin(), names.end(), name))
        value = valueOf(written.property(name));
    else
        soul.properties.erase(o[1]); // somebody took it away meanwhile
    --m_muted;
}

void World::removeProperty(const Operands& o)
{
    ZTBase* object = objectIn(o[0]);
    if (!object || bodyIn(o[0])->isBeingMade)
        return;
    Id id = soulIn(o[0]);
    m_model.frames.back().isPassing = true;
    Expectation expected = expect(-1);
    std::optional<bool> exists; // as far as it is known
    if (id != none && m_model.isSettled(id)) {
        Soul& soul = m_model.souls.at(id);
        auto found = soul.properties.find(o[1]);
        if (found == soul.properties.end()) {
            exists = false;
            expected.count = 0;
        } else if (found->second.writers) {
            found->second.isContested = true;
        } else if (!found->second.isOpen) {
            exists = true;
            expected.count = m_model.audienceOf(id, Event::PropertyChanged);
            soul.properties.erase(found); // before anybody hears of it
        }
    } else if (id != none) {
        m_model.souls.at(id).properties[o[1]].isOpen = true;
    }
    bool isRemoved = false;
    Outcome outcome =
        library([&] { isRemoved = object->removeDynamicProperty("p" + std::to_string(o[1])); });
    compareCalls(expected, outcome);
    if (outcome == Outcome::Done && exists && isRemoved != *exists)
        mismatch("a dynamic property was removed, or not, against what the object had");
}

template <bool isSet>
void World::useDeclared(const Operands& o)
{
    if (!wholeBodyIn(o[0]) || soulIn(o[0]) == none)
        return;
    ZTBase* object = objectIn(o[0]);
    m_accessor = o[1];
    int accesses = m_accesses;
    Outcome outcome = library([&] {
        if (isSet)
            object->setProperty("load", 1);
        else
            (void)object->property<int>("load");
    });
    m_accessor = 0;
    if (outcome == Outcome::Done && m_accesses == accesses)
        mismatch("a getter or setter is not called");
}

template void World::useDeclared<false>(const Operands& o);
template void World::useDeclared<true>(const Operands& o);

void World::shift(const Operands& o)
{
    Body* body = wholeBodyIn(o[0]);
    if (!body || body->ofClass != Class::Shifter)
        return;
    Id id = idIn(o[0]);
    body->sort = Sort(o[1]);
    m_model.changeClass(body->soul);
    retire(std::exchange(m_ownClasses[id], nullptr));
    if (body->sort != Sort::Nothing)
        m_ownClasses[id] = makeClass(body->sort);
}

OwnClass* World::makeClass(Sort sort)
{
    for (auto& place : m_classes)
        if (!place)
            return &place.emplace(sort);
    return &m_classes.emplace_back(std::in_place, sort).value();
}

void World::retire(OwnClass* retired)
{
    if (retired)
        m_retired.push_back(retired);
    endRetired();
}

/// While an event of it may be delivered a class has to stay.
void World::endRetired()
{
    auto isOfShifter = [](const Frame& frame) { return frame.event == Event::Shifted; };
    if (std::any_of(m_model.frames.begin(), m_model.frames.end(), isOfShifter))
        return;
    for (auto& place : m_classes)
        if (place && std::count(m_retired.begin(), m_retired.end(), &*place))
            place.reset();
    m_retired.clear();
}

const OwnClass* World::ownClassOf(Id body) const
{
    auto found = m_ownClasses.find(body);
    return found == m_ownClasses.end() ? nullptr : found->second;
}

void World::throwStop(const Operands&)
{
    if (!m_muted && m_model.startThrowing())
        throw Stop();
}

void World::failNext(const Operands& o) { m_failNext = o[0] + 1; }

void World::countBlocker(const Blocked& blocked, int change)
{
    if (blocked.soul == none && blocked.subscription == none)
        return;
    // Where no handler runs the delivery may be over, and what it raised just goes.
    for (Frame& frame : m_model.frames)
        frame.isLoose =
            frame.isLoose || (blocked.soul != none && blocked.isSent ? frame.sender == blocked.soul
                                                                     : !frame.isRunning);
    if (blocked.subscription != none) {
        m_model.subscriptions.at(blocked.subscription).blockers += change;
        return;
    }
    Soul& soul = m_model.souls.at(blocked.soul);
    (blocked.isSent ? soul.sentBlockers : soul.receivedBlockers) += change;
}

void World::block(const Operands& o)
{
    if (!bodyIn(o[1]))
        return;
    unblock(o);
    Blocked& held = m_blockers[std::size_t(o[0])];
    held.soul = soulIn(o[1]);
    held.isSent = o[2] == 1;
    held.blocker.emplace(objectIn(o[1]), held.isSent);
    countBlocker(held, 1);
}

void World::unblock(const Operands& o)
{
    Blocked& held = m_blockers[std::size_t(o[0])];
    countBlocker(held, -1);
    held.soul = held.subscription = none;
    held.blocker.reset();
}

/// Blocks the subscription of a handle.
void World::hush(const Operands& o)
{
    const Id named = m_named[std::size_t(o[1])];
    if (named == none)
        return;
    unblock(o);
    Blocked& held = m_blockers[std::size_t(o[0])];
    held.subscription = named;
    held.blocker.emplace(m_handles[named]);
    countBlocker(held, 1);
}

void World::reblock(const Operands& o)
{
    Blocked& held = m_blockers[std::size_t(o[0])];
    const Blocked& other = m_blockers[std::size_t(o[1])];
    if (!held.blocker || !other.blocker)
        return;
    countBlocker(other, 1);
    countBlocker(held, -1);
    held.soul = other.soul;
    held.isSent = other.isSent;
    held.subscription = other.subscription;
    *held.blocker = *other.blocker;
}

template <>
void World::refer<true>(const Operands& o)
{
    Grip grip;
    if (library([&] { grip = gripOn(o[1]); }) == Outcome::Done)
        m_strong[std::size_t(o[0])] = std::move(grip);
}

template <>
void World::refer<false>(const Operands& o)
{
    ZTBase* object = objectIn(o[1] == nobody ? 0 : o[1]);
    ZTRef<ZTBase> reference;
    Id soul = o[1] == nobody ? none : soulIn(o[1]);
    if (library([&] { reference.reset(soul == none ? nullptr : object); }) != Outcome::Done)
        return;
    m_weak[std::size_t(o[0])] = reference;
    m_weakSouls[std::size_t(o[0])] = soul;
}
} // namespace stress
