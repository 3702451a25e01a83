#include "host.h"

#include "world.h"

namespace stress
{
ZT_CLASS(Actor)
ZT_CLASS(Lead)

Grip::Grip(Id soul, ZTBase* object) : m_soul(soul), m_reference(object) { world().grips(m_soul); }

Grip::Grip(const Grip& other) : m_soul(other.m_soul), m_reference(other.m_reference)
{
    world().grips(m_soul);
}

Grip::Grip(Grip&& other) noexcept
    : m_soul(std::exchange(other.m_soul, none)), m_reference(std::move(other.m_reference))
{}

Grip& Grip::operator=(Grip other) noexcept
{
    std::swap(m_soul, other.m_soul);
    std::swap(m_reference, other.m_reference);
    return *this;
}

Grip::~Grip()
{
    if (m_soul != none)
        world().letGo(std::exchange(m_soul, none), m_reference);
}

Cargo::Cargo(int newNumber, const int* scripts, Grip newGrip)
    : number(newNumber),
      atEnd(scripts[0]),
      atCopy(scripts[1]),
      atCompare(scripts[2]),
      grip(std::move(newGrip)),
      isCounted(true)
{
    ++alive;
}

// The other one may be gone when the script has run.
Cargo::Cargo(const Cargo& other)
    : number(other.number),
      atEnd(other.atEnd),
      atCopy(other.atCopy),
      atCompare(other.atCompare),
      grip(other.grip),
      isCounted(other.isCounted)
{
    alive += isCounted;
    world().runHook(atCopy);
}

Cargo::Cargo(Cargo&& other) noexcept
    : number(other.number),
      atEnd(std::exchange(other.atEnd, 0)),
      atCopy(std::exchange(other.atCopy, 0)),
      atCompare(std::exchange(other.atCompare, 0)),
      grip(std::move(other.grip)),
      isCounted(other.isCounted)
{
    alive += isCounted;
}

Cargo& Cargo::operator=(Cargo other) noexcept
{
    std::swap(number, other.number);
    std::swap(atEnd, other.atEnd);
    std::swap(atCopy, other.atCopy);
    std::swap(atCompare, other.atCompare);
    std::swap(grip, other.grip);
    std::swap(isCounted, other.isCounted);
    return *this;
}

Cargo::~Cargo()
{
    alive -= isCounted;
    world().runHook(atEnd);
}

bool Cargo::operator==(const Cargo& other) const
{
    bool isEqual = number == other.number;
    world().runHook(atCompare);
    return isEqual;
}

Actor::~Actor() { world().dies(body, std::move(kept)); }

void Actor::operator delete(void* memory) { world().givesBack(memory); }

const ZTMetaInvokable* descriptorOf(Event event)
{
    const ZTMetaClass& actor = Actor::typeMetaClass();
    constexpr std::string_view names[] = {"said",       "told",         "destroyed",
                                          "childAdded", "childRemoved", "dynamicPropertyChanged"};
    for (unsigned int i = 0; i < actor.invokableCount(); ++i)
        if (actor.invokable(i)->name() == names[int(event)])
            return actor.invokable(i);
    return nullptr;
}

void Actor::hear(int number) { world().heard(none, Kind::Member, this, number); }

void Actor::note(int number) { world().heard(none, Kind::Descriptor, this, number); }

void Lead::hearAsLead(int number) { world().heard(none, Kind::LeadMember, this, number); }

int Actor::load() const
{
    world().runAccessor();
    return 1;
}

void Actor::setLoad(int) { world().runAccessor(); }
} // namespace stress
