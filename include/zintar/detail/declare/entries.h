#pragma once

#include <zintar/detail/declare/bindings.h>
#include <zintar/detail/declare/defaults.h>
#include <zintar/detail/declare/record.h>

#include <array>
#include <cstddef>
#include <string_view>
#include <type_traits>

/// @file
/// What is listed: what each line of a list gives, and what may be said behind it.
///
/// What is said behind a line makes the entry a longer one, of another type, so that a line with
/// nothing behind it costs the compiler nothing.

namespace zt
{
namespace detail
{
/// What can be wrong with what is said behind a member, and cannot be told from types.
enum class WordFault : unsigned char { None, Enumerator, DefaultValue };

/// The texts and default arguments of one list, behind the members of that list.
template <std::size_t TextCount, std::size_t DefaultCount = 0>
struct ListedMember {
    MemberRecord record;
    const MemberIdentity* identity = &noMember;    ///< of properties, methods and events
    const MemberIdentity* changeEvent = &noMember; ///< of properties
    WordFault fault = WordFault::None;
    std::array<InfoText, TextCount> infos{};
    std::array<ListedDefault, DefaultCount> defaultArguments{};

    /// What makes the functions of the member once the class is known that lists it; `void` where
    /// they are there already.
    using Binding = void;

    static constexpr std::size_t memberCount = 1;
    static constexpr std::size_t infoCount = TextCount;
    static constexpr std::size_t defaultCount = DefaultCount;

    /// Becomes what the shorter one is, and has room for more behind that.
    template <std::size_t Texts, std::size_t Defaults>
    constexpr void extend(const ListedMember<Texts, Defaults>& shorter)
    {
        record = shorter.record;
        identity = shorter.identity;
        changeEvent = shorter.changeEvent;
        fault = shorter.fault;
        for (std::size_t i = 0; i < Texts; ++i)
            infos[i] = shorter.infos[i];
        for (std::size_t i = 0; i < Defaults; ++i)
            defaultArguments[i] = shorter.defaultArguments[i];
    }
};

/// A parameter in a list of them: its name, and annotations.
template <std::size_t InfoCount>
struct ParameterEntry {
    std::string_view name;
    std::array<InfoText, InfoCount> infos{};

    static constexpr std::size_t textCount = 1 + InfoCount;

    /// Adds an annotation. Keys may repeat.
    constexpr ParameterEntry<InfoCount + 1> info(std::string_view key, std::string_view value) const
    {
        ParameterEntry<InfoCount + 1> longer{name};
        for (std::size_t i = 0; i < InfoCount; ++i)
            longer.infos[i] = infos[i];
        longer.infos[InfoCount] = {key, value};
        return longer;
    }
};

constexpr ParameterEntry<0> asParameter(std::string_view name) { return {name}; }
template <std::size_t InfoCount>
constexpr const ParameterEntry<InfoCount>& asParameter(const ParameterEntry<InfoCount>& parameter)
{
    return parameter;
}
template <class Parameter>
using ParameterEntryOf = std::remove_cvref_t<decltype(asParameter(std::declval<Parameter>()))>;

/// A method or an event in the list.
template <class Params, class BindingOf = void, std::size_t TextCount = 0,
          std::size_t DefaultCount = 0>
struct InvokableEntry : ListedMember<TextCount, DefaultCount> {
    using Binding = BindingOf;

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

    /// Names the parameters, from the first on: a text, or `zt::parameter("minutes")` with
    /// annotations. An empty text leaves one without a name.
    template <class... Names>
    constexpr auto parameters(const Names&... names) const
    {
        constexpr bool areFew = sizeof...(Names) <= Params::count;
        static_assert(areFew, "parameters(...) gives more names than there are parameters.");
        if constexpr (areFew) {
            auto longer = withTexts<(ParameterEntryOf<const Names&>::textCount + ... + 0)>();
            [[maybe_unused]] std::size_t text = TextCount;
            [[maybe_unused]] int position = 0;
            (longer.addParameter(asParameter(names), position++, text), ...);
            return longer;
        } else {
            return *this;
        }
    }

    /// Gives the last parameters arguments for calls with fewer: numbers, enumerators, texts,
    /// `nullptr`, or for values of any other kind a function without captures that makes one.
    template <class... Values>
    constexpr auto defaults(const Values&... values) const
    {
        constexpr bool areFew = sizeof...(Values) <= Params::count;
        static_assert(areFew, "defaults(...) gives more values than there are parameters.");
        static_assert(DefaultCount == 0,
                      "defaults(...) gives the values of all parameters at once.");
        if constexpr (areFew && DefaultCount == 0) {
            constexpr std::index_sequence_for<Values...> positions;
            constexpr bool fit = doDefaultsFit<Params, Values...>(positions);
            static_assert(fit,
                          "defaults(...) gives the last parameters values of their own types.");
            InvokableEntry<Params, Binding, TextCount, sizeof...(Values)> longer;
            longer.extend(*this);
            if constexpr (fit)
                longer.setDefaults(positions, values...);
            return longer;
        } else {
            return *this;
        }
    }

    /// Adds an annotation. Keys may repeat.
    constexpr auto info(std::string_view key, std::string_view value) const
    {
        auto longer = withTexts<1>();
        longer.infos[TextCount] = {key, value};
        return longer;
    }

private:
    template <class, class, std::size_t, std::size_t>
    friend struct InvokableEntry;

