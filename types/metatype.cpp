#include "shapes.h"

#include <zintar/log.h>

#include <memory>
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
    const zt::detail::NameKey key(name);
    const ZTMetaTypeName* found =
        m_names.find(key.shortHash(),
                     [&](const ZTMetaTypeName& candidate) { return candidate.name.key() == key; });
    return found ? &found->type : nullptr;
}

const ZTMetaType* ZTMetaTypeRegistry::find(const std::type_index& type) const
{
    const RegisteredType* found =
        m_types.find(type.hash_code(), [&](const RegisteredType& candidate) {
            return ZTMetaTypePrivate::of(candidate.handle).typeIndex == type;
        });
    return found ? &found->handle : nullptr;
}

const ZTMetaType& ZTMetaTypeRegistry::add(std::unique_ptr<ZTMetaTypePrivate> record,
                                          const std::string& alias)
{
    std::unique_lock writing(m_writing);
    if (const ZTMetaType* known = find(record->typeIndex)) {
        writing.unlock();
        addAlias(*known, alias);
        return *known;
    }
    auto type = std::make_unique<RegisteredType>(std::move(record));
    const ZTMetaType& handle = type->handle;
    const std::string& name = ZTMetaTypePrivate::of(handle).name;
    std::unique_ptr<ZTMetaTypeName> primaryName, otherName;
    if (!find(name))
        primaryName = std::make_unique<ZTMetaTypeName>(zt::detail::KeptName::viewOf(name), handle);
    if (!alias.empty() && alias != name && !find(alias))
        otherName = std::make_unique<ZTMetaTypeName>(zt::detail::KeptName::copyOf(alias), handle);
    m_types.makeRoom(1);
    m_names.makeRoom(2);
    // From here on nothing can fail.
    m_types.add(type.release());
    if (primaryName)
        m_names.add(primaryName.release());
    if (otherName)
        publishAlias(std::move(otherName));
    return handle;
}

void ZTMetaTypeRegistry::addAlias(const ZTMetaType& type, const std::string& alias)
{
    if (alias.empty())
        return;
    const std::scoped_lock writing(m_writing);
    if (find(alias))
        return;
    auto name = std::make_unique<ZTMetaTypeName>(zt::detail::KeptName::copyOf(alias), type);
    m_names.makeRoom(1);
    publishAlias(std::move(name));
}

void ZTMetaTypeRegistry::publishAlias(std::unique_ptr<ZTMetaTypeName> alias) noexcept
{
    auto& aliases = ZTMetaTypePrivate::of(alias->type).aliases;
    alias->next = aliases.load(std::memory_order_relaxed);
    aliases.store(alias.get(), std::memory_order_release);
    m_names.add(alias.release());
}

void ZTMetaTypeRegistry::setConverter(const ZTMetaType& from, const ZTMetaType& to,
                                      zt::detail::ConverterFunction converter)
{
    const std::scoped_lock writing(m_writing);
    ZTMetaTypePrivate& source = ZTMetaTypePrivate::of(from);
    if (ZTConverter* known = source.converterTo(to))
        known->function.store(converter, std::memory_order_release);
    else
        appendConverter(source, to, converter);
}

void ZTMetaTypeRegistry::addConverter(const ZTMetaType& from, const ZTMetaType& to,
                                      zt::detail::ConverterFunction converter)
{
    const std::scoped_lock writing(m_writing);
    ZTMetaTypePrivate& source = ZTMetaTypePrivate::of(from);
    if (!source.converterTo(to))
        appendConverter(source, to, converter);
}

void ZTMetaTypeRegistry::appendConverter(ZTMetaTypePrivate& source, const ZTMetaType& to,
                                         zt::detail::ConverterFunction converter)
{
    auto added = std::make_unique<ZTConverter>(to, converter);
    source.convertersTo.makeRoom(1);
    source.convertersTo.add(added.release());
}

