#include <zintar/view.h>

#include "shapes.h"

#include <zintar/detail/values/retrieval.h>

// What is put into a container is made before the container is touched: a copy of the type that the
// element has, which is moved in. So it may come out of the container itself, and a value that does
// not fit changes nothing.

using zt::detail::Scratch;

namespace
{
const ZTMetaType& typeOrBad(zt::detail::TypeGetter type)
{
    return type ? type() : ZTMetaType::ZTBadMetaType;
}

/// A copy of the value as one of the type; invalid where it does not fit.
ZTVariant fitted(const ZTVariant& value, const ZTMetaType& type)
{
    if (&type == &ztMetaType<ZTVariant>())
        return {type, &value};
    if (!value.data())
        return {};
    if (&value.type() == &type)
        return value;
    if (zt::detail::comesAlongClassTree(value.type(), type))
        return {type, value.data()};
    ZTVariant made(type, nullptr);
    if (made.data() && value.type().convert(value.data(), type, made.data()))
        return made;
    return {};
}

ZTVariant copyOf(const ZTMetaType& type, const void* part)
{
    return part ? ZTVariant(type, part) : ZTVariant();
}
} // namespace

const ZTMetaType& ZTSequenceView::elementType() const
{
    return typeOrBad(m_shape ? m_shape->elementType : nullptr);
}

const void* ZTSequenceView::address(std::size_t index, Scratch& scratch) const
{
    return index < size() ? m_shape->at(m_value, index, scratch) : nullptr;
}

ZTVariant ZTSequenceView::at(std::size_t index) const
{
    Scratch scratch;
    return copyOf(elementType(), address(index, scratch));
}

bool ZTSequenceView::canSet() const { return canChange() && m_shape->set; }
bool ZTSequenceView::canAdd() const { return canChange() && m_shape->insert; }
bool ZTSequenceView::canInsert() const { return canAdd() && m_shape->hasPositions; }
bool ZTSequenceView::canErase() const { return canChange() && m_shape->erase; }

bool ZTSequenceView::setTo(std::size_t index, const ZTVariant& value) const
{
    if (!canSet() || index >= size())
        return false;
    const ZTVariant made = fitted(value, elementType());
    if (made.data())
        m_shape->set(m_value, index, made.data());
    return made.data() != nullptr;
}

bool ZTSequenceView::insertAt(std::size_t index, const ZTVariant& value) const
{
    return canInsert() && index <= size() && insertFitted(index, value);
}

bool ZTSequenceView::addOne(const ZTVariant& value) const
{
    return canAdd() && insertFitted(size(), value);
}

bool ZTSequenceView::insertFitted(std::size_t index, const ZTVariant& value) const
{
    const ZTVariant made = fitted(value, elementType());
    if (made.data())
        m_shape->insert(m_value, index, made.data());
    return made.data() != nullptr;
}

bool ZTSequenceView::erase(std::size_t index) const
{
    const bool isThere = canErase() && index < size();
    if (isThere)
        m_shape->erase(m_value, index);
    return isThere;
}

bool ZTSequenceView::clear() const
{
    if (canErase())
        m_shape->clear(m_value);
    return canErase();
}

const ZTMetaType& ZTAssociationView::keyType() const
{
    return typeOrBad(m_shape ? m_shape->keyType : nullptr);
}

const ZTMetaType& ZTAssociationView::valueType() const
{
    return typeOrBad(m_shape ? m_shape->valueType : nullptr);
}

const void* ZTAssociationView::address(const ZTVariant& key, Scratch& scratch) const
{
    if (!m_value)
        return nullptr;
    const ZTVariant made = fitted(key, keyType());
    return made.data() ? m_shape->find(m_value, made.data(), scratch) : nullptr;
}

bool ZTAssociationView::has(const ZTVariant& key) const
{
    Scratch scratch;
    return address(key, scratch) != nullptr;
}

ZTVariant ZTAssociationView::valueAt(const ZTVariant& key) const
{
    Scratch scratch;
    return copyOf(valueType(), address(key, scratch));
}

bool ZTAssociationView::canSet() const { return canChange() && m_shape->add; }

bool ZTAssociationView::setTo(const ZTVariant& key, const ZTVariant& value) const
{
    if (!canSet())
        return false;
    const ZTVariant madeKey = fitted(key, keyType());
    const ZTVariant madeValue = fitted(value, valueType());
    if (!madeKey.data() || !madeValue.data())
        return false;
    if (!m_shape->replace(m_value, madeKey.data(), madeValue.data()))
        m_shape->add(m_value, madeKey.data(), madeValue.data());
    return true;
}

bool ZTAssociationView::eraseOne(const ZTVariant& key) const
{
    if (!canSet())
        return false;
    const ZTVariant made = fitted(key, keyType());
    return made.data() && m_shape->erase(m_value, made.data());
}

bool ZTAssociationView::clear() const
{
    if (canSet())
        m_shape->clear(m_value);
    return canSet();
}

const ZTMetaType& ZTOptionalView::valueType() const
{
    return typeOrBad(m_shape ? m_shape->valueType : nullptr);
}

const void* ZTOptionalView::address(Scratch& scratch) const
{
    return m_value ? m_shape->get(m_value, scratch) : nullptr;
}

bool ZTOptionalView::hasValue() const
{
    Scratch scratch;
    return address(scratch) != nullptr;
}

ZTVariant ZTOptionalView::value() const
{
    Scratch scratch;
    return copyOf(valueType(), address(scratch));
}

bool ZTOptionalView::setTo(const ZTVariant& value) const
{
    if (!canChange() || !m_shape->set)
        return false;
    const ZTVariant made = fitted(value, valueType());
    if (made.data())
        m_shape->set(m_value, made.data());
    return made.data() != nullptr;
}

bool ZTOptionalView::reset() const
{
    if (canChange())
        m_shape->reset(m_value);
    return canChange();
}

std::size_t ZTRecordView::place(std::string_view name) const
{
    std::size_t index = 0;
    while (index < count() && m_shape->fields[index].name != name)
        ++index;
    return index;
}

int ZTRecordView::indexOf(std::string_view name) const
{
    const std::size_t index = place(name);
    return index < count() ? static_cast<int>(index) : -1;
}

std::string_view ZTRecordView::name(std::size_t index) const
{
    return index < count() ? m_shape->fields[index].name : std::string_view();
}

const ZTMetaType& ZTRecordView::type(std::size_t index) const
{
    return typeOrBad(index < count() ? m_shape->fields[index].type : nullptr);
}

bool ZTRecordView::canSet(std::size_t index) const
{
    return canChange() && index < count() && m_shape->fields[index].set;
}

const void* ZTRecordView::address(std::size_t index, Scratch& scratch) const
{
    return m_value && index < count() ? m_shape->fields[index].get(m_value, scratch) : nullptr;
}

ZTVariant ZTRecordView::at(std::size_t index) const
{
    Scratch scratch;
    return copyOf(type(index), address(index, scratch));
}

bool ZTRecordView::setTo(std::size_t index, const ZTVariant& value) const
{
    if (!canSet(index))
        return false;
    const ZTVariant made = fitted(value, type(index));
    if (made.data())
        m_shape->fields[index].set(m_value, made.data());
    return made.data() != nullptr;
}
