#include "memberbuilderprivate.h"
#include "metaclassbuilderprivate.h"

#include <zintar/metaclassbuilder.h>

#include <string>
#include <utility>

ZTMetaInvokableBuilder::ZTMetaInvokableBuilder()
    : ZTMetaInvokableBuilder(nullptr, std::make_shared<ZTDynamicMetaInvokable>(nullptr), nullptr)
{}

ZTMetaInvokableBuilder::ZTMetaInvokableBuilder(ZTMetaClassBuilder* classBuilder,
                                               std::shared_ptr<ZTDynamicMetaInvokable> descriptor,
                                               const ZTMetaInvokable* prototype)
    : priv(new ZTMetaInvokableBuilderPrivate{std::move(descriptor),
                                             classBuilder ? classBuilder->priv->identity : 0})
{
    if (!prototype)
        return;
    ZTDynamicMetaInvokable& copy = *priv->descriptor;
    copy.m_name = std::string(prototype->name());
    copy.m_isConst = prototype->isConst();
    copy.m_isEvent = prototype->isEvent();
    copy.m_returnMetaType = &prototype->returnMetaType();
    for (unsigned int i = 0; i < prototype->parameterCount(); ++i)
        copy.m_parameterMetaTypes.push_back(&prototype->parameterMetaType(i));
    copy.m_access = prototype->accessSpecifier();
    // The function of a declared class is in its table, and a descriptor does not hand it out.
    if (prototype->isDynamic()) {
        const auto& source = static_cast<const ZTDynamicMetaInvokable&>(*prototype);
        setUntypedFunction(source.m_function, source.m_functionKey);
        copy.m_raisesItself = source.m_raisesItself;
    }
}

ZTMetaInvokableBuilder::~ZTMetaInvokableBuilder() = default;

std::string_view ZTMetaInvokableBuilder::name() const { return priv->descriptor->name(); }

void ZTMetaInvokableBuilder::setName(std::string_view name)
{
    priv->descriptor->m_name = std::string(name);
}

bool ZTMetaInvokableBuilder::isConst() const { return priv->descriptor->isConst(); }

void ZTMetaInvokableBuilder::setIsConst(bool isConst) { priv->descriptor->m_isConst = isConst; }

bool ZTMetaInvokableBuilder::isEvent() const { return priv->descriptor->isEvent(); }

void ZTMetaInvokableBuilder::setIsEvent(bool isEvent) { priv->descriptor->m_isEvent = isEvent; }

const ZTMetaType& ZTMetaInvokableBuilder::returnMetaType() const
{
    return priv->descriptor->returnMetaType();
}

void ZTMetaInvokableBuilder::setReturnMetaType(const ZTMetaType& type)
{
    priv->descriptor->m_returnMetaType = &type;
}

std::vector<const ZTMetaType*> ZTMetaInvokableBuilder::parameterMetaTypes() const
{
    return priv->descriptor->m_parameterMetaTypes;
}

void ZTMetaInvokableBuilder::setParameterMetaTypes(const std::vector<const ZTMetaType*>& types)
{
    priv->descriptor->m_parameterMetaTypes = types;
}

ZTAccessSpecifier ZTMetaInvokableBuilder::accessSpecifier() const
{
    return priv->descriptor->accessSpecifier();
}

void ZTMetaInvokableBuilder::setAccessSpecifier(ZTAccessSpecifier access)
{
    priv->descriptor->m_access = access;
}

zt::detail::InvokableFunction ZTMetaInvokableBuilder::function() const
{
    return priv->descriptor->m_function;
}

void ZTMetaInvokableBuilder::setUntypedFunction(zt::detail::InvokableFunction function, void* key)
{
    priv->descriptor->m_functionKey = key;
    priv->descriptor->m_raisesItself = false;
    priv->descriptor->m_function.swap(function); // the old one, of the host, ends last
}

void ZTMetaInvokableBuilder::setEvent(const std::vector<const ZTMetaType*>& parameterTypes)
{
    setParameterMetaTypes(parameterTypes); // first, since it alone can fail
    setIsEvent(true);
    setReturnMetaType(ztMetaType<void>());
    zt::detail::InvokableFunction none;
    priv->descriptor->m_functionKey = nullptr;
    priv->descriptor->m_raisesItself = true;
    priv->descriptor->m_function.swap(none);
}
