#include "dynamicmetaclass.h"

#include "ownorinherited.h"
#include "raiseevent.h"

#include <zintar/detail/blocks.h>

#include <algorithm>

using zt::detail::emptyView;
using zt::detail::memberAt;
using zt::detail::memberNamed;
using zt::detail::typeOrBad;

namespace
{
template <class List>
unsigned int sizeOf(const List& list)
{
    return static_cast<unsigned int>(list.size());
}

template <class List>
bool contains(const List& list, const typename List::value_type& value)
{
    return std::find(list.begin(), list.end(), value) != list.end();
}
} // namespace

unsigned int ZTDynamicMetaEnum::count() const { return sizeOf(m_enumerators); }

std::string_view ZTDynamicMetaEnum::enumerator(unsigned int index) const
{
    return index < m_enumerators.size() ? std::string_view(m_enumerators[index]) : emptyView;
}

int ZTDynamicMetaEnum::value(unsigned int index) const
{
    return index < m_values.size() ? m_values[index] : -1;
}

bool ZTDynamicMetaEnum::add(std::string name, int value)
{
    if (contains(m_enumerators, name) || contains(m_values, value))
        return false;
    m_values.push_back(value);
    try {
        m_enumerators.push_back(std::move(name));
    } catch (...) {
        m_values.pop_back();
        throw;
    }
    return true;
}

void ZTDynamicMetaEnum::remove(unsigned int index)
{
    if (index >= m_enumerators.size())
        return;
    m_enumerators.erase(m_enumerators.begin() + index);
    m_values.erase(m_values.begin() + index);
    const int removed = static_cast<int>(index);
    std::erase_if(m_infos, [removed](const auto& info) { return info.part == removed; });
    for (auto& info : m_infos)
        info.part -= info.part > removed;
}

ZTDynamicMetaInvokable::Details& ZTDynamicMetaInvokable::details()
{
    if (!m_details)
        m_details = std::make_unique<Details>();
    return *m_details;
}

const ZTMetaType& ZTDynamicMetaInvokable::returnMetaType() const
{
    return typeOrBad(m_returnMetaType);
}

unsigned int ZTDynamicMetaInvokable::parameterCount() const { return sizeOf(m_parameterMetaTypes); }

const ZTMetaType& ZTDynamicMetaInvokable::parameterMetaType(unsigned int index) const
{
    return typeOrBad(index < m_parameterMetaTypes.size() ? m_parameterMetaTypes[index] : nullptr);
}

int ZTDynamicMetaInvokable::index() const
{
    if (const int* frozen = std::get_if<int>(&m_index))
        return *frozen;
    const auto* owner = std::get<const ZTDynamicMetaClass*>(m_index);
    if (!owner)
        return -1;
    const auto& siblings = owner->m_invokables;
    // Removing others moves it to the front, never to the back, and mostly not far.
    for (std::size_t end = std::min(m_lastPosition + 1, siblings.size()); end > 0; --end)
        if (siblings[end - 1].get() == this) {
            m_lastPosition = end - 1;
            return static_cast<int>(owner->m_invokableOffset + m_lastPosition);
        }
    return -1;
}

ZTVariant ZTDynamicMetaInvokable::invoke(const ZTVariant& object,
                                         const ZTArgumentArray& arguments) const
{
    if (m_raisesItself)
        zt::detail::raiseEvent(*this, object, arguments);
    return m_function ? m_function(object, arguments) : ZTVariant();
}

const ZTMetaType& ZTDynamicMetaProperty::metaType() const { return typeOrBad(m_metaType); }

int ZTDynamicMetaProperty::changeEventIndex() const
{
    auto event = m_changeEvent.lock();
    return event ? event->index() : -1;
}

const ZTMetaInvokable* ZTDynamicMetaProperty::changeEvent() const
{
    return m_changeEvent.lock().get();
}

unsigned int ZTDynamicMetaProperty::propInfoCount() const { return sizeOf(m_propInfos); }

std::string_view ZTDynamicMetaProperty::propInfoKey(unsigned int index) const
{
    return index < m_propInfos.size() ? std::string_view(m_propInfos[index].first) : emptyView;
}

std::string_view ZTDynamicMetaProperty::propInfoValue(unsigned int index) const
{
    return index < m_propInfos.size() ? std::string_view(m_propInfos[index].second) : emptyView;
}

ZTVariant ZTDynamicMetaProperty::get(const ZTVariant& object) const
{
    if (m_read)
        return zt::detail::storedValue(*m_read, object);
    return m_getter ? m_getter(object) : ZTVariant();
}

ZTVariant ZTDynamicMetaProperty::set(const ZTVariant& object, const ZTVariant& value) const
{
    if (m_written) {
        zt::detail::setStoredValue(*m_written, changeEvent(), object, value);
        return {};
    }
    return m_setter ? m_setter(object, value) : ZTVariant();
}

