#pragma once

#include <zintar/base.h>
#include <zintar/detail/declare/members.h>
// Behind the members, so that a mistake in one of them is few includes away.
#include <zintar/detail/declare/classchecks.h>
#include <zintar/detail/declare/declaredclass.h>
#include <zintar/dynamicbase.h>

/// @file
/// The kit for declaring classes: one line in the class, one list of its members, one line in the
/// file that implements it.
///
///     // thermostat.h
///     class Thermostat : public ZTBase {
///         ZT_OBJECT(Thermostat, ZTBase)
///     public:
///         double target() const;
///         void setTarget(double celsius);
///         bool boost(int minutes, double level);
///         void targetChanged(double celsius) { sendEvent<&Self::targetChanged>(celsius); }
///         enum class Mode { Off, Heat, Cool };
///
///     private:
///         static constexpr auto members()
///         {
///             return zt::members(
///                 zt::info("category", "climate"),
///                 zt::enumeration<Mode>(zt::enumerators<Mode::Off, Mode::Heat, Mode::Cool>),
///                 zt::event<&Self::targetChanged>(),
///                 zt::property<&Self::target, &Self::setTarget>()
///                     .notify<&Self::targetChanged>()
///                     .info("unit", "celsius"),
///                 zt::method<&Self::boost>());
///         }
///     };
///
///     // thermostat.cpp
///     ZT_CLASS(Thermostat)
///
/// Names come from the members; `.as("name")` gives another, for overloads or where stored data
/// must survive a rename. Private members may be listed, and data members may be properties.
/// Overloads are told apart by a cast. A class that lists nothing returns `zt::members()`.
///
/// `ztCreate` (create.h) makes objects of a declared class by a public constructor `Thermostat()`
/// or `Thermostat(ZTBase* parent)`; `zt::constructor<double>()` in the list adds
/// `Thermostat(double)`.

// How a declaration becomes a class; all of it is in detail/declare/.
//
//   what is listed      members.h makes one entry (entries.h) for each line, with a record
//                       (record.h) in it and with the names of names.h and enumerators.h; list.h
//                       is all of them, and declaredlist.h finds the list that belongs to a class.
//   the checks          memberchecks.h and classchecks.h find the mistakes; members.h and
//                       ZT_DETAIL_CHECK_CLASS tell them.
//   the functions       functions.h has those behind the records, which take an object and
//                       arguments as variants; constructors.h has those that make an object.
//   the table           declaredclass.h hands the list to table.h, which is compiled in the
//                       library and makes the tables of staticmetaclass.h from the records.

#if defined(__clang__)
#    define ZT_DETAIL_NO_OVERRIDE_WARNING                                                          \
        _Pragma("clang diagnostic ignored \"-Winconsistent-missing-override\"")                    \
            _Pragma("clang diagnostic ignored \"-Wsuggest-override\"")
#else
#    define ZT_DETAIL_NO_OVERRIDE_WARNING _Pragma("GCC diagnostic ignored \"-Wsuggest-override\"")
#endif

/// The first line of an object class: `ZT_OBJECT(Thermostat, ZTBase)`. It names the class `Self`
/// and declares its descriptor; what follows is private, as in a class that starts without it.
// Without `override`: below ZTDynamicBase it is baseMetaClass() that overrides, elsewhere it is
// not.
#define ZT_OBJECT(Class, Super)                                                                    \
public:                                                                                            \
    using Self = Class;                                                                            \
    using ZtSelf = Class;                                                                          \
    using ZtSuper = Super;                                                                         \
    static_assert(::zt::detail::canBeSuperClass<Super>(),                                          \
                  "ZT_OBJECT: the super class of an object class must be ZTBase or derived from "  \
                  "it.");                                                                          \
    _Pragma("GCC diagnostic push") ZT_DETAIL_NO_OVERRIDE_WARNING                                   \
        [[nodiscard, maybe_unused]] const ZTMetaClass*                                             \
        metaClass() const;                                                                         \
    [[nodiscard, maybe_unused]] const ZTMetaClass* baseMetaClass() const;                          \
    _Pragma("GCC diagnostic pop") [[nodiscard]] static const ZTMetaClass& typeMetaClass();         \
                                                                                                   \
