#pragma once

#include <zintar/base.h>
#include <zintar/detail/calls.h>
#include <zintar/detail/classtable.h>
#include <zintar/dynamicbase.h>

#include <array>
#include <cstddef>
#include <string_view>
#include <type_traits>
#include <utility>

/// @file
/// What `zt::members` is made of: each member becomes one constant record, and the few functions
/// that need its types.

namespace zt::detail
{
template <auto Member>
ZTVariant invokeMember(const ZTVariant& object, const ZTArgumentArray& arguments)
{
    using Traits = MemberTraits<decltype(Member)>;
    auto* self = objectIn<typename Traits::Object>(object);
    if (!self)
        return {};
    return callBoxed<typename Traits::Result>(
        [self](auto&&... values) -> decltype(auto) {
            return (self->*Member)(std::forward<decltype(values)>(values)...);
        },
        arguments, typename Traits::Params{});
}

template <auto Member>
ZTVariant getProperty(const ZTVariant& object)
{
    using Traits = MemberTraits<decltype(Member)>;
    auto* self = objectIn<const typename Traits::Class>(object);
    if (!self)
        return {};
    if constexpr (Traits::isFunction)
        return boxResult((self->*Member)());
    else
        return boxResult(self->*Member);
}

template <auto Member, class P>
ZTVariant callSetter(const ZTVariant& object, const ZTVariant& value, Parameters<P>)
{
    using Class = typename MemberTraits<decltype(Member)>::Class;
    return storeUnboxed<Class, P>(object, value, [](Class& self, const Held<P>& held) {
        (void)(self.*Member)(passAs<P>(held));
    });
}

template <auto Member>
ZTVariant setByFunction(const ZTVariant& object, const ZTVariant& value)
{
    return callSetter<Member>(object, value, typename MemberTraits<decltype(Member)>::Params{});
}

template <auto Member>
ZTVariant setField(const ZTVariant& object, const ZTVariant& value)
{
    using Traits = MemberTraits<decltype(Member)>;
    using Class = typename Traits::Class;
    using Field = typename Traits::Result;
    return storeUnboxed<Class, Field>(object, value, [](Class& self, const Held<Field>& held) {
        self.*Member = static_cast<Field>(held);
    });
}

template <class Member>
struct SetterParameter;
template <class R, class C, class P>
struct SetterParameter<R (C::*)(P)> {
    using type = P;
};
template <class R, class C, class P>
struct SetterParameter<R (C::*)(P) noexcept> {
    using type = P;
};

/// Whether `Setter` is a member function of one parameter that takes a `Value`.
template <class Value, class Setter>
constexpr bool takesValue()
{
    if constexpr (requires { typename SetterParameter<Setter>::type; })
        return std::is_same_v<Held<typename SetterParameter<Setter>::type>, Held<Value>>;
    else
        return false;
}

/// The annotations of one list, behind the members of that list.
template <std::size_t InfoCount>
struct ListedMember {
    MemberRecord record;
    std::array<InfoText, InfoCount> infos{};

    static constexpr std::size_t infoCount = InfoCount;
};

/// A method or an event in the list.
struct InvokableEntry : ListedMember<0> {
    /// Gives the member another name than its own.
    constexpr InvokableEntry as(std::string_view name) const
    {
        InvokableEntry named = *this;
        named.record.name = name;
        return named;
    }
    /// Public where nothing else is said: the compiler does not tell.
    constexpr InvokableEntry access(ZTAccessSpecifier specifier) const
    {
        InvokableEntry changed = *this;
        changed.record.access = specifier;
        return changed;
    }
};

struct EnumerationEntry : ListedMember<0> {
    constexpr EnumerationEntry as(std::string_view name) const
    {
        EnumerationEntry named = *this;
        named.record.name = name;
        return named;
    }
};

template <std::size_t InfoCount>
struct PropertyEntry : ListedMember<InfoCount> {
    constexpr PropertyEntry as(std::string_view name) const
    {
        PropertyEntry named = *this;
        named.record.name = name;
        return named;
    }

    /// Names the event that announces a change of the property. Raising it is the setter's part.
    template <auto Event>
    constexpr PropertyEntry notify() const
    {
        PropertyEntry linked = *this;
        linked.record.changeEvent = memberIdentity<Event>();
        linked.record.changeEventKey = &memberVariable<Event>;
        return linked;
    }