ZTDynamicMetaClass::~ZTDynamicMetaClass()
{
    for (const auto& invokable : m_invokables)
        invokable->forgetOwner();
    m_invokables.clear();
    m_properties.clear();
    m_enums.clear();
    m_classInfos.clear();
}

unsigned int ZTDynamicMetaClass::classInfoCount() const
{
    return m_classInfoOffset + sizeOf(m_classInfos);
}

unsigned int ZTDynamicMetaClass::enumCount() const { return m_enumOffset + sizeOf(m_enums); }

unsigned int ZTDynamicMetaClass::propertyCount() const
{
    return m_propertyOffset + sizeOf(m_properties);
}

unsigned int ZTDynamicMetaClass::invokableCount() const
{
    return m_invokableOffset + sizeOf(m_invokables);
}

const ZTMetaClassInfo* ZTDynamicMetaClass::classInfo(std::string_view key) const
{
    return memberNamed<ZTMetaClassInfo>(
        m_classInfos, [&](const auto& info) { return info.key() == key; }, m_superClass,
        [&](const ZTMetaClass& super) { return super.classInfo(key); });
}

const ZTMetaClassInfo* ZTDynamicMetaClass::classInfo(unsigned int index) const
{
    return memberAt<ZTMetaClassInfo>(
        m_classInfos, m_classInfoOffset, index, m_superClass,
        [&](const ZTMetaClass& super) { return super.classInfo(index); });
}

const ZTMetaEnum* ZTDynamicMetaClass::metaEnum(unsigned int index) const
{
    return memberAt<ZTMetaEnum>(m_enums, m_enumOffset, index, m_superClass,
                                [&](const ZTMetaClass& super) { return super.metaEnum(index); });
}

const ZTMetaProperty* ZTDynamicMetaClass::property(unsigned int index) const
{
    return memberAt<ZTMetaProperty>(
        m_properties, m_propertyOffset, index, m_superClass,
        [&](const ZTMetaClass& super) { return super.property(index); });
}

const ZTMetaProperty* ZTDynamicMetaClass::property(std::string_view name) const
{
    if (m_propertyIndex)
        return m_propertyIndex->find(name);
    return memberNamed<ZTMetaProperty>(
        m_properties, [&](const auto& property) { return property.name() == name; }, m_superClass,
        [&](const ZTMetaClass& super) { return super.property(name); });
}

const ZTMetaInvokable* ZTDynamicMetaClass::invokable(unsigned int index) const
{
    return memberAt<ZTMetaInvokable>(
        m_invokables, m_invokableOffset, index, m_superClass,
        [&](const ZTMetaClass& super) { return super.invokable(index); });
}

// A run-time invokable has no written parameters, so the signature is for the super class alone.
int ZTDynamicMetaClass::indexOfInvokable(std::string_view name, bool isConst,
                                         const std::type_index& signature) const
{
    for (unsigned int i = 0; i < m_invokables.size(); ++i)
        if (m_invokables[i]->m_name == name && m_invokables[i]->m_isConst == isConst)
            return static_cast<int>(m_invokableOffset + i);
    return m_superClass ? m_superClass->indexOfInvokable(name, isConst, signature) : -1;
}

int ZTDynamicMetaClass::indexOfInvokable(void* function) const
{
    for (unsigned int i = 0; i < m_invokables.size(); ++i)
        if (m_invokables[i]->m_functionKey == function)
            return static_cast<int>(m_invokableOffset + i);
    return m_superClass ? m_superClass->indexOfInvokable(function) : -1;
}

void ZTDynamicMetaClass::setSuperClass(const ZTMetaClass* super)
{
    m_superClass = super;
    m_classInfoOffset = super ? super->classInfoCount() : 0;
    m_enumOffset = super ? super->enumCount() : 0;
    m_propertyOffset = super ? super->propertyCount() : 0;
    m_invokableOffset = super ? super->invokableCount() : 0;
}

namespace
{
template <class Member, class... Arguments>
Member& append(std::vector<std::shared_ptr<Member>>& list, Arguments... arguments)
{
    list.push_back(
        std::allocate_shared<Member>(zt::detail::BlockAllocator<Member>(), arguments...));
    return *list.back();
}
} // namespace

ZTDynamicMetaClassInfo& ZTDynamicMetaClass::addClassInfo() { return append(m_classInfos); }

ZTDynamicMetaEnum& ZTDynamicMetaClass::addEnum() { return append(m_enums); }

ZTDynamicMetaInvokable& ZTDynamicMetaClass::addInvokable()
{
    return append(m_invokables, this, m_invokables.size());
}

ZTDynamicMetaProperty& ZTDynamicMetaClass::addProperty() { return append(m_properties); }

void ZTDynamicMetaClass::finish()
{
    auto index = static_cast<int>(m_invokableOffset);
    for (const auto& invokable : m_invokables)
        invokable->freezeIndex(index++);
    m_propertyIndex = std::make_unique<zt::detail::PropertyIndex>();
    for (const auto& property : m_properties)
        m_propertyIndex->add(property->m_name, *property);
    m_propertyIndex->beyond = m_superClass;
}
