#include <zintar/staticmetaclass.h>

#include "membersbyname.h"
#include "ownorinherited.h"

using namespace zt::detail;

// clang-format off
ZTStaticMetaClassInfo::ZTStaticMetaClassInfo(const ZTStaticMetaClassInfoData* record) noexcept : data(record) {}
std::string_view ZTStaticMetaClassInfo::key() const { return data->key; }
std::string_view ZTStaticMetaClassInfo::value() const { return data->value; }

ZTStaticMetaEnum::ZTStaticMetaEnum(const ZTStaticMetaEnumData* record) noexcept : data(record) {}
std::string_view ZTStaticMetaEnum::name() const { return data->name; }
unsigned int ZTStaticMetaEnum::count() const { return data->count; }

ZTStaticMetaProperty::ZTStaticMetaProperty(const ZTStaticMetaPropertyData* record) noexcept : data(record) {}
std::string_view ZTStaticMetaProperty::name() const { return data->name; }
const ZTMetaType& ZTStaticMetaProperty::metaType() const { return typeOrBad(data->metaType); }
int ZTStaticMetaProperty::changeEventIndex() const { return data->changeEventIndex; }
const ZTMetaInvokable* ZTStaticMetaProperty::changeEvent() const { return data->changeEvent; }
bool ZTStaticMetaProperty::canGet() const { return data->getter != nullptr; }
bool ZTStaticMetaProperty::canSet() const { return data->setter != nullptr; }
unsigned int ZTStaticMetaProperty::propInfoCount() const { return data->propInfoCount; }
ZTStaticMetaPropertyData::Getter ZTStaticMetaProperty::getter() const noexcept { return data->getter; }
ZTStaticMetaPropertyData::Setter ZTStaticMetaProperty::setter() const noexcept { return data->setter; }

ZTStaticMetaInvokable::ZTStaticMetaInvokable(const ZTStaticMetaInvokableData* record) noexcept : data(record) {}
std::string_view ZTStaticMetaInvokable::name() const { return data->name; }
bool ZTStaticMetaInvokable::isConst() const { return data->isConst; }
bool ZTStaticMetaInvokable::isEvent() const { return data->isEvent; }
const ZTMetaType& ZTStaticMetaInvokable::returnMetaType() const { return typeOrBad(data->returnMetaType); }
unsigned int ZTStaticMetaInvokable::parameterCount() const { return data->parameterCount; }
ZTAccessSpecifier ZTStaticMetaInvokable::accessSpecifier() const { return data->accessSpecifier; }
int ZTStaticMetaInvokable::index() const { return data->index; }

ZTStaticMetaClass::~ZTStaticMetaClass() = default;
const ZTMetaClass* ZTStaticMetaClass::superClass() const { return data->superClass; }
std::string_view ZTStaticMetaClass::typeName() const { return data->typeName; }
const ZTMetaType& ZTStaticMetaClass::metaType() const { return typeOrBad(data->metaType); }
unsigned int ZTStaticMetaClass::classInfoOffset() const { return data->classInfoOffset; }
unsigned int ZTStaticMetaClass::classInfoCount() const { return data->classInfoOffset + data->classInfoCount; }
unsigned int ZTStaticMetaClass::enumOffset() const { return data->enumOffset; }
unsigned int ZTStaticMetaClass::enumCount() const { return data->enumOffset + data->enumCount; }
unsigned int ZTStaticMetaClass::propertyOffset() const { return data->propertyOffset; }
unsigned int ZTStaticMetaClass::propertyCount() const { return data->propertyOffset + data->propertyCount; }
unsigned int ZTStaticMetaClass::invokableOffset() const { return data->invokableOffset; }
unsigned int ZTStaticMetaClass::invokableCount() const { return data->invokableOffset + data->invokableCount; }
void* ZTStaticMetaClass::userData() const { return data->userData; }
// clang-format on

void ZTStaticMetaClass::setUserData(void* word)
{
    // The word is the host's and the table is too: only the descriptor's view of it is const.
    const_cast<ZTStaticMetaClassData*>(data)->userData = word;
}

std::string_view ZTStaticMetaEnum::enumerator(unsigned int index) const
{
    return data->enumerators && index < data->count ? data->enumerators[index] : emptyView;
}

int ZTStaticMetaEnum::value(unsigned int index) const
{
    return data->values && index < data->count ? data->values[index] : -1;
}

std::string_view ZTStaticMetaProperty::propInfoKey(unsigned int index) const
{
    return index < data->propInfoCount ? data->propInfos[index].key : emptyView;
}

std::string_view ZTStaticMetaProperty::propInfoValue(unsigned int index) const
{
    return index < data->propInfoCount ? data->propInfos[index].value : emptyView;
}

ZTVariant ZTStaticMetaProperty::get(const ZTVariant& object) const
{
    return data->getter ? data->getter(object) : ZTVariant();
}

ZTVariant ZTStaticMetaProperty::set(const ZTVariant& object, const ZTVariant& value) const
{
    return data->setter ? data->setter(object, value) : ZTVariant();
}

const ZTMetaType& ZTStaticMetaInvokable::parameterMetaType(unsigned int index) const
{
    bool known = data->parameterMetaTypes && index < data->parameterCount;
    return typeOrBad(known ? data->parameterMetaTypes[index] : nullptr);
}

