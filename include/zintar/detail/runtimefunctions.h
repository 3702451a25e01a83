#pragma once

#include <zintar/detail/calls.h>

#include <functional>
#include <type_traits>
#include <utility>
#include <vector>

/// @file
/// Callables of the host as the functions of a class made at run time.

namespace zt::detail
{
using InvokableFunction = std::function<ZTVariant(const ZTVariant&, const ZTArgumentArray&)>;
using GetterFunction = std::function<ZTVariant(const ZTVariant&)>;
using SetterFunction = std::function<ZTVariant(const ZTVariant&, const ZTVariant&)>;

/// A callable whose first parameter is the object, as a reference to its class.
template <class Callable, class Params = typename CallableTraits<Callable>::Params>
struct ObjectCallable {
    static_assert(sizeof(Callable) == 0,
                  "The first parameter of the function is the object: a reference to its class.");
};
template <class Callable, class Self, class... P>
struct ObjectCallable<Callable, Parameters<Self&, P...>> {
    static_assert(!std::is_same_v<std::remove_const_t<Self>, ZTVariant>,
                  "A function that takes its object as a ZTVariant returns a ZTVariant.");
    static_assert(isObjectClass<Self> || std::is_same_v<std::remove_const_t<Self>, ZTVariant>,
                  "The first parameter of the function is the object: a reference to its class.");
    using Object = Self;
    using Result = typename CallableTraits<Callable>::Result;
    using Params = Parameters<P...>;
    static constexpr bool isConst = std::is_const_v<Self>;
};

template <class Callable>
InvokableFunction wrapMethod(Callable callable)
{
    using Traits = ObjectCallable<Callable>;
    return [callable = std::move(callable)](const ZTVariant& object,
                                            const ZTArgumentArray& arguments) mutable -> ZTVariant {
        auto* self = objectIn<typename Traits::Object>(object);
        if (!self)
            return {};
        return callBoxed<typename Traits::Result>(
            *self,
            [&](auto&&... values) -> decltype(auto) {
                return callable(*self, std::forward<decltype(values)>(values)...);
            },
            arguments, typename Traits::Params{});
    };
}

template <class Value, class Callable>
GetterFunction wrapGetter(Callable callable)
{
    using Object = typename ObjectCallable<Callable>::Object;
    return [callable = std::move(callable)](const ZTVariant& object) mutable -> ZTVariant {
        auto* self = objectIn<Object>(object);
        return self ? boxResult<Value>(callable(*self)) : ZTVariant();
    };
}

template <class Callable, class P>
SetterFunction wrapSetter(Callable callable, Parameters<P>)
{
    using Object = typename ObjectCallable<Callable>::Object;
    return [callable = std::move(callable)](const ZTVariant& object,
                                            const ZTVariant& value) mutable -> ZTVariant {
        return storeUnboxed<P>(object, value, objectSource<Object>,
                               [&](ZTBase& self, const Held<P>& held) {
                                   (void)callable(static_cast<Object&>(self), passAs<P>(held));
                               });
    };
}

template <class... P>
std::vector<const ZTMetaType*> typesOf(Parameters<P...>)
{
    return {&::ztMetaType<Held<P>>()...};
}
} // namespace zt::detail
