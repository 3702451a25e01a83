#pragma once

#include "../common/nameindex.h"

#include <zintar/metaclass.h>

#include <string_view>
#include <typeindex>

/// @file
/// The members of a class that nobody changes any more, found by their names.

namespace zt::detail
{
/// The properties of a class and of the super classes up to `beyond`, which is asked for others.
struct PropertyIndex {
    [[nodiscard]] const ZTMetaProperty* find(std::string_view name) const
    {
        if (const auto* found = names.find(name))
            return *found;
        return beyond ? beyond->property(name) : nullptr;
    }

    /// A name that is there already hides the property.
    void add(std::string_view name, const ZTMetaProperty& property)
    {
        if (!names.find(name))
            names.add(name, &property);
    }

    NameIndex<const ZTMetaProperty*> names;
    const ZTMetaClass* beyond = nullptr;
};

/// The invokables that a class declares itself.
struct InvokableIndex {
    struct Invokable {
        int index; ///< class-wide
        bool isConst;
        std::type_index signature;
    };

    /// The class-wide index, or -1.
    [[nodiscard]] int find(std::string_view name, bool isConst,
                           const std::type_index& signature) const
    {
        const auto* found = names.find(name, [&](const Invokable& invokable) {
            return invokable.isConst == isConst && invokable.signature == signature;
        });
        return found ? found->index : -1;
    }

    NameIndex<Invokable> names;
};
} // namespace zt::detail
