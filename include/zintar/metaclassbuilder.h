#pragma once

#include <zintar/detail/runtimefunctions.h>
#include <zintar/detail/wideindex.h>
#include <zintar/export.h>
#include <zintar/fwd.h>
#include <zintar/metaclass.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <vector>

struct ZTMetaClassBuilderPrivate;
struct ZTMetaClassInfoBuilderPrivate;
struct ZTMetaEnumBuilderPrivate;
struct ZTMetaInvokableBuilderPrivate;
struct ZTMetaPropertyBuilderPrivate;
struct ZTDynamicMetaClassInfo;
struct ZTDynamicMetaEnum;
struct ZTDynamicMetaInvokable;
struct ZTDynamicMetaProperty;
class ZTMetaClassBuilder;

/// @file
/// Classes made at run time. A `ZTMetaClassBuilder` holds a class under construction; its members
/// are added and edited through the four member builders, and `toMetaClass()` hands out a finished
/// copy that never changes:
///
///     ZTMetaClassBuilder builder;
///     builder.setTypeName("Account");
///     builder.setSuperClass(&ZTDynamicBase::typeMetaClass());
///     auto changed = builder.addInvokable();
///     changed.setName("balanceChanged");
///     changed.setEvent<double>();
///     auto deposit = builder.addInvokable();
///     deposit.setName("deposit");
///     deposit.setFunction([](Account& self, double amount) { self.add(amount); });
///     std::unique_ptr<ZTMetaClass> account(builder.toMetaClass());
///
/// A member builder is a handle: an edit shows in the builder's class at once, and the handle may
/// be dropped at any time. One whose member was removed, or whose class builder is gone, goes on
/// working on a member that belongs to nothing. One for an index out of range is such a handle from
/// the start. Reads out of range give an empty view, -1 or the invalid type; nothing is logged.
///
/// Threads: a builder and its handles belong to one thread at a time; a finished class is
/// immutable and may go to another.

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

/// What a class that was read from a stream lacks. See `ZTMetaClassBuilder::read`.
struct ZTMissingInClass {
    std::string superClass;             ///< its name, where it was not found; otherwise empty
    std::vector<std::string> typeNames; ///< of types that are not registered, each once
    bool isCut = false;                 ///< the stream ended or failed before the end of the class

    /// Whether anything is missing.
    [[nodiscard]] explicit operator bool() const
    {
        return isCut || !superClass.empty() || !typeNames.empty();
    }
};

/// A class under construction; see the top of this file. Indices and counts are those of the
/// class's own members, from 0.
class ZT_EXPORT ZTMetaClassBuilder
{
public:
    /// @param prototype  a class of either family whose own members are copied; null for an empty
    ///                   class. Properties keep their functions; a declared class's methods come
    ///                   without theirs.
    explicit ZTMetaClassBuilder(const ZTMetaClass* prototype = nullptr);
    ZTMetaClassBuilder(const ZTMetaClassBuilder&) = delete;
    ZTMetaClassBuilder& operator=(const ZTMetaClassBuilder&) = delete;
    ~ZTMetaClassBuilder();

    /// @param super  not owned; must outlive the builder and every class it hands out
    void setSuperClass(const ZTMetaClass* super);
    [[nodiscard]] const ZTMetaClass* superClass() const;
    /// Any text: two classes of one name do not clash, as long as no store is to hold both.
    void setTypeName(std::string_view name);
    /// Good until the name changes or the builder dies.
    [[nodiscard]] std::string_view typeName() const;

    /// A finished copy, which the caller owns and deletes. It has nothing in common with the
    /// builder and with other copies. The builder stays usable.
    [[nodiscard]] ZTMetaClass* toMetaClass();

    /// Reads one class from the stream and adds it to what the builder holds: its members go behind
    /// those that are there, its name and its super class take their place.
    ///
    /// The functions of properties and methods are not on the stream: give them back through the
    /// member builders. Reading stops at the first failed read; what was read by then stays. Test
    /// the stream to know whether the class is complete.
    /// @param metaClasses  the super classes that the stream may name, by their type names; the
    ///                     root class needs no entry. A name that is not found is told in the log,
    ///                     and the class has no super class then.
    void deserialize(ZTDataStream& stream,
                     const std::unordered_map<std::string, const ZTMetaClass*>& metaClasses);
    /// The same for a host that does without what is missing, or supplies it: logs nothing, and
    /// answers what it is. What is not found is the same as with `deserialize`: no super class, and
    /// the invalid type.
    [[nodiscard]] ZTMissingInClass
    read(ZTDataStream& stream,
         const std::unordered_map<std::string, const ZTMetaClass*>& metaClasses);

    // Each `add` appends a member, a copy of the prototype if there is one, and gives a handle on
    // it; the other form gives one on the member at an index. What is removed lives on in its
    // handles alone, and those behind it move up. An index out of range removes nothing.
    ZTMetaClassInfoBuilder addClassInfo(const ZTMetaClassInfo* prototype = nullptr);
    [[nodiscard]] ZTMetaClassInfoBuilder classInfo(unsigned int index);
    template <zt::detail::WideIndex Index>
    [[nodiscard]] ZTMetaClassInfoBuilder classInfo(Index index)
    {
        return classInfo(zt::detail::narrowIndex(index));
    }
    void removeClassInfo(unsigned int index);
    template <zt::detail::WideIndex Index>
    void removeClassInfo(Index index)
    {
        removeClassInfo(zt::detail::narrowIndex(index));
    }
    [[nodiscard]] int classInfoCount() const;

