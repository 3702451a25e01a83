#pragma once

#include <zintar/detail/values/untyped.h>
#include <zintar/export.h>
#include <zintar/fwd.h>

#include <iosfwd>
#include <string>
#include <string_view>
#include <typeindex>
#include <typeinfo>
#include <unordered_set>

struct ZTMetaTypePrivate;

/// The result of comparing two values.
enum class ZTPartialOrdering : signed char {
    Less = -1,
    Equivalent = 0,
    Greater = 1,
    Unordered = 2, ///< the type has no comparison, or only equality and the values differ
};

/// The run-time record of one value type: how to make, copy, destroy, compare, stream and print a
/// value that is known only as an untyped pointer, what the type is called, and which class it
/// points to.
///
/// A type is registered once and stays until the process ends; a handle never moves, so its
/// address is the identity of the type. It is seen by reference only. For a C++ type take
/// `ztMetaType<T>()`, for a name `ztMetaType("int")`:
///
///     const ZTMetaType& type = ztMetaType("int");
///     void* block = type.create(nullptr); // an int of 0
///     type.destroy(block);
///
/// A library that registers types must stay loaded: the functions behind a type live in it.
/// Threads: any use on any thread, also beside registrations. Nothing but a registration takes a
/// lock.
struct ZT_EXPORT ZTMetaType {
    /// The invalid type. Every absent type is expressed by this reference, null pointers are not
    /// used for it.
    static const ZTMetaType& ZTBadMetaType;

    ZTMetaType(ZTMetaType&& other) noexcept;
    ~ZTMetaType();

    [[nodiscard]] bool operator==(const ZTMetaType& other) const noexcept;
    /// False for the invalid type alone.
    [[nodiscard]] explicit operator bool() const noexcept { return this != &ZTBadMetaType; }

    /// The name of the first registration, the one that goes on streams.
    [[nodiscard]] std::string name() const;
    /// The further names under which the type can be looked up.
    [[nodiscard]] std::unordered_set<std::string> aliases() const;
    /// The class that a pointer type points to; null for other types. Makes the class complete if
    /// nobody has used it yet.
    [[nodiscard]] const ZTMetaClass* metaClass() const;

    /// A new block that holds a copy of `*source`, or a default value for null. The caller ends
    /// it with `destroy`. Null when the type has no function for it.
    [[nodiscard]] void* create(const void* source) const;
    void destroy(void* block) const;
    /// `Unordered` without looking at the pointers when the type has no comparison.
    [[nodiscard]] ZTPartialOrdering compare(const void* a, const void* b) const;

    // Each of the next three answers whether the type has a function for it; the state of the
    // stream is not looked at.
    bool serialize(ZTDataStream& stream, const void* value) const;
    bool deserialize(ZTDataStream& stream, void* value) const;
    bool print(std::ostream& stream, const void* value) const;

    /// True for the type itself and where a converter is registered for exactly this pair.
    [[nodiscard]] bool canConvert(const ZTMetaType& to) const;
    /// Converts `*source`, a value of this type, into `*target`, a living value of type `to`.
    ///
    /// To its own type the result is true; the target is left as it is, unless a converter was
    /// registered for the pair.
    /// @return false when there is no converter, with the target untouched, or when the converter
    ///         says so. Logs nothing.
    bool convert(void* source, const ZTMetaType& to, void* target) const;

private:
    friend struct ZTMetaTypeRegistry;
    friend struct ZTMetaTypePrivate;

    ZTMetaType() noexcept;
    explicit ZTMetaType(ZTMetaTypePrivate* record) noexcept;

    static const std::type_index ZTBadTypeIndex;

    ZTMetaTypePrivate* priv;
};

/// The type with that name or alias; the invalid type when the name is unknown. Names are
/// compared byte for byte. A lookup registers nothing: a type that has not passed through
/// `ztMetaType<T>()` or a registration is unknown.
[[nodiscard]] ZT_EXPORT const ZTMetaType& ztMetaType(const std::string& name);

namespace zt::detail
{
/// The type of that identity, or null.
[[nodiscard]] ZT_EXPORT const ZTMetaType* ztMetaType(const std::type_index& type);

/// Registers a type, or adds `alias` to the one that is registered already: its name, functions
/// and class stand as the first call gave them. A name or an alias that is taken keeps its owner.
/// @param blockSize the size of the blocks if `create` and `destroy` are those of `TypeFunctions`,
///                  with which a variant may make a block by itself; otherwise 0
/// @param assign    copies a value into the block of another one, where nobody can tell that from
///                  a new block, since a value is no more than its bytes; or null
/// @param findClass in place of `metaClass`, for a class that may not be complete yet; asked once
///                  somebody wants to know the class
/// @param shape     what values consist of, as a constant; null for a type that keeps it to itself
/// Threads: safe beside any other use of types. No code of the host runs meanwhile.
ZT_EXPORT const ZTMetaType&
ztRegisterMetaType(const std::type_info& type, std::string_view name, const std::string& alias,
                   CreateFunction create, DestroyFunction destroy,
                   CreateDefaultFunction createDefault, CompareFunction compare,
                   SerializeFunction serialize, DeserializeFunction deserialize,
                   PrintFunction print, const ZTMetaClass* metaClass, unsigned int blockSize = 0,
                   AssignFunction assign = nullptr, ClassFunction findClass = nullptr,
                   const Shape* shape = nullptr);
/// What values of the type consist of; null where it keeps that to itself.
[[nodiscard]] ZT_EXPORT const Shape* shapeOfType(const ZTMetaType& type);
[[nodiscard]] ZT_EXPORT bool isInBlocks(const ZTMetaType& type);

/// Tells in the log that the type cannot be found by its name, since another one has it.
ZT_EXPORT void warnOfTakenName(const ZTMetaType& type);
/// Tells the same where that other one passes for the type itself: to some compilers two types of
/// one name in two anonymous namespaces have one identity, though their functions differ.
ZT_EXPORT void warnOfTakenIdentity(const ZTMetaType& type, DestroyFunction destroy);

/// Registers the conversion of one ordered pair of types, in place of an earlier one. The
/// converter writes into a living object of the target type and answers whether it could.
/// Threads: safe beside any other use of types; a conversion that runs meanwhile may still be the
/// earlier one.
ZT_EXPORT void ztRegisterConverter(const ZTMetaType& from, const ZTMetaType& to,
                                   ConverterFunction converter);

/// Whether the class tree settles the conversion between two pointer types.
/// @param yieldsNull  written when the result is true: false hands the pointer on unchanged, true
///                    gives a null pointer (unrelated classes, or a class made at run time)
[[nodiscard]] ZT_EXPORT bool can_convert_meta_class(const ZTMetaType& from, const ZTMetaType& to,
                                                    bool& yieldsNull);
} // namespace zt::detail

/// The stream form of a type is its name.
ZT_EXPORT ZTDataStream& operator<<(ZTDataStream& stream, const ZTMetaType& type);
/// Makes `type` point to the type that bears the name on the stream, or to the invalid one, which
/// logs a warning unless it is the invalid type's own name. Never null afterwards.
ZT_EXPORT ZTDataStream& operator>>(ZTDataStream& stream, const ZTMetaType*& type);
