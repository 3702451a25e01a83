#include <zintar/shortname.h>

#include <zintar/metaclass.h>

#include <string>
#include <string_view>

std::string ztShortName(const ZTMetaClass& metaClass)
{
    std::string_view name = metaClass.typeName();
    if (!metaClass.isDynamic())
        return ztShortName(name);
    // Whoever made it may have written anything, words that are keywords elsewhere among it.
    for (std::string_view key : {"struct ", "class "})
        if (name.starts_with(key))
            return std::string(name.substr(key.size()));
    return std::string(name);
}
