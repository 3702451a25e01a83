#include "../object/fit.h"
#include "../reflection/parameters.h"
#include "sentences.h"

#include <zintar/checked.h>
#include <zintar/detail/lifewatch.h>

#include <array>
#include <optional>
#include <vector>

// Which overload a call by name means.

namespace
{
using zt::detail::Fit;
using zt::detail::fitOf;
using Arguments = std::span<const ZTVariant>;
using zt::detail::LentVariant;
using zt::detail::signatureText;

/// An invokable that can be called with the arguments.
struct Candidate {
    const ZTMetaInvokable* invokable = nullptr;
    std::array<Fit, ZTMetaInvokable::MaxParamCount> fits{};
    ZTArgumentArray values;
};

/// A candidate, or why the invokable is none.
using Trial = ZTOutcome<Candidate>;

std::string argumentCount(std::size_t count)
{
    return std::to_string(count) + (count == 1 ? " argument" : " arguments");
}

/// "parameter "level" of boost"
std::string parameterText(const ZTMetaInvokable& invokable, unsigned int position)
{
    const std::string_view name = invokable.parameterName(position);
    const std::string which =
        name.empty() ? std::to_string(position + 1) : '"' + std::string(name) + '"';
    return "parameter " + which + " of " + std::string(invokable.name());
}

/// Whether a call can have that many arguments. A class made at run time may declare more
/// parameters than a call carries.
bool areGiven(const ZTMetaInvokable& invokable, std::size_t given)
{
    return given <= invokable.parameterCount() && given >= invokable.requiredArgumentCount() &&
           invokable.parameterCount() <= ZTMetaInvokable::MaxParamCount;
}

Trial tryCandidate(const ZTMetaClass& metaClass, const ZTMetaInvokable& invokable,
                   Arguments arguments)
{
    if (!areGiven(invokable, arguments.size()))
        return Trial::failure(zt::detail::memberName(metaClass, signatureText(invokable)) +
                              " cannot be called with " + argumentCount(arguments.size()));
    Candidate candidate;
    candidate.invokable = &invokable;
    for (unsigned int i = 0; i < arguments.size(); ++i) {
        const ZTMetaType& type = invokable.parameterMetaType(i);
        ZTVariant converted;
        candidate.fits[i] = fitOf(arguments[i], type, converted);
        if (candidate.fits[i] == Fit::None)
            return Trial::failure(
                zt::detail::misfit(arguments[i], parameterText(invokable, i), type));
        candidate.values[i] = zt::detail::fitting(candidate.fits[i], arguments[i], converted);
    }
    for (auto i = static_cast<unsigned int>(arguments.size()); i < invokable.parameterCount(); ++i)
        candidate.values[i] = *invokable.defaultArgument(i);
    return candidate;
}

/// Whether a call of the one hides the other: it is declared again further down, or for objects
/// that may be changed.
bool hides(const ZTMetaInvokable& later, const ZTMetaInvokable& earlier)
{
    return zt::detail::haveSameParameters(later, earlier) &&
           (later.isConst() == earlier.isConst() || !later.isConst());
}

/// The invokables with that name, the class's own first, without those that others hide.
std::vector<const ZTMetaInvokable*> overloads(const ZTMetaClass& metaClass, std::string_view name)
{
    std::vector<const ZTMetaInvokable*> found;
    for (unsigned int i = metaClass.invokableCount(); i-- > 0;) {
        const ZTMetaInvokable* one = metaClass.invokable(i);
        if (one->name() == name)
            found.push_back(one);
    }
    std::vector<const ZTMetaInvokable*> visible;
    for (std::size_t i = 0; i < found.size(); ++i) {
        bool isHidden = false;
        for (std::size_t j = 0; j < found.size() && !isHidden; ++j) {
            // Of two that hide each other, the later one counts.
            const bool isMutual = hides(*found[i], *found[j]);
            isHidden = i != j && hides(*found[j], *found[i]) && (!isMutual || j < i);
        }
        if (!isHidden)
            visible.push_back(found[i]);
    }
    return visible;
}

enum class Better { First, Second, Neither };

Better betterOf(const Candidate& a, const Candidate& b, std::size_t given)
{
    bool isFirst = false;
    bool isSecond = false;
    for (std::size_t i = 0; i < given; ++i) {
        isFirst = isFirst || a.fits[i] < b.fits[i];
        isSecond = isSecond || b.fits[i] < a.fits[i];
    }
    if (!isFirst && !isSecond) {
        isFirst = a.invokable->parameterCount() < b.invokable->parameterCount();
        isSecond = b.invokable->parameterCount() < a.invokable->parameterCount();
    }
    return isFirst == isSecond ? Better::Neither : isFirst ? Better::First : Better::Second;
}

/// The one that is better than each other.
Trial bestOf(const ZTMetaClass& metaClass, std::vector<Candidate>& candidates, std::size_t given)
{
    std::size_t best = 0;
    for (std::size_t i = 1; i < candidates.size(); ++i)
        if (betterOf(candidates[best], candidates[i], given) == Better::Second)
            best = i;
    for (std::size_t i = 0; i < candidates.size(); ++i)
        if (i != best && betterOf(candidates[best], candidates[i], given) != Better::First)
            return Trial::failure(
                zt::detail::memberName(metaClass, signatureText(*candidates[best].invokable)) +
                " and " + signatureText(*candidates[i].invokable) +
                " fit these arguments equally well");
    return std::move(candidates[best]);
}

std::string noSuchMethod(const ZTMetaClass& metaClass, std::string_view name)
{
    std::vector<std::string_view> known;
    for (unsigned int i = 0; i < metaClass.invokableCount(); ++i)
        known.push_back(metaClass.invokable(i)->name());
    return zt::detail::noSuchMember(metaClass, "method", name, std::move(known));
}

Trial findCall(const ZTMetaClass& metaClass, std::string_view name, Arguments arguments)
{
    const std::vector<const ZTMetaInvokable*> found = overloads(metaClass, name);
    if (found.empty())
        return Trial::failure(noSuchMethod(metaClass, name));
    std::vector<Candidate> candidates;
    std::string why; // of the first that takes as many
    bool isOfCount = false;
    for (const ZTMetaInvokable* one : found) {
        Trial trial = tryCandidate(metaClass, *one, arguments);
        if (trial) {
            candidates.push_back(*std::move(trial));
        } else if (why.empty() || (!isOfCount && areGiven(*one, arguments.size()))) {
            why = trial.error();
            isOfCount = areGiven(*one, arguments.size());
        }
    }
    if (candidates.empty())
        return Trial::failure(std::move(why));
    return bestOf(metaClass, candidates, arguments.size());
}

bool isOf(const ZTMetaInvokable& invokable, const ZTMetaClass& metaClass)
{
    return metaClass.invokable(invokable.index()) == &invokable;
}

ZTOutcome<ZTVariant> call(ZTBase& object, const ZTLifeWatch& watch, const Trial& trial)
{
    using Outcome = ZTOutcome<ZTVariant>;
    if (!trial)
        return Outcome::failure(trial.error());
    if (!watch.isStill(&object))
        return Outcome::failure("the object ended while the arguments were converted");
    return trial->invokable->invoke(LentVariant(&object), trial->values);
}
} // namespace