    /// Adds an annotation. Keys may repeat.
    constexpr PropertyEntry<InfoCount + 1> info(std::string_view key, std::string_view value) const
    {
        PropertyEntry<InfoCount + 1> longer;
        longer.record = this->record;
        longer.record.count = InfoCount + 1;
        for (std::size_t i = 0; i < InfoCount; ++i)
            longer.infos[i] = this->infos[i];
        longer.infos[InfoCount] = {key, value};
        return longer;
    }
};

/// The list that `zt::members` gives.
template <std::size_t MemberCount, std::size_t InfoCount>
struct MemberList {
    std::array<MemberRecord, MemberCount> members{};
    std::array<InfoText, InfoCount> infos{};

    template <class Entry>
    constexpr void add(const Entry& entry, std::size_t& member, std::size_t& info)
    {
        members[member] = entry.record;
        members[member].firstInfo = info;
        ++member;
        for (const InfoText& text : entry.infos)
            infos[info++] = text;
    }

    constexpr bool isListedTwice(std::size_t position) const
    {
        const MemberRecord& member = members[position];
        bool hasName =
            member.kind == MemberKind::Property || member.kind == MemberKind::Enumeration;
        bool isMember = member.kind != MemberKind::Info && member.kind != MemberKind::Enumeration;
        for (std::size_t i = 0; i < position; ++i) {
            const MemberRecord& other = members[i];
            if (other.kind == member.kind && ((hasName && member.name == other.name) ||
                                              (isMember && member.identity == other.identity)))
                return true;
        }
        return false;
    }

    constexpr bool hasMemberListedTwice() const
    {
        for (std::size_t i = 0; i < MemberCount; ++i)
            if (isListedTwice(i))
                return true;
        return false;
    }

    constexpr bool hasEvent(MemberIdentity event) const
    {
        for (const MemberRecord& member : members)
            if (member.kind == MemberKind::Event && member.identity == event)
                return true;
        return false;
    }
};

/// The way to what a declared class keeps private.
struct ClassAccess {
    template <class C>
    static constexpr auto members()
    {
        return C::members();
    }
    template <class C>
    static ClassTable& table()
    {
        return C::ztTable();
    }

    /// Where the `ZTBase` in an object of class `C` begins, in words.
    template <class C>
    static constexpr std::size_t offsetOfBase()
    {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
        return __builtin_offsetof(C, priv) - __builtin_offsetof(ZTBase, priv);
#pragma GCC diagnostic pop
    }
};

/// What the kit knows of a declared class; its super class is `void` for the root.
template <class C>
struct Declared {
    using Super = typename C::ZtSuper;
    static constexpr auto members() { return ClassAccess::members<C>(); }
};

/// Whether the descriptor of `C` comes from the kit, and not from a table that the host laid out.
template <class C>
constexpr bool isDeclared()
{
    if constexpr (std::is_same_v<C, ZTBase> || std::is_same_v<C, ZTDynamicBase>)
        return true;
    else if constexpr (requires { typename C::Self; })
        return &C::typeMetaClass == &C::Self::typeMetaClass;
    else
        return false;
}
} // namespace zt::detail

