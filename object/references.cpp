#include "baseprivate.h"

#include <zintar/log.h>
#include <zintar/reference.h>

#include <utility>

namespace zt::detail
{
ZTRefImpl* ZTRefImpl::get(const ZTBase* object)
{
    ZTBasePrivate* record = ZTBasePrivate::of(object);
    if (!record)
        return nullptr;
    if (record->refImpl)
        ++record->refImpl->refCount;
    else
        record->refImpl = new ZTRefImpl(record);
    return record->refImpl;
}

ZTRefImpl::ZTRefImpl(ZTBasePrivate* of) noexcept : refCount(1), object(of->object), record(of) {}

ZTRefImpl::~ZTRefImpl()
{
    if (object)
        record->refImpl = nullptr;
}

ZTStrongRefImpl* ZTStrongRefImpl::get(const ZTBase* object)
{
    ZTBasePrivate* record = ZTBasePrivate::of(object);
    if (!record)
        return nullptr;
    if (record->strongRefImpl)
        ++record->strongRefImpl->refCount;
    else
        record->strongRefImpl = new ZTStrongRefImpl(record);
    return record->strongRefImpl;
}

ZTStrongRefImpl::ZTStrongRefImpl(ZTBasePrivate* of) noexcept
    : refCount(1), object(of->object), record(of)
{}

ZTStrongRefImpl::~ZTStrongRefImpl()
{
    if (!object)
        return;
    // First, so that the object's end finds no block and has nothing to complain about.
    record->strongRefImpl = nullptr;
    // A reference that was taken while the object dies is not the one that ends it.
    if (record->stage == ZTLifeStage::Alive)
        delete object;
}
} // namespace zt::detail

void ZTBasePrivate::clearWeakReferences()
{
    if (auto* block = std::exchange(refImpl, nullptr))
        block->object = nullptr;
}

bool ZTBasePrivate::clearStrongReferences()
{
    auto* block = std::exchange(strongRefImpl, nullptr);
    if (block)
        block->object = nullptr;
    return block != nullptr;
}

void ZTBasePrivate::warnOfHeldObject()
{
    ztLog("Zintar Error: ZTBase object destroyed while being controlled by ZTStrongRef.",
          ZTLogType::Error);
}

void ZTBasePrivate::pointReferencesTo(ZTBase* newObject)
{
    if (refImpl)
        refImpl->object = newObject;
    if (strongRefImpl)
        strongRefImpl->object = newObject;
}
