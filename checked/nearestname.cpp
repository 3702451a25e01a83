#include "nearestname.h"

#include <algorithm>
#include <cstddef>

namespace zt::detail
{
namespace
{
char lower(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

/// In how many steps the one name becomes the other: each leaves out, adds or changes a letter, or
/// exchanges two neighbours.
std::size_t distance(std::string_view a, std::string_view b)
{
    using Row = std::vector<std::size_t>;
    Row before(b.size() + 1), last(b.size() + 1), row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        last[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const bool isSame = lower(a[i - 1]) == lower(b[j - 1]);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (isSame ? 0 : 1)});
            const bool isExchanged = i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) &&
                                     lower(a[i - 2]) == lower(b[j - 1]);
            if (isExchanged)
                row[j] = std::min(row[j], before[j - 2] + 1);
        }
        before.swap(last);
        last.swap(row);
    }
    return last[b.size()];
}

bool beginAlike(std::string_view a, std::string_view b)
{
    return !a.empty() && !b.empty() && lower(a[0]) == lower(b[0]);
}

/// A name of hundreds of letters is no mistyped one, and to compare it takes long.
constexpr std::size_t longest = 64;
} // namespace

std::string_view nearestName(std::string_view name, const std::vector<std::string_view>& known)
{
    std::string_view nearest;
    std::size_t least = 2 * (std::max<std::size_t>(name.size() / 3, 1) + 1);
    if (name.size() > longest)
        return nearest;
    for (std::string_view candidate : known) {
        if (candidate.size() > longest)
            continue;
        // Among equals the one that begins alike: people mistype the beginning least.
        const std::size_t steps =
            2 * distance(name, candidate) + (beginAlike(name, candidate) ? 0 : 1);
        // Of a short name nothing may be left.
        if (steps < least && steps < 2 * std::max(name.size(), candidate.size())) {
            least = steps;
            nearest = candidate;
        }
    }
    return nearest;
}
} // namespace zt::detail
