#pragma once

#include "names.h"
#include "plan.h"
#include "scene.h"

#include <zintar/classstore.h>

#include <cstddef>
#include <string>

/// @file
/// A scene as bytes: the classes that its file declared, and its objects with their properties.
/// Connections and actions are not saved.
///
/// The layout, on one `ZTDataStream`:
///
/// 1. The class record of each declared class, a super class before those that derive from it.
///    Start values and what the methods do are annotations in it.
/// 2. A class record without name, super class and members, which ends the classes (38 bytes).
/// 3. Variants in a row:
///    - int: the number of objects; for each, a parent before its children:
///      - string: the class
///      - string: the name
///      - string: the name of the parent, empty for the root
///      - int: the number of properties; for each, in the order of the class, and behind them the
///        dynamic ones in the order of their names:
///        - string: the name
///        - the value; the name of the enumerator as a string where it is one
///        - bool: whether it is a dynamic property

namespace scene
{
struct SavedScene {
    std::string bytes;
    std::size_t classesEnd;   ///< of the class records, without the one that ends them
    std::size_t objectsBegin; ///< where the variants begin
    std::size_t objects;      ///< how many there are
};

SavedScene saveScene(const ZTClassStore& store, const Scene& scene, const Names& names);

/// Reads a saved scene, makes its classes, and checks all of it. No object is made. Anything that
/// cannot be is a `Mistake`.
ScenePlan loadScene(const std::string& file, ZTClassStore& store);

/// Gives the objects of a loaded scene what properties alone could not: what can only be read, and
/// what the setter of another property has changed. A value that does not come back is a `Mistake`.
void restoreState(const ObjectPlan& plan, const Scene& scene);
} // namespace scene
