#include "model.h"

#include <algorithm>
#include <utility>

namespace stress
{
Id Model::birth(Class ofClass, int heard)
{
    Id body = emptyBody(ofClass, heard);
    bodies[body].soul = body;
    souls[body].body = body;
    return body;
}

Id Model::emptyBody(Class ofClass, int heard)
{
    Id body = m_next++;
    bodies[body].ofClass = ofClass;
    bodies[body].heard = heard;
    return body;
}

Soul* Model::soulOf(Id body)
{
    auto found = souls.find(bodies.at(body).soul);
    return found == souls.end() ? nullptr : &found->second;
}

bool Model::isSettled(Id id) const
{
    const Soul& soul = souls.at(id);
    if (soul.isGone || soul.isEnding)
        return false;
    return !bodies.at(soul.body).isDying ||
           std::any_of(frames.begin(), frames.end(), [&](const Frame& frame) {
               return frame.sender == id && frame.body == soul.body &&
                      frame.event == Event::Destroyed && frame.isRunning;
           });
}

bool Model::isPlaceKnown(Id soul) const
{
    return isSettled(soul) && souls.at(soul).perhapsUnder == none;
}

bool Model::isBelow(Id soul, Id above) const
{
    std::size_t left = souls.size(); // there may be a circle
    for (Id id = souls.at(soul).parent; id != none && left > 0; id = souls.at(id).parent, --left)
        if (id == above)
            return true;
    return false;
}

void Model::leaveParent(Id id)
{
    Soul& soul = souls.at(id);
    soul.perhapsUnder = none;
    if (soul.parent != none)
        std::erase(souls.at(soul.parent).children, id);
    soul.parent = none;
}

void Model::join(Id soul, Id parent)
{
    leaveParent(soul);
    if (parent == none || souls.at(parent).isGone)
        return;
    if (!isSettled(parent)) {
        souls.at(soul).perhapsUnder = parent;
        return;
    }
    souls.at(soul).parent = parent;
    souls.at(parent).children.push_back(soul);
}

/// What was below the other one cannot stay there; whether it was may be open.
void Model::leaveBelow(Id soul, Id above)
{
    Id parent = souls.at(soul).parent;
    bool isOpen = false;
    for (Id id = parent; id != above; id = souls.at(id).parent)
        isOpen = isOpen || !isSettled(id);
    leaveParent(soul);
    if (isOpen)
        souls.at(soul).perhapsUnder = parent;
}

void Model::moveSoul(Id from, Id to)
{
    Id id = bodies.at(from).soul;
    bodies.at(to).soul = id;
    bodies.at(from).soul = none;
    if (id == none)
        return;
    Soul& soul = souls.at(id);
    soul.body = to;
    changeClass(id);
    // A parent that is coming to its end may have let go of what was dying then.
    if (bodies.at(from).isDying && soul.parent != none && !isSettled(soul.parent))
        join(id, soul.parent);
}

/// A delivery in progress asks then whether the values fit that stand in the sender's array.
void Model::changeClass(Id soul)
{
    for (Frame& frame : frames)
        frame.isLoose = frame.isLoose || (frame.sender == soul && frame.arrayVersion >= 0);
}

Id Model::startAssigning(Id to, Id from)
{
    Id ended = bodies.at(to).soul, moved = bodies.at(from).soul;
    if (ended != none) {
        if (moved != none && isBelow(moved, ended))
            leaveBelow(moved, ended);
        leaveParent(ended);
        souls.at(ended).isEnding = true;
        souls.at(ended).body = none;
    }
    moveSoul(from, to);
    ++bodies.at(to).locks;
    ++bodies.at(from).locks;
    return ended;
}

void Model::finishAssigning(Id to, Id from, Id ended)
{
    if (ended != none)
        endSoul(ended);
    --bodies.at(to).locks;
    --bodies.at(from).locks;
}

bool Model::isBeingPlaced(Id soul) const
{
    return std::any_of(frames.begin(), frames.end(),
                       [&](const Frame& frame) { return frame.placed == soul; });
}

void Model::startPlacing(Id soul, Id parent, Id made)
{
    frames.back().isPassing = true;
    frames.back().made = made;
    // From within `childRemoved` of another move of the object: that one's parent stands.
    if (soul == parent || isBeingPlaced(soul) || !isSettled(soul))
        return;
    leaveParent(soul);
    frames.back().placed = soul;
    frames.back().under = parent;
}

void Model::finishPlacing()
{
    Id soul = std::exchange(frames.back().placed, none);
    if (soul != none && isSettled(soul) && !frames.back().hasThrown)
        join(soul, frames.back().under);
}

void Model::dies(Id id)
{
    Body& body = bodies.at(id);
    if (body.isDying)
        mismatch("an object is destroyed twice");
    if (!body.mayDie) { // so its parent deletes it, and is none any more
        const Soul* soul = soulOf(id);
        bool isTaken =
            soul && !body.locks && !body.isBeingMade &&
            (soul->perhapsUnder != none || (soul->parent != none && !isSettled(soul->parent)));
        if (!isTaken)
            mismatch("an object is destroyed that nobody deletes");
        leaveParent(body.soul);
    }
    body.isDying = true;
}

void Model::isGone(Id id)
{
    Body& body = bodies.at(id);
    if (!body.isDying || body.isGone)
        mismatch("the memory of an object is given back twice, or before its end");
    body.isGone = true;
    if (body.soul != none)
        endSoul(body.soul);
}

void Model::endSoul(Id id)
{
    leaveParent(id);
    Soul& soul = souls.at(id);
    soul.isGone = true;
    endWhere([&](Id, const Subscription& one) { return one.sender == id || one.receiver == id; });
    for (Id child : std::vector<Id>(soul.children)) {
        const Body& body = bodies.at(souls.at(child).body);
        if (!body.isDying && !body.isBeingMade && !body.locks)
            mismatch("a child outlives its parent");
        leaveParent(child); // its making or end goes on without a parent
    }
    for (auto& [other, one] : souls)
        if (one.perhapsUnder == id)
            one.perhapsUnder = none;
}
} // namespace stress
