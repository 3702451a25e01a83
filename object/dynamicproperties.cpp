#include "dynamicproperties.h"

#include "threadlist.h"

#include <algorithm>

namespace
{
[[gnu::tls_model("initial-exec")]] thread_local constinit ZTThreadList<ZTValueReading> readings;
} // namespace

ZTValueReading::ZTValueReading(ZTDynamicProperty& property) noexcept
    : m_property(&property), m_value(&property.value)
{
    readings.enter(*this);
}

ZTValueReading::~ZTValueReading() { readings.leave(*this); }

void ZTDynamicProperty::leaveToReaders() noexcept
{
    ZTValueReading* outermost = nullptr; // which goes last
    readings.forEach([&](ZTValueReading& one) {
        if (one.m_property == this)
            outermost = &one;
    });
    if (!outermost)
        return;
    outermost->m_kept = std::move(value);
    readings.forEach([&](ZTValueReading& one) {
        if (one.m_property != this)
            return;
        one.m_property = nullptr;
        one.m_value = &outermost->m_kept;
    });
}

// One by one: a list that goes by itself would take the stack for each.
ZTDynamicProperties::~ZTDynamicProperties()
{
    while (m_first)
        m_first = std::move(m_first->next);
}

bool ZTDynamicProperties::areFew() const
{
    int left = few;
    for (const ZTDynamicProperty* one = m_first.get(); one && left > 0; one = one->next.get())
        --left;
    return left > 0;
}

void ZTDynamicProperties::add(std::string_view name, ZTVariant&& value)
{
    auto added = std::make_unique<ZTDynamicProperty>(name, std::move(value));
    if (m_index) {
        m_index->add(added->name, added.get());
    } else if (!areFew()) {
        auto index = indexWithout(nullptr);
        index->add(added->name, added.get());
        m_index = std::move(index);
    }
    added->next = std::move(m_first);
    m_first = std::move(added);
}

std::unique_ptr<ZTDynamicProperties::Index>
ZTDynamicProperties::indexWithout(const ZTDynamicProperty* left) const
{
    auto index = std::make_unique<Index>();
    for (ZTDynamicProperty* one = m_first.get(); one; one = one->next.get())
        if (one != left)
            index->add(one->name, one);
    return index;
}

std::unique_ptr<ZTDynamicProperty> ZTDynamicProperties::remove(const ZTDynamicProperty& property)
{
    if (m_index)
        m_index = indexWithout(&property);
    std::unique_ptr<ZTDynamicProperty>* place = &m_first;
    while (place->get() != &property)
        place = &(*place)->next;
    std::unique_ptr<ZTDynamicProperty> removed = std::move(*place);
    *place = std::move(removed->next);
    return removed;
}

std::vector<std::string_view> ZTDynamicProperties::names() const
{
    std::vector<std::string_view> names;
    for (const ZTDynamicProperty* one = m_first.get(); one; one = one->next.get())
        names.push_back(one->name);
    std::reverse(names.begin(), names.end()); // into the order of their beginning
    return names;
}
