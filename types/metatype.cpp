#include "metatypeprivate.h"

#include <zintar/log.h>
#include <zintar/metaclass.h>

#include <utility>

ZTMetaTypePrivate::ZTMetaTypePrivate(std::string_view typeName, const std::type_info& type,
                                     zt::detail::CreateFunction createFunction,
                                     zt::detail::DestroyFunction destroyFunction,
                                     zt::detail::CreateDefaultFunction createDefaultFunction,
                                     zt::detail::CompareFunction compareFunction,
                                     zt::detail::SerializeFunction serializeFunction,
                                     zt::detail::DeserializeFunction deserializeFunction,
                                     zt::detail::PrintFunction printFunction,
                                     const ZTMetaClass* classOfType)
    : name(typeName),
      typeIndex(type),
      metaClass(classOfType),
      create(createFunction),
      destroy(destroyFunction),
      createDefault(createDefaultFunction),
      compare(compareFunction),
      serialize(serializeFunction),
      deserialize(deserializeFunction),
      print(printFunction)
{}

const ZTMetaType* ZTMetaTypeRegistry::find(std::string_view name) const
{
    const auto* found = names.find(name);
    return found ? *found : nullptr;
}

const ZTMetaType& ZTMetaTypeRegistry::add(ZTMetaTypePrivate* record)
{
    const ZTMetaType& handle = types.emplace(record->typeIndex, ZTMetaType(record)).first->second;
    if (!find(record->name))
        names.add(record->name, &handle);
    return handle;
}

void ZTMetaTypeRegistry::addAlias(const ZTMetaType& type, const std::string& alias)
{
    if (!alias.empty() && !find(alias))
        names.add(*ZTMetaTypePrivate::of(type).aliases.insert(alias).first, &type);
}

ZTMetaTypeRegistry& ztMetaTypeRegistry()
{
    static ZTMetaTypeRegistry registry;
    static bool filled = false;
    if (!filled) {
        // Set first: each registration below comes through here again.
        filled = true;
        zt::detail::registerBuiltInTypes();
    }
    return registry;
}

ZTMetaType::ZTMetaType() noexcept : priv(nullptr) {}
ZTMetaType::ZTMetaType(ZTMetaTypePrivate* record) noexcept : priv(record) {}
ZTMetaType::ZTMetaType(ZTMetaType&& other) noexcept : priv(std::exchange(other.priv, nullptr)) {}

ZTMetaType::~ZTMetaType() { delete priv; }

bool ZTMetaType::operator==(const ZTMetaType& other) const noexcept
{
    return this == &other || priv->typeIndex == other.priv->typeIndex;
}

std::string ZTMetaType::name() const { return priv->name; }

std::unordered_set<std::string> ZTMetaType::aliases() const { return priv->aliases; }

const ZTMetaClass* ZTMetaType::metaClass() const noexcept { return priv->metaClass; }

void* ZTMetaType::create(const void* source) const
{
    if (source)
        return priv->create ? priv->create(source) : nullptr;
    return priv->createDefault ? priv->createDefault() : nullptr;
}

void ZTMetaType::destroy(void* block) const
{
    if (priv->destroy)
        priv->destroy(block);
}

ZTPartialOrdering ZTMetaType::compare(const void* a, const void* b) const
{
    return priv->compare ? priv->compare(a, b) : ZTPartialOrdering::Unordered;
}

bool ZTMetaType::serialize(ZTDataStream& stream, const void* value) const
{
    if (priv->serialize)
        priv->serialize(stream, value);
    return priv->serialize != nullptr;
}

bool ZTMetaType::deserialize(ZTDataStream& stream, void* value) const
{
    if (priv->deserialize)
        priv->deserialize(stream, value);
    return priv->deserialize != nullptr;
}

bool ZTMetaType::print(std::ostream& stream, const void* value) const
{
    if (priv->print)
        priv->print(stream, value);
    return priv->print != nullptr;
}

const ZTMetaType& ztMetaType(const std::string& name)
{
    const ZTMetaType* found = ztMetaTypeRegistry().find(name);
    return found ? *found : ZTMetaType::ZTBadMetaType;
}

namespace zt::detail
{
const ZTMetaType* ztMetaType(const std::type_index& type)
{
    const auto& types = ztMetaTypeRegistry().types;
    auto found = types.find(type);
    return found == types.end() ? nullptr : &found->second;
}

bool isInBlocks(const ZTMetaType& type) { return ZTMetaTypePrivate::of(type).isInBlocks; }

namespace
{
void warnOfNamesake(const std::string& name)
{
    ztLog("Zintar: ZTMetaType registration of a second type with name \"" + name +
              "\". Its values are read from streams as those of the first one.",
          ZTLogType::Warning);
}
} // namespace

void warnOfTakenName(const ZTMetaType& type)
{
    const std::string& name = ZTMetaTypePrivate::of(type).name;
    if (ztMetaTypeRegistry().find(name) != &type)
        warnOfNamesake(name);
}

void warnOfTakenIdentity(const ZTMetaType& type, DestroyFunction destroy)
{
    const ZTMetaTypePrivate& record = ZTMetaTypePrivate::of(type);
    if (record.isInBlocks && record.destroy != destroy)
        warnOfNamesake(record.name);
}

const ZTMetaType& ztRegisterMetaType(const std::type_info& type, std::string_view name,
                                     const std::string& alias, CreateFunction create,
                                     DestroyFunction destroy, CreateDefaultFunction createDefault,
                                     CompareFunction compare, SerializeFunction serialize,
                                     DeserializeFunction deserialize, PrintFunction print,
                                     const ZTMetaClass* metaClass, bool inBlocks,
                                     AssignFunction assign)
{
    ZTMetaTypeRegistry& registry = ztMetaTypeRegistry();
    const ZTMetaType* handle = ztMetaType(type);
    if (!handle) {
        auto* record = new ZTMetaTypePrivate(name, type, create, destroy, createDefault, compare,
                                             serialize, deserialize, print, metaClass);
        record->isInBlocks = inBlocks;
        record->assign = assign;
        handle = &registry.add(record);
    }
    registry.addAlias(*handle, alias);
    return *handle;
}
} // namespace zt::detail
