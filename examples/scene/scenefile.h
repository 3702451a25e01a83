#pragma once

#include "plan.h"

#include <string>

namespace scene
{
/// Reads a scene file and checks all of it against the classes of the host. No object is made.
/// Throws the first `Mistake` that it meets.
ScenePlan readScene(const std::string& file);
} // namespace scene
