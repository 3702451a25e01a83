#pragma once

#include "model.h"

#include <zintar/zintar.h>

/// @file
/// What a host has: objects, handlers and values. All of them tell the world when they are called,
/// copied, compared and destroyed, where it runs a script.

namespace stress
{
class World;
/// The one that runs now.
World& world();

/// A strong reference that the model counts.
class Grip
{
public:
    Grip() = default;
    explicit Grip(Id soul, ZTBase* object);
    Grip(const Grip& other);
    Grip(Grip&& other) noexcept;
    Grip& operator=(Grip other) noexcept;
    ~Grip();

    [[nodiscard]] Id soul() const { return m_soul; }
    [[nodiscard]] ZTBase* object() const { return m_reference.get(); }

private:
    Id m_soul = none;
    ZTStrongRef<ZTBase> m_reference;
};

/// A value, and what a handler captures.
struct Cargo {
    Cargo() = default;
    Cargo(int newNumber, const int* scripts, Grip newGrip);
    Cargo(const Cargo& other);
    Cargo(Cargo&& other) noexcept;
    Cargo& operator=(Cargo other) noexcept;
    ~Cargo();
    bool operator==(const Cargo& other) const;

    int number = 0;
    int atEnd = 0, atCopy = 0, atCompare = 0;
    Grip grip{};
    /// Whether it was made by the world, or of such a one; the library makes some by itself.
    bool isCounted = false;
    inline static int alive = 0;
};

class Actor : public ZTBase
{
    ZT_OBJECT(Actor, ZTBase)
public:
    Actor(Id newBody, ZTBase* parent) : ZTBase(parent), body(newBody) {}
    /// Takes over an object, also one that is coming to its end.
    Actor(Id newBody, ZTBase&& other) : ZTBase(std::move(other)), body(newBody) {}
    ~Actor() override;
    static void operator delete(void* memory);

    void said(int number) { sendEvent<&Self::said>(number); }
    void told(const Cargo& cargo) { sendEvent<&Self::told>(cargo); }
    void hear(int number);
    void note(int number);
    int load() const;
    void setLoad(int number);

    using ZTBase::activeEventIndex;
    using ZTBase::eventSender;
    using ZTBase::sendEvent;

    /// Not moved along.
    const Id body;
    ZTScopedSubscription kept;

private:
    static constexpr auto members()
    {
        return zt::members(zt::event<&Self::said>(), zt::event<&Self::told>(),
                           zt::method<&Self::note>(), zt::property<&Self::load, &Self::setLoad>());
    }
};

const ZTMetaInvokable* descriptorOf(Event event);

class Lead : public Actor
{
    ZT_OBJECT(Lead, Actor)
public:
    using Actor::Actor;
    void hearAsLead(int number);

private:
    static constexpr auto members() { return zt::members(); }
};
} // namespace stress
