#pragma once

#include "jsonfile.h"

#include <zintar/metaclass.h>
#include <zintar/variant.h>

#include <string>
#include <variant>
#include <vector>

namespace scene
{
/// What a declared method does: a few steps on the object's own properties and events.
class MethodBody
{
public:
    /// Reads {"parameters": {...}, "do": [...]} for a class that has all but its methods already.
    /// What does not fit the class is a `Mistake`.
    static MethodBody read(const Node& node, const ZTMetaClass& metaClass);

    const std::vector<std::string>& parameterNames() const { return m_parameterNames; }
    const std::vector<const ZTMetaType*>& parameterTypes() const { return m_parameterTypes; }

    /// Carries the steps out; ends early when somebody who hears of one deletes the object.
    void run(ZTBase& object, const ZTArgumentArray& arguments) const;

private:
    // Where a value comes from.
    struct OfParameter {
        unsigned int index;
    };
    struct OfProperty {
        std::string name;
    };
    struct Operand {
        std::variant<ZTVariant, OfParameter, OfProperty> source;
        const ZTMetaType* type; ///< that it is converted to
    };

    struct Set {
        std::string property;
        Operand value;
    };
    struct Add {
        std::string property;
        Operand value;
    };
    struct Raise {
        unsigned int event; ///< the class-wide index
        std::vector<Operand> arguments;
    };
    using Step = std::variant<Set, Add, Raise>;

    class Reader;
    class Runner;

    std::vector<std::string> m_parameterNames;
    std::vector<const ZTMetaType*> m_parameterTypes;
    std::vector<Step> m_steps;
};
} // namespace scene
