#include "world.h"

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
    return Cargo(number, operands, gripOn(operands[3]));
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
    bool isLead = o[3] == 1;
    Id id = m_model.birth(isLead, o[2]);
    m_slots[std::size_t(o[0])] = id;
    m_objects[id] = static_cast<ZTBase*>(memory);
    m_model.bodies.at(id).isBeingMade = true;
    m_model.startPlacing(id, underSoul);
    Expectation expected =
        expect(underSoul == none ? 0 : m_model.audienceOf(underSoul, Event::ChildAdded));
    Outcome outcome = library([&] {
        if (isLead)
            new (memory) Lead(id, under);
        else
            new (memory) Actor(id, under);
    });
    m_model.bodies.at(id).isBeingMade = false;
    if (outcome != Outcome::NoMemory)
        return compareCalls(expected, outcome);
    ::operator delete(memory);
    m_objects.erase(id);
    m_slots[std::size_t(o[0])] = none;
    m_model.souls.at(id).isGone = true;
    m_model.bodies.at(id).isGone = true;
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
    bool isLead = source->isLead && !source->isDying && o[2] == 1;
    void* memory = ::operator new(sizeof(Lead));
    Id id = m_model.emptyBody(isLead, source->heard);
    m_slots[std::size_t(o[1])] = id;
    m_objects[id] = static_cast<ZTBase*>(memory);
    m_model.moveSoul(idIn(o[0]), id);
    ZTBase& from = *objectIn(o[0]);
    library([&] {
        if (isLead)
            new (memory) Lead(id, std::move(from));
        else
            new (memory) Actor(id, std::move(from));
    });
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
    Expectation expected = expect(-1);
    if (id != none) {
        Soul& soul = m_model.souls.at(id);
        bool isNew = !soul.properties.count(o[1]);
        Value& value = soul.properties[o[1]];
        if (!value.writers)
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
    if (--value.writers > 0 || !m_model.isSettled(id))
        return;
    ++m_muted;
    if (value.isContested)
        set = valueOf(m_objects.at(m_model.souls.at(id).body)->property(name));
    --m_muted;
    value = set;
}

void World::useDeclared(const Operands& o, bool isSet)
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

void World::throwStop()
{
    const auto& frames = m_model.frames;
    if (frames.size() < 2 || m_muted)
        return;
    const Frame& caller = frames[frames.size() - 2];
    bool isReturned = caller.event == Event::PropertyChanged || caller.type == Frame::Raise;
    if (caller.isRunning && isReturned && m_model.isSettled(caller.sender))
        throw Stop();
}

void World::block(const Operands& o, bool isBlocked)
{
    Blocked& held = m_blockers[std::size_t(o[0])];
    ZTBase* object = isBlocked ? objectIn(o[1]) : nullptr;
    if (isBlocked && !object)
        return;
    auto count = [this](const Blocked& blocked) -> int* {
        if (blocked.soul == none)
            return nullptr;
        // Where no handler runs the delivery may be over, and what it raised just goes.
        for (Frame& frame : m_model.frames)
            frame.isLoose =
                frame.isLoose || (blocked.isSent ? frame.sender == blocked.soul : !frame.isRunning);
        Soul& soul = m_model.souls.at(blocked.soul);
        return blocked.isSent ? &soul.sentBlockers : &soul.receivedBlockers;
    };
    Blocked next;
    next.soul = isBlocked ? soulIn(o[1]) : none;
    next.isSent = o[2] == 1;
    Outcome outcome = library([&] {
        if (isBlocked)
            next.blocker = std::make_unique<ZTEventBlocker>(object, next.isSent);
    });
    if (outcome != Outcome::Done)
        return;
    if (int* blockers = count(next))
        ++*blockers;
    if (int* blockers = count(held))
        --*blockers;
    held = std::move(next);
}

void World::refer(const Operands& o, bool isStrong)
{
    auto holder = std::size_t(o[0]);
    if (isStrong) {
        Grip grip;
        if (library([&] { grip = gripOn(o[1]); }) == Outcome::Done)
            m_strong[holder] = std::move(grip);
        return;
    }
    ZTBase* object = objectIn(o[1] == nobody ? 0 : o[1]);
    ZTRef<ZTBase> reference;
    Id soul = o[1] == nobody ? none : soulIn(o[1]);
    if (library([&] { reference.reset(soul == none ? nullptr : object); }) != Outcome::Done)
        return;
    m_weak[holder] = reference;
    m_weakSouls[holder] = soul;
}
} // namespace stress
