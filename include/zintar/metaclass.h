#pragma once

#include <zintar/detail/lent.h>
#include <zintar/detail/signaturekey.h>
#include <zintar/detail/wideindex.h>
#include <zintar/export.h>
#include <zintar/fwd.h>
#include <zintar/typedvalue.h>
#include <zintar/variant.h>

#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeindex>
#include <utility>
#include <vector>

/// @file
/// The five descriptors through which the library and its hosts see a class. Two families stand
/// behind them: static ones read tables that a host declares (`declare.h`), dynamic ones own their
/// data and are made at run time. `isDynamic()` tells them apart.
///
/// Index spaces. A class and its super classes share one index space for each kind of member: the
/// root's members come first, `...Offset()` is what is inherited, and `...Count()` is cumulative,
/// so a class's own members run from the offset to the count - 1, and an index means the same
/// member in every class further down.
///
/// Neutral results. A lookup that fails gives null, -1, an empty view, the invalid type or an
/// invalid variant, and logs nothing. Pointers and views belong to the class: they stay good as
/// long as it lives.
///
/// Threads: immutable once built; reads may run in parallel. `setUserData` is not synchronised.

/// Who may call an invokable. Kept and handed on; the library never branches on it.
enum class ZTAccessSpecifier : int {
    Private = 0,
    Protected = 1,
    Public = 2,
};

/// Stands for no class: its name marks a missing super class on a stream.
struct ZTNone {};

/// One key/value annotation of a class: what an editor groups classes by, say, or a file's version.
/// Keys may repeat; the library gives none of them a meaning.
///
/// A descriptor cannot be made by hosts. Copying one cuts it down to this abstract type, which
/// answers every question with a neutral result; so keep pointers. The same goes for the other
/// four.
struct ZT_EXPORT ZTMetaClassInfo {
public:
    ZTMetaClassInfo(const ZTMetaClassInfo&) noexcept {}
    ZTMetaClassInfo& operator=(const ZTMetaClassInfo&) noexcept { return *this; }
    virtual ~ZTMetaClassInfo();
    [[nodiscard]] virtual std::string_view key() const;
    [[nodiscard]] virtual std::string_view value() const;

    /// False when the key or the value was never set; an empty text counts as set.
    [[nodiscard]] explicit operator bool() const;

private:
    friend struct ZTStaticMetaClassInfo;
    friend struct ZTDynamicMetaClassInfo;
    ZTMetaClassInfo() noexcept {}
};

/// An enumeration that a class declares: names and their values, in the order of declaration.
///
///     for (unsigned int i = 0; i < modes->count(); ++i)
///         box.addEntry(modes->enumerator(i), modes->value(i));
///     if (auto heat = modes->valueOf("Heat"))
///         thermostat.setProperty("mode", *heat);
///
/// `ztEnumeration` of `enumeration.h` finds the one that belongs to a type.
struct ZT_EXPORT ZTMetaEnum {
public:
    ZTMetaEnum(const ZTMetaEnum&) noexcept {}
    ZTMetaEnum& operator=(const ZTMetaEnum&) noexcept { return *this; }
    virtual ~ZTMetaEnum();
    [[nodiscard]] virtual std::string_view name() const;
    [[nodiscard]] virtual unsigned int count() const;
    /// Empty for an index out of range.
    [[nodiscard]] virtual std::string_view enumerator(unsigned int index) const;
    /// -1 for an index out of range, which an enumerator may be as well: compare with `count()`.
    [[nodiscard]] virtual int value(unsigned int index) const;

    /// The type of the values; the invalid type where the class names none, as one made at run
    /// time.
    [[nodiscard]] const ZTMetaType& metaType() const;
    /// Whether a value may be several enumerators together, each of which stands for bits.
    [[nodiscard]] bool isFlags() const;
    /// The value of an enumerator by its name; for flags also of several, "Read|Write", with blanks
    /// around the names or without, and 0 for an empty text.
    [[nodiscard]] std::optional<int> valueOf(std::string_view text) const;
    /// The name of the first enumerator with that value. For flags the names of those that make up
    /// the value, "Read|Write", and an empty text for 0 if no enumerator has it; nothing when a
    /// bit belongs to none.
    [[nodiscard]] std::optional<std::string> nameOf(int value) const;

