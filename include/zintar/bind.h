#pragma once

#include <zintar/base.h>
#include <zintar/detail/lent.h>
#include <zintar/detail/signature.h>
#include <zintar/export.h>
#include <zintar/outcome.h>

#include <functional>
#include <memory>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

/// @file
/// Properties that follow each other, and one place to hear of every property of an object.
///
///     const auto bound = ztBind(&sensor, "celsius", &gauge, "level");
///     if (!bound)
///         std::cerr << bound.error() << "\n";
///     ... ztBind(&house, "room.heater.level", &slider, "value", zt::bothWays) ...
///     ... ztBind(&sensor, "celsius", &gauge, "text", zt::through([](double celsius) {
///             return std::to_string(int(celsius)) + " C";
///         })) ...
///
/// A binding sets the target when it is made, and each time when the source's change event comes.
/// It reads the property then; no value is kept. A value that is already there is not set again, so
/// bindings both ways, chains and circles come to rest; a circle that does not is stopped, with one
/// line in the log.
///
/// A path leads through properties that are pointers or references to objects. When one on the way
/// changes, the binding follows; while one is null it rests.
///
/// Properties of classes made at run time and dynamic properties take part. A value that does not
/// fit is told in the log, and the target stays as it was.

struct ZTBindingPrivate;

/// A handle on one binding. It owns nothing: dropping it ends nothing. The binding ends with either
/// of the two objects that it was made for.
/// Threads: belongs to the thread of the objects.
class ZT_EXPORT ZTBinding
{
public:
    ZTBinding() noexcept = default;
    explicit ZTBinding(std::weak_ptr<ZTBindingPrivate> record) noexcept
        : m_record(std::move(record))
    {}

    /// Whether it still binds. One that rests does.
    [[nodiscard]] explicit operator bool() const noexcept;
    /// Ends it at once, also while it sets a property. Harmless when it has ended.
    void end();

private:
    std::weak_ptr<ZTBindingPrivate> m_record;
};

namespace zt
{
namespace detail
{
/// A transformation of values, and the types that it takes and gives.
struct BindingFunction {
    std::function<ZTVariant(const ZTVariant&)> function = {};
    const ZTMetaType* taken = nullptr;
    const ZTMetaType* given = nullptr;
};

struct BindingOptions {
    BindingFunction there;
    BindingFunction back;
    bool isBothWays = false;
};

template <class Callable, class Params>
struct BindingFunctionOf;
template <class Callable, class P>
struct BindingFunctionOf<Callable, Parameters<P>> {
    using Result = ValueType<typename CallableTraits<Callable>::Result>;

    static BindingFunction make(Callable callable)
    {
        return {[callable = std::move(callable)](const ZTVariant& value) mutable {
                    if constexpr (std::is_same_v<Held<P>, ZTVariant>)
                        return ZTVariant(callable(value));
                    else
                        return ZTVariant(callable(passAs<P>(*static_cast<Held<P>*>(value.data()))));
                },
                &::ztMetaType<Held<P>>(), &::ztMetaType<Result>()};
    }
};

template <class Callable>
BindingFunction bindingFunction(Callable callable)
{
    static_assert(PlainCallable<Callable>,
                  "A transformation is a callable with one parameter, whose type is written out.");
    static_assert(CallableTraits<Callable>::Params::count == 1,
                  "A transformation takes the value of the property, and nothing else.");
    return BindingFunctionOf<Callable, typename CallableTraits<Callable>::Params>::make(
        std::move(callable));
}

struct BothWays {
    static void addTo(BindingOptions& options) { options.isBothWays = true; }
};
struct Through {
    void addTo(BindingOptions& options) const
    {
        options.there = there;
        options.back = back;
        options.isBothWays = options.isBothWays || back.function;
    }

    BindingFunction there;
    BindingFunction back;
};

ZT_EXPORT ZTOutcome<ZTBinding> bind(ZTBase* source, std::string_view sourcePath, ZTBase* target,
                                    std::string_view targetPath, BindingOptions options);

using ChangeFunction = std::function<void(std::string_view, const ZTVariant&)>;
ZT_EXPORT std::vector<ZTSubscription>
subscribeToChanges(const ZTBase* object, const ZTBase* receiver, ChangeFunction function);
} // namespace detail

/// The source follows the target as well. When the binding is made, it is the target that is set.
inline constexpr detail::BothWays bothWays;

/// What stands between the source and the target: it gets the source's value, converted to its
/// parameter's type where it has to be, and gives the target's.
template <class Callable>
[[nodiscard]] detail::Through through(Callable there)
{
    return {detail::bindingFunction(std::move(there)), {}};
}
/// The same both ways.
template <class There, class Back>
[[nodiscard]] detail::Through through(There there, Back back)
{
    return {detail::bindingFunction(std::move(there)), detail::bindingFunction(std::move(back))};
}
} // namespace zt

/// Binds a property of the target to one of the source.
///
/// @param sourcePath  the name of a property with a change event, or a path of names with a "."
///                    between two; likewise `targetPath` of one that can be set.
///                    `zt::propertyName` (propertyname.h) gives the name of a member
/// @param options     `zt::bothWays`, `zt::through(...)`
/// @return why there is none, in one line: a property is missing, has no change event or cannot be
///         set, or no converter joins the types
template <class... Options>
ZTOutcome<ZTBinding> ztBind(ZTBase* source, std::string_view sourcePath, ZTBase* target,
                            std::string_view targetPath, const Options&... options)
{
    zt::detail::BindingOptions all;
    (options.addTo(all), ...);
    return zt::detail::bind(source, sourcePath, target, targetPath, std::move(all));
}

/// Calls `callable(name, value)` at each change that an object tells of any of its properties,
/// those of its class and dynamic ones. A dynamic property that is taken away gives an invalid
/// variant.
/// @param receiver  bounds the life of the callable, as that of a subscription; not null
/// @return a handle for each event that is listened to; they end with either object
template <class Callable>
std::vector<ZTSubscription> ztSubscribeToChanges(const ZTBase* object, const ZTBase* receiver,
                                                 Callable callable)
{
    return zt::detail::subscribeToChanges(object, receiver, std::move(callable));
}
