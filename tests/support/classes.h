#pragma once

#include <zintar/staticmetaclass.h>

#include <string_view>
#include <typeinfo>

namespace support
{
/// The table of a class without members.
inline zt::detail::ZTStaticMetaClassData emptyTable(std::string_view typeName,
                                                    const ZTMetaClass* superClass = nullptr)
{
    zt::detail::ZTStaticMetaClassData table;
    table.typeName = typeName;
    table.superClass = superClass;
    return table;
}

/// A class that says that it was made at run time.
struct DynamicClass : ZTStaticMetaClass {
    using ZTStaticMetaClass::ZTStaticMetaClass;
    bool isDynamic() const override { return true; }
};

/// The type of `T*`, registered as that of a pointer to the class.
template <class T>
const ZTMetaType& registerPointer(const ZTMetaClass& metaClass)
{
    using Pointer = zt::detail::TypeFunctions<T*>;
    return zt::detail::ztRegisterMetaType(typeid(T*), ztTypeName<T*>(), {}, Pointer::create(),
                                          Pointer::destroy(), Pointer::createDefault(),
                                          Pointer::compare(), Pointer::serialize(), nullptr,
                                          Pointer::print(), &metaClass);
}
} // namespace support