    // The annotations of the enumeration and of its enumerators, in the order of declaration. Keys
    // may repeat. An index out of range gives an empty view.
    [[nodiscard]] unsigned int infoCount() const;
    [[nodiscard]] std::string_view infoKey(unsigned int index) const;
    [[nodiscard]] std::string_view infoValue(unsigned int index) const;
    [[nodiscard]] unsigned int enumeratorInfoCount(unsigned int enumerator) const;
    [[nodiscard]] std::string_view enumeratorInfoKey(unsigned int enumerator,
                                                     unsigned int index) const;
    [[nodiscard]] std::string_view enumeratorInfoValue(unsigned int enumerator,
                                                       unsigned int index) const;
    // The same by a wider index.
    template <zt::detail::WideIndex Index>
    [[nodiscard]] std::string_view enumerator(Index index) const
    {
        return enumerator(zt::detail::narrowIndex(index));
    }
    template <zt::detail::WideIndex Index>
    [[nodiscard]] int value(Index index) const
    {
        return value(zt::detail::narrowIndex(index));
    }

    [[nodiscard]] explicit operator bool() const;

private:
    friend struct ZTStaticMetaEnum;
    friend struct ZTDynamicMetaEnum;
    ZTMetaEnum() noexcept {}

    [[nodiscard]] unsigned int infoCountOf(int part) const;
    [[nodiscard]] std::string_view infoTextOf(int part, unsigned int index, bool isKey) const;
};

/// A property of a class: a name, a type, and functions that read and write it on an object.
///
///     const ZTMetaProperty* target = thermostat.metaClass()->property("target");
///     target->set(&thermostat, 21.5);
///     double celsius = target->get<double>(&thermostat);
///
/// Whoever knows the object and the name alone calls `ZTBase::property` and `setProperty`.
struct ZT_EXPORT ZTMetaProperty {
public:
    ZTMetaProperty(const ZTMetaProperty&) noexcept {}
    ZTMetaProperty& operator=(const ZTMetaProperty&) noexcept { return *this; }
    virtual ~ZTMetaProperty();
    [[nodiscard]] virtual std::string_view name() const;
    /// What `get` gives and `set` takes; the invalid type where the class names none.
    [[nodiscard]] virtual const ZTMetaType& metaType() const;
    /// The class-wide index of the event that announces a change; -1 when there is none.
    [[nodiscard]] virtual int changeEventIndex() const;
    /// The event itself, to be subscribed to; null when there is none. Raising it is the setter's
    /// part: a property that changes by other means says nothing.
    [[nodiscard]] virtual const ZTMetaInvokable* changeEvent() const;
    [[nodiscard]] virtual bool canGet() const;
    [[nodiscard]] virtual bool canSet() const;
    // The annotations, in the order of declaration: units, ranges, hints for an editor. Keys may
    // repeat. An index out of range gives an empty view.
    [[nodiscard]] virtual unsigned int propInfoCount() const;
    [[nodiscard]] virtual std::string_view propInfoKey(unsigned int index) const;
    [[nodiscard]] virtual std::string_view propInfoValue(unsigned int index) const;
    template <zt::detail::WideIndex Index>
    [[nodiscard]] std::string_view propInfoKey(Index index) const
    {
        return propInfoKey(zt::detail::narrowIndex(index));
    }
    template <zt::detail::WideIndex Index>
    [[nodiscard]] std::string_view propInfoValue(Index index) const
    {
        return propInfoValue(zt::detail::narrowIndex(index));
    }
    /// Calls the getter. An object that is not one of the class is told in the log.
    /// @param object  holds a pointer to the object
    /// @return a copy; an invalid variant when the property has no getter
    [[nodiscard]] virtual ZTVariant get(const ZTVariant& object) const;
    /// Calls the setter; without one nothing happens. What the setter cannot take is told in the
    /// log and leaves the property as it was.
    /// @return what the setter gives; an invalid variant from all that the library makes itself
    virtual ZTVariant set(const ZTVariant& object, const ZTVariant& value) const;

