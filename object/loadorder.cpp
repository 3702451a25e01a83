// The order in which the library readies itself, from top to bottom. All of it runs when the
// library is loaded, before any host can call it. It is one file because the order of initialisers
// holds within a file only:
//
// 1. The class of `ZTBase`. Looking up its pointer type creates the registry with the built-in
//    types. No variant is made and no event is sent before step 3.
// 2. The class of `ZTDynamicBase`, which counts on from the root's.
// 3. The invalid type. From here on variants can be made.
// 4. `ZTVariant` gets its alias.
//
// What the library needs for some hosts alone is made at its first use, like the class of the event
// listener.

#include <zintar/declare.h>

#include <string>

zt::detail::ClassTable& ZTBase::ztTable() { return zt::detail::declaredTable<ZTBase>(); }

const ZTMetaClass& ZTBase::typeMetaClass() { return zt::detail::declaredClass<ZTBase>(); }

const ZTMetaClass* ZTBase::metaClass() const { return &typeMetaClass(); }

zt::detail::ClassTable& ZTDynamicBase::ztTable()
{
    return zt::detail::declaredTable<ZTDynamicBase>();
}

const ZTMetaClass& ZTDynamicBase::typeMetaClass()
{
    return zt::detail::declaredClass<ZTDynamicBase>();
}

const std::type_index ZTMetaType::ZTBadTypeIndex = typeid(ZTNone);

namespace
{
[[maybe_unused]] const ZTMetaClass& rootClass = ZTBase::typeMetaClass();
[[maybe_unused]] const ZTMetaClass& dynamicClass = ZTDynamicBase::typeMetaClass();
} // namespace

const ZTMetaType& ZTMetaType::ZTBadMetaType =
    zt::detail::ztRegisterMetaType(typeid(ZTNone), "ZTBadMetaType", std::string(), nullptr, nullptr,
                                   nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);

namespace
{
[[maybe_unused]] const ZTMetaType& variantType = zt::detail::registerType<ZTVariant>("ZTVariant");
}
