#pragma once

#include <zintar/base.h>
#include <zintar/outcome.h>
#include <zintar/reference.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// One end of a binding: a property that a path leads to, through objects that may change.
class ZTBindingEnd
{
public:
    ZTBindingEnd(ZTBase* root, std::string_view path);

    /// Why the path can never lead to such a property; empty if it can. As far as there are objects
    /// they are asked, and behind that the classes of the properties.
    /// @param type  gets the type of the property; the invalid one where it may be any
    [[nodiscard]] std::string refusal(bool isRead, bool isSet, const ZTMetaType*& type) const;

    /// What to do when a change event comes.
    struct Reactions {
        std::function<void()> moved;   ///< the path leads elsewhere
        std::function<void()> changed; ///< the property has another value; may be empty
    };
    /// Ends what was before.
    /// @param receiver  another object that the subscriptions end with
    void watch(const ZTBase* receiver, const Reactions& reactions);
    void unwatch();

    [[nodiscard]] ZTBase* root() const { return m_root.get(); }
    /// The object that has the property; null while a part of the path is null.
    [[nodiscard]] ZTBase* holder() const { return m_holder.get(); }
    [[nodiscard]] const std::string& name() const { return m_names.back(); }

    /// The value that the property has now. There has to be a holder.
    /// @param why  gets why there is none; left alone otherwise
    [[nodiscard]] ZTVariant value(std::string& why) const;
    /// Sets it. There has to be a holder.
    /// @return why it was not; empty if it was
    [[nodiscard]] std::string set(const ZTVariant& value) const;

private:
    /// What a class knows under the name; all of it empty where that is nothing.
    struct Found {
        const ZTMetaProperty* getter = nullptr;
        const ZTMetaProperty* setter = nullptr;
        const ZTMetaType* type = nullptr;
    };
    [[nodiscard]] const Found& find(const ZTMetaClass& metaClass) const;
    void watchProperty(ZTBase& object, const std::string& name, const ZTBase* receiver,
                       const std::function<void()>& changed);

    ZTRef<ZTBase> m_root;
    std::vector<std::string> m_names;
    ZTRef<ZTBase> m_holder;
    std::vector<ZTSubscription> m_watched;

    // The answer of a class that does not change, which holds until a descriptor ends.
    mutable const ZTMetaClass* m_class = nullptr;
    mutable Found m_found;
    mutable unsigned int m_descriptorsEnded = 0;
};
