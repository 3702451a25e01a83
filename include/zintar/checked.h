#pragma once

#include <zintar/base.h>
#include <zintar/export.h>
#include <zintar/outcome.h>
#include <zintar/typedvalue.h>

#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

/// @file
/// Setting, getting and calling by name for hosts that have to tell their user why something did
/// not work: an editor, a console, a script.
///
///     if (auto outcome = ztTrySet(lamp, "brightness", text); !outcome)
///         std::cerr << outcome.error() << "\n";
///     // "warm" does not fit Lamp.brightness of type double
///
/// Each checks first and acts then: where it refuses, nothing has changed, and nothing was logged.
/// `ZTBase::setProperty` and `ZTMetaInvokable::invoke` ask less, and tell their refusals in the
/// log.
///
/// A value fits a type if it is of that type, or a registered converter takes it. A pointer fits a
/// type of pointers to objects if the object that it points to is of that class; so it must be null
/// or point to a living object. One to a const object does not fit where the object may be changed.
///
/// Threads: as the objects.

/// Sets a property of the class, or else a dynamic property that the object has.
/// @param object  not owned; null is refused
ZT_EXPORT ZTOutcome<> ztTrySet(ZTBase* object, std::string_view name, const ZTVariant& value);
/// The same with a property that was found before, which must be one of the object's class.
ZT_EXPORT ZTOutcome<> ztTrySet(ZTBase* object, const ZTMetaProperty& property,
                               const ZTVariant& value);
template <zt::detail::VariantValue T>
ZTOutcome<> ztTrySet(ZTBase* object, std::string_view name, T&& value)
{
    const zt::detail::LentCopy<T> copy(std::forward<T>(value));
    const ZTVariant& variant = copy;
    return ztTrySet(object, name, variant);
}
template <zt::detail::VariantValue T>
ZTOutcome<> ztTrySet(ZTBase* object, const ZTMetaProperty& property, T&& value)
{
    const zt::detail::LentCopy<T> copy(std::forward<T>(value));
    const ZTVariant& variant = copy;
    return ztTrySet(object, property, variant);
}

/// The value of a property of the class, or else of a dynamic property of the object.
ZT_EXPORT ZTOutcome<ZTVariant> ztTryGet(const ZTBase* object, std::string_view name);
ZT_EXPORT ZTOutcome<ZTVariant> ztTryGet(const ZTBase* object, const ZTMetaProperty& property);

/// The value as one of that type, by a registered converter where it has to.
/// @param what  names for the message what the value is for: "Lamp.brightness"; may be empty
ZT_EXPORT ZTOutcome<ZTVariant> ztTryConvert(const ZTVariant& value, const ZTMetaType& type,
                                            std::string_view what = {});

/// The value of a property as a `T`.
template <class T>
ZTOutcome<T> ztTryGet(const ZTBase* object, std::string_view name)
{
    ZTOutcome<ZTVariant> value = ztTryGet(object, name);
    if (!value)
        return ZTOutcome<T>::failure(value.error());
    if constexpr (std::is_same_v<T, ZTVariant>) {
        return value;
    } else {
        ZTOutcome<ZTVariant> fitting = ztTryConvert(*value, ztMetaType<T>());
        return fitting ? ZTOutcome<T>(ztVariantValue<T>(*fitting))
                       : ZTOutcome<T>::failure(std::string(name) + ": " + fitting.error());
    }
}

/// Calls the method, or raises the event, that has that name and takes the arguments.
///
/// Of several with that name the one is called that C++ would choose: where one argument fits one
/// of them as it is and another one by the class tree or a converter, and no other argument says
/// the opposite, the first is better; of equals the one that needs fewer default arguments. Two
/// that are equally good are refused, with both in the message. A method that the class declares
/// again hides the inherited one. Arguments that are left out need a default in the declaration.
///
/// Cost: a step for each invokable of the class; keep the descriptor for what is called often.
/// @return the result; an invalid variant where the method returns nothing
ZT_EXPORT ZTOutcome<ZTVariant> ztTryInvoke(ZTBase* object, std::string_view name,
                                           std::span<const ZTVariant> arguments);
/// The same with a method that was found before, which must be one of the object's class.
ZT_EXPORT ZTOutcome<ZTVariant> ztTryInvoke(ZTBase* object, const ZTMetaInvokable& invokable,
                                           std::span<const ZTVariant> arguments);

/// The same with written arguments: `ztTryCall(thermostat, "boost", 30, 0.5)`.
/// @param member  its name, or its descriptor
template <class Member, class... Arguments>
ZTOutcome<ZTVariant> ztTryCall(ZTBase* object, const Member& member, Arguments&&... arguments)
{
    static_assert(sizeof...(Arguments) <= ZTMetaInvokable::MaxParamCount,
                  "A call carries at most ZTMetaInvokable::MaxParamCount arguments.");
    if constexpr (sizeof...(Arguments) == 0) {
        return ztTryInvoke(object, member, {});
    } else {
        zt::detail::LentCopies<Arguments...> copies(std::forward<Arguments>(arguments)...);
        const ZTArgumentArray& array = copies;
        return ztTryInvoke(object, member, {array.data(), sizeof...(Arguments)});
    }
}

// The same checks without an object, for a host that reads a whole plan before it acts.

/// The property of that name; the error names the nearest one and those that there are.
ZT_EXPORT ZTOutcome<const ZTMetaProperty*> ztTryFindProperty(const ZTMetaClass& metaClass,
                                                             std::string_view name);
/// The value as `ztTrySet` would hand it to the property.
ZT_EXPORT ZTOutcome<ZTVariant> ztTryFit(const ZTVariant& value, const ZTMetaClass& metaClass,
                                        const ZTMetaProperty& property);

/// A call that was checked: what to hand to `ZTMetaInvokable::invoke`.
struct ZTCheckedCall {
    const ZTMetaInvokable* invokable = nullptr;
    ZTArgumentArray arguments;
};
/// The call that `ztTryCall` would make.
ZT_EXPORT ZTOutcome<ZTCheckedCall> ztTryFindCall(const ZTMetaClass& metaClass,
                                                 std::string_view name,
                                                 std::span<const ZTVariant> arguments);