    ZTMetaEnumBuilder addEnum(const ZTMetaEnum* prototype = nullptr);
    [[nodiscard]] ZTMetaEnumBuilder metaEnum(unsigned int index);
    template <zt::detail::WideIndex Index>
    [[nodiscard]] ZTMetaEnumBuilder metaEnum(Index index)
    {
        return metaEnum(zt::detail::narrowIndex(index));
    }
    void removeEnum(unsigned int index);
    template <zt::detail::WideIndex Index>
    void removeEnum(Index index)
    {
        removeEnum(zt::detail::narrowIndex(index));
    }
    [[nodiscard]] int enumCount() const;

    ZTMetaInvokableBuilder addInvokable(const ZTMetaInvokable* prototype = nullptr);
    [[nodiscard]] ZTMetaInvokableBuilder invokable(unsigned int index);
    template <zt::detail::WideIndex Index>
    [[nodiscard]] ZTMetaInvokableBuilder invokable(Index index)
    {
        return invokable(zt::detail::narrowIndex(index));
    }
    /// A property whose change event it was has none then.
    void removeInvokable(unsigned int index);
    template <zt::detail::WideIndex Index>
    void removeInvokable(Index index)
    {
        removeInvokable(zt::detail::narrowIndex(index));
    }
    [[nodiscard]] int invokableCount() const;

    /// The change event of a prototype is found by its position: right for a prototype of the
    /// class whose invokables were copied before.
    ZTMetaPropertyBuilder addProperty(const ZTMetaProperty* prototype = nullptr);
    [[nodiscard]] ZTMetaPropertyBuilder property(unsigned int index);
    template <zt::detail::WideIndex Index>
    [[nodiscard]] ZTMetaPropertyBuilder property(Index index)
    {
        return property(zt::detail::narrowIndex(index));
    }
    void removeProperty(unsigned int index);
    template <zt::detail::WideIndex Index>
    void removeProperty(Index index)
    {
        removeProperty(zt::detail::narrowIndex(index));
    }
    [[nodiscard]] int propertyCount() const;

    /// Adds a property whose value is kept by each object of the class, and the event that tells of
    /// its changes: for "level" that is "levelChanged", with the value as its parameter.
    ///
    /// An object has the value `start` until another one is set, and takes memory for it only then.
    /// Setting converts the value like a typed setter does; what does not fit is told in the log
    /// and changes nothing. The event is sent when the value has changed. The values follow an
    /// object that is moved, and are not among its `dynamicProperties()`. Values are not on the
    /// stream of a class: whoever reads one gives the property its start by `setStored`.
    /// @param start  tells the type; an invalid variant gives a property that can neither be read
    ///               nor written
    ZTMetaPropertyBuilder addStoredProperty(std::string_view name, const ZTVariant& start);
    template <zt::detail::VariantValue T>
    ZTMetaPropertyBuilder addStoredProperty(std::string_view name, T&& start)
    {
        return addStoredProperty(name, ZTVariant(std::forward<T>(start)));
    }

    /// The method that a method of this class with that name and those parameters overrides: that
    /// of the nearest super class, const or not; null when there is none. It stays good as long as
    /// its class, so that the overriding function can keep it and call it on its object:
    ///
    ///     auto deposit = builder.addInvokable();
    ///     deposit.setName("deposit");
    ///     deposit.setFunction([above = builder.superMethod<double>("deposit")](
    ///                             Account& self, double amount) {
    ///         above->invoke(&self, amount * 1.01);
    ///     });
    template <class... P>
    [[nodiscard]] const ZTMetaInvokable* superMethod(std::string_view name) const
    {
        return superMethod(name, zt::detail::typesOf(zt::detail::Parameters<P...>{}));
    }
    [[nodiscard]] const ZTMetaInvokable*
    superMethod(std::string_view name, const std::vector<const ZTMetaType*>& parameterTypes) const;

    // The first of the class's own members with that name or key: its index, -1 when there is none,
    // and a handle on it, on a member that belongs to nothing when there is none.
    [[nodiscard]] int indexOfClassInfo(std::string_view key) const;
    [[nodiscard]] int indexOfEnum(std::string_view name) const;
    [[nodiscard]] int indexOfInvokable(std::string_view name) const;
    [[nodiscard]] int indexOfProperty(std::string_view name) const;
    [[nodiscard]] ZTMetaClassInfoBuilder classInfo(std::string_view key);
    [[nodiscard]] ZTMetaEnumBuilder metaEnum(std::string_view name);
    [[nodiscard]] ZTMetaInvokableBuilder invokable(std::string_view name);
    [[nodiscard]] ZTMetaPropertyBuilder property(std::string_view name);

private:
    friend class ZTMetaInvokableBuilder;
    friend class ZTMetaPropertyBuilder;
    friend struct ZTClassReading;
    void copyMembers(const ZTMetaClass& prototype);

    std::unique_ptr<ZTMetaClassBuilderPrivate> priv;
};

/// Writes the class with its own members; inherited ones come from the super class, which is
/// written by name. Functions, offsets and user data are not written.
ZT_EXPORT ZTDataStream& operator<<(ZTDataStream& stream, const ZTMetaClass& metaClass);
