#include <zintar/create.h>

#include "baseprivate.h"
#include "fit.h"

#include <zintar/dynamicbase.h>
#include <zintar/log.h>
#include <zintar/shortname.h>
#include <zintar/staticmetaclass.h>

#include <limits>
#include <optional>
#include <string>
#include <typeinfo>
#include <vector>

namespace zt::detail
{
/// The way to what an object with a class of its own keeps from others.
struct ClassGiving {
    static bool give(ZTDynamicBase& object, const ZTMetaClass& metaClass)
    {
        return object.initializeMetaClass(&metaClass);
    }
};

ZTBase* joinParent(std::unique_ptr<ZTBase> object, ZTBase* parent, const ZTLifeWatch& watch)
{
    if (!object || (parent && !watch.isStill(parent)))
        return nullptr;
    if (!parent)
        return object.release();
    const ZTLifeWatch joining(object.get());
    ZTBase* joined = object.release();
    try {
        joined->setParent(parent);
    } catch (...) {
        // Of a handler, or of memory; then nobody has the object yet.
        if (joining.isStill(joined) && !ZTBasePrivate::of(joined)->parent)
            delete joined;
        throw;
    }
    return joining.isStill(joined) ? joined : nullptr;
}
} // namespace zt::detail

namespace
{
using zt::detail::ConstructorList;
using zt::detail::ConstructorRecord;
using zt::detail::Fit;
using zt::detail::fitOf;
using Arguments = std::span<const ZTVariant>;

const ConstructorList* constructorsOf(const ZTMetaClass& metaClass)
{
    const auto* overTable = typeid(metaClass) == typeid(ZTStaticMetaClass)
                                ? static_cast<const ZTStaticMetaClass*>(&metaClass)
                                : dynamic_cast<const ZTStaticMetaClass*>(&metaClass);
    return overTable ? overTable->table()->constructors : nullptr;
}

const ZTMetaClass& nearestDeclared(const ZTMetaClass& metaClass)
{
    const ZTMetaClass* nearest = &metaClass;
    while (nearest->isDynamic() && nearest->superClass())
        nearest = nearest->superClass();
    return *nearest;
}

void warn(const ZTMetaClass& metaClass, const std::string& reason)
{
    ztLog("Zintar Warning: ztCreate makes no \"" + ztShortName(metaClass) + "\": " + reason,
          ZTLogType::Warning);
}

template <class TypeAt>
std::string typesInBrackets(std::size_t count, TypeAt typeAt)
{
    std::string text = "(";
    for (std::size_t i = 0; i < count; ++i)
        text += (i == 0 ? "" : ", ") + ztShortName(typeAt(i));
    return text + ")";
}

/// @param declared  the class whose constructors there are
std::string whyNot(const ZTMetaClass& declared, const ConstructorList* constructors,
                   Arguments arguments)
{
    const std::string name = "\"" + ztShortName(declared) + "\"";
    if (declared.isDynamic())
        return "no class above it is declared.";
    if (!constructors)
        return "the table of " + name + " has no constructors.";
    if (constructors->isAbstract)
        return name + " is abstract.";
    if (constructors->count == 0)
        return name + " has no public constructor without parameters or with a ZTBase* alone, and "
                      "lists no other one by zt::constructor.";
    const std::string given = typesInBrackets(
        arguments.size(), [&](std::size_t i) -> const ZTMetaType& { return arguments[i].type(); });
    std::string there;
    for (const ConstructorRecord& one : std::span(constructors->first, constructors->count))
        there += (there.empty() ? "" : ", ") +
                 typesInBrackets(one.parameterCount, [&](std::size_t i) -> const ZTMetaType& {
                     return one.parameterTypes[i]();
                 });
    return "no constructor of " + name + " takes " + given + "; there is " + there + ".";
}

/// A constructor that takes the arguments, how far they are from its parameters, and the arguments
/// as it takes them.
struct Candidate {
    const ConstructorRecord* constructor = nullptr;
    std::size_t distance = std::numeric_limits<std::size_t>::max();
    std::vector<ZTVariant> values;
};

std::optional<Candidate> candidate(const ConstructorRecord& constructor, Arguments arguments)
{
    Candidate found{&constructor, 0, {}};
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        ZTVariant converted;
        const ZTMetaType& type = constructor.parameterTypes[i]();
        const Fit fit = fitOf(arguments[i], type, converted);
        if (fit == Fit::None)
            return std::nullopt;
        found.distance += static_cast<std::size_t>(fit);
        found.values.push_back(zt::detail::typed(fit, arguments[i], type, converted));
    }
    return found;
}

/// The one that is nearest to the arguments, of equals the first; none where none fits.
Candidate bestOf(const ConstructorList& constructors, Arguments arguments)
{
    Candidate best;
    for (const ConstructorRecord& one : std::span(constructors.first, constructors.count)) {
        if (one.parameterCount != arguments.size())
            continue;
        auto found = candidate(one, arguments);
        if (found && found->distance < best.distance)
            best = *std::move(found);
    }
    return best;
}

/// By the constructors of the class; null where none fits.
std::unique_ptr<ZTBase> construct(const ConstructorList* constructors, Arguments arguments)
{
    if (!constructors || constructors->count == 0)
        return nullptr;
    if (arguments.empty()) {
        const ConstructorRecord& plain = *constructors->first;
        return std::unique_ptr<ZTBase>(plain.parameterCount == 0 ? plain.make(nullptr) : nullptr);
    }
    const Candidate best = bestOf(*constructors, arguments);
    return std::unique_ptr<ZTBase>(best.constructor ? best.constructor->make(best.values.data())
                                                    : nullptr);
}

/// Whether the object has the class now.
bool giveClass(ZTBase& object, const ZTMetaClass& metaClass)
{
    if (object.metaClass() == &metaClass)
        return true;
    auto* dynamic = dynamic_cast<ZTDynamicBase*>(&object);
    if (!dynamic)
        warn(metaClass,
             "\"" + ztShortName(*object.metaClass()) + "\" does not derive from ZTDynamicBase.");
    else if (object.metaClass()->isDynamic())
        warn(metaClass, "the object has got the class \"" + ztShortName(*object.metaClass()) +
                            "\" in its constructor.");
    else
        return zt::detail::ClassGiving::give(*dynamic, metaClass);
    return false;
}

std::unique_ptr<ZTBase> create(const ZTMetaClass& metaClass, Arguments arguments)
{
    const ZTMetaClass& declared = nearestDeclared(metaClass);
    const ConstructorList* constructors = constructorsOf(declared);
    std::unique_ptr<ZTBase> made = construct(constructors, arguments);
    if (!made)
        warn(metaClass, whyNot(declared, constructors, arguments));
    else if (&declared != &metaClass && !giveClass(*made, metaClass))
        made.reset();
    return made;
}
} // namespace

std::unique_ptr<ZTBase> ztCreate(const ZTMetaClass& metaClass) { return create(metaClass, {}); }

ZTBase* ztCreate(const ZTMetaClass& metaClass, ZTBase* parent, std::span<const ZTVariant> arguments)
{
    const ZTLifeWatch watch(parent);
    return zt::detail::joinParent(create(metaClass, arguments), parent, watch);
}
