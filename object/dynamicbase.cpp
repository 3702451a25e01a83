#include <zintar/dynamicbase.h>

#include <zintar/log.h>

#include <utility>

struct ZTDynamicBasePrivate {
    const ZTMetaClass* metaClass = nullptr;
};

ZTDynamicBase::ZTDynamicBase(ZTBase* parent)
    : ZTDynamicBase(parent, std::make_unique<ZTDynamicBasePrivate>())
{}

ZTDynamicBase::ZTDynamicBase(ZTBase* parent, std::unique_ptr<ZTDynamicBasePrivate> record)
    : ZTBase(parent), dynamicPriv(record.release())
{}

ZTDynamicBase::ZTDynamicBase(ZTDynamicBase&& other) noexcept
    : ZTBase(static_cast<ZTBase&&>(other)), dynamicPriv(std::exchange(other.dynamicPriv, nullptr))
{}

ZTDynamicBase& ZTDynamicBase::operator=(ZTDynamicBase&& other) noexcept
{
    if (this == &other)
        return *this;
    // First, since handlers of what ends below may destroy the other object.
    delete std::exchange(dynamicPriv, std::exchange(other.dynamicPriv, nullptr));
    ZTBase::operator=(static_cast<ZTBase&&>(other));
    return *this;
}

ZTDynamicBase::~ZTDynamicBase() { delete dynamicPriv; }

const ZTMetaClass* ZTDynamicBase::metaClass() const
{
    bool hasOwnClass = dynamicPriv && dynamicPriv->metaClass;
    return hasOwnClass ? dynamicPriv->metaClass : baseMetaClass();
}

const ZTMetaClass* ZTDynamicBase::baseMetaClass() const { return &typeMetaClass(); }

namespace
{
bool descendsFromDynamicBase(const ZTMetaClass& metaClass)
{
    const ZTMetaClass* above = metaClass.superClass();
    while (above && above != &ZTDynamicBase::typeMetaClass())
        above = above->superClass();
    return above != nullptr;
}
} // namespace

bool ZTDynamicBase::initializeMetaClass(const ZTMetaClass* metaClass)
{
    if (!metaClass || !dynamicPriv)
        return false;
    if (!metaClass->isDynamic()) {
        ztLog("Zintar Warning: Static meta class provided to ZTDynamicBase::initializeMetaClass() "
              "but expected a dynamic meta class. Ignoring.",
              ZTLogType::Warning);
        return false;
    }
    if (dynamicPriv->metaClass) {
        ztLog("Zintar Warning: ZTDynamicBase::initializeMetaClass called more than once. Ignoring.",
              ZTLogType::Warning);
        return false;
    }
    if (!descendsFromDynamicBase(*metaClass))
        return false;
    dynamicPriv->metaClass = metaClass;
    metaClassInitialized(metaClass);
    return true;
}