namespace zt
{
/// An annotation of the class.
constexpr detail::ListedMember<0> info(std::string_view key, std::string_view value)
{
    detail::ListedMember<0> entry;
    entry.record.kind = detail::MemberKind::Info;
    entry.record.name = key;
    entry.record.value = value;
    return entry;
}

namespace detail
{
template <auto... Values>
struct Enumerators {
    static constexpr std::array<std::string_view, sizeof...(Values) + 1> names{
        valueName<Values>()...};
    static constexpr std::array<int, sizeof...(Values) + 1> values{static_cast<int>(Values)...};
};

template <class Enum>
constexpr std::string_view bareName()
{
    std::string_view name = QualifiedName<Enum>::text;
    std::size_t last = name.rfind(':');
    return last == std::string_view::npos ? name : name.substr(last + 1);
}
} // namespace detail

/// The enumerators of an enumeration, by their values.
template <auto... Values>
inline constexpr detail::Enumerators<Values...> enumerators{};

/// An enumeration: `zt::enumeration<Mode>(zt::enumerators<Mode::Off, Mode::Heat>)`.
template <class Enum, auto... Values>
constexpr detail::EnumerationEntry enumeration(detail::Enumerators<Values...>)
{
    static_assert(std::is_enum_v<Enum>, "zt::enumeration<E>: E is no enumeration.");
    static_assert((std::is_same_v<std::remove_cv_t<decltype(Values)>, Enum> && ...),
                  "zt::enumeration<E>: an enumerator belongs to another enumeration.");
    static_assert(((static_cast<Enum>(static_cast<int>(Values)) == Values) && ...),
                  "zt::enumeration<E>: the value of an enumerator does not fit into an int.");
    using List = detail::Enumerators<Values...>;
    detail::EnumerationEntry entry;
    entry.record.kind = detail::MemberKind::Enumeration;
    entry.record.name = detail::bareName<Enum>();
    entry.record.enumerators = List::names.data();
    entry.record.values = List::values.data();
    entry.record.count = sizeof...(Values);
    return entry;
}

namespace detail
{
template <auto Member>
constexpr InvokableEntry invokableEntry(MemberKind kind)
{
    using Traits = MemberTraits<decltype(Member)>;
    using Params = typename Traits::Params;
    static_assert(isObjectClass<typename Traits::Class>,
                  "The member belongs to a class that is not an object class.");
    static_assert(Params::count <= maxParamCount,
                  "A method or an event has at most ZTMetaInvokable::MaxParamCount parameters.");
    static_assert(Params::plain,
                  "The parameters of a method or an event are values or references to const.");
    InvokableEntry entry;
    entry.record.kind = kind;
    entry.record.name = valueName<Member>();
    entry.record.identity = memberIdentity<Member>();
    entry.record.key = &memberVariable<Member>;
    entry.record.type = &resultType<typename Traits::Result>;
    entry.record.parameterTypes = Params::types;
    entry.record.count = Params::count;
    entry.record.signature = &Params::signature;
    if constexpr (Params::count <= maxParamCount && Params::plain)
        entry.record.function = &invokeMember<Member>;
    entry.record.isConst = Traits::isConst;
    return entry;
}
} // namespace detail

/// An event: a member function that raises itself with `sendEvent<&Self::...>(...)`.
template <auto Member>
constexpr detail::InvokableEntry event()
{
    static_assert(std::is_member_function_pointer_v<decltype(Member)>,
                  "zt::event<&Self::member>: the member is no member function.");
    static_assert(std::is_void_v<typename detail::MemberTraits<decltype(Member)>::Result>,
                  "An event returns nothing.");
    return detail::invokableEntry<Member>(detail::MemberKind::Event);
}

/// A method: a member function that can be called by name.
template <auto Member>
constexpr detail::InvokableEntry method()
{
    static_assert(std::is_member_function_pointer_v<decltype(Member)>,
                  "zt::method<&Self::member>: the member is no member function.");
    return detail::invokableEntry<Member>(detail::MemberKind::Method);
}

/// A property: a const getter and a setter, a getter alone for one that can only be read, or a
/// data member.
template <auto Getter, auto Setter = nullptr>
constexpr detail::PropertyEntry<0> property()
{
    using Traits = detail::MemberTraits<decltype(Getter)>;
    using Result = typename Traits::Result;
    static_assert(detail::isObjectClass<typename Traits::Class>,
                  "The member belongs to a class that is not an object class.");
    detail::PropertyEntry<0> entry;
    entry.record.kind = detail::MemberKind::Property;
    entry.record.name = detail::valueName<Getter>();
    entry.record.identity = detail::memberIdentity<Getter>();
    entry.record.key = &detail::memberVariable<Getter>;
    entry.record.type = &detail::resultType<Result>;
    constexpr bool readable = [] {
        if constexpr (Traits::isFunction)
            return Traits::isConst && Traits::Params::count == 0 && !std::is_void_v<Result>;
        else
            return true;
    }();
    static_assert(readable, "The getter of a property is a const member function without "
                            "parameters, or a data member.");
    if constexpr (readable)
        entry.record.getter = &detail::getProperty<Getter>;
    if constexpr (!std::is_null_pointer_v<decltype(Setter)>) {
        constexpr bool fits = detail::takesValue<Result, decltype(Setter)>();
        static_assert(fits, "The setter of a property takes what the getter gives, and nothing "
                            "else.");
        if constexpr (fits)
            entry.record.setter = &detail::setByFunction<Setter>;
    } else if constexpr (!Traits::isFunction && !std::is_const_v<Result>) {
        entry.record.setter = &detail::setField<Getter>;
    }
    return entry;
}

/// The members of a class, in the order in which they are listed.
template <class... Entries>
constexpr auto members(const Entries&... entries)
{
    detail::MemberList<sizeof...(Entries), (Entries::infoCount + ... + 0)> list;
    [[maybe_unused]] std::size_t member = 0;
    [[maybe_unused]] std::size_t info = 0;
    (list.add(entries, member, info), ...);
    return list;
}
} // namespace zt

