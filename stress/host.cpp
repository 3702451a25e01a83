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

Hooks::Hooks(const int* scripts)
    : atEnd(scripts[0]), atCopy(scripts[1]), atCompare(scripts[2]), isCounted(true)
{
    ++alive;
}

// The other one may be gone when the script has run.
Hooks::Hooks(const Hooks& other)
    : atEnd(other.atEnd),
      atCopy(other.atCopy),
      atCompare(other.atCompare),
      isCounted(other.isCounted)
{
    alive += isCounted;
    world().runHook(atCopy);
}

Hooks& Hooks::operator=(Hooks other) noexcept
{
    swap(other);
    return *this;
}

Hooks::~Hooks()
{
    alive -= isCounted;
    world().runHook(atEnd);
}

void Hooks::swap(Hooks& other) noexcept
{
    std::swap(atEnd, other.atEnd);
    std::swap(atCopy, other.atCopy);
    std::swap(atCompare, other.atCompare);
    std::swap(isCounted, other.isCounted);
}

bool Cargo::operator==(const Cargo& other) const
{
    bool isEqual = number == other.number;
    world().runHook(hooks.atCompare);
    return isEqual;
}

Actor::~Actor() { world().dies(body, std::move(kept)); }

void Actor::operator delete(void* memory) { world().givesBack(memory); }

const ZTMetaInvokable* descriptorOf(Event event)
{
    constexpr std::string_view names[] = {
        "said", "told", "", "destroyed", "childAdded", "childRemoved", "dynamicPropertyChanged"};
    const ZTMetaClass& actor = Actor::typeMetaClass();
    for (unsigned int i = 0; i < actor.invokableCount(); ++i)
        if (actor.invokable(i)->name() == names[int(event)])
            return actor.invokable(i);
    return nullptr;
}

int indexOf(Event event)
{
    return event == Event::Shifted ? int(Actor::typeMetaClass().invokableCount())
                                   : descriptorOf(event)->index();
}

OwnClass::Shifted::Shifted(const ZTMetaType& carried)
    : ZTMetaInvokable(*descriptorOf(Event::Said)), type(carried)
{}

OwnClass::OwnClass(Sort sort)
    : ZTMetaClass(Actor::typeMetaClass()),
      shifted(sort == Sort::Text ? ztMetaType<std::string>() : ztMetaType<long long>())
{}

const ZTMetaInvokable* OwnClass::invokable(unsigned int index) const
{
    return int(index) == shifted.index() ? &shifted : superClass()->invokable(index);
}

const ZTMetaClass* Shifter::metaClass() const
{
    const ZTMetaClass* own = world().ownClassOf(body);
    return own ? own : Actor::metaClass();
}

const ZTMetaProperty* OwnClass::property(std::string_view name) const
{
    return superClass()->property(name);
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