    /// The same with a pointer to an object, and with the value as a `T`; a default value, with a
    /// warning, where the property gives none. Without a `T` it is the variant.
    template <class T, zt::detail::Pointer Object>
    [[nodiscard]] T get(Object object) const
    {
        return ztVariantValue<T>(get(zt::detail::LentVariant(object)));
    }
    template <int = 0, zt::detail::Pointer Object>
    [[nodiscard]] ZTVariant get(Object object) const
    {
        return get(zt::detail::LentVariant(object));
    }
    template <zt::detail::Pointer Object, class T>
    ZTVariant set(Object object, T&& value) const
    {
        if constexpr (zt::detail::VariantValue<T>)
            return set(zt::detail::LentVariant(object),
                       zt::detail::LentCopy<T>(std::forward<T>(value)));
        else
            return set(zt::detail::LentVariant(object), std::as_const(value));
    }

    /// Whether the class was made at run time.
    [[nodiscard]] virtual bool isDynamic() const;

    /// False when the property has no name.
    [[nodiscard]] explicit operator bool() const;

private:
    friend struct ZTStaticMetaProperty;
    friend struct ZTDynamicMetaProperty;
    ZTMetaProperty() noexcept {}
};

/// A method or an event of a class. Both stand in one list with one index space; an event is an
/// invokable that objects can be subscribed to.
///
///     auto* boost = thermostat.metaClass()->invokable<void(int, double)>("boost");
///     bool done = ztVariantValue<bool>(boost->invoke(&thermostat, 30, 0.5));
struct ZT_EXPORT ZTMetaInvokable {
public:
    /// The number of arguments that a call or an event can carry.
    static constexpr unsigned int MaxParamCount = zt::detail::maxParamCount;

    ZTMetaInvokable(const ZTMetaInvokable&) noexcept {}
    ZTMetaInvokable& operator=(const ZTMetaInvokable&) noexcept { return *this; }
    virtual ~ZTMetaInvokable();
    [[nodiscard]] virtual std::string_view name() const;
    [[nodiscard]] virtual bool isConst() const;
    [[nodiscard]] virtual bool isEvent() const;
    /// The type named "void" where nothing is returned; the invalid type where the class names
    /// none.
    [[nodiscard]] virtual const ZTMetaType& returnMetaType() const;
    /// May be more than a call can carry, in a class made at run time.
    [[nodiscard]] virtual unsigned int parameterCount() const;
    [[nodiscard]] virtual ZTAccessSpecifier accessSpecifier() const;
    /// The invalid type for an index out of range.
    [[nodiscard]] virtual const ZTMetaType& parameterMetaType(unsigned int index) const;
    template <zt::detail::WideIndex Index>
    [[nodiscard]] const ZTMetaType& parameterMetaType(Index index) const
    {
        return parameterMetaType(zt::detail::narrowIndex(index));
    }
    /// The class-wide index, which is what `ZTBase::sendEvent` takes; -1 for an invokable that has
    /// left its class.
    [[nodiscard]] virtual int index() const;
    /// Calls a method on the object to which `object` holds a pointer, or raises an event of it.
    ///
    /// Arguments are converted by the function that is called, if at all; what does not fit is
    /// told in the log and arrives as a default value.
    /// @return the method's result; an invalid variant for `void` and when there is no function
    virtual ZTVariant invoke(const ZTVariant& object, const ZTArgumentArray& arguments) const;
    /// Whether the class was made at run time.
    [[nodiscard]] virtual bool isDynamic() const;

    /// False when the invokable has no name.
    [[nodiscard]] explicit operator bool() const;

    // What can be said of parameters, and annotations. None of it goes on a stream with the class.

    /// Empty for a parameter without a name, and for an index out of range.
    [[nodiscard]] std::string_view parameterName(unsigned int index) const;
    /// The argument that stands in where a call gives too few; null where there is none. Of the
    /// type of the parameter in a declared class.
    [[nodiscard]] const ZTVariant* defaultArgument(unsigned int index) const;
    /// How many parameters, the first ones, have no default argument.
    [[nodiscard]] unsigned int requiredArgumentCount() const;
    // The annotations of the invokable and of its parameters, in the order of declaration. Keys may
    // repeat. An index out of range gives an empty view.
    [[nodiscard]] unsigned int infoCount() const;
    [[nodiscard]] std::string_view infoKey(unsigned int index) const;
    [[nodiscard]] std::string_view infoValue(unsigned int index) const;
    [[nodiscard]] unsigned int parameterInfoCount(unsigned int parameter) const;
    [[nodiscard]] std::string_view parameterInfoKey(unsigned int parameter,
                                                    unsigned int index) const;
    [[nodiscard]] std::string_view parameterInfoValue(unsigned int parameter,
                                                      unsigned int index) const;

