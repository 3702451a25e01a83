#pragma once

#include <type_traits>
#include <typeindex>
#include <typeinfo>

namespace zt::detail
{
/// The signature key of an invokable: the identity of a pointer to a function that returns
/// nothing and takes the parameters as they are declared.
template <class... Parameters>
std::type_index signatureKey()
{
    return typeid(void (*)(Parameters...));
}

template <class T>
concept Pointer = std::is_pointer_v<T>;

template <class Signature>
struct SignatureOf {
    static std::type_index key()
    {
        static_assert(sizeof(Signature*) == 0,
                      "A signature names the parameters alone: write void(int, double), whatever "
                      "the method gives.");
        return typeid(void);
    }
};
template <class... Parameters>
struct SignatureOf<void(Parameters...)> {
    static std::type_index key() { return signatureKey<Parameters...>(); }
};
} // namespace zt::detail
