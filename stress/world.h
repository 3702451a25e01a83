#pragma once

#include "host.h"
#include "memory.h"

#include <deque>
#include <memory>
#include <optional>
#include <vector>

/// @file
/// Runs a program on the library and on the model at once, and compares them after each step.

namespace stress
{
/// The number that a value is told apart by; -1 where it has none.
int numberIn(const ZTVariant& variant);

/// What a handler throws.
struct Stop {};

class World
{
public:
    explicit World(const Program& program);
    ~World();
    /// Runs the program to its end; returns when nothing was found.
    void run();
    [[nodiscard]] int steps() const { return m_model.steps; }

    // What the host's things tell.
    void grips(Id soul);
    void letGo(Id soul, ZTStrongRef<ZTBase>& reference);
    /// Runs what a value brings along where it is destroyed, copied or compared.
    void runHook(int script);
    void runAccessor();
    /// A handler was called with that value, or with one that is not compared (-1).
    void heard(Id subscription, Kind kind, const Actor* receiver, int number);
    void dies(Id body, ZTScopedSubscription&& kept);
    void givesBack(void* memory);
    /// The class that the host has laid out for the object, or null.
    [[nodiscard]] const OwnClass* ownClassOf(Id body) const;

private:
    /// Code of the host runs: memory does not fail meanwhile.
    class HostCode;
    enum class Outcome { Done, Stopped, NoMemory };
    /// The number of calls to come, unless more happens meanwhile than that.
    struct Expectation {
        int steps, calls, count;
    };

    friend std::span<const Rule> rules();

    void runScript(int script);
    using Run = void (World::*)(const Operands&);
    void execute(Run operation, const Operands& operands);
    void close();
    void clearAttic();
    /// Calls into the library, perhaps with failing memory.
    template <class Call>
    Outcome library(Call call);
    void settleFailure(const Model& before);

    // The operations; see rules.cpp for what they mean.
    // operations.cpp
    void makeObject(const Operands& o);
    void deleteObject(const Operands& o);
    void setParent(const Operands& o);
    void moveObject(const Operands& o);
    void assign(const Operands& o);
    void shift(const Operands& o);
    void setProperty(const Operands& o);
    void removeProperty(const Operands& o);
    template <bool isSet>
    void useDeclared(const Operands& o);
    void throwStop(const Operands& o);
    void failNext(const Operands& o);
    void block(const Operands& o);
    void unblock(const Operands& o);
    void reblock(const Operands& o);
    void hush(const Operands& o);
    template <bool isStrong>
    void refer(const Operands& o);
    // subscribing.cpp
    void listen(const Operands& o);
    void scope(const Operands& o);
    void endByHandle(const Operands& o);
    void drop(const Operands& o);
    void keep(const Operands& o);
    void take(const Operands& o);
    void let(const Operands& o);
    void unsubscribe(const Operands& o);
    void raise(const Operands& o);
    void changeArray(const Operands& o);
    // recording.cpp
    void record(const Operands& o);
    void forget(const Operands& o);
    void stopRecording(const Operands& o);
    void monitor(const Operands& o);

    struct Blocked {
        Id soul = none;
        bool isSent = false;
        Id subscription = none; ///< in place of a soul
        std::optional<ZTEventBlocker> blocker{};
    };
    struct Held {
        Id subscription = none;
        ZTScopedSubscription scoped{};
    };
    /// A listener, and what the handler in front of it has heard.
    struct Recorder {
        Id twin = none;
        std::vector<int> heard{};
        std::unique_ptr<ZTEventListener> listener{};
    };

