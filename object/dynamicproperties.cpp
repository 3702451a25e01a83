#include "dynamicproperties.h"

void ZTDynamicProperty::leaveToReaders() noexcept
{
    if (!readings)
        return;
    // The outermost goes last.
    ZTValueReading* outermost = readings;
    while (outermost->m_below)
        outermost = outermost->m_below;
    outermost->m_kept = std::move(value);
    for (ZTValueReading* one = readings; one; one = one->m_below) {
        one->m_property = nullptr;
        one->m_value = &outermost->m_kept;
    }
    readings = nullptr;
}

void ZTDynamicProperties::add(std::string_view name, ZTVariant&& value)
{
    auto added = std::make_unique<ZTDynamicProperty>(name, std::move(value));
    if (!m_all)
        m_all = std::make_unique<All>();
    auto& [list, byName] = *m_all;
    if (list.size() == list.capacity())
        list.reserve(2 * list.capacity() + 1);
    byName.add(added->name, added.get());
    list.push_back(std::move(added));
}

std::vector<std::string_view> ZTDynamicProperties::names() const
{
    std::vector<std::string_view> names;
    if (m_all)
        for (const auto& property : m_all->list)
            names.push_back(property->name);
    return names;
}
