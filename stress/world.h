#pragma once

#include "host.h"
#include "memory.h"

#include <memory>
#include <vector>

/// @file
/// Runs a program on the library and on the model at once, and compares them after each step.

namespace stress
{
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

private:
    /// Code of the host runs: memory does not fail meanwhile.
    class HostCode;
    enum class Outcome { Done, Stopped, NoMemory };
    /// The number of calls to come, unless more happens meanwhile than that.
    struct Expectation {
        int steps, calls, count;
    };

    void runScript(int script);
    void execute(const Operation& operation);
    void dispatch(const Operation& operation);
    void close();
    void clearAttic();
    /// Calls into the library, perhaps with failing memory.
    template <class Call>
    Outcome library(Call call);
    void settleFailure(const Model& before);

    // The operations: operations.cpp and subscribing.cpp.
    using Operands = std::array<int, 8>;
    void makeObject(const Operands& o);
    void deleteObject(const Operands& o);
    void setParent(const Operands& o);
    void moveObject(const Operands& o);
    void assign(const Operands& o);
    void setProperty(const Operands& o);
    void useDeclared(const Operands& o, bool isSet);
    void listen(const Operands& o);
    void scope(const Operands& o);
    void endByHandle(const Operands& o);
    void endScoped(int holder);
    void endKept(const Operands& o, Code code);
    void unsubscribe(const Operands& o);
    void raise(const Operands& o);
    void changeArray(const Operands& o);
    void throwStop();
    void block(const Operands& o, bool isBlocked);
    void refer(const Operands& o, bool isStrong);

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
    /// Notes that the scoped handle with that subscription ends.
    void endInModel(Id subscription);
    ZTSubscription subscribe(Id id, int sender, int receiver, Cargo cargo);

    // Compares: compare.cpp.
    void check();
    /// What differs, or nothing.
    std::string differences();
    std::string differencesOf(Id soul);
    std::string differencesOfChildren(Id soul, const ZTBase& object);
    std::string differencesOfProperties(const Soul& soul, const ZTBase& object);
    std::string differencesOfDeliveries(Id soul, const Soul& soulState);
    std::string differencesOfHandles();
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

    struct Blocked {
        Id soul = none;
        bool isSent = false;
        std::unique_ptr<ZTEventBlocker> blocker{};
    };
    struct Held {
        Id subscription = none;
        ZTScopedSubscription scoped{};
    };
    template <class T>
    using Holders = std::array<T, holderCount>;
    std::map<Id, ZTSubscription> m_handles;
    Holders<Id> m_named; ///< subscriptions, for `end` and `scope`
    Holders<Held> m_scoped;
    Holders<Id> m_weakSouls;
    Holders<ZTRef<ZTBase>> m_weak;
    Holders<Grip> m_strong;
    Holders<Blocked> m_blockers;
    std::vector<Held> m_attic; ///< what members of dead objects held
    ZTArgumentArray m_array;
    int m_arrayVersion = 0;
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
