#include "world.h"

namespace stress
{
// The operands, by a letter each:
//
//     o an object        O an object or nobody   s a script    e an event   r an event to raise
//     k a kind of        w a way to raise        f a form of   v a value: nothing, a number or
//       handler            it                      unsubscribe   one that runs scripts
//     h a holder         p a property            n a number    c a class    y what the event of a
//     d what is blocked                                                       class carries
//
// The operands "sssO" at the end of a row are the scripts that a value runs when it is destroyed,
// copied and compared, and the object that it holds by a strong reference.
std::span<const Rule> rules()
{
    // clang-format off
    static constexpr Rule table[] = {
        //                                                     events objects deaths memory classes
        // The object, its parent, what its member functions run.
        {"new",         "oOsc",     &World::makeObject,        { 4,  8, 12,  6,  6}},
        {"delete",      "o",        &World::deleteObject,      { 5,  8, 14,  4,  5}},
        {"parent",      "oO",       &World::setParent,         { 0, 10,  8,  8,  2}},
        {"move",        "ooc",      &World::moveObject,        { 3,  5,  5,  2,  5}}, // from, to
        {"assign",      "oo",       &World::assign,            { 3,  7, 14,  3,  5}}, // to, from
        {"shift",       "oy",       &World::shift,             { 0,  0,  0,  0, 16}},
        // Sender, receiver; what runs; the handle; what its capture runs and holds.
        {"listen",      "oOekshsO", &World::listen,            {24, 14, 16, 10, 24}},
        {"scope",       "h",        &World::scope,             { 2,  0,  0,  0,  0}}, // the handle
        {"end",         "h",        &World::endByHandle,       { 3,  2,  0,  2,  2}},
        {"drop",        "h",        &World::drop,              { 2,  0,  0,  2,  1}}, // the scoped one
        // A scoped handle becomes a member of the object; a member is assigned another, or none.
        {"keep",        "oh",       &World::keep,              { 4,  0,  2,  2,  0}},
        {"take",        "oo",       &World::take,              { 3,  0,  0,  0,  0}},
        {"let",         "o",        &World::let,               { 2,  0,  0,  2,  0}},
        {"unsubscribe", "oOef",     &World::unsubscribe,       { 4,  2,  0,  4,  2}},
        {"raise",       "orwnsssO", &World::raise,             {14,  4,  0,  6, 24}},
        {"change",      "v",        &World::changeArray,       { 3,  0,  0,  0,  1}}, // that is raised
        {"throw",       "",         &World::throwStop,         { 3, 10,  2,  0,  2}},
        {"block",       "hod",      &World::block,             { 2,  1,  0,  0,  1}},
        {"hush",        "hh",       &World::hush,              { 8,  2,  0,  0,  3}}, // the second's
        {"unblock",     "h",        &World::unblock,           { 2,  1,  0,  0,  1}},
        {"reblock",     "hh",       &World::reblock,           { 3,  1,  1,  0,  0}}, // by the second
        // A listener of the event; some of its records go, or it goes.
        {"record",      "hoe",      &World::record,            { 5,  1,  1,  0,  3}},
        {"forget",      "hn",       &World::forget,            { 3,  1,  0,  0,  0}},
        {"stop",        "h",        &World::stopRecording,     { 1,  1,  0,  0,  1}},
        // What is monitored from now on: all deliveries, for an odd number, or none.
        {"monitor",     "n",        &World::monitor,           { 2,  1,  1,  1,  1}},
        {"weak",        "hO",       &World::refer<false>,      { 0,  4,  2,  3,  0}},
        {"strong",      "hO",       &World::refer<true>,       { 3,  6,  4,  3,  2}},
        {"set",         "opvnsssO", &World::setProperty,       { 2, 12,  0,  8,  0}},
        {"remove",      "op",       &World::removeProperty,    { 1,  6,  0,  5,  0}},
        // A declared property, whose getter or setter runs the script.
        {"get",         "os",       &World::useDeclared<false>, { 0,  2,  0,  0,  1}},
        {"put",         "os",       &World::useDeclared<true>, { 0,  2,  0,  0,  1}},
        // Memory, at the allocation of that number in the next operation.
        {"fail",        "n",        &World::failNext,          { 0,  0,  0, 20,  0}},
    };
    // clang-format on
    return table;
}
} // namespace stress
