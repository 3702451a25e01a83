#pragma once

#include <zintar/detail/values/shapes.h>

#include <cstddef>
#include <string_view>
#include <type_traits>

/// @file
/// What `ZT_RECORD` makes of its list, and the sentences that a mistake in it gives.

namespace zt::detail
{
/// Defined in `containers.h`.
template <template <class> class Test, class T, class... Outer>
constexpr bool streams();

/// The name at a place in the list, which is the text of the macro's arguments.
constexpr std::string_view nameInList(std::string_view list, std::size_t place)
{
    for (; place > 0; --place)
        list.remove_prefix(list.find(',') + 1);
    list = list.substr(0, list.find(','));
    while (!list.empty() && list.front() == ' ')
        list.remove_prefix(1);
    while (!list.empty() && list.back() == ' ')
        list.remove_suffix(1);
    return list;
}

constexpr bool areNamesUnique(std::string_view list, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t other = 0; other < i; ++other)
            if (nameInList(list, i) == nameInList(list, other))
                return false;
    return true;
}

template <class T, auto Member>
constexpr bool isArrayField()
{
    if constexpr (std::is_member_object_pointer_v<decltype(Member)>)
        return std::is_array_v<std::remove_reference_t<decltype(std::declval<T&>().*Member)>>;
    else
        return false;
}

template <std::size_t Count>
struct FieldList {
    RecordField fields[Count];
};

template <class Fields>
inline constexpr auto fieldList = Fields::list();
template <class Fields>
inline constexpr RecordShape recordShape{
    shapeOfKind<typename Fields::Record>(ZTKind::Record, Fields::canSetAll()),
    fieldList<Fields>.fields, Fields::count, true};

template <class T, class Names, auto... Members>
struct RecordFields {
    using Record = T;
    static constexpr unsigned int count = sizeof...(Members);

    static constexpr bool isPlain = !std::is_base_of_v<ZTBase, T>;
    static constexpr bool isListed = count > 0;
    static constexpr bool areFields = (std::is_member_object_pointer_v<decltype(Members)> && ...);
    static constexpr bool hasArray = (isArrayField<T, Members>() || ...);
    static constexpr bool areUnique = areNamesUnique(Names::text(), count);

    static constexpr FieldList<count> list()
    {
        std::size_t place = 0;
        return {{FieldFunctions<T, Members>::field(nameInList(Names::text(), place++))...}};
    }
    static constexpr bool canSetAll() { return (FieldFunctions<T, Members>::canSet && ...); }
    static constexpr const Shape* shape()
    {
        if constexpr (isPlain && isListed && areFields && !hasArray && areUnique)
            return &recordShape<RecordFields>;
        else
            return nullptr;
    }
    template <template <class> class Test, class... Outer>
    static constexpr bool stream()
    {
        return (streams<Test, typename FieldFunctions<T, Members>::F, Outer...>() && ...);
    }
};

/// Apart from the class, which some compilers would not let anybody use after a mistake.
template <class Fields>
constexpr Fields checkedFields()
{
    static_assert(Fields::isPlain,
                  "ZT_RECORD serves plain structs. An object class lists its members "
                  "behind ZT_OBJECT.");
    static_assert(Fields::isListed, "ZT_RECORD names the fields behind the struct.");
    static_assert(Fields::areFields,
                  "ZT_RECORD lists fields: a function or a static member is none.");
    static_assert(!Fields::hasArray,
                  "ZT_RECORD: no variant holds an array. Make the field a std::array.");
    static_assert(Fields::areUnique, "ZT_RECORD: a field is listed twice.");
    return {};
}
} // namespace zt::detail
