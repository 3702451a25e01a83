#include "memberbuilderprivate.h"
#include "metaclassbuilderprivate.h"

#include <zintar/classrecord.h>
#include <zintar/metaclassbuilder.h>
#include <zintar/staticmetaclass.h>

#include <string>
#include <utility>

ZTMetaPropertyBuilder::ZTMetaPropertyBuilder()
    : ZTMetaPropertyBuilder(nullptr, std::make_shared<ZTDynamicMetaProperty>(), nullptr)
{}

ZTMetaPropertyBuilder::ZTMetaPropertyBuilder(ZTMetaClassBuilder* classBuilder,
                                             std::shared_ptr<ZTDynamicMetaProperty> descriptor,
                                             const ZTMetaProperty* prototype)
    : priv(new ZTMetaPropertyBuilderPrivate{std::move(descriptor),
                                            classBuilder ? classBuilder->priv->identity : 0})
{
    if (!prototype)
        return;
    setName(prototype->name());
    setMetaType(prototype->metaType());
    copyFunctions(*prototype);
    if (classBuilder)
        copyChangeEvent(*prototype, *classBuilder);
    for (unsigned int i = 0; i < prototype->propInfoCount(); ++i)
        addPropInfo(prototype->propInfoKey(i), prototype->propInfoValue(i));
}

ZTMetaPropertyBuilder::~ZTMetaPropertyBuilder() = default;

void ZTMetaPropertyBuilder::copyFunctions(const ZTMetaProperty& prototype)
{
    if (prototype.isDynamic()) {
        const auto& source = static_cast<const ZTDynamicMetaProperty&>(prototype);
        setUntypedGetter(source.m_getter);
        setUntypedSetter(source.m_setter);
        priv->descriptor->m_read = source.m_read;
        priv->descriptor->m_written = source.m_written;
    } else if (const auto* source = dynamic_cast<const ZTStaticMetaProperty*>(&prototype)) {
        setUntypedGetter(source->getter());
        setUntypedSetter(source->setter());
    }
}

/// By number: the invokables of the class under construction stand in the order of the prototype's.
void ZTMetaPropertyBuilder::copyChangeEvent(const ZTMetaProperty& prototype,
                                            ZTMetaClassBuilder& classBuilder)
{
    int index = prototype.changeEventIndex();
    if (index < 0)
        return;
    const ZTMetaClass* super = classBuilder.superClass();
    unsigned int inherited = super ? super->invokableCount() : 0;
    // An inherited event wraps round to a position that no class has, and links nothing.
    setChangeEvent(classBuilder.invokable(static_cast<unsigned int>(index) - inherited));
}

std::string_view ZTMetaPropertyBuilder::name() const { return priv->descriptor->name(); }

void ZTMetaPropertyBuilder::setName(std::string_view name)
{
    priv->descriptor->m_name = std::string(name);
}

const ZTMetaType& ZTMetaPropertyBuilder::metaType() const { return priv->descriptor->metaType(); }

void ZTMetaPropertyBuilder::setMetaType(const ZTMetaType& type)
{
    priv->descriptor->m_metaType = &type;
}

bool ZTMetaPropertyBuilder::canGet() const
{
    const ZTDynamicMetaProperty& property = *priv->descriptor;
    return (property.m_accessFlags & ZTClassRecordFlags::Readable) || property.canGet();
}

bool ZTMetaPropertyBuilder::canSet() const
{
    const ZTDynamicMetaProperty& property = *priv->descriptor;
    return (property.m_accessFlags & ZTClassRecordFlags::Writable) || property.canSet();
}

zt::detail::GetterFunction ZTMetaPropertyBuilder::getter() const
{
    return priv->descriptor->m_getter;
}

zt::detail::SetterFunction ZTMetaPropertyBuilder::setter() const
{
    return priv->descriptor->m_setter;
}

namespace
{
void clearFlag(unsigned char& flags, unsigned char flag)
{
    flags = static_cast<unsigned char>(flags & ~flag);
}
} // namespace

void ZTMetaPropertyBuilder::setUntypedGetter(zt::detail::GetterFunction getter)
{
    clearFlag(priv->descriptor->m_accessFlags, ZTClassRecordFlags::Readable);
    std::shared_ptr<const zt::detail::StoredProperty> none;
    priv->descriptor->m_read.swap(none);
    priv->descriptor->m_getter.swap(getter); // the old one, of the host, ends last
}

void ZTMetaPropertyBuilder::setUntypedSetter(zt::detail::SetterFunction setter)
{
    clearFlag(priv->descriptor->m_accessFlags, ZTClassRecordFlags::Writable);
    std::shared_ptr<const zt::detail::StoredProperty> none;
    priv->descriptor->m_written.swap(none);
    priv->descriptor->m_setter.swap(setter);
}

void ZTMetaPropertyBuilder::setStored(const ZTVariant& start)
{
    std::shared_ptr<const zt::detail::StoredProperty> stored;
    if (start)
        stored = std::make_shared<const zt::detail::StoredProperty>(start);
    setMetaType(start.type());
    setUntypedGetter({});
    setUntypedSetter({});
    priv->descriptor->m_read = stored;
    priv->descriptor->m_written = std::move(stored);
}

unsigned int ZTMetaPropertyBuilder::propInfoCount() const
{
    return priv->descriptor->propInfoCount();
}

std::string_view ZTMetaPropertyBuilder::propInfoKey(unsigned int index) const
{
    return priv->descriptor->propInfoKey(index);
}

std::string_view ZTMetaPropertyBuilder::propInfoValue(unsigned int index) const
{
    return priv->descriptor->propInfoValue(index);
}

void ZTMetaPropertyBuilder::addPropInfo(std::string_view key, std::string_view value)
{
    priv->descriptor->m_propInfos.emplace_back(key, value);
}

void ZTMetaPropertyBuilder::removePropInfo(unsigned int index)
{
    auto& infos = priv->descriptor->m_propInfos;
    if (index < infos.size())
        infos.erase(infos.begin() + index);
}

int ZTMetaPropertyBuilder::changeEventIndex() const { return priv->descriptor->changeEventIndex(); }

void ZTMetaPropertyBuilder::setChangeEvent(const ZTMetaInvokableBuilder& event)
{
    if (event.priv->builderIdentity == priv->builderIdentity)
        priv->descriptor->m_changeEvent = event.priv->descriptor;
}

void ZTMetaPropertyBuilder::clearChangeEvent() { priv->descriptor->m_changeEvent.reset(); }
