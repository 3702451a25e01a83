#pragma once

#include "plan.h"
#include "scene.h"
#include "trace.h"

namespace scene
{
/// Carries the actions out, in their order, and tells each one with everything that it causes.
///
/// What could be known beforehand has been checked. What only shows now is a `Mistake` that ends
/// the actions: an object that a handler has deleted, and deliveries that nest without an end.
void carryOut(const std::vector<ActionPlan>& actions, Scene& scene, Trace& trace);
} // namespace scene
