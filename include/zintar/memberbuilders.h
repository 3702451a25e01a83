#pragma once

#include <zintar/detail/runtimefunctions.h>
#include <zintar/detail/wideindex.h>
#include <zintar/export.h>
#include <zintar/fwd.h>
#include <zintar/metaclass.h>

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <vector>

struct ZTMetaClassInfoBuilderPrivate;
struct ZTMetaEnumBuilderPrivate;
struct ZTMetaInvokableBuilderPrivate;
struct ZTMetaPropertyBuilderPrivate;
struct ZTDynamicMetaClassInfo;
struct ZTDynamicMetaEnum;
struct ZTDynamicMetaInvokable;
struct ZTDynamicMetaProperty;

/// @file
/// The builders of the members of a class made at run time; that of the class is in
/// `metaclassbuilder.h`.
///
/// A member builder is a handle: an edit shows in the builder's class at once, and the handle may
/// be dropped at any time. One whose member was removed, or whose class builder is gone, goes on
/// working on a member that belongs to nothing. One for an index out of range is such a handle from
/// the start. Reads out of range give an empty view, -1 or the invalid type; nothing is logged.
///
/// Threads: as the class builder.

/// Edits one annotation of the class. Both texts are copied; views that were given out are good
/// until the next change.
class ZT_EXPORT ZTMetaClassInfoBuilder
{
public:
    ZTMetaClassInfoBuilder(const ZTMetaClassInfoBuilder&) = delete;
    ZTMetaClassInfoBuilder& operator=(const ZTMetaClassInfoBuilder&) = delete;
    ~ZTMetaClassInfoBuilder();

    [[nodiscard]] std::string_view key() const;
    void setKey(std::string_view key);
    [[nodiscard]] std::string_view value() const;
    void setValue(std::string_view value);

private:
    friend class ZTMetaClassBuilder;
    ZTMetaClassInfoBuilder();
    ZTMetaClassInfoBuilder(std::shared_ptr<ZTDynamicMetaClassInfo> descriptor,
                           const ZTMetaClassInfo* prototype);

    std::unique_ptr<ZTMetaClassInfoBuilderPrivate> priv;
};

/// Edits one enumeration of the class. Names and values are unique in what is added here; a
/// prototype is copied as it is.
class ZT_EXPORT ZTMetaEnumBuilder
{
public:
    ZTMetaEnumBuilder(const ZTMetaEnumBuilder&) = delete;
    ZTMetaEnumBuilder& operator=(const ZTMetaEnumBuilder&) = delete;
    ~ZTMetaEnumBuilder();

    [[nodiscard]] std::string_view name() const;
    void setName(std::string_view name);
    [[nodiscard]] int count() const;
    [[nodiscard]] std::string_view enumerator(unsigned int index) const;
    template <zt::detail::WideIndex Index>
    [[nodiscard]] std::string_view enumerator(Index index) const
    {
        return enumerator(zt::detail::narrowIndex(index));
    }
    /// -1 for an index out of range.
    [[nodiscard]] int value(unsigned int index) const;
    template <zt::detail::WideIndex Index>
    [[nodiscard]] int value(Index index) const
    {
        return value(zt::detail::narrowIndex(index));
    }
    /// @return false, changing nothing, when the name or the value is there already
    bool add(std::string_view name, int value);
    /// An index out of range removes nothing.
    void remove(unsigned int index);
    template <zt::detail::WideIndex Index>
    void remove(Index index)
    {
        remove(zt::detail::narrowIndex(index));
    }

    /// The invalid type until it is set. It takes no part in conversions, and `ztEnumeration` does
    /// not find an enumeration that is made at run time.
    [[nodiscard]] const ZTMetaType& metaType() const;
    void setMetaType(const ZTMetaType& type);
    [[nodiscard]] bool isFlags() const;
    void setIsFlags(bool isFlags);
    // Annotations; keys may repeat. They, the type and the flags are not part of the stream form.
    void addInfo(std::string_view key, std::string_view value);
    /// @param enumerator  out of range it is ignored
    void addEnumeratorInfo(unsigned int enumerator, std::string_view key, std::string_view value);
    /// Removes all of the enumeration and its enumerators.
    void clearInfos();

private:
    friend class ZTMetaClassBuilder;
    ZTMetaEnumBuilder();
    ZTMetaEnumBuilder(std::shared_ptr<ZTDynamicMetaEnum> descriptor, const ZTMetaEnum* prototype);