ZTVariant ZTStaticMetaInvokable::invoke(const ZTVariant& object,
                                        const ZTArgumentArray& arguments) const
{
    return data->function ? data->function(object, arguments) : ZTVariant();
}

namespace
{
template <class Descriptor, class Record>
std::vector<Descriptor> describe(const Record* const* records, unsigned int count)
{
    std::vector<Descriptor> descriptors;
    if (!records)
        return descriptors;
    descriptors.reserve(count);
    for (unsigned int i = 0; i < count; ++i)
        descriptors.emplace_back(records[i]);
    return descriptors;
}
} // namespace

ZTStaticMetaClass::ZTStaticMetaClass(const ZTStaticMetaClassData* table)
    : data(table),
      classInfos(describe<ZTStaticMetaClassInfo>(table->classInfos, table->classInfoCount)),
      enums(describe<ZTStaticMetaEnum>(table->enums, table->enumCount)),
      properties(describe<ZTStaticMetaProperty>(table->properties, table->propertyCount)),
      invokables(describe<ZTStaticMetaInvokable>(table->invokables, table->invokableCount))
{}

// No copy has an index: it names the descriptors of the original.

ZTStaticMetaClass::ZTStaticMetaClass(const ZTStaticMetaClass& other) : ZTStaticMetaClass(other.data)
{}

ZTStaticMetaClass& ZTStaticMetaClass::operator=(const ZTStaticMetaClass& other)
{
    return this == &other ? *this : *this = ZTStaticMetaClass(other);
}

ZTStaticMetaClass::ZTStaticMetaClass(ZTStaticMetaClass&& other) noexcept
    : data(other.data),
      classInfos(std::move(other.classInfos)),
      enums(std::move(other.enums)),
      properties(std::move(other.properties)),
      invokables(std::move(other.invokables))
{}

ZTStaticMetaClass& ZTStaticMetaClass::operator=(ZTStaticMetaClass&& other) noexcept
{
    data = other.data;
    propertyIndex = nullptr;
    invokableIndex = nullptr;
    if (this != &other) {
        classInfos = std::move(other.classInfos);
        enums = std::move(other.enums);
        properties = std::move(other.properties);
        invokables = std::move(other.invokables);
    }
    return *this;
}

const ZTMetaClassInfo* ZTStaticMetaClass::classInfo(std::string_view key) const
{
    return memberNamed<ZTMetaClassInfo>(
        classInfos, [&](const auto& info) { return info.key() == key; }, data->superClass,
        [&](const ZTMetaClass& super) { return super.classInfo(key); });
}

const ZTMetaClassInfo* ZTStaticMetaClass::classInfo(unsigned int index) const
{
    return memberAt<ZTMetaClassInfo>(
        classInfos, data->classInfoOffset, index, data->superClass,
        [&](const ZTMetaClass& super) { return super.classInfo(index); });
}

const ZTMetaEnum* ZTStaticMetaClass::metaEnum(unsigned int index) const
{
    return memberAt<ZTMetaEnum>(enums, data->enumOffset, index, data->superClass,
                                [&](const ZTMetaClass& super) { return super.metaEnum(index); });
}

const ZTMetaProperty* ZTStaticMetaClass::property(unsigned int index) const
{
    return memberAt<ZTMetaProperty>(
        properties, data->propertyOffset, index, data->superClass,
        [&](const ZTMetaClass& super) { return super.property(index); });
}

const ZTMetaProperty* ZTStaticMetaClass::property(std::string_view name) const
{
    return propertyIndex ? propertyIndex->find(name) : propertyInTable(name);
}

const ZTMetaProperty* ZTStaticMetaClass::propertyInTable(std::string_view name) const
{
    return memberNamed<ZTMetaProperty>(
        properties, [&](const auto& property) { return property.name() == name; }, data->superClass,
        [&](const ZTMetaClass& super) { return super.property(name); });
}

const ZTMetaInvokable* ZTStaticMetaClass::invokable(unsigned int index) const
{
    return memberAt<ZTMetaInvokable>(
        invokables, data->invokableOffset, index, data->superClass,
        [&](const ZTMetaClass& super) { return super.invokable(index); });
}

namespace
{
/// What a callback of the table gives, in the class's index space.
int classWide(int position, unsigned int offset)
{
    return position < 0 ? -1 : position + static_cast<int>(offset);
}
} // namespace

int ZTStaticMetaClass::indexOfInvokable(std::string_view name, bool isConst,
                                        const std::type_index& signature) const
{
    int own = -1;
    if (invokableIndex)
        own = invokableIndex->find(name, isConst, signature);
    else if (data->indexOfInvokableBySignature)
        own = classWide(data->indexOfInvokableBySignature(this, name, isConst, signature),
                        data->invokableOffset);
    if (own >= 0)
        return own;
    return data->superClass ? data->superClass->indexOfInvokable(name, isConst, signature) : -1;
}

int ZTStaticMetaClass::indexOfInvokable(void* function) const
{
    int own = -1;
    if (data->indexOfInvokableByFunction)
        own = classWide(data->indexOfInvokableByFunction(this, function), data->invokableOffset);
    if (own >= 0)
        return own;
    return data->superClass ? data->superClass->indexOfInvokable(function) : -1;
}

namespace zt::detail
{
std::unique_ptr<ZTMetaClass> createStaticMetaClass(const ZTStaticMetaClassData* data)
{
    return std::make_unique<ZTStaticMetaClass>(data);
}
} // namespace zt::detail