namespace zt::detail
{
template <>
struct Declared<ZTBase> {
    using Super = void;
    static constexpr auto members()
    {
        return zt::members(zt::event<&ZTBase::destroyed>(),
                           zt::event<&ZTBase::dynamicPropertyChanged>(),
                           zt::event<&ZTBase::childAdded>(), zt::event<&ZTBase::childRemoved>());
    }
};

template <>
struct Declared<ZTDynamicBase> {
    using Super = ZTBase;
    static constexpr auto members()
    {
        return zt::members(zt::event<&ZTDynamicBase::metaClassInitialized>());
    }
};

/// Whether the class or one of its super classes lists the event.
template <class C>
constexpr bool listsEvent(MemberIdentity event)
{
    if constexpr (!isDeclared<C>())
        return true; // a table laid out by the host cannot be asked while compiling
    else if constexpr (std::is_void_v<typename Declared<C>::Super>)
        return Declared<C>::members().hasEvent(event);
    else
        return Declared<C>::members().hasEvent(event) ||
               listsEvent<typename Declared<C>::Super>(event);
}

template <class C>
constexpr bool notifiesEventsOnly()
{
    for (const MemberRecord& member : Declared<C>::members().members)
        if (member.changeEvent.isSet() && !listsEvent<C>(member.changeEvent))
            return false;
    return true;
}

template <class C>
struct DeclaredHere {
    static int indexOf(const void* variable)
    {
        static constexpr auto list = Declared<C>::members();
        int position = positionInList(list.members.data(), list.members.size(), variable);
        unsigned int offset = C::typeMetaClass().invokableOffset();
        return position < 0 ? -1 : position + static_cast<int>(offset);
    }
};

template <class C>
const ZTMetaClass& linkedClass()
{
    if constexpr (isDeclared<C>())
        return ClassAccess::table<C>().link();
    else
        return C::typeMetaClass();
}

template <class C>
const ZTMetaClass& completeClass()
{
    return C::typeMetaClass();
}

template <class C>
const ZTMetaType& registerPointers(const ZTMetaClass* metaClass)
{
    const ZTMetaType& type = registerType<C*>(metaClass);
    registerType<const C*>(metaClass);
    return type;
}

template <class C>
ClassDeclaration classDeclaration()
{
    static constexpr auto list = Declared<C>::members();
    static_assert(!list.hasMemberListedTwice(),
                  "zt::members: a member is listed twice, or two properties or enumerations have "
                  "one name.");
    static_assert(notifiesEventsOnly<C>(),
                  "zt::members: a property's notify<...>() names no event of the class or its "
                  "super classes.");
    static_assert(ClassAccess::offsetOfBase<C>() == 0,
                  "ZTBase must be the first base of an object class that has virtual functions.");
    ClassDeclaration declaration;
    declaration.typeName = ztTypeName<C>();
    declaration.members = list.members.data();
    declaration.memberCount = list.members.size();
    declaration.infos = list.infos.data();
    using Super = typename Declared<C>::Super;
    if constexpr (!std::is_void_v<Super>) {
        static_assert(std::is_base_of_v<Super, C>,
                      "ZT_OBJECT names a class as super class that the class does not derive "
                      "from.");
        declaration.linkedSuperClass = &linkedClass<Super>;
        declaration.superClass = &completeClass<Super>;
    }
    declaration.registerPointers = &registerPointers<C>;
    return declaration;
}

/// The one table of a declared class; instantiated in the file of its `ZT_CLASS` alone.
template <class C>
ClassTable& declaredTable()
{
    static ClassTable table(classDeclaration<C>());
    return table;
}

template <class C>
const ZTMetaClass* classOfObject(const C& object)
{
    static_assert(std::is_same_v<typename C::Self, C>,
                  "ZT_CLASS: the class has no ZT_OBJECT of its own.");
    if constexpr (std::is_base_of_v<ZTDynamicBase, C>)
        return object.ZTDynamicBase::metaClass();
    else
        return &C::typeMetaClass();
}
} // namespace zt::detail