    std::unique_ptr<ZTMetaEnumBuilderPrivate> priv;
};

/// Edits one method or event of the class. A new one has no name, no function, no parameters and no
/// result, and is `Private`. With a typed callable, `setFunction` sees to all of it but the name
/// and the access.
class ZT_EXPORT ZTMetaInvokableBuilder
{
public:
    ZTMetaInvokableBuilder(const ZTMetaInvokableBuilder&) = delete;
    ZTMetaInvokableBuilder& operator=(const ZTMetaInvokableBuilder&) = delete;
    ~ZTMetaInvokableBuilder();

    [[nodiscard]] std::string_view name() const;
    void setName(std::string_view name);
    [[nodiscard]] bool isConst() const;
    void setIsConst(bool isConst);
    [[nodiscard]] bool isEvent() const;
    void setIsEvent(bool isEvent);
    /// The invalid type until it is set.
    [[nodiscard]] const ZTMetaType& returnMetaType() const;
    void setReturnMetaType(const ZTMetaType& type);
    [[nodiscard]] std::vector<const ZTMetaType*> parameterMetaTypes() const;
    /// Any number is stored; a call carries the first `ZTMetaInvokable::MaxParamCount`.
    void setParameterMetaTypes(const std::vector<const ZTMetaType*>& types);
    /// `Private` in a new invokable.
    [[nodiscard]] ZTAccessSpecifier accessSpecifier() const;
    void setAccessSpecifier(ZTAccessSpecifier access);
    /// A copy; empty when there is none.
    [[nodiscard]] zt::detail::InvokableFunction function() const;

    /// Sets what a call runs.
    ///
    /// Given a callable whose first parameter is the object, `[](Account& self, double amount)`,
    /// it fills in the parameter types, the result type, and the constness from that of `self`.
    /// Arguments that do not fit are told in the log and arrive as default values. Given one that
    /// takes the variants themselves, `(const ZTVariant& object, const ZTArgumentArray&)`, it
    /// leaves the types to the other setters. An empty function or a null pointer removes the
    /// function and leaves the types alone.
    /// @param key  by which `ZTMetaClass::indexOfInvokable(void*)` finds the invokable. It is only
    ///             compared here; a declared super class that is asked for a key which this class
    ///             does not have takes it for the address of a pointer to a member function.
    template <class Callable = zt::detail::InvokableFunction>
    void setFunction(Callable callable, void* key = nullptr)
    {
        if constexpr (std::is_convertible_v<Callable, zt::detail::InvokableFunction>) {
            setUntypedFunction(std::move(callable), key);
        } else {
            if (zt::detail::isNullCallable(callable))
                return setUntypedFunction({}, key);
            using Traits = zt::detail::ObjectCallable<Callable>;
            static_assert(Traits::Params::count <= zt::detail::maxParamCount,
                          "A method has at most ZTMetaInvokable::MaxParamCount parameters.");
            static_assert(Traits::Params::plain,
                          "The parameters of a method are values or references to const.");
            // What can fail comes first.
            auto function = zt::detail::wrapMethod(std::move(callable));
            const ZTMetaType& result = zt::detail::resultType<typename Traits::Result>();
            setParameterMetaTypes(zt::detail::typesOf(typename Traits::Params{}));
            setReturnMetaType(result);
            setIsConst(Traits::isConst);
            setUntypedFunction(std::move(function), key);
        }
    }