private:                                                                                           \
    friend struct ::zt::detail::ClassAccess;                                                       \
    [[maybe_unused]] friend constexpr void ztObjectClass(::zt::detail::ObjectClassTag<Class>) {}   \
    static ::zt::detail::ClassTable& ztTable();

#define ZT_DETAIL_JOIN(a, b) a##b
#define ZT_DETAIL_UNIQUE(name, number) ZT_DETAIL_JOIN(name, number)

// Here, and not in a template, so that the message begins with the line of the host.
#define ZT_DETAIL_CHECK_CLASS(...)                                                                 \
    static_assert(::zt::detail::lacks<__VA_ARGS__, ::zt::detail::ClassFault::NoObjectLine>,        \
                  "ZT_CLASS: the class has no ZT_OBJECT of its own.");                             \
    static_assert(::zt::detail::lacks<__VA_ARGS__, ::zt::detail::ClassFault::NoSuperClass>,        \
                  "ZT_OBJECT names a class as super class that the class does not derive "         \
                  "from.");                                                                        \
    static_assert(::zt::detail::lacks<__VA_ARGS__, ::zt::detail::ClassFault::Inheritance>,         \
                  "An object class derives from its super class publicly, once and not "           \
                  "virtually.");                                                                   \
    static_assert(::zt::detail::lacks<__VA_ARGS__, ::zt::detail::ClassFault::ClassBetween>,        \
                  "ZT_OBJECT: the class derives from an object class nearer than the one "         \
                  "it names.");                                                                    \
    static_assert(::zt::detail::lacks<__VA_ARGS__, ::zt::detail::ClassFault::FirstBase>,           \
                  "ZTBase must be the first base of an object class that has virtual "             \
                  "functions.");                                                                   \
    static_assert(::zt::detail::lacks<__VA_ARGS__, ::zt::detail::ClassFault::NoMembers>,           \
                  "The class lists its members in `static constexpr auto members()`; one "         \
                  "that lists none returns zt::members().");                                       \
    static_assert(::zt::detail::lacks<__VA_ARGS__, ::zt::detail::ClassFault::InheritedMembers>,    \
                  "The class has no members() of its own and would list those of its "             \
                  "super class again; one that lists none returns zt::members().");                \
    static_assert(::zt::detail::lacks<__VA_ARGS__, ::zt::detail::ClassFault::MemberCall>,          \
                  "members() must be static and constexpr, and return what zt::members "           \
                  "gives.");                                                                       \
    static_assert(::zt::detail::lacks<__VA_ARGS__, ::zt::detail::ClassFault::ListedTwice>,         \
                  "zt::members: a member is listed twice, or two properties or "                   \
                  "enumerations have one name. Instances of one template need names of "           \
                  "their own, by .as(\"name\").");                                                 \
    static_assert(::zt::detail::lacks<__VA_ARGS__, ::zt::detail::ClassFault::Notify>,              \
                  "zt::members: a property's notify<...>() names no event of the class or"         \
                  " its super classes.");                                                          \
    static_assert(::zt::detail::lacks<__VA_ARGS__, ::zt::detail::ClassFault::Foreign>,             \
                  "zt::members: a member belongs to a class that is neither an object class nor "  \
                  "a public base of this one.");                                                   \
    static_assert(::zt::detail::lacks<__VA_ARGS__, ::zt::detail::ClassFault::Enumerator>,          \
                  "zt::members: what is said of an enumerator names none of the enumeration, "     \
                  "or gives it the name of another.");                                             \
    static_assert(::zt::detail::lacks<__VA_ARGS__, ::zt::detail::ClassFault::DefaultValue>,        \
                  "zt::members: a default value is outside of what its parameter can hold.");      \
    static_assert(::zt::detail::lacks<__VA_ARGS__, ::zt::detail::ClassFault::Constructor>,         \
                  "zt::constructor: the class is abstract, or has no public constructor "          \
                  "with these parameters.");

