#pragma once

#include "classes.h"
#include "jsonfile.h"

namespace scene
{
/// Makes the classes that the scene file declares under "classes", in any order, and adds them.
/// Throws the first `Mistake` that it meets.
void declareClasses(const Node& scene, ZTClassStore& store);
} // namespace scene
