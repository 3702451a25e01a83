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

/// The scripts that a value runs: a part of it that is copied last and destroyed first.
struct Hooks {
    Hooks() = default;
    explicit Hooks(const int* scripts);
    Hooks(const Hooks& other);
    Hooks(Hooks&& other) noexcept : Hooks() { swap(other); }
    Hooks& operator=(Hooks other) noexcept;
    ~Hooks();
    void swap(Hooks& other) noexcept;

    int atEnd = 0, atCopy = 0, atCompare = 0;
    /// Whether it was made by the world, or of such a one; the library makes some by itself.
    bool isCounted = false;
    inline static int alive = 0;
};

/// A value, and what a handler captures.
struct Cargo {
    bool operator==(const Cargo& other) const;

    int number = 0;
    Grip grip{};
    Hooks hooks{};
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

/// One of the class `Actor`.
const ZTMetaInvokable* descriptorOf(Event event);
int indexOf(Event event);

class Lead : public Actor
{
    ZT_OBJECT(Lead, Actor)
public:
    using Actor::Actor;
    void hearAsLead(int number);

private:
    static constexpr auto members() { return zt::members(); }
};

/// A class that a host lays out by itself: that of an actor with one event more.
struct OwnClass : ZTMetaClass {
    struct Shifted : ZTMetaInvokable {
        explicit Shifted(const ZTMetaType& carried);
        std::string_view name() const override { return "shifted"; }
        bool isEvent() const override { return true; }
        unsigned int parameterCount() const override { return 1; }
        const ZTMetaType& parameterMetaType(unsigned int) const override { return type; }
        int index() const override { return indexOf(Event::Shifted); }
        const ZTMetaType& type;
    };

    explicit OwnClass(Sort sort);
    const ZTMetaClass* superClass() const override { return &Actor::typeMetaClass(); }
    std::string_view typeName() const override { return "OwnClass"; }
    unsigned int invokableCount() const override { return unsigned(shifted.index()) + 1; }
    const ZTMetaInvokable* invokable(unsigned int index) const override;
    const ZTMetaProperty* property(std::string_view name) const override;
    Shifted shifted;
};

/// An object whose class is another one later.
class Shifter : public Actor
{
public:
    using Actor::Actor;
    const ZTMetaClass* metaClass() const override;
};
} // namespace stress
