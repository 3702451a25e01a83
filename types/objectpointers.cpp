#include <zintar/detail/values/objectpointers.h>
#include <zintar/detail/values/objectreferences.h>

#include "metatypeprivate.h"

#include <zintar/metatypeof.h>

#include <memory>
#include <utility>

namespace zt::detail
{
namespace
{
struct AnyObject;
}

std::string nameOf(const ObjectPointer& pointer)
{
    std::string name = pointer.nonConst ? "const " : "";
    return name.append(pointer.className).append("*");
}

const ZTMetaType& registerPointer(const ObjectPointer& pointer, const std::string& alias)
{
    // One stands for them all: nobody looks at what they point to.
    using Functions = TypeFunctions<AnyObject*>;
    const ZTMetaType& type = ztRegisterMetaType(
        *pointer.type, nameOf(pointer), alias, Functions::create(), Functions::destroy(),
        Functions::createDefault(), Functions::compare(), Functions::serialize(),
        Functions::deserialize(), Functions::print(), nullptr, sizeof(BlockOf<AnyObject*>),
        Functions::assign(), pointer.findClass);
    warnOfTakenName(type);
    return type;
}

const ZTMetaType& typeOf(const ObjectPointer& pointer)
{
    const ZTMetaType* known = ztMetaType(std::type_index(*pointer.type));
    if (!known)
        return registerPointer(pointer);
    // Their functions are the same, but their classes are not.
    const ZTMetaTypePrivate& record = ZTMetaTypePrivate::of(*known);
    if (pointer.isInAnonymousScope && isInBlocks(*known) && record.findClass != pointer.findClass)
        warnOfNamesake(record.name);
    return *known;
}

const ZTMetaType& registerReference(const ObjectReference& reference, const std::string& alias)
{
    auto record = std::make_unique<ZTMetaTypePrivate>(
        reference.name, *reference.type, reference.create, reference.destroy,
        reference.createDefault, reference.compare, nullptr, nullptr, reference.print, nullptr);
    record->setStorage(reference.blockSize, nullptr);
    record->findClass = reference.findClass;
    record->referred = reference.referred;
    record->refer = reference.refer;
    const ZTMetaType& type = ztMetaTypeRegistry().add(std::move(record), alias);
    warnOfTakenName(type);
    return type;
}

bool isReference(const ZTMetaType& type) { return ZTMetaTypePrivate::of(type).referred != nullptr; }
} // namespace zt::detail
