#pragma once

#include <zintar/detail/values/holding.h>
#include <zintar/export.h>
#include <zintar/fwd.h>
#include <zintar/metatypeof.h>

#include <array>
#include <utility>

/// A value of any registered type: the type, and a heap block that the variant owns. Everything
/// that crosses a reflection interface is one.
///
/// Unlike `std::any` it can compare, print and stream what it holds, and its type may be known by
/// name only. Nothing is converted on the way in; a typed value comes out by
/// `ztVariantValue<T>()`, or by `ztVariantPointer<T>()` where a mismatch is expected.
///
///     ZTVariant value(21.5);
///     double celsius = ztVariantValue<double>(value);
///
/// A variant is valid when its type is not the invalid one. It may be valid and hold no block, if
/// its type has no function to make one (`void`). Moving leaves an invalid variant behind.
/// Cost: a copy allocates, a move does not.
/// Threads: reads may run in parallel; writes may not run beside them.
struct ZT_EXPORT ZTVariant {
public:
    /// An invalid variant.
    ZTVariant() noexcept : m_type(&ZTMetaType::ZTBadMetaType), m_data(nullptr) {}

    /// A value of that type, copied from `*value`, or a default value for null. The variant is of
    /// the type even if the type cannot make a block.
    ZTVariant(const ZTMetaType& type, const void* value);

    /// Holds a copy of `value`. A string literal, an array of `char`, a `const char*` (null gives
    /// an empty text) and a `std::string_view` become a `std::string`. Other arrays, and a
    /// `std::initializer_list`, do not compile.
    template <zt::detail::VariantValue T>
    explicit ZTVariant(T&& value);

    ZTVariant(const ZTVariant& other);
    ZTVariant(ZTVariant&& other) noexcept
        : m_type(std::exchange(other.m_type, &ZTMetaType::ZTBadMetaType)),
          m_data(std::exchange(other.m_data, nullptr))
    {}
    ~ZTVariant()
    {
        if (m_data)
            m_type->destroy(m_data);
    }

    ZTVariant& operator=(const ZTVariant& other);
    ZTVariant& operator=(ZTVariant&& other) noexcept;

    /// Makes the variant invalid.
    void reset() noexcept;

    [[nodiscard]] bool isValid() const noexcept { return m_type != &ZTMetaType::ZTBadMetaType; }
    [[nodiscard]] explicit operator bool() const noexcept { return isValid(); }
    /// The block, not a copy; null in an invalid variant. Good until the variant changes.
    [[nodiscard]] void* data() const noexcept { return m_data; }
    [[nodiscard]] const ZTMetaType& type() const noexcept { return *m_type; }

    // Variants of different types are unequal and neither is below the other; no conversion takes
    // place. On values without an order `!=`, `<=` and `>=` are true.
    [[nodiscard]] bool operator==(const ZTVariant& other) const;
    [[nodiscard]] bool operator!=(const ZTVariant& other) const;
    [[nodiscard]] bool operator<(const ZTVariant& other) const;
    [[nodiscard]] bool operator<=(const ZTVariant& other) const;
    [[nodiscard]] bool operator>(const ZTVariant& other) const;
    [[nodiscard]] bool operator>=(const ZTVariant& other) const;

    /// Whether the variant holds that value, of the very type as which it would hold it. Like
    /// comparing with `ZTVariant(value)`, but without making one.
    template <zt::detail::ComparedValue T>
    [[nodiscard]] friend bool operator==(const ZTVariant& variant, const T& value)
    {
        return zt::detail::isEqual(variant, value);
    }

    /// True for the own type and where a converter is registered. The class tree, which lets one
    /// class pointer be retrieved as another, is not asked. An invalid variant converts to nothing.
    [[nodiscard]] bool canConvert(const ZTMetaType& target) const;

private:
    friend struct zt::detail::Lending;

    [[nodiscard]] ZTPartialOrdering compare(const ZTVariant& other) const;

    const ZTMetaType* m_type;
    void* m_data;
};

/// The arguments of one call or one event; what lies past the last parameter is invalid.
using ZTArgumentArray = std::array<ZTVariant, zt::detail::maxParamCount>;

/// Prints as ZTVariant(int, 5). A type that cannot print leaves the value out and logs a warning.
ZT_EXPORT std::ostream& operator<<(std::ostream& stream, const ZTVariant& variant);

/// The stream form of a variant is the name of its type and what the type writes. A type that
/// cannot write leaves the name alone on the stream and logs a warning.
ZT_EXPORT ZTDataStream& operator<<(ZTDataStream& stream, const ZTVariant& variant);
/// Reads a variant whose type is registered in this process. An unknown type, or one that cannot
/// read, logs a warning and makes the variant invalid; the bytes of its value then stay on the
/// stream. Variants within variants are read 500 deep. Test the stream with `good()` to know
/// whether the value is complete.
ZT_EXPORT ZTDataStream& operator>>(ZTDataStream& stream, ZTVariant& variant);

template <class T>
bool zt::detail::isEqual(const ZTVariant& variant, const T& given)
{
    using Value = ValueType<T>;
    static_assert(hasEquality<Value>, "A variant is compared with values of types that have an "
                                      "operator==.");
    if (!variant.data() || &variant.type() != &::ztMetaType<Value>())
        return false;
    if constexpr (std::is_same_v<Value, std::string>) {
        return *static_cast<const std::string*>(variant.data()) == asValue(given);
    } else {
        const Value& value = asValue(given);
        return variant.type().compare(variant.data(), addressOf(value)) ==
               ZTPartialOrdering::Equivalent;
    }
}

template <zt::detail::VariantValue T>
ZTVariant::ZTVariant(T&& value)
    : m_type(&::ztMetaType<zt::detail::ValueType<T>>()),
      m_data(zt::detail::makeValue<zt::detail::ValueType<T>>(
          *m_type, zt::detail::asValue(std::forward<T>(value))))
{
    zt::detail::assertHoldable<T>();
}