    /// Makes the invokable an event with parameters of those types. A call of it raises the event
    /// on the object; so does `ZTBase::sendEvent` with its index.
    template <class... P>
    void setEvent()
    {
        static_assert(sizeof...(P) <= zt::detail::maxParamCount,
                      "An event has at most ZTMetaInvokable::MaxParamCount parameters.");
        setEvent(zt::detail::typesOf(zt::detail::Parameters<P...>{}));
    }
    /// The same with types that are known at run time only.
    void setEvent(const std::vector<const ZTMetaType*>& parameterTypes);

    // Names and default arguments of parameters, and annotations. They are kept apart from the
    // types and may be set before these. None of them is part of the stream form.

    /// Empty for one without a name.
    [[nodiscard]] std::string_view parameterName(unsigned int index) const;
    template <zt::detail::WideIndex Index>
    [[nodiscard]] std::string_view parameterName(Index index) const
    {
        return parameterName(zt::detail::narrowIndex(index));
    }
    /// The names of the first parameters; those behind them have none.
    void setParameterNames(std::vector<std::string> names);
    /// Null for a parameter without one. Good until they are set anew.
    [[nodiscard]] const ZTVariant* defaultArgument(unsigned int index) const;
    template <zt::detail::WideIndex Index>
    [[nodiscard]] const ZTVariant* defaultArgument(Index index) const
    {
        return defaultArgument(zt::detail::narrowIndex(index));
    }
    /// The default arguments of the last parameters. They are passed as they are, so give values of
    /// the parameters' types, or such as convert.
    void setDefaultArguments(std::vector<ZTVariant> arguments);
    /// Adds an annotation, of the invokable or of one of its parameters. Keys may repeat.
    void addInfo(std::string_view key, std::string_view value);
    void addParameterInfo(unsigned int parameter, std::string_view key, std::string_view value);
    /// Removes all of the invokable and its parameters.
    void clearInfos();

private:
    friend class ZTMetaClassBuilder;
    friend class ZTMetaPropertyBuilder;
    ZTMetaInvokableBuilder();
    ZTMetaInvokableBuilder(ZTMetaClassBuilder* classBuilder,
                           std::shared_ptr<ZTDynamicMetaInvokable> descriptor,
                           const ZTMetaInvokable* prototype);

    void setUntypedFunction(zt::detail::InvokableFunction function, void* key);
    void copyDetails(const ZTMetaInvokable& prototype);

    std::unique_ptr<ZTMetaInvokableBuilderPrivate> priv;
};

/// Edits one property of the class. A new one has no name, no type and no functions: it can neither
/// be read nor written. Typed callables set the type along.
///
///     auto balance = builder.addProperty();
///     balance.setName("balance");
///     balance.setGetter([](const Account& self) { return self.balance(); });
///     balance.setSetter([](Account& self, double value) { self.setBalance(value); });
///     balance.setChangeEvent(changed);
///     balance.addPropInfo("unit", "euro");
class ZT_EXPORT ZTMetaPropertyBuilder
{
public:
    ZTMetaPropertyBuilder(const ZTMetaPropertyBuilder&) = delete;
    ZTMetaPropertyBuilder& operator=(const ZTMetaPropertyBuilder&) = delete;
    ~ZTMetaPropertyBuilder();

    [[nodiscard]] std::string_view name() const;
    void setName(std::string_view name);
    [[nodiscard]] const ZTMetaType& metaType() const;
    void setMetaType(const ZTMetaType& type);

    /// Whether there is a getter, or a stored class had one that was not given back yet: so a
    /// reader of a class learns which functions to supply. The descriptor's own `canGet` looks at
    /// the functions only.
    [[nodiscard]] bool canGet() const;
    [[nodiscard]] bool canSet() const;
    // Copies; empty when there is none, as for a stored property.
    [[nodiscard]] zt::detail::GetterFunction getter() const;
    [[nodiscard]] zt::detail::SetterFunction setter() const;

