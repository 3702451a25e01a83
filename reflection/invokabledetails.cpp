#include "dynamicmetaclass.h"

#include <zintar/staticmetaclass.h>

#include <algorithm>
#include <span>

using zt::detail::emptyView;
using zt::detail::ZTPartInfo;

// What both families of descriptors know of the parameters of an invokable, and its annotations. A
// descriptor that was cut down to its abstract type by a copy is of neither.

namespace
{
/// Where the details of an invokable stand.
struct Details {
    explicit Details(const ZTMetaInvokable& invokable)
    {
        if (invokable.isDynamic())
            made = static_cast<const ZTDynamicMetaInvokable&>(invokable).m_details.get();
        else if (const auto* declared = dynamic_cast<const ZTStaticMetaInvokable*>(&invokable))
            record = declared->record()->details;
    }

    const zt::detail::ZTStaticMetaInvokableDetails* record = nullptr;
    const ZTDynamicMetaInvokable::Details* made = nullptr;
};

std::span<const ZTVariant> defaultArgumentsOf(const Details& details)
{
    if (details.record)
        return {details.record->defaultArguments, details.record->defaultCount};
    return details.made ? std::span<const ZTVariant>(details.made->defaultArguments)
                        : std::span<const ZTVariant>();
}

std::span<const ZTPartInfo> infosOf(const zt::detail::ZTStaticMetaInvokableDetails& record)
{
    return {record.infos, record.infoCount};
}
} // namespace

std::string_view ZTMetaInvokable::parameterName(unsigned int index) const
{
    if (index >= parameterCount())
        return emptyView;
    const Details details(*this);
    if (details.record && details.record->parameterNames)
        return details.record->parameterNames[index];
    if (details.made && index < details.made->parameterNames.size())
        return details.made->parameterNames[index];
    return emptyView;
}

const ZTVariant* ZTMetaInvokable::defaultArgument(unsigned int index) const
{
    const unsigned int count = parameterCount();
    const auto defaults = defaultArgumentsOf(Details(*this));
    // Of a class under construction there may be more of them than parameters.
    return index < count && count - index <= defaults.size()
               ? &defaults[defaults.size() - (count - index)]
               : nullptr;
}

unsigned int ZTMetaInvokable::requiredArgumentCount() const
{
    const unsigned int count = parameterCount();
    const std::size_t defaults = defaultArgumentsOf(Details(*this)).size();
    return count - static_cast<unsigned int>(std::min<std::size_t>(defaults, count));
}

unsigned int ZTMetaInvokable::infoCountOf(int part) const
{
    const Details details(*this);
    return details.record ? zt::detail::countInfos(infosOf(*details.record), part)
           : details.made ? zt::detail::countInfos(details.made->infos, part)
                          : 0;
}

std::string_view ZTMetaInvokable::infoTextOf(int part, unsigned int index, bool isKey) const
{
    const Details details(*this);
    return details.record ? zt::detail::infoText(infosOf(*details.record), part, index, isKey)
           : details.made ? zt::detail::infoText(details.made->infos, part, index, isKey)
                          : emptyView;
}

// clang-format off
unsigned int ZTMetaInvokable::infoCount() const { return infoCountOf(ZTPartInfo::Whole); }
std::string_view ZTMetaInvokable::infoKey(unsigned int index) const { return infoTextOf(ZTPartInfo::Whole, index, true); }
std::string_view ZTMetaInvokable::infoValue(unsigned int index) const { return infoTextOf(ZTPartInfo::Whole, index, false); }
unsigned int ZTMetaInvokable::parameterInfoCount(unsigned int parameter) const { return infoCountOf(static_cast<int>(parameter)); }
std::string_view ZTMetaInvokable::parameterInfoKey(unsigned int parameter, unsigned int index) const { return infoTextOf(static_cast<int>(parameter), index, true); }
std::string_view ZTMetaInvokable::parameterInfoValue(unsigned int parameter, unsigned int index) const { return infoTextOf(static_cast<int>(parameter), index, false); }
// clang-format on

void ZTMetaInvokable::warnOfFewerThanRequired(unsigned int given) const
{
    if (given < requiredArgumentCount())
        warnOfFewer();
}

void ZTMetaInvokable::fillUp(zt::detail::LentArguments& arguments, unsigned int given) const
{
    for (unsigned int i = given; i < std::min(parameterCount(), MaxParamCount); ++i)
        if (const ZTVariant* stored = defaultArgument(i))
            arguments.lend(i, *stored);
}

ZTVariant ZTMetaInvokable::invoke(const ZTVariant& object) const
{
    if (parameterCount() == 0)
        return invoke(object, ZTArgumentArray{});
    warnOfFewerThanRequired(0);
    zt::detail::LentArguments arguments;
    fillUp(arguments, 0);
    return invoke(object, arguments);
}