    template <std::size_t More>
    constexpr auto withTexts() const
    {
        InvokableEntry<Params, Binding, TextCount + More, DefaultCount> longer;
        longer.extend(*this);
        longer.record.count = TextCount + More;
        return longer;
    }
    template <std::size_t InfoCount>
    constexpr void addParameter(const ParameterEntry<InfoCount>& parameter, int position,
                                std::size_t& text)
    {
        this->infos[text++] = {parameter.name, {}, TextKind::ParameterName, position};
        for (const InfoText& info : parameter.infos)
            this->infos[text++] = {info.key, info.value, TextKind::Info, position};
    }
    template <std::size_t... I, class... Values>
    constexpr void setDefaults(std::index_sequence<I...>, const Values&... values)
    {
        this->defaultArguments = {
            listDefault<ParameterFromEnd<Params, DefaultCount - I>>(values)...};
        this->record.invokable.defaultCount = DefaultCount;
        if (!areAllTrue({isDefaultOf<ParameterFromEnd<Params, DefaultCount - I>>(values)...}))
            this->fault = WordFault::DefaultValue;
    }
};

/// An enumeration in the list.
template <class Enum, std::size_t TextCount = 0>
struct EnumerationEntry : ListedMember<TextCount> {
    constexpr EnumerationEntry as(std::string_view name) const
    {
        EnumerationEntry named = *this;
        named.record.name = name;
        return named;
    }
    /// Gives an enumerator another name than its own; where two have one value, the first of them.
    constexpr auto as(Enum value, std::string_view name) const
    {
        auto longer = withText({name, {}, TextKind::EnumeratorName, positionOf(value)});
        if (positionOf(value) < 0 || hasName(name))
            longer.fault = WordFault::Enumerator;
        return longer;
    }

    /// Adds an annotation of the enumeration, or of one enumerator. Keys may repeat.
    constexpr auto info(std::string_view key, std::string_view value) const
    {
        return withText({key, value});
    }
    constexpr auto info(Enum enumerator, std::string_view key, std::string_view value) const
    {
        auto longer = withText({key, value, TextKind::Info, positionOf(enumerator)});
        if (positionOf(enumerator) < 0)
            longer.fault = WordFault::Enumerator;
        return longer;
    }

private:
    constexpr auto withText(const InfoText& text) const
    {
        EnumerationEntry<Enum, TextCount + 1> longer;
        longer.extend(*this);
        longer.infos[TextCount] = text;
        longer.record.enumeration.textCount = TextCount + 1;
        return longer;
    }
    constexpr int positionOf(Enum value) const
    {
        for (unsigned int i = 0; i < this->record.count; ++i)
            if (this->record.enumeration.values[i] == static_cast<int>(value))
                return static_cast<int>(i);
        return -1;
    }
    /// Whether an enumerator has the name. One that was given another name has no other any more.
    constexpr bool hasName(std::string_view name) const
    {
        for (unsigned int i = 0; i < this->record.count; ++i) {
            std::string_view own = this->record.enumeration.enumerators[i];
            for (const InfoText& text : this->infos)
                if (text.kind == TextKind::EnumeratorName && text.part == static_cast<int>(i))
                    own = text.key;
            if (own == name)
                return true;
        }
        return false;
    }
};

/// A property in the list.
/// @tparam Field  the data member, where the property is one that can be set
template <std::size_t InfoCount, auto Field = nullptr, class BindingOf = void>
struct PropertyEntry : ListedMember<InfoCount> {
    using Binding = BindingOf;

    constexpr PropertyEntry as(std::string_view name) const
    {
        PropertyEntry named = *this;
        named.record.name = name;
        return named;
    }

    /// Names the event that announces a change of the property. Raising it is the setter's part. A
    /// data member raises one that takes its value, its value and the one before, or nothing, when
    /// it is set to another value.
    template <auto Event>
    constexpr auto notify() const
    {
        if constexpr (!canAnnounce<Field, Event>()) {
            return linkedTo<Event>(*this);
        } else if constexpr (std::is_void_v<Binding>) {
            PropertyEntry linked = linkedTo<Event>(*this);
            linked.record.property.setter = &setAndNotify<ObjectOf<Field, Event>, Field, Event>;
            return linked;
        } else {
            PropertyEntry<InfoCount, Field, typename Binding::template Notifying<Event>> linked;
            linked.extend(*this);
            return linkedTo<Event>(linked);
        }
    }

    /// Adds an annotation. Keys may repeat.
    constexpr auto info(std::string_view key, std::string_view value) const
    {
        PropertyEntry<InfoCount + 1, Field, Binding> longer;
        longer.extend(*this);
        longer.record.count = InfoCount + 1;
        longer.infos[InfoCount] = {key, value};
        return longer;
    }

private:
    template <auto Event, class Entry>
    static constexpr Entry linkedTo(Entry entry)
    {
        entry.changeEvent = &memberIdentity<Event>;
        entry.record.property.changeEventKey = &memberVariable<Event>;
        return entry;
    }
};
} // namespace detail

/// A parameter with annotations: `.parameters(zt::parameter("minutes").info("unit", "min"))`.
constexpr detail::ParameterEntry<0> parameter(std::string_view name) { return {name}; }
} // namespace zt