// The class of which `ZT_CLASS` is: `Lamp` as it stands, and of `Box, int` an instance.
#define ZT_DETAIL_CLASS(Class, ...) Class __VA_OPT__(<__VA_ARGS__>)
#define ZT_DETAIL_CLASS_HEAD(Class, ...) __VA_OPT__(template <>)
// An instance is told to be special before anything asks for its functions.
#define ZT_DETAIL_DECLARE_INSTANCE(Class, ...)                                                     \
    __VA_OPT__(template <>::zt::detail::ClassTable& Class<__VA_ARGS__>::ztTable(); template <>     \
               [[maybe_unused]] const ZTMetaClass& Class<__VA_ARGS__>::typeMetaClass();            \
               template <> [[maybe_unused]] const ZTMetaClass* Class<__VA_ARGS__>::metaClass()     \
                   const;                                                                          \
               template <> [[maybe_unused]] const ZTMetaClass* Class<__VA_ARGS__>::baseMetaClass() \
                   const;)

/// Defines the descriptor of a class, once, in the file that implements the class: in the namespace
/// of the class, or outside with the qualified name. The class and its pointer types are registered
/// when that file's program or plugin is loaded. A plugin that declares classes stays loaded for
/// the life of the process.
///
/// An instance of a class template is given as the template and its arguments, before anything uses
/// its class: `ZT_CLASS(Box, int)` for `Box<int>`.
#define ZT_CLASS(...)                                                                              \
    ZT_DETAIL_DECLARE_INSTANCE(__VA_ARGS__)                                                        \
    ZT_DETAIL_CHECK_CLASS(ZT_DETAIL_CLASS(__VA_ARGS__))                                            \
    ZT_DETAIL_CLASS_HEAD(__VA_ARGS__)                                                              \
    ::zt::detail::ClassTable& ZT_DETAIL_CLASS(__VA_ARGS__)::ztTable()                              \
    {                                                                                              \
        return ::zt::detail::declaredTable<ZT_DETAIL_CLASS(__VA_ARGS__)>();                        \
    }                                                                                              \
    ZT_DETAIL_CLASS_HEAD(__VA_ARGS__)                                                              \
    const ZTMetaClass& ZT_DETAIL_CLASS(__VA_ARGS__)::typeMetaClass()                               \
    {                                                                                              \
        return ::zt::detail::declaredClass<ZT_DETAIL_CLASS(__VA_ARGS__)>();                        \
    }                                                                                              \
    ZT_DETAIL_CLASS_HEAD(__VA_ARGS__)                                                              \
    const ZTMetaClass* ZT_DETAIL_CLASS(__VA_ARGS__)::metaClass() const                             \
    {                                                                                              \
        return ::zt::detail::classOfObject(*this);                                                 \
    }                                                                                              \
    ZT_DETAIL_CLASS_HEAD(__VA_ARGS__)                                                              \
    const ZTMetaClass* ZT_DETAIL_CLASS(__VA_ARGS__)::baseMetaClass() const                         \
    {                                                                                              \
        return &typeMetaClass();                                                                   \
    }                                                                                              \
    [[maybe_unused]] static const bool ZT_DETAIL_UNIQUE(ztClassIsReady, __COUNTER__) =             \
        ZT_DETAIL_CLASS(__VA_ARGS__)::typeMetaClass().isDynamic();

// `using enum`, so that the enumerators are written without their enumeration.
#define ZT_DETAIL_ENUM(kind, Enum, ...)                                                            \
    [[maybe_unused]] constexpr auto ztDeclaredEnumeration(::zt::detail::EnumerationTag<Enum>)      \
    {                                                                                              \
        using enum Enum;                                                                           \
        return ::zt::kind<Enum>(::zt::enumerators<__VA_ARGS__>);                                   \
    }                                                                                              \
    [[maybe_unused]] static const bool ZT_DETAIL_UNIQUE(ztEnumIsReady, __COUNTER__) =              \
        ::zt::detail::LoneEnumeration<Enum>::publish();

/// Declares an enumeration of a namespace, in that namespace: `ZT_ENUM(Mode, Off, Heat, Cool)`. Any
/// number of classes list it then by `zt::enumeration<Mode>()`. Its type is registered when the
/// program or plugin is loaded, and knows the enumeration though no class lists it.
#define ZT_ENUM(Enum, ...) ZT_DETAIL_ENUM(enumeration, Enum, __VA_ARGS__)
/// The same of one whose values may be several enumerators together.
#define ZT_FLAGS(Enum, ...) ZT_DETAIL_ENUM(flags, Enum, __VA_ARGS__)
