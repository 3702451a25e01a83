#include "model.h"

#include <algorithm>
#include <utility>

namespace stress
{
Id Model::subscribe(const Subscription& one)
{
    Id id = Id(subscriptions.size());
    subscriptions[id] = one;
    return id;
}

bool Model::isCertain(const Subscription& one) const
{
    return one.isAlive && isSettled(one.sender) &&
           (one.receiver == none || isSettled(one.receiver));
}

/// Whether the receiver is still what the handler is called on.
bool Model::fits(const Subscription& one) const
{
    if (one.receiver == none || one.kind < Kind::Member)
        return true;
    const Body& body = bodies.at(souls.at(one.receiver).body);
    return !body.isDying && (one.kind != Kind::LeadMember || body.ofClass == Class::Lead);
}

bool Model::isReached(const Subscription& one, const Frame& walk) const
{
    return one.sender == walk.sender && one.event == walk.event && isCertain(one) &&
           one.blockers == 0 && (one.takes == Sort::Nothing || one.takes == walk.sort) &&
           (one.receiver == none || (!souls.at(one.receiver).receivedBlockers && fits(one)));
}

int Model::audienceOf(Id sender, Event event) const
{
    if (!isSettled(sender) || souls.at(sender).sentBlockers)
        return isSettled(sender) ? 0 : -1;
    Frame walk;
    walk.sender = sender;
    walk.event = event;
    limit(walk);
    int count = 0;
    for (const auto& [id, one] : subscriptions) {
        if (one.sender != sender || one.event != event || !one.isAlive || id >= walk.allowedEnd)
            continue;
        if (!isCertain(one) || id >= walk.certainEnd)
            return -1;
        count += isReached(one, walk);
    }
    return count;
}

/// A send from within a delivery of the same event reaches those that the outer one reaches.
void Model::limit(Frame& walk) const
{
    walk.certainEnd = walk.allowedEnd = Id(subscriptions.size());
    for (const Frame& outer : frames)
        if (outer.hasBegun && &outer != &walk && outer.sender == walk.sender &&
            outer.event == walk.event) {
            walk.certainEnd = std::min(walk.certainEnd, outer.certainEnd);
            if (outer.isRunning) // otherwise it may be over
                walk.allowedEnd = std::min(walk.allowedEnd, outer.allowedEnd);
        }
}

void Model::startRaise(Id sender, Event event, int number, int arrayVersion)
{
    Frame walk;
    walk.type = Frame::Raise;
    walk.sender = sender;
    walk.event = event;
    walk.number = number;
    walk.arrayVersion = arrayVersion;
    walk.steps = steps;
    walk.sort = bodies.at(souls.at(sender).body).sort;
    walk.isBlocked = souls.at(sender).sentBlockers > 0;
    limit(walk);
    frames.push_back(walk);
}

void Model::finishRaise(bool isComplete)
{
    while (frames.back().type != Frame::Raise)
        frames.pop_back();
    const Frame& walk = frames.back();
    bool isLoose = walk.isLoose || (!walk.hasBegun && walk.steps != steps);
    if (isComplete && !isLoose && !walk.isBlocked)
        expectNoneBefore(walk, walk.certainEnd);
    frames.pop_back();
}

/// From within a handler of what somebody raised, or of an operation that lets it pass.
bool Model::startThrowing()
{
    if (frames.size() < 3)
        return false;
    const Frame& delivery = frames[frames.size() - 2];
    Frame& operation = frames[frames.size() - 3];
    if (!delivery.isRunning || (delivery.type != Frame::Raise && !operation.isPassing))
        return false;
    operation.isPassing = false; // the end of what was being made sends childRemoved
    operation.hasThrown = true;
    if (operation.made != none)
        bodies.at(operation.made).isDying = true;
    return true;
}

void Model::expectNoneBefore(const Frame& walk, Id end) const
{
    for (Id id = walk.next; id < end; ++id)
        if (isReached(subscriptions.at(id), walk))
            mismatch("a handler is not called");
}

void Model::end()
{
    while (frames.back().type != Frame::Operation)
        frames.pop_back();
    finishPlacing();
    frames.pop_back();
}

Frame& Model::implyRaise(const Subscription& one)
{
    Frame& operation = frames.back();
    if (operation.placed != none && operation.under == one.sender && one.event == Event::ChildAdded)
        join(std::exchange(operation.placed, none), one.sender);
    Frame walk;
    walk.type = Frame::Implied;
    walk.sender = one.sender;
    walk.event = one.event;
    walk.body = souls.at(one.sender).body;
    walk.isBlocked = isSettled(one.sender) && souls.at(one.sender).sentBlockers > 0;
    walk.hasBegun = true;
    limit(walk);
    frames.push_back(walk);
    return frames.back();
}

Frame& Model::walkOf(Id id)
{
    const Subscription& one = subscriptions.at(id);
    for (;; frames.pop_back()) {
        Frame& top = frames.back();
        if (top.type == Frame::Operation || top.isRunning)
            return implyRaise(one);
        if (top.sender == one.sender && top.event == one.event && id >= top.next)
            return top;
        if (top.type == Frame::Raise)
            mismatch("a handler of another event is called, or one of the same out of its turn");
    }
}

Id Model::enter(Id id, Kind kind, Id receiver)
{
    ++calls;
    if (id == none) { // one without a capture, so one of `said`
        while (frames.back().type == Frame::Implied && !frames.back().isRunning)
            frames.pop_back();
        const Frame& walk = frames.back();
        for (id = walk.next; id < Id(subscriptions.size()); ++id) {
            const Subscription& one = subscriptions.at(id);
            if (one.isAlive && one.blockers == 0 && one.sender == walk.sender &&
                one.event == walk.event && one.kind == kind &&
                (kind == Kind::Function || one.receiver == receiver))
                break;
        }
        if (walk.type != Frame::Raise || walk.isRunning || !subscriptions.count(id))
            mismatch("a function is called that is not subscribed");
    }
    const Subscription& one = subscriptions.at(id);
    if (!one.isAlive)
        mismatch("a handler is called that has ended");
    Frame& walk = walkOf(id);
    if (!walk.hasBegun && walk.steps != steps) { // while the values were copied
        walk.isLoose = true;
        walk.isBlocked = false;
        walk.allowedEnd = Id(subscriptions.size());
    }
    walk.hasBegun = true;
    walk.isRunning = true;
    walk.isLoose = walk.isLoose || !isSettled(one.sender);
    if (walk.isBlocked || (id >= walk.allowedEnd))
        mismatch("a handler is called that is blocked or new");
    if (one.takes != Sort::Nothing && one.takes != walk.sort)
        mismatch("a handler gets a value of another type than it takes");
    if (isCertain(one) && one.receiver != none && souls.at(one.receiver).receivedBlockers)
        mismatch("a blocked receiver is called");
    if (isCertain(one) && one.blockers > 0)
        mismatch("a blocked subscription is called");
    if (one.receiver != none && isSettled(one.receiver) && !fits(one))
        mismatch("a handler is called on what is left of its receiver");
    if (!walk.isLoose)
        expectNoneBefore(walk, std::min(id, walk.certainEnd));
    walk.next = id + 1;
    walk.receiver = one.receiver;
    return id;
}

void Model::leave()
{
    while (!frames.back().isRunning)
        frames.pop_back();
    frames.back().isRunning = false;
}

bool Model::isReturning(Id soul) const
{
    return std::any_of(frames.begin(), frames.end(), [&](const Frame& frame) {
        return !frame.isRunning && frame.receiver == soul;
    });
}

const Frame* Model::activeOf(Id soul) const
{
    for (auto frame = frames.rbegin(); frame != frames.rend(); ++frame)
        if (frame->isRunning && frame->receiver == soul)
            return &*frame;
    return nullptr;
}
} // namespace stress
