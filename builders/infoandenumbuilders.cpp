#include "memberbuilderprivate.h"

#include <zintar/metaclassbuilder.h>

#include <string>
#include <utility>

ZTMetaClassInfoBuilder::ZTMetaClassInfoBuilder()
    : ZTMetaClassInfoBuilder(std::make_shared<ZTDynamicMetaClassInfo>(), nullptr)
{}

ZTMetaClassInfoBuilder::ZTMetaClassInfoBuilder(std::shared_ptr<ZTDynamicMetaClassInfo> descriptor,
                                               const ZTMetaClassInfo* prototype)
    : priv(new ZTMetaClassInfoBuilderPrivate{std::move(descriptor)})
{
    if (prototype) {
        setKey(prototype->key());
        setValue(prototype->value());
    }
}

ZTMetaClassInfoBuilder::~ZTMetaClassInfoBuilder() = default;

std::string_view ZTMetaClassInfoBuilder::key() const { return priv->descriptor->key(); }

void ZTMetaClassInfoBuilder::setKey(std::string_view key)
{
    priv->descriptor->m_key = std::string(key);
}

std::string_view ZTMetaClassInfoBuilder::value() const { return priv->descriptor->value(); }

void ZTMetaClassInfoBuilder::setValue(std::string_view value)
{
    priv->descriptor->m_value = std::string(value);
}

ZTMetaEnumBuilder::ZTMetaEnumBuilder()
    : ZTMetaEnumBuilder(std::make_shared<ZTDynamicMetaEnum>(), nullptr)
{}

ZTMetaEnumBuilder::ZTMetaEnumBuilder(std::shared_ptr<ZTDynamicMetaEnum> descriptor,
                                     const ZTMetaEnum* prototype)
    : priv(new ZTMetaEnumBuilderPrivate{std::move(descriptor)})
{
    if (!prototype)
        return;
    setName(prototype->name());
    // As it is, also where names or values repeat.
    for (unsigned int i = 0; i < prototype->count(); ++i) {
        priv->descriptor->m_enumerators.emplace_back(prototype->enumerator(i));
        priv->descriptor->m_values.push_back(prototype->value(i));
    }
    setMetaType(prototype->metaType());
    setIsFlags(prototype->isFlags());
    for (unsigned int i = 0; i < prototype->infoCount(); ++i)
        addInfo(prototype->infoKey(i), prototype->infoValue(i));
    for (unsigned int e = 0; e < prototype->count(); ++e)
        for (unsigned int i = 0; i < prototype->enumeratorInfoCount(e); ++i)
            addEnumeratorInfo(e, prototype->enumeratorInfoKey(e, i),
                              prototype->enumeratorInfoValue(e, i));
}

ZTMetaEnumBuilder::~ZTMetaEnumBuilder() = default;

std::string_view ZTMetaEnumBuilder::name() const { return priv->descriptor->name(); }

void ZTMetaEnumBuilder::setName(std::string_view name)
{
    priv->descriptor->m_name = std::string(name);
}

int ZTMetaEnumBuilder::count() const { return static_cast<int>(priv->descriptor->count()); }

std::string_view ZTMetaEnumBuilder::enumerator(unsigned int index) const
{
    return priv->descriptor->enumerator(index);
}

int ZTMetaEnumBuilder::value(unsigned int index) const { return priv->descriptor->value(index); }

bool ZTMetaEnumBuilder::add(std::string_view name, int value)
{
    return priv->descriptor->add(std::string(name), value);
}

void ZTMetaEnumBuilder::remove(unsigned int index) { priv->descriptor->remove(index); }

const ZTMetaType& ZTMetaEnumBuilder::metaType() const { return priv->descriptor->metaType(); }

void ZTMetaEnumBuilder::setMetaType(const ZTMetaType& type)
{
    priv->descriptor->m_metaType = &type;
}

bool ZTMetaEnumBuilder::isFlags() const { return priv->descriptor->m_isFlags; }

void ZTMetaEnumBuilder::setIsFlags(bool isFlags) { priv->descriptor->m_isFlags = isFlags; }

void ZTMetaEnumBuilder::addInfo(std::string_view key, std::string_view value)
{
    priv->descriptor->m_infos.push_back({std::string(key), std::string(value)});
}

void ZTMetaEnumBuilder::addEnumeratorInfo(unsigned int enumerator, std::string_view key,
                                          std::string_view value)
{
    if (enumerator < priv->descriptor->count())
        priv->descriptor->m_infos.push_back(
            {std::string(key), std::string(value), static_cast<int>(enumerator)});
}

void ZTMetaEnumBuilder::clearInfos() { priv->descriptor->m_infos.clear(); }
