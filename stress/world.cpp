#include "world.h"

#include <cstdio>
#include <unistd.h>

namespace stress
{
namespace
{
World* current = nullptr;
constexpr int deepest = 5;

class InOperation
{
public:
    explicit InOperation(Model& model) : m_model(model) { m_model.begin(); }
    InOperation(const InOperation&) = delete;
    InOperation& operator=(const InOperation&) = delete;
    ~InOperation() { m_model.end(); }

private:
    Model& m_model;
};
} // namespace

World& world() { return *current; }

void mismatch(const std::string& what)
{
    failAllocation(0);
    std::fprintf(stderr, "MISMATCH: %s\n", what.c_str());
    std::_Exit(70);
}

World::World(const Program& program) : m_program(program)
{
    current = this;
    m_slots.fill(none);
    m_named.fill(none);
    m_weakSouls.fill(none);
}

World::~World() { current = nullptr; }

void World::run()
{
    runScript(0);
    close();
    if (Hooks::alive)
        mismatch("something that a handler captured, or a value, is never destroyed");
}

/// A script that throws has been left by an operation around it.
void World::runScript(int script)
{
    if (m_depth >= deepest)
        return;
    struct Deeper {
        explicit Deeper(int& counted) : depth(counted) { ++depth; }
        ~Deeper() { --depth; }
        int& depth;
    } deeper(m_depth);
    for (const auto& [rule, operands] : m_program.scripts[std::size_t(script)]) {
        if (m_stepsLeft-- <= 0)
            return;
        execute(rule->run, operands);
        if (m_depth == 1)
            clearAttic();
    }
}

void World::execute(Run operation, const Operands& operands)
{
    endRetired();
    bool mayFail = m_failNext > 0;
    m_muted += mayFail; // what happens meanwhile could not be taken back
    Model before = mayFail ? m_model : Model();
    {
        InOperation inOperation(m_model);
        (this->*operation)(operands);
    }
    m_muted -= mayFail;
    if (mayFail)
        m_failNext = 0;
    if (std::exchange(m_memoryFailed, false))
        settleFailure(before);
    check();
}

/// An operation that lacked memory is complete, or leaves all as it was.
void World::settleFailure(const Model& before)
{
    if (differences().empty())
        return;
    int steps = m_model.steps, calls = m_model.calls;
    m_model = before;
    m_model.steps = steps;
    m_model.calls = calls;
    for (Id& id : m_slots)
        if (!m_model.bodies.count(id))
            id = none;
    std::erase_if(m_objects, [&](const auto& entry) { return !m_model.bodies.count(entry.first); });
}

void World::close()
{
    m_isClosing = true;
    m_failNext = 0;
    for (int slot = 0; slot < objectCount; ++slot)
        execute(&World::deleteObject, {slot});
    for (int holder = 0; holder < holderCount; ++holder) {
        execute(&World::drop, {holder});
        execute(&World::unblock, {holder});
        execute(&World::stopRecording, {holder});
        execute(&World::refer<true>, {holder, nobody});
    }
    execute(&World::changeArray, {0});
    ++m_muted; // what the array got by that runs nothing any more
    execute(&World::changeArray, {0});
    clearAttic();
}

void World::clearAttic()
{
    while (!m_attic.empty()) {
        InOperation inOperation(m_model);
        Held held = std::move(m_attic.back());
        m_attic.pop_back();
        endInModel(held.subscription);
        held.scoped.reset();
    }
}

void World::grips(Id soul)
{
    HostCode hostCode;
    ++m_strongCounts[soul];
}

void World::letGo(Id id, ZTStrongRef<ZTBase>& reference)
{
    HostCode hostCode;
    const Soul& soul = m_model.souls.at(id);
    bool isLast = --m_strongCounts[id] == 0 && !soul.isGone && !soul.isEnding;
    Id bodyId = soul.body;
    if (isLast) {
        const Body& body = m_model.bodies.at(bodyId);
        isLast = !body.isDying && !body.isBeingMade && !body.locks;
    }
    if (!isLast)
        return reference.reset();
    m_model.bodies.at(bodyId).mayDie = true;
    InOperation inOperation(m_model);
    reference.reset();
    if (!m_model.bodies.at(bodyId).isGone)
        mismatch("the last strong reference leaves its object alive");
}

void World::runHook(int script)
{
    HostCode hostCode;
    if (!script || m_muted || m_program.scripts[std::size_t(script)].empty())
        return;
    InOperation inOperation(m_model);
    runScript(script);
}

void World::runAccessor()
{
    ++m_accesses;
    runHook(std::exchange(m_accessor, 0));
}

void World::heard(Id subscription, Kind kind, const Actor* receiver, int number)
{
    HostCode hostCode;
    Id receiverSoul = receiver ? m_model.bodies.at(receiver->body).soul : none;
    Id id = m_model.enter(subscription, kind, receiverSoul);
    struct Leave {
        ~Leave() { model.leave(); }
        Model& model;
    } leave{m_model};
    const Frame& delivery = m_model.delivery();
    bool isCopy = delivery.arrayVersion < 0 || delivery.arrayVersion == m_arrayVersion;
    if (number >= 0 && delivery.type == Frame::Raise && isCopy && number != delivery.number)
        mismatch("a handler gets another value than was raised");
    for (Recorder& recorder : m_recorders)
        if (recorder.twin == id)
            recorder.heard.push_back(number);
    check();
    int script =
        receiver ? m_model.bodies.at(receiver->body).heard : m_model.subscriptions.at(id).script;
    if (!m_muted && script)
        runScript(script);
}

void World::dies(Id body, ZTScopedSubscription&& kept)
{
    HostCode hostCode;
    m_model.dies(body);
    Id held = std::exchange(m_model.bodies.at(body).kept, none);
    m_attic.push_back({held, std::move(kept)});
    retire(std::exchange(m_ownClasses[body], nullptr));
}

void World::givesBack(void* memory)
{
    HostCode hostCode;
    Id body = bodyAt(memory);
    if (body == none)
        mismatch("memory is given back that is no object's");
    m_model.isGone(body);
    for (Id& id : m_slots)
        if (id == body)
            id = none;
    m_objects.erase(body);
    ::operator delete(memory);
}

Id World::bodyAt(const void* memory) const
{
    for (const auto& [body, object] : m_objects)
        if (object == memory)
            return body;
    return none;
}
} // namespace stress
