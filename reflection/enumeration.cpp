#include <zintar/enumeration.h>

#include "../types/metatypeprivate.h"
#include "dynamicmetaclass.h"

#include <zintar/staticmetaclass.h>

#include <span>

using zt::detail::emptyView;
using zt::detail::typeOrBad;
using zt::detail::ZTPartInfo;

// What both families of descriptors know of an enumeration, beyond what the abstract one asks them
// for. A descriptor that was cut down to its abstract type by a copy is of neither.

namespace
{
/// Calls with the record of a declared enumeration or with the descriptor of another; gives
/// `otherwise` for one of neither family.
template <class Result, class OfStatic, class OfDynamic>
Result ofEither(const ZTMetaEnum& metaEnum, Result otherwise, const OfStatic& ofStatic,
                const OfDynamic& ofDynamic)
{
    if (const auto* declared = dynamic_cast<const ZTStaticMetaEnum*>(&metaEnum))
        return ofStatic(*declared->record());
    if (const auto* made = dynamic_cast<const ZTDynamicMetaEnum*>(&metaEnum))
        return ofDynamic(*made);
    return otherwise;
}

std::span<const ZTPartInfo> infosOf(const zt::detail::ZTStaticMetaEnumData& record)
{
    return {record.infos, record.infoCount};
}

std::string_view withoutBlanks(std::string_view text)
{
    constexpr std::string_view blanks = " \t";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::optional<int> valueOfOne(const ZTMetaEnum& metaEnum, std::string_view name)
{
    for (unsigned int i = 0; i < metaEnum.count(); ++i)
        if (metaEnum.enumerator(i) == name)
            return metaEnum.value(i);
    return std::nullopt;
}

std::optional<int> valueOfSeveral(const ZTMetaEnum& flags, std::string_view names)
{
    if (withoutBlanks(names).empty())
        return valueOfOne(flags, names).value_or(0);
    unsigned int bits = 0;
    while (true) {
        const std::size_t end = names.find('|');
        const std::optional<int> one = valueOfOne(flags, withoutBlanks(names.substr(0, end)));
        if (!one)
            return std::nullopt;
        bits |= static_cast<unsigned int>(*one);
        if (end == std::string_view::npos)
            return static_cast<int>(bits);
        names.remove_prefix(end + 1);
    }
}

std::optional<std::string> nameOfSeveral(const ZTMetaEnum& flags, int value)
{
    const auto bits = static_cast<unsigned int>(value);
    unsigned int left = bits;
    std::string names;
    for (unsigned int i = 0; i < flags.count() && left; ++i) {
        const auto own = static_cast<unsigned int>(flags.value(i));
        if ((own & left) == 0 || (own & bits) != own)
            continue;
        names += (names.empty() ? "" : "|") + std::string(flags.enumerator(i));
        left &= ~own;
    }
    return left ? std::nullopt : std::optional(names);
}
} // namespace

const ZTMetaType& ZTMetaEnum::metaType() const
{
    return typeOrBad(ofEither<const ZTMetaType*>(
        *this, nullptr, [](const auto& record) { return record.metaType; },
        [](const auto& made) { return made.m_metaType; }));
}

bool ZTMetaEnum::isFlags() const
{
    return ofEither(
        *this, false, [](const auto& record) { return record.isFlags; },
        [](const auto& made) { return made.m_isFlags; });
}

std::optional<int> ZTMetaEnum::valueOf(std::string_view text) const
{
    return isFlags() ? valueOfSeveral(*this, text) : valueOfOne(*this, text);
}

std::optional<std::string> ZTMetaEnum::nameOf(int wanted) const
{
    for (unsigned int i = 0; i < count(); ++i)
        if (value(i) == wanted)
            return std::string(enumerator(i));
    return isFlags() ? nameOfSeveral(*this, wanted) : std::nullopt;
}

unsigned int ZTMetaEnum::infoCountOf(int part) const
{
    return ofEither(
        *this, 0U,
        [&](const auto& record) { return zt::detail::countInfos(infosOf(record), part); },
        [&](const auto& made) { return zt::detail::countInfos(made.m_infos, part); });
}

std::string_view ZTMetaEnum::infoTextOf(int part, unsigned int index, bool isKey) const
{
    return ofEither(
        *this, emptyView,
        [&](const auto& record) {
            return zt::detail::infoText(infosOf(record), part, index, isKey);
        },
        [&](const auto& made) { return zt::detail::infoText(made.m_infos, part, index, isKey); });
}

// clang-format off
unsigned int ZTMetaEnum::infoCount() const { return infoCountOf(ZTPartInfo::Whole); }
std::string_view ZTMetaEnum::infoKey(unsigned int index) const { return infoTextOf(ZTPartInfo::Whole, index, true); }
std::string_view ZTMetaEnum::infoValue(unsigned int index) const { return infoTextOf(ZTPartInfo::Whole, index, false); }
unsigned int ZTMetaEnum::enumeratorInfoCount(unsigned int enumerator) const { return infoCountOf(static_cast<int>(enumerator)); }
std::string_view ZTMetaEnum::enumeratorInfoKey(unsigned int enumerator, unsigned int index) const { return infoTextOf(static_cast<int>(enumerator), index, true); }
std::string_view ZTMetaEnum::enumeratorInfoValue(unsigned int enumerator, unsigned int index) const { return infoTextOf(static_cast<int>(enumerator), index, false); }
// clang-format on

const ZTMetaEnum* ztEnumeration(const ZTMetaType& type)
{
    return type ? ZTMetaTypePrivate::of(type).enumeration.load(std::memory_order_acquire) : nullptr;
}

namespace zt::detail
{
bool isEnumerator(const ZTMetaType& type, int value)
{
    const ZTMetaEnum* metaEnum = ztEnumeration(type);
    return metaEnum && metaEnum->nameOf(value);
}

bool enumeratorToText(const ZTMetaType& type, int value, std::string& text)
{
    const ZTMetaEnum* metaEnum = ztEnumeration(type);
    std::optional<std::string> name = metaEnum ? metaEnum->nameOf(value) : std::nullopt;
    if (!name)
        return false;
    text = std::move(*name);
    return true;
}

bool textToEnumerator(const ZTMetaType& type, const std::string& text, int& value)
{
    const ZTMetaEnum* metaEnum = ztEnumeration(type);
    const std::optional<int> found = metaEnum ? metaEnum->valueOf(text) : std::nullopt;
    if (found)
        value = *found;
    return found.has_value();
}
} // namespace zt::detail
