#pragma once

#include "ownorinherited.h"

#include <zintar/detail/staticrecords.h>

#include <algorithm>
#include <string>
#include <string_view>

/// @file
/// The annotations of a member and of its parts, parameters or enumerators, which stand in one list
/// for each member. Lists are short, so they are walked.

namespace zt::detail
{
/// One that a class made at run time owns.
struct OwnPartInfo {
    std::string key;
    std::string value;
    int part = ZTPartInfo::Whole;
};

/// @param infos  a range of `ZTPartInfo` or `OwnPartInfo`
template <class Infos>
unsigned int countInfos(const Infos& infos, int part)
{
    return static_cast<unsigned int>(std::count_if(
        infos.begin(), infos.end(), [part](const auto& info) { return info.part == part; }));
}

/// The key or the value of the annotation of a part with that index; an empty view when there is
/// none.
template <class Infos>
std::string_view infoText(const Infos& infos, int part, unsigned int index, bool isKey)
{
    for (const auto& info : infos)
        if (info.part == part && index-- == 0)
            return isKey ? info.key : info.value;
    return emptyView;
}
} // namespace zt::detail
