#pragma once

#include "jsonfile.h"

#include <zintar/metaclass.h>
#include <zintar/variant.h>

#include <functional>
#include <string>
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
    using Operand = std::function<ZTVariant(const ZTBase&, const ZTArgumentArray&)>;
    using Step = std::function<void(ZTBase&, const ZTArgumentArray&)>;

    class Reader;

    std::vector<std::string> m_parameterNames;
    std::vector<const ZTMetaType*> m_parameterTypes;
    std::vector<Step> m_steps;
};
} // namespace scene