ZTMetaTypeRegistry& ztMetaTypeRegistry()
{
    // Never destroyed, like all that the library keeps for the process: code of a host that runs at
    // its end may still ask.
    static ZTMetaTypeRegistry& registry = []() -> ZTMetaTypeRegistry& {
        auto& made = *new ZTMetaTypeRegistry;
        zt::detail::registerBuiltInTypes(made);
        return made;
    }();
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

std::unordered_set<std::string> ZTMetaType::aliases() const
{
    std::unordered_set<std::string> texts;
    const ZTMetaTypeName* alias = priv->aliases.load(std::memory_order_acquire);
    for (; alias; alias = alias->next)
        texts.emplace(alias->name.text());
    return texts;
}

const ZTMetaClass* ZTMetaType::metaClass() const
{
    const ZTMetaClass* known = priv->metaClass.load(std::memory_order_acquire);
    if (known || !priv->findClass) [[likely]]
        return known;
    known = &priv->findClass();
    priv->metaClass.store(known, std::memory_order_release);
    return known;
}

void* ZTMetaType::create(const void* source) const
{
    if (source && priv->isPlain())
        return priv->copyPlain(source);
    if (source)
        return priv->create ? priv->create(source) : nullptr;
    return priv->createDefault ? priv->createDefault() : nullptr;
}

void ZTMetaType::destroy(void* block) const
{
    if (priv->isPlain() && block) [[likely]]
        ZTMetaTypePrivate::destroyPlain(block);
    else if (priv->destroy)
        priv->destroy(block);
}

ZTPartialOrdering ZTMetaType::compare(const void* a, const void* b) const
{
    return priv->compare ? priv->compare(a, b) : zt::detail::compareParts(*priv, a, b);
}

bool ZTMetaType::serialize(ZTDataStream& stream, const void* value) const
{
    const bool byParts = !priv->serialize && zt::detail::canWriteParts(*priv);
    if (priv->serialize)
        priv->serialize(stream, value);
    else if (byParts)
        zt::detail::writeParts(stream, *priv, value);
    return priv->serialize || byParts;
}

bool ZTMetaType::deserialize(ZTDataStream& stream, void* value) const
{
    const bool byParts = !priv->deserialize && zt::detail::canReadParts(*priv);
    if (priv->deserialize)
        priv->deserialize(stream, value);
    else if (byParts)
        zt::detail::readParts(stream, *this, value);
    return priv->deserialize || byParts;
}

bool ZTMetaType::print(std::ostream& stream, const void* value) const
{
    const bool byParts = !priv->print && zt::detail::canPrintParts(*priv);
    if (priv->print)
        priv->print(stream, value);
    else if (byParts)
        zt::detail::printParts(stream, *priv, value);
    return priv->print || byParts;
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
    return ztMetaTypeRegistry().find(type);
}

bool isInBlocks(const ZTMetaType& type) { return ZTMetaTypePrivate::of(type).blockSize != 0; }

void warnOfNamesake(const std::string& name)
{
    ztLog("Zintar: ZTMetaType registration of a second type with name \"" + name +
              "\". Its values are read from streams as those of the first one.",
          ZTLogType::Warning);
}

void warnOfTakenName(const ZTMetaType& type)
{
    const std::string& name = ZTMetaTypePrivate::of(type).name;
    if (ztMetaTypeRegistry().find(name) != &type)
        warnOfNamesake(name);
}

void warnOfTakenIdentity(const ZTMetaType& type, DestroyFunction destroy)
{
    const ZTMetaTypePrivate& record = ZTMetaTypePrivate::of(type);
    if (record.blockSize != 0 && record.destroy != destroy)
        warnOfNamesake(record.name);
}

const ZTMetaType& ztRegisterMetaType(const std::type_info& type, std::string_view name,
                                     const std::string& alias, CreateFunction create,
                                     DestroyFunction destroy, CreateDefaultFunction createDefault,
                                     CompareFunction compare, SerializeFunction serialize,
                                     DeserializeFunction deserialize, PrintFunction print,
                                     const ZTMetaClass* metaClass, unsigned int blockSize,
                                     AssignFunction assign, ClassFunction findClass,
                                     const Shape* shape)
{
    ZTMetaTypeRegistry& registry = ztMetaTypeRegistry();
    if (const ZTMetaType* known = registry.find(type)) {
        registry.addAlias(*known, alias);
        return *known;
    }
    auto record =
        std::make_unique<ZTMetaTypePrivate>(name, type, create, destroy, createDefault, compare,
                                            serialize, deserialize, print, metaClass);
    record->setStorage(blockSize, assign);
    record->findClass = findClass;
    record->shape = shape;
    return registry.add(std::move(record), alias);
}
} // namespace zt::detail
