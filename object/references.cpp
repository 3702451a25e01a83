#include "baseprivate.h"

#include <zintar/log.h>
#include <zintar/reference.h>

#include <string>
#include <utility>

namespace
{
/// What is told at the end of an object, where no memory may be needed: so it is made before.
const std::string& heldAtEnd()
{
    static const auto& text = *new std::string(
        "Zintar Error: ZTBase object destroyed while being controlled by ZTStrongRef.");
    return text;
}
} // namespace

namespace zt::detail
{
ZTRefImpl* ZTRefImpl::get(const ZTBase* object)
{
    ZTBasePrivate* record = ZTBasePrivate::of(object);
    if (!record)
        return nullptr;
    ZTRefImpl*& block = record->extras.needParts().references.refImpl;
    if (!block)
        block = new ZTRefImpl(record->object);
    else if (block->refCount++ == 0) // the earlier ones have gone, or are just going
        ++block->holders;
    return block;
}

ZTRefImpl::ZTRefImpl(const ZTBase* of) noexcept : refCount(1), holders(2), object(of) {}

void ZTRefImpl::letGo() noexcept
{
    if (--holders == 0)
        delete this;
}

ZTStrongRefImpl* ZTStrongRefImpl::get(const ZTBase* object)
{
    ZTBasePrivate* record = ZTBasePrivate::of(object);
    if (!record)
        return nullptr;
    ZTStrongRefImpl*& block = record->extras.needParts().references.strongRefImpl;
    if (block) {
        ++block->refCount;
    } else {
        (void)heldAtEnd();
        block = new ZTStrongRefImpl(record);
    }
    return block;
}

ZTStrongRefImpl::ZTStrongRefImpl(ZTBasePrivate* of) noexcept
    : refCount(1), object(of->object), record(of)
{}

ZTBase* ZTStrongRefImpl::release(ZTStrongRefImpl* block) noexcept
{
    const ZTBase* held = block->object.load(std::memory_order_acquire);
    if (!held || block->refCount != 1)
        return nullptr;
    block->record->extras.parts()->references.strongRefImpl = nullptr;
    block->object = nullptr;
    delete block;
    return const_cast<ZTBase*>(held);
}

ZTStrongRefImpl::~ZTStrongRefImpl()
{
    const ZTBase* held = object.load(std::memory_order_acquire);
    if (!held)
        return;
    // First, so that the object's end finds no block and has nothing to complain about.
    record->extras.parts()->references.strongRefImpl = nullptr;
    // A reference that was taken while the object dies is not the one that ends it.
    if (record->stage == ZTLifeStage::Alive)
        delete held;
}
} // namespace zt::detail

void ZTReferences::clearWeak()
{
    if (auto* block = std::exchange(refImpl, nullptr)) {
        block->object = nullptr;
        block->letGo();
    }
}

bool ZTReferences::clearStrong()
{
    auto* block = std::exchange(strongRefImpl, nullptr);
    if (block)
        block->object = nullptr;
    return block != nullptr;
}

void ZTReferences::warnOfHeldObject() { ztLog(heldAtEnd(), ZTLogType::Error); }

void ZTReferences::pointTo(ZTBase* newObject)
{
    if (refImpl)
        refImpl->object = newObject;
    if (strongRefImpl)
        strongRefImpl->object = newObject;
}