    /// Calls without arguments. Default arguments take their places. An invokable that has
    /// parameters without one is called all the same, with invalid variants, after a warning.
    ZTVariant invoke(const ZTVariant& object) const;

    /// Packs written arguments and calls; `object` is a pointer to an object. Too few arguments
    /// are filled up, or told, as above.
    template <zt::detail::Pointer Object, class... Arguments>
        requires(!(sizeof...(Arguments) == 1 &&
                   (std::is_same_v<std::remove_cvref_t<Arguments>, ZTArgumentArray> && ...)))
    ZTVariant invoke(Object object, Arguments&&... arguments)
    const
    {
        static_assert(sizeof...(Arguments) <= MaxParamCount,
                      "A call carries at most ZTMetaInvokable::MaxParamCount arguments.");
        if constexpr (sizeof...(Arguments) == 0) {
            return invoke(zt::detail::LentVariant(object));
        } else {
            const bool areFewer = sizeof...(Arguments) < parameterCount();
            if (areFewer) [[unlikely]]
                warnOfFewerThanRequired(sizeof...(Arguments));
            // Copies: what is called may change what the arguments refer to.
            zt::detail::LentCopies<Arguments...> copies(std::forward<Arguments>(arguments)...);
            if (areFewer) [[unlikely]]
                fillUp(copies.lent(), sizeof...(Arguments));
            return invoke(zt::detail::LentVariant(object), copies);
        }
    }

private:
    friend struct ZTStaticMetaInvokable;
    friend struct ZTDynamicMetaInvokable;
    ZTMetaInvokable() noexcept {}

    void warnOfFewer() const;
    void warnOfFewerThanRequired(unsigned int given) const;
    /// Shows the default arguments of the parameters behind those that are given.
    void fillUp(zt::detail::LentArguments& arguments, unsigned int given) const;
    [[nodiscard]] unsigned int infoCountOf(int part) const;
    [[nodiscard]] std::string_view infoTextOf(int part, unsigned int index, bool isKey) const;
};

/// A class: its name, its super class, and its members, to be listed by index or found by name.
///
///     const ZTMetaClass& thermostat = Thermostat::typeMetaClass();   // or object->metaClass()
///     for (unsigned int i = 0; i < thermostat.propertyCount(); ++i)
///         std::cout << thermostat.property(i)->name() << "\n";      // inherited ones first
///
/// Cost: by index a step for each level of inheritance; a property by name is one search in a
/// declared class and in a finished one, and a walk in a builder's; an invokable by signature is a
/// search for each level. Keep what is asked for often: descriptors stay where they are.
struct ZT_EXPORT ZTMetaClass {
public:
    ZTMetaClass(const ZTMetaClass&) noexcept {}
    ZTMetaClass& operator=(const ZTMetaClass&) noexcept { return *this; }
    virtual ~ZTMetaClass();
    /// Null at the root, and for a class made at run time that was given none.
    [[nodiscard]] virtual const ZTMetaClass* superClass() const;
    /// For a declared class the spelled name of its type, "struct Thermostat".
    [[nodiscard]] virtual std::string_view typeName() const;
    /// The type of a pointer to the class; the invalid type for a class made at run time.
    [[nodiscard]] virtual const ZTMetaType& metaType() const;
    /// Whether the class was made at run time.
    [[nodiscard]] virtual bool isDynamic() const;
    // How many members of a kind are inherited, and how many there are with those.
    [[nodiscard]] virtual unsigned int classInfoOffset() const;
    [[nodiscard]] virtual unsigned int classInfoCount() const;
    [[nodiscard]] virtual unsigned int enumOffset() const;
    [[nodiscard]] virtual unsigned int enumCount() const;
    [[nodiscard]] virtual unsigned int propertyOffset() const;
    [[nodiscard]] virtual unsigned int propertyCount() const;
    [[nodiscard]] virtual unsigned int invokableOffset() const;
    [[nodiscard]] virtual unsigned int invokableCount() const;
    // By key and by name a class's own member hides an inherited one, and of its own the first one
    // counts. By class-wide index nothing is hidden.
    [[nodiscard]] virtual const ZTMetaClassInfo* classInfo(std::string_view key) const;
    [[nodiscard]] virtual const ZTMetaClassInfo* classInfo(unsigned int index) const;
    [[nodiscard]] virtual const ZTMetaEnum* metaEnum(unsigned int index) const;
    [[nodiscard]] virtual const ZTMetaProperty* property(unsigned int index) const;
    [[nodiscard]] virtual const ZTMetaProperty* property(std::string_view name) const;
    [[nodiscard]] virtual const ZTMetaInvokable* invokable(unsigned int index) const;

protected:
    [[nodiscard]] virtual int indexOfInvokable(std::string_view name, bool isConst,
                                               const std::type_index& signature) const;

public:
    /// The index of the invokable that a function implements.
    /// @param function  for a declared class the address of a variable that holds the pointer to
    ///                  the member function; for a class made at run time the key that was given
    ///                  with the function
    [[nodiscard]] virtual int indexOfInvokable(void* function) const;
    /// A word that a host may leave at the class, for a bridge that keeps something of its own for
    /// each class. The library neither reads nor frees it; null at first.
    [[nodiscard]] virtual void* userData() const;
    virtual void setUserData(void* data);
    /// The same on a class as everybody sees it: the word is the bridge's, and not a part of what
    /// the class tells.
    void setUserData(void* data) const { const_cast<ZTMetaClass*>(this)->setUserData(data); }