    [[nodiscard]] Body* bodyIn(int slot);
    /// The object in the slot, unless it is being made or comes to its end.
    [[nodiscard]] Body* wholeBodyIn(int slot);
    [[nodiscard]] bool canBeMoved(const Body* body) const;
    [[nodiscard]] Id idIn(int slot) const { return m_slots[std::size_t(slot)]; }
    [[nodiscard]] ZTBase* objectIn(int slot);
    [[nodiscard]] Actor* actorIn(int slot) { return static_cast<Actor*>(objectIn(slot)); }
    [[nodiscard]] Id soulIn(int slot);
    [[nodiscard]] Id bodyAt(const void* memory) const;
    Grip gripOn(int slot);
    /// The value that the operands "sssO" from there on describe.
    Cargo cargoOf(int number, const int* operands);
    Expectation expect(int count) const { return {m_model.steps, m_model.calls, count}; }
    void compareCalls(const Expectation& expected, Outcome outcome) const;
    /// Puts an object of that class where there is memory for it.
    template <class... Arguments>
    void construct(Class ofClass, void* memory, Arguments&&... arguments);
    void countBlocker(const Blocked& blocked, int change);
    OwnClass* makeClass(Sort sort);
    /// The class has no object any more.
    void retire(OwnClass* retired);
    void endRetired();
    /// Notes that the scoped handle with that subscription ends.
    void endInModel(Id subscription);
    /// The member of the object becomes another one, which may be null.
    void giveKept(int slot, Id next, ZTScopedSubscription* source);
    /// What can be listened to or raised in place of that event of the object.
    [[nodiscard]] Event eventIn(int slot, int event);
    [[nodiscard]] const ZTMetaInvokable* eventOf(int slot, Event event);
    ZTSubscription subscribe(Id id, int sender, int receiver, Cargo cargo);
    void raiseOwn(int slot, int number);
    void endRecorder(Recorder& recorder);
    [[nodiscard]] std::vector<int> recordedBy(const Recorder& recorder) const;

    // Compares: compare.cpp.
    void check();
    /// What differs, or nothing.
    std::string differences();
    std::string differencesOf(Id soul);
    std::string differencesOfChildren(Id soul, const ZTBase& object);
    std::string differencesOfProperties(const Soul& soul, const ZTBase& object);
    std::string differencesOfDeliveries(Id soul, const Soul& soulState);
    std::string differencesOfHandles();
    std::string differencesOfReferences();
    std::string differencesOfRecorders();
    Value valueOf(const ZTVariant& variant) const;

    const Program& m_program;
    Model m_model;
    std::map<Id, ZTBase*> m_objects; ///< by body
    std::map<Id, int> m_strongCounts;
    std::array<Id, objectCount> m_slots;
    int m_stepsLeft = 200;
    int m_depth = 0;
    int m_muted = 0; ///< handlers and values run nothing
    bool m_isClosing = false;
    int m_accessor = 0;
    int m_accesses = 0;
    int m_failNext = 0;
    bool m_memoryFailed = false;

    template <class T>
    using Holders = std::array<T, holderCount>;
    std::map<Id, ZTSubscription> m_handles;
    Holders<Id> m_named; ///< subscriptions, for `end` and `scope`
    Holders<Held> m_scoped;
    Holders<Id> m_weakSouls;
    Holders<ZTRef<ZTBase>> m_weak;
    Holders<Grip> m_strong;
    Holders<Blocked> m_blockers;
    std::optional<ZTEventMonitor> m_monitor; ///< which changes nothing
    Holders<Recorder> m_recorders;
    std::vector<Held> m_attic; ///< what members of dead objects held
    ZTArgumentArray m_array;
    int m_arrayVersion = 0;
    std::deque<std::optional<OwnClass>> m_classes; ///< so that new ones stand where old ones were
    std::map<Id, OwnClass*> m_ownClasses;          ///< by body
    std::vector<OwnClass*> m_retired;
};

class World::HostCode
{
public:
    HostCode() : m_left(failAllocation(0)) {}
    HostCode(const HostCode&) = delete;
    HostCode& operator=(const HostCode&) = delete;
    ~HostCode() { failAllocation(m_left); }

private:
    int m_left;
};

template <class Call>
World::Outcome World::library(Call call)
{
    int failAt = std::exchange(m_failNext, 0);
    Outcome outcome = Outcome::Done;
    failAllocation(failAt);
    try {
        call();
        failAllocation(0);
    } catch (const Stop&) {
        failAllocation(0);
        outcome = Outcome::Stopped;
    } catch (const std::bad_alloc&) {
        failAllocation(0);
        m_memoryFailed = true;
        outcome = Outcome::NoMemory;
    }
    return outcome;
}
} // namespace stress
