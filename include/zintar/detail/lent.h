#pragma once

#include <zintar/variant.h>

#include <cstddef>
#include <tuple>
#include <utility>

/// @file
/// Variants that show what somebody else keeps, for the time of a call. They cost no allocation,
/// and their copies are ordinary variants.

namespace zt::detail
{
/// What lends values: the one place that gives a variant a block that it does not own.
struct Lending {
    static void lend(ZTVariant& variant, const ZTMetaType& type, const void* value)
    {
        variant.m_type = &type;
        variant.m_data = const_cast<void*>(value);
    }
};

/// Shows one value, which has to outlive this.
class LentVariant
{
public:
    LentVariant(const ZTMetaType& type, const void* value) : m_variant()
    {
        Lending::lend(m_variant, type, value);
    }
    template <class T>
    explicit LentVariant(const T& value) : LentVariant(::ztMetaType<T>(), addressOf(value))
    {}
    LentVariant(const LentVariant&) = delete;
    LentVariant& operator=(const LentVariant&) = delete;
    ~LentVariant() {}

    operator const ZTVariant&() const { return m_variant; }

private:
    // In a union, since it is not to be destroyed: the block is somebody else's.
    union {
        ZTVariant m_variant;
    };
};

/// A copy of what a host wrote, shown as such.
template <class T>
class LentCopy
{
public:
    explicit LentCopy(T&& value) : m_value(asValue(std::forward<T>(value))), m_lent(m_value)
    {
        assertHoldable<T>();
    }
    operator const ZTVariant&() const { return m_lent; }

private:
    const ValueType<T> m_value;
    LentVariant m_lent;
};

/// Shows the arguments of a call, which have to outlive this.
class LentArguments
{
public:
    // One by one: otherwise it becomes a loop, or the bytes are cleared first.
    LentArguments()
        : m_array{ZTVariant(), ZTVariant(), ZTVariant(), ZTVariant(), ZTVariant(),
                  ZTVariant(), ZTVariant(), ZTVariant(), ZTVariant(), ZTVariant()}
    {
        static_assert(maxParamCount == 10);
    }
    LentArguments(const LentArguments&) = delete;
    LentArguments& operator=(const LentArguments&) = delete;
    ~LentArguments() {}

    void lend(std::size_t position, const ZTMetaType& type, const void* value)
    {
        Lending::lend(m_array[position], type, value);
    }
    /// Shows a variant as it is, not as a variant in a variant.
    void lend(std::size_t position, const ZTVariant& variant)
    {
        lend(position, variant.type(), variant.data());
    }
    operator const ZTArgumentArray&() const { return m_array; }

private:
    // Not to be destroyed either.
    union {
        ZTArgumentArray m_array;
    };
};

/// Copies of what a host wrote as the arguments of a call, shown as such.
template <class... Arguments>
class LentCopies
{
public:
    explicit LentCopies(Arguments&&... arguments)
        : m_values(asValue(std::forward<Arguments>(arguments))...)
    {
        (assertHoldable<Arguments>(), ...);
        std::size_t position = 0;
        std::apply([&](const auto&... values) { (lend(position++, values), ...); }, m_values);
    }
    operator const ZTArgumentArray&() const { return m_lent; }
    LentArguments& lent() { return m_lent; }

private:
    template <class Value>
    void lend(std::size_t position, const Value& value)
    {
        if constexpr (std::is_same_v<Value, ZTVariant>)
            m_lent.lend(position, value);
        else
            m_lent.lend(position, ::ztMetaType<Value>(), addressOf(value));
    }

    std::tuple<ValueType<Arguments>...> m_values;
    LentArguments m_lent;
};
} // namespace zt::detail