    /// False when the class was given no name; an empty name counts as one.
    [[nodiscard]] explicit operator bool() const;

    /// The first invokable, from the root on, with that name, constness and parameter types: an
    /// inherited one comes before a redeclaration. Types are compared by identity.
    [[nodiscard]] int indexOfInvokable(std::string_view name, bool isConst,
                                       const std::vector<const ZTMetaType*>& parameterTypes) const;
    [[nodiscard]] const ZTMetaInvokable*
    invokable(std::string_view name, bool isConst,
              const std::vector<const ZTMetaType*>& parameterTypes) const;
    [[nodiscard]] const ZTMetaInvokable* invokable(void* function) const;
    /// The same as with an unsigned index; null for a negative one.
    [[nodiscard]] const ZTMetaInvokable* invokable(int index) const
    {
        return index < 0 ? nullptr : invokable(static_cast<unsigned int>(index));
    }
    // The same by a wider index.
    template <zt::detail::WideIndex Index>
    [[nodiscard]] const ZTMetaClassInfo* classInfo(Index index) const
    {
        return classInfo(zt::detail::narrowIndex(index));
    }
    template <zt::detail::WideIndex Index>
    [[nodiscard]] const ZTMetaEnum* metaEnum(Index index) const
    {
        return metaEnum(zt::detail::narrowIndex(index));
    }
    template <zt::detail::WideIndex Index>
    [[nodiscard]] const ZTMetaProperty* property(Index index) const
    {
        return property(zt::detail::narrowIndex(index));
    }
    template <zt::detail::WideIndex Index>
    [[nodiscard]] const ZTMetaInvokable* invokable(Index index) const
    {
        return invokable(zt::detail::narrowIndex(index));
    }

    /// The invokable with that name and the parameters of `Signature`, written as a function that
    /// returns nothing: `indexOfInvokable<void(const std::string&)>("rename")`. The most derived
    /// class is asked first. References and `const` count as they are declared; a class made at
    /// run time has no written parameters, so there the first one with the name is taken.
    template <class Signature>
    [[nodiscard]] int indexOfInvokable(std::string_view name, bool isConst = false) const
    {
        return indexOfInvokable(name, isConst, zt::detail::SignatureOf<Signature>::key());
    }
    template <class Signature>
    [[nodiscard]] const ZTMetaInvokable* invokable(std::string_view name,
                                                   bool isConst = false) const
    {
        return invokable(indexOfInvokable<Signature>(name, isConst));
    }

    /// Whether `other` is this class or one of its super classes; descriptors are compared by
    /// address. A class made at run time on either side is walked like any other, after a warning.
    [[nodiscard]] bool isDerivedFrom(const ZTMetaClass* other) const;

private:
    friend struct ZTStaticMetaClass;
    friend struct ZTDynamicMetaClass;
    ZTMetaClass() noexcept {}
};
