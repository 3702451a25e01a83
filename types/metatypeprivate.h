#pragma once

#include "nameindex.h"

#include <zintar/metatype.h>
#include <zintar/variant.h>

#include <string>
#include <typeindex>
#include <unordered_map>
#include <unordered_set>

/// The record behind a `ZTMetaType`.
struct ZTMetaTypePrivate {
    ZTMetaTypePrivate(std::string_view typeName, const std::type_info& type,
                      zt::detail::CreateFunction createFunction,
                      zt::detail::DestroyFunction destroyFunction,
                      zt::detail::CreateDefaultFunction createDefaultFunction,
                      zt::detail::CompareFunction compareFunction,
                      zt::detail::SerializeFunction serializeFunction,
                      zt::detail::DeserializeFunction deserializeFunction,
                      zt::detail::PrintFunction printFunction, const ZTMetaClass* classOfType);

    /// The record of a handle; for the sources of the library.
    static ZTMetaTypePrivate& of(const ZTMetaType& type) { return *type.priv; }

    std::string name;
    std::unordered_set<std::string> aliases;
    std::type_index typeIndex;
    const ZTMetaClass* metaClass;
    zt::detail::CreateFunction create;
    zt::detail::DestroyFunction destroy;
    zt::detail::CreateDefaultFunction createDefault;
    zt::detail::CompareFunction compare;
    zt::detail::SerializeFunction serialize;
    zt::detail::DeserializeFunction deserialize;
    zt::detail::PrintFunction print;
    bool isInBlocks = false;
    zt::detail::AssignFunction assign = nullptr;
    std::unordered_map<const ZTMetaType*, zt::detail::ConverterFunction> convertersTo;
    std::unordered_map<const ZTMetaType*, zt::detail::ConverterFunction> convertersFrom;
};

/// The process-wide tables.
///
/// 1. Each handle in `types` has its name in `names`, unless another type held that name first.
/// 2. What `names` has points into `types`, whose nodes never move, and so do the names.
struct ZTMetaTypeRegistry {
    /// The type with that name or alias, or null.
    [[nodiscard]] const ZTMetaType* find(std::string_view name) const;
    const ZTMetaType& add(ZTMetaTypePrivate* record);
    void addAlias(const ZTMetaType& type, const std::string& alias);

    std::unordered_map<std::type_index, ZTMetaType> types;
    zt::detail::NameIndex<const ZTMetaType*> names;
};

/// The registry, made with the built-in types at the first call.
ZTMetaTypeRegistry& ztMetaTypeRegistry();

namespace zt::detail
{
/// Copies a value over one of the same type without a new block and without any code of the host,
/// where the type allows it; otherwise nothing happens, and the result is false.
inline bool assignInPlace(ZTVariant& target, const ZTVariant& source)
{
    const AssignFunction assign = ZTMetaTypePrivate::of(target.type()).assign;
    if (!assign || &target.type() != &source.type() || !target.data() || !source.data())
        return false;
    assign(target.data(), source.data());
    return true;
}

/// Registers the types that are always there, in their fixed order.
void registerBuiltInTypes();
} // namespace zt::detail
