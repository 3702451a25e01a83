#pragma once

#include <zintar/detail/values/converting.h>

/// Registers a conversion, in place of an earlier one between the same two types. From then on a
/// value of the one is retrieved as the other, wherever a value is taken out of a variant.
///
///     ztRegisterConverter([](int whole) { return double(whole); });
///     ztRegisterConverter([](const std::string& text) -> std::optional<int> { ... });
///
/// The types are those of its one parameter and of its result; a parameter that is a
/// `std::string_view` or a `const char*` takes a `std::string`. A result without a default value is
/// retrieved as a `std::optional` of its type. The opposite direction is another
/// converter, and nothing is chained through a third type.
/// @param converter  without captures; one that gives a `std::optional` refuses a value by an empty
///                   one, and the retrieval gives a default value with a line in the log
/// Threads: safe beside any other use of types; a conversion that runs meanwhile may still be the
/// earlier one. The converter runs on the thread that retrieves the value.
template <class Convert>
void ztRegisterConverter([[maybe_unused]] Convert converter)
{
    static_assert(zt::detail::StatelessCallable<Convert>,
                  "ztRegisterConverter: a converter is a lambda without captures. Write one around "
                  "a function.");
    if constexpr (zt::detail::StatelessCallable<Convert>) {
        using Params = typename zt::detail::CallableTraits<Convert>::Params;
        zt::detail::TypedConverter<Convert, Params>::add();
    }
}
