#include <zintar/metaclass.h>

#include "descriptorlives.h"
#include "ownorinherited.h"
#include "parameters.h"

#include <zintar/log.h>

#include <string>

// The operations answer for a descriptor that was cut down to its abstract type by a copy, so none
// of them is pure.

using zt::detail::emptyView;

std::atomic<unsigned int> zt::detail::descriptorsEnded = 0;

namespace
{
bool isSet(std::string_view text) { return text.data() != nullptr; }
} // namespace

// clang-format off
ZTMetaClassInfo::~ZTMetaClassInfo() = default;
std::string_view ZTMetaClassInfo::key() const { return emptyView; }
std::string_view ZTMetaClassInfo::value() const { return emptyView; }
ZTMetaClassInfo::operator bool() const { return isSet(key()) && isSet(value()); }

ZTMetaEnum::~ZTMetaEnum() = default;
std::string_view ZTMetaEnum::name() const { return emptyView; }
unsigned int ZTMetaEnum::count() const { return 0; }
std::string_view ZTMetaEnum::enumerator(unsigned int) const { return emptyView; }
int ZTMetaEnum::value(unsigned int) const { return 0; }
ZTMetaEnum::operator bool() const { return isSet(name()); }

ZTMetaProperty::~ZTMetaProperty() = default;
std::string_view ZTMetaProperty::name() const { return emptyView; }
const ZTMetaType& ZTMetaProperty::metaType() const { return ZTMetaType::ZTBadMetaType; }
int ZTMetaProperty::changeEventIndex() const { return -1; }
const ZTMetaInvokable* ZTMetaProperty::changeEvent() const { return nullptr; }
bool ZTMetaProperty::canGet() const { return false; }
bool ZTMetaProperty::canSet() const { return false; }
unsigned int ZTMetaProperty::propInfoCount() const { return 0; }
std::string_view ZTMetaProperty::propInfoKey(unsigned int) const { return emptyView; }
std::string_view ZTMetaProperty::propInfoValue(unsigned int) const { return emptyView; }
ZTVariant ZTMetaProperty::get(const ZTVariant&) const { return {}; }
ZTVariant ZTMetaProperty::set(const ZTVariant&, const ZTVariant&) const { return {}; }
bool ZTMetaProperty::isDynamic() const { return false; }
ZTMetaProperty::operator bool() const { return isSet(name()); }

ZTMetaInvokable::~ZTMetaInvokable() { zt::detail::noteEndOfDescriptor(); }
std::string_view ZTMetaInvokable::name() const { return emptyView; }
bool ZTMetaInvokable::isConst() const { return false; }
bool ZTMetaInvokable::isEvent() const { return false; }
const ZTMetaType& ZTMetaInvokable::returnMetaType() const { return ZTMetaType::ZTBadMetaType; }
unsigned int ZTMetaInvokable::parameterCount() const { return 0; }
ZTAccessSpecifier ZTMetaInvokable::accessSpecifier() const { return ZTAccessSpecifier::Public; }
const ZTMetaType& ZTMetaInvokable::parameterMetaType(unsigned int) const { return ZTMetaType::ZTBadMetaType; }
int ZTMetaInvokable::index() const { return 0; }
ZTVariant ZTMetaInvokable::invoke(const ZTVariant&, const ZTArgumentArray&) const { return {}; }
bool ZTMetaInvokable::isDynamic() const { return false; }
ZTMetaInvokable::operator bool() const { return isSet(name()); }

ZTMetaClass::~ZTMetaClass() { zt::detail::noteEndOfDescriptor(); }
const ZTMetaClass* ZTMetaClass::superClass() const { return nullptr; }
std::string_view ZTMetaClass::typeName() const { return emptyView; }
const ZTMetaType& ZTMetaClass::metaType() const { return ZTMetaType::ZTBadMetaType; }
bool ZTMetaClass::isDynamic() const { return false; }
unsigned int ZTMetaClass::classInfoOffset() const { return 0; }
unsigned int ZTMetaClass::classInfoCount() const { return 0; }
unsigned int ZTMetaClass::enumOffset() const { return 0; }
unsigned int ZTMetaClass::enumCount() const { return 0; }
unsigned int ZTMetaClass::propertyOffset() const { return 0; }
unsigned int ZTMetaClass::propertyCount() const { return 0; }
unsigned int ZTMetaClass::invokableOffset() const { return 0; }
unsigned int ZTMetaClass::invokableCount() const { return 0; }
const ZTMetaClassInfo* ZTMetaClass::classInfo(std::string_view) const { return nullptr; }
const ZTMetaClassInfo* ZTMetaClass::classInfo(unsigned int) const { return nullptr; }
const ZTMetaEnum* ZTMetaClass::metaEnum(unsigned int) const { return nullptr; }
const ZTMetaProperty* ZTMetaClass::property(unsigned int) const { return nullptr; }
const ZTMetaProperty* ZTMetaClass::property(std::string_view) const { return nullptr; }
const ZTMetaInvokable* ZTMetaClass::invokable(unsigned int) const { return nullptr; }
int ZTMetaClass::indexOfInvokable(std::string_view, bool, const std::type_index&) const { return -1; }
int ZTMetaClass::indexOfInvokable(void*) const { return -1; }
void* ZTMetaClass::userData() const { return nullptr; }
void ZTMetaClass::setUserData(void*) {}
ZTMetaClass::operator bool() const { return isSet(typeName()); }
// clang-format on

void ZTMetaInvokable::warnOfFewer() const
{
    ztLog("Zintar: Insufficient parameters supplied for ZTmetaInvokable invoke for invokable \"" +
              std::string(name()) + "\".",
          ZTLogType::Warning);
}

namespace
{
bool matches(const ZTMetaInvokable& invokable, std::string_view name, bool isConst,
             const std::vector<const ZTMetaType*>& parameterTypes)
{
    return invokable.isConst() == isConst && invokable.name() == name &&
           zt::detail::takesExactly(invokable, parameterTypes);
}
} // namespace

int ZTMetaClass::indexOfInvokable(std::string_view name, bool isConst,
                                  const std::vector<const ZTMetaType*>& parameterTypes) const
{
    for (unsigned int i = 0; i < invokableCount(); ++i) {
        const ZTMetaInvokable* candidate = invokable(i);
        if (candidate && matches(*candidate, name, isConst, parameterTypes))
            return static_cast<int>(i);
    }
    return -1;
}

const ZTMetaInvokable*
ZTMetaClass::invokable(std::string_view name, bool isConst,
                       const std::vector<const ZTMetaType*>& parameterTypes) const
{
    return invokable(indexOfInvokable(name, isConst, parameterTypes));
}

const ZTMetaInvokable* ZTMetaClass::invokable(void* function) const
{
    return invokable(indexOfInvokable(function));
}

bool ZTMetaClass::isDerivedFrom(const ZTMetaClass* other) const
{
    if (isDynamic())
        ztLog("Zintar: ZTMetaClass::isDerivedFrom called on dynamic meta class \"" +
                  std::string(typeName()) + "\".",
              ZTLogType::Warning);
    if (other && other->isDynamic())
        ztLog("Zintar: ZTMetaClass::isDerivedFrom called with dynamic meta class \"" +
                  std::string(other->typeName()) + "\".",
              ZTLogType::Warning);
    for (const ZTMetaClass* c = this; c; c = c->superClass())
        if (c == other)
            return true;
    return false;
}
