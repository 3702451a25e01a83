#pragma once

#include <zintar/checked.h>
#include <zintar/metaclass.h>
#include <zintar/variant.h>

#include <optional>
#include <string>
#include <variant>
#include <vector>

/// @file
/// What a scene file says, once it has been checked: every class, member and type is found, every
/// value is of the type that will be asked for. Carrying a plan out takes no more decisions.

namespace scene
{
struct PropertyPlan {
    std::string name;
    ZTVariant value;
    bool dynamic = false; ///< the class does not know it, and the file wants it all the same
};

struct ObjectPlan {
    const ZTMetaClass* metaClass = nullptr;
    std::string name;
    std::vector<PropertyPlan> properties;
    /// Of properties that can only be read: what a saved object had.
    std::vector<PropertyPlan> readOnly;
    std::vector<ObjectPlan> children;
};

struct ConnectionPlan {
    std::string place; ///< in the file
    std::string sender;
    const ZTMetaInvokable* event = nullptr;
    std::string receiver;
    const ZTMetaInvokable* method = nullptr;
};

struct MoveObject {
    std::string parent;
};
struct DeleteObject {};

struct ActionPlan {
    std::string place; ///< in the file
    std::string object;
    std::variant<PropertyPlan, ZTCheckedCall, MoveObject, DeleteObject> what;
};

struct ScenePlan {
    std::optional<ObjectPlan> root; ///< none in a scene that was saved when all was deleted
    std::vector<ConnectionPlan> connections;
    std::vector<ActionPlan> actions;
};
} // namespace scene
