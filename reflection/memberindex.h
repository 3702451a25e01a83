#pragma once

#include "../common/nameindex.h"

#include <zintar/metaclass.h>

#include <string_view>
#include <typeindex>

namespace zt::detail
{
/// The properties of a class and of the super classes up to `beyond`, which is asked for others.
struct PropertyIndex {
    [[nodiscard]] const ZTMetaProperty* find(std::string_view name) const
    {
        return names.isPlain(name) ? search(name) : searchApart(name);
    }

    /// A name that is there already hides the property.
    void add(std::string_view name, const ZTMetaProperty& property)
    {
        if (!names.find(name))
            names.add(name, &property);
    }

    NameIndex<const ZTMetaProperty*> names;
    const ZTMetaClass* beyond = nullptr;

private:
    [[nodiscard, gnu::always_inline]] inline const ZTMetaProperty*
    search(std::string_view name) const
    {
        if (const auto* found = names.find(name))
            return *found;
        return beyond ? beyond->property(name) : nullptr;
    }
    /// As in the index: so the search for a plain name needs no frame.
    [[nodiscard, gnu::noinline]] const ZTMetaProperty* searchApart(std::string_view name) const
    {
        return search(name);
    }
};

/// The invokables that a class declares itself.
struct InvokableIndex {
    struct Invokable {
        int index; ///< class-wide
        bool isConst;
        std::type_index signature;
    };
    NameIndex<Invokable> names;
};
} // namespace zt::detail
