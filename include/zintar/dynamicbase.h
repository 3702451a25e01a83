#pragma once

#include <zintar/base.h>

#include <memory>

/// An object whose class can be chosen once for this one object, at run time.
///
/// It starts with the class that its type declares, `baseMetaClass()`, and can be given a class
/// made at run time by `initializeMetaClass`. From then on `metaClass()` is that class, and with it
/// the object's properties, methods and events. The class is not owned; the host keeps it alive as
/// long as the object.
///
/// Use it where the class is not known when the program is built; derive from `ZTBase` otherwise.
struct ZT_EXPORT ZTDynamicBase : ZTBase {
public:
    explicit ZTDynamicBase(ZTBase* parent = nullptr);
    ZTDynamicBase(ZTDynamicBase&& other) noexcept;
    ZTDynamicBase& operator=(ZTDynamicBase&& other) noexcept;

    [[nodiscard]] const ZTMetaClass* metaClass() const override;
    ~ZTDynamicBase() override;
    /// The class that the object's type declares.
    [[nodiscard]] virtual const ZTMetaClass* baseMetaClass() const;

    [[nodiscard]] static const ZTMetaClass& typeMetaClass();

    /// The event that a class was taken; the object is of the new class already.
    void metaClassInitialized(const ZTMetaClass* metaClass);

protected:
    /// Gives the object its class. It must be made at run time and have `ZTDynamicBase`'s class
    /// among its super classes.
    /// @return false when it was not taken: null or no such super class, which is not logged; a
    ///         declared class, or an object that has got its class already, which is
    bool initializeMetaClass(const ZTMetaClass* metaClass);

private:
    friend struct zt::detail::ClassAccess;
    friend struct zt::detail::ClassGiving;
    /// @param record  made before the parent hears of the object
    ZTDynamicBase(ZTBase* parent, std::unique_ptr<ZTDynamicBasePrivate> record);
    static zt::detail::ClassTable& ztTable();

    ZTDynamicBasePrivate* dynamicPriv;
};
