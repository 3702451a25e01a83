#pragma once

#include "classes.h"
#include "plan.h"

#include <string>

namespace scene
{
/// Reads a scene file, makes the classes that it declares, and checks all else against them and
/// those of the host. No object is made. Throws the first `Mistake` that it meets.
ScenePlan readScene(const std::string& file, ZTClassStore& store);
} // namespace scene
