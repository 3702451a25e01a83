#pragma once

#include "../common/nameindex.h"

#include <zintar/detail/blocks.h>
#include <zintar/variant.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// A property that one object has got while the program runs.
struct ZTDynamicProperty : zt::detail::InBlocks {
    ZTDynamicProperty(std::string_view newName, ZTVariant&& first)
        : name(newName), value(std::move(first))
    {}
    ZTDynamicProperty(const ZTDynamicProperty&) = delete;
    ZTDynamicProperty& operator=(const ZTDynamicProperty&) = delete;
    ~ZTDynamicProperty() { leaveToReaders(); }

    /// Gives the value that it has to whoever is reading it, if anybody is.
    void leaveToReaders() noexcept;

    const std::string name;
    ZTVariant value;
    /// In the list of the object.
    std::unique_ptr<ZTDynamicProperty> next;
};

/// The dynamic properties of an object: a list, and an index as soon as that is too long to walk.
///
/// They do not move, so the view of a name stays good until its property is removed.
class ZTDynamicProperties
{
public:
    ZTDynamicProperties() = default;
    ZTDynamicProperties(const ZTDynamicProperties&) = delete;
    ZTDynamicProperties& operator=(const ZTDynamicProperties&) = delete;
    ~ZTDynamicProperties();

    /// The one with that name, or null.
    [[nodiscard, gnu::always_inline]] inline ZTDynamicProperty* find(std::string_view name) const
    {
        if (m_index) {
            ZTDynamicProperty* const* found = m_index->find(name);
            return found ? *found : nullptr;
        }
        ZTDynamicProperty* one = m_first.get();
        while (one && one->name != name)
            one = one->next.get();
        return one;
    }
    /// There is none with that name. May throw, and changes nothing then.
    void add(std::string_view name, ZTVariant&& value);
    /// Takes out one that is in the list. May throw, and changes nothing then.
    [[nodiscard]] std::unique_ptr<ZTDynamicProperty> remove(const ZTDynamicProperty& property);
    [[nodiscard]] std::vector<std::string_view> names() const;

private:
    using Index = zt::detail::NameIndex<ZTDynamicProperty*>;

    /// To walk as many is as fast as to use an index.
    static constexpr int few = 8;
    [[nodiscard]] bool areFew() const;
    /// Of all but one.
    [[nodiscard]] std::unique_ptr<Index> indexWithout(const ZTDynamicProperty* left) const;

    std::unique_ptr<ZTDynamicProperty> m_first;
    std::unique_ptr<Index> m_index;
};

/// Keeps the value of a dynamic property while code of the host copies it or compares it with
/// another: the property may get another value meanwhile, and the object may die.
class ZTValueReading
{
public:
    explicit ZTValueReading(ZTDynamicProperty& property) noexcept;
    ZTValueReading(const ZTValueReading&) = delete;
    ZTValueReading& operator=(const ZTValueReading&) = delete;
    ~ZTValueReading();

    [[nodiscard]] const ZTVariant& value() const noexcept { return *m_value; }

private:
    friend struct ZTDynamicProperty;
    template <class Node>
    friend class ZTThreadList;

    /// Null once the property has another value.
    const ZTDynamicProperty* m_property;
    const ZTVariant* m_value;
    /// What the property had, in the outermost of those that were reading it then.
    ZTVariant m_kept;
    /// Among the readings of this thread.
    ZTValueReading* m_below = nullptr;
};
