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
    copyDetails(*prototype);
    // The function of a declared class is in its table, and a descriptor does not hand it out.
    if (prototype->isDynamic()) {
        const auto& source = static_cast<const ZTDynamicMetaInvokable&>(*prototype);
        setUntypedFunction(source.m_function, source.m_functionKey);
        copy.m_raisesItself = source.m_raisesItself;
    }
}

ZTMetaInvokableBuilder::~ZTMetaInvokableBuilder() = default;

/// What most invokables do not have.
void ZTMetaInvokableBuilder::copyDetails(const ZTMetaInvokable& prototype)
{
    const unsigned int count = prototype.parameterCount();
    std::vector<std::string> names;
    for (unsigned int i = 0; i < count; ++i)
        if (const std::string_view name = prototype.parameterName(i); !name.empty()) {
            names.resize(i);
            names.emplace_back(name);
        }
    if (!names.empty())
        setParameterNames(std::move(names));
    std::vector<ZTVariant> values;
    for (unsigned int i = prototype.requiredArgumentCount(); i < count; ++i)
        values.push_back(*prototype.defaultArgument(i));
    if (!values.empty())
        setDefaultArguments(std::move(values));
    for (unsigned int i = 0; i < prototype.infoCount(); ++i)
        addInfo(prototype.infoKey(i), prototype.infoValue(i));
    for (unsigned int p = 0; p < count; ++p)
        for (unsigned int i = 0; i < prototype.parameterInfoCount(p); ++i)
            addParameterInfo(p, prototype.parameterInfoKey(p, i),
                             prototype.parameterInfoValue(p, i));
}

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

std::string_view ZTMetaInvokableBuilder::parameterName(unsigned int index) const
{
    return priv->descriptor->parameterName(index);
}

void ZTMetaInvokableBuilder::setParameterNames(std::vector<std::string> names)
{
    priv->descriptor->details().parameterNames = std::move(names);
}

const ZTVariant* ZTMetaInvokableBuilder::defaultArgument(unsigned int index) const
{
    return priv->descriptor->defaultArgument(index);
}

void ZTMetaInvokableBuilder::setDefaultArguments(std::vector<ZTVariant> arguments)
{
    // The old ones, of the host, end last.
    priv->descriptor->details().defaultArguments.swap(arguments);
}

void ZTMetaInvokableBuilder::addInfo(std::string_view key, std::string_view value)
{
    priv->descriptor->details().infos.push_back({std::string(key), std::string(value)});
}

void ZTMetaInvokableBuilder::addParameterInfo(unsigned int parameter, std::string_view key,
                                              std::string_view value)
{
    priv->descriptor->details().infos.push_back(
        {std::string(key), std::string(value), static_cast<int>(parameter)});
}

void ZTMetaInvokableBuilder::clearInfos()
{
    if (priv->descriptor->m_details)
        priv->descriptor->m_details->infos.clear();
}
