#pragma once

#include "../common/nameindex.h"

#include <zintar/detail/blocks.h>
#include <zintar/variant.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class ZTValueReading;

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
    /// The innermost of those that are reading the value.
    ZTValueReading* readings = nullptr;
};

/// The dynamic properties of an object.
///
/// They do not move and none leaves as long as the object lives, so views of their names stay good.
class ZTDynamicProperties
{
public:
    [[nodiscard]] bool areNone() const { return !m_all; }
    /// The one with that name, or null.
    [[nodiscard, gnu::always_inline]] inline ZTDynamicProperty* find(std::string_view name) const
    {
        const auto* found = m_all ? m_all->byName.find(name) : nullptr;
        return found ? *found : nullptr;
    }
    /// There is none with that name.
    void add(std::string_view name, ZTVariant&& value);
    [[nodiscard]] std::vector<std::string_view> names() const;

private:
    struct All {
        std::vector<std::unique_ptr<ZTDynamicProperty>> list;
        zt::detail::NameIndex<ZTDynamicProperty*> byName;
    };

    /// Null until the first one is set.
    std::unique_ptr<All> m_all;
};

/// Keeps the value of a dynamic property while code of the host copies it or compares it with
/// another: the property may get another value meanwhile, and the object may die.
class ZTValueReading
{
public:
    explicit ZTValueReading(ZTDynamicProperty& property) noexcept
        : m_property(&property), m_value(&property.value), m_below(property.readings)
    {
        property.readings = this;
    }
    ZTValueReading(const ZTValueReading&) = delete;
    ZTValueReading& operator=(const ZTValueReading&) = delete;
    ~ZTValueReading()
    {
        if (m_property)
            m_property->readings = m_below;
    }

    [[nodiscard]] const ZTVariant& value() const noexcept { return *m_value; }

private:
    friend struct ZTDynamicProperty;

    ZTDynamicProperty* m_property;
    const ZTVariant* m_value;
    ZTValueReading* m_below;
    /// What the property had, in the outermost of those that were reading it then.
    ZTVariant m_kept;
};