ZTOutcome<ZTVariant> ztTryInvoke(ZTBase* object, std::string_view name, Arguments arguments)
{
    if (!object)
        return ZTOutcome<ZTVariant>::failure(zt::detail::noObject);
    const ZTLifeWatch watch(object);
    return call(*object, watch, findCall(*object->metaClass(), name, arguments));
}

ZTOutcome<ZTVariant> ztTryInvoke(ZTBase* object, const ZTMetaInvokable& invokable,
                                 Arguments arguments)
{
    using Outcome = ZTOutcome<ZTVariant>;
    if (!object)
        return Outcome::failure(zt::detail::noObject);
    const ZTMetaClass& metaClass = *object->metaClass();
    if (!isOf(invokable, metaClass))
        return Outcome::failure(zt::detail::foreignMember("method", invokable.name(), metaClass));
    const ZTLifeWatch watch(object);
    return call(*object, watch, tryCandidate(metaClass, invokable, arguments));
}

ZTOutcome<ZTCheckedCall> ztTryFindCall(const ZTMetaClass& metaClass, std::string_view name,
                                       Arguments arguments)
{
    Trial trial = findCall(metaClass, name, arguments);
    if (!trial)
        return ZTOutcome<ZTCheckedCall>::failure(trial.error());
    return ZTCheckedCall{trial->invokable, std::move(trial->values)};
}