    /// Sets what reading runs; an empty function or a null pointer removes the getter and leaves
    /// the type alone.
    ///
    /// Given a callable that takes the object, `[](const Account& self) { return ...; }`, it sets
    /// the type of the property: `Value`, or what the callable gives. Given one that takes the
    /// variant itself, it leaves the type alone.
    template <class Value = void, class Callable = zt::detail::GetterFunction>
    void setGetter(Callable callable)
    {
        if constexpr (std::is_convertible_v<Callable, zt::detail::GetterFunction>) {
            setUntypedGetter(std::move(callable));
        } else {
            if (zt::detail::isNullCallable(callable))
                return setUntypedGetter({});
            using Result = typename zt::detail::ObjectCallable<Callable>::Result;
            using Type = std::conditional_t<std::is_void_v<Value>, Result, Value>;
            auto getter = zt::detail::wrapGetter<Type>(std::move(callable));
            setMetaType(zt::detail::resultType<Type>());
            setUntypedGetter(std::move(getter));
        }
    }
    /// Sets what writing runs; an empty function or a null pointer removes the setter. A callable
    /// `[](Account& self, double value)` sets the type of the property; a value that does not fit
    /// is told in the log, and the callable is not called.
    template <class Callable = zt::detail::SetterFunction>
    void setSetter(Callable callable)
    {
        if constexpr (std::is_convertible_v<Callable, zt::detail::SetterFunction>) {
            setUntypedSetter(std::move(callable));
        } else {
            if (zt::detail::isNullCallable(callable))
                return setUntypedSetter({});
            using Params = typename zt::detail::ObjectCallable<Callable>::Params;
            static_assert(Params::count == 1, "A setter takes the object and one value.");
            auto setter = zt::detail::wrapSetter(std::move(callable), Params{});
            setMetaType(Params::types[0]());
            setUntypedSetter(std::move(setter));
        }
    }

    /// Lets each object keep the value of the property itself, in place of a getter and a setter;
    /// see `ZTMetaClassBuilder::addStoredProperty`. Sets the type, and leaves name and change event
    /// alone.
    void setStored(const ZTVariant& start);
    template <zt::detail::VariantValue T>
    void setStored(T&& start)
    {
        setStored(ZTVariant(std::forward<T>(start)));
    }

    [[nodiscard]] unsigned int propInfoCount() const;
    [[nodiscard]] std::string_view propInfoKey(unsigned int index) const;
    template <zt::detail::WideIndex Index>
    [[nodiscard]] std::string_view propInfoKey(Index index) const
    {
        return propInfoKey(zt::detail::narrowIndex(index));
    }
    [[nodiscard]] std::string_view propInfoValue(unsigned int index) const;
    template <zt::detail::WideIndex Index>
    [[nodiscard]] std::string_view propInfoValue(Index index) const
    {
        return propInfoValue(zt::detail::narrowIndex(index));
    }
    /// Appends an annotation. Keys may repeat.
    void addPropInfo(std::string_view key, std::string_view value);
    void removePropInfo(unsigned int index);
    template <zt::detail::WideIndex Index>
    void removePropInfo(Index index)
    {
        removePropInfo(zt::detail::narrowIndex(index));
    }

    /// The class-wide index that the change event has now; -1 when there is none any more.
    [[nodiscard]] int changeEventIndex() const;
    /// Links the event that announces a change. It follows the invokable, wherever that moves. An
    /// invokable of another class builder is ignored.
    void setChangeEvent(const ZTMetaInvokableBuilder& event);
    void clearChangeEvent();

private:
    friend class ZTMetaClassBuilder;
    ZTMetaPropertyBuilder();
    ZTMetaPropertyBuilder(ZTMetaClassBuilder* classBuilder,
                          std::shared_ptr<ZTDynamicMetaProperty> descriptor,
                          const ZTMetaProperty* prototype);

    void setUntypedGetter(zt::detail::GetterFunction getter);
    void setUntypedSetter(zt::detail::SetterFunction setter);
    void copyFunctions(const ZTMetaProperty& prototype);
    void copyChangeEvent(const ZTMetaProperty& prototype, ZTMetaClassBuilder& classBuilder);

    std::unique_ptr<ZTMetaPropertyBuilderPrivate> priv;
};
