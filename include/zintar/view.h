#pragma once

#include <zintar/detail/lent.h>
#include <zintar/detail/values/shape.h>
#include <zintar/export.h>
#include <zintar/variant.h>

#include <cstddef>
#include <string_view>
#include <type_traits>

/// @file
/// What a value consists of, walked, asked and changed without its type: the elements of a
/// container, the fields of a record.
///
///     ZTVariant levels(std::vector<int>{3, 1, 2});
///     ZTSequenceView view(levels);
///     view.add(4);                                  // changes the vector in the variant
///     for (const ZTVariant& level : view)           // nothing is copied
///         total += ztVariantValue<int>(level);
///
/// A container is known by what it can do, so those of a host are viewed like those of the standard
/// library. A view of a value of another kind tests false, has no elements, and changes nothing.
///
/// A view refers to the value and copies nothing: it is good as long as the value stays where it
/// is, and a walk as long as the container does not change, as with the container's own iterators.
/// One of a variant that is const, or of a const address, only reads.
///
/// What is put in comes as a variant or as the value itself. Of another type it is converted as
/// `ztVariantValue` does: by a registered converter, or along the class tree. What does not fit, or
/// what the container cannot do, gives false and changes nothing; nothing is logged.
///
/// Threads: as those of the value.

namespace zt::detail
{
/// What all views have in common.
template <class KindOfShape>
class View
{
public:
    /// A view of nothing.
    View() noexcept = default;
    explicit View(ZTVariant& variant) : View(variant.type(), variant.data()) {}
    explicit View(const ZTVariant& variant)
        : View(variant.type(), static_cast<const void*>(variant.data()))
    {}
    /// Not of a temporary, which would be gone before the view.
    explicit View(const ZTVariant&& variant) = delete;
    /// The view of a value of that type that is somewhere in memory.
    View(const ZTMetaType& type, void* value) : View(type) { m_value = m_shape ? value : nullptr; }
    View(const ZTMetaType& type, const void* value) : View(type, const_cast<void*>(value))
    {
        m_isReadOnly = true;
    }
    /// The view of a type without a value: it tells the types of the parts.
    explicit View(const ZTMetaType& type)
    {
        const Shape* shape = shapeOfType(type);
        if (shape && shape->kind == KindOfShape::ofKind)
            m_shape = static_cast<const KindOfShape*>(shape);
    }

    /// Whether there is a value of the kind.
    [[nodiscard]] explicit operator bool() const noexcept { return m_value != nullptr; }
    [[nodiscard]] bool isReadOnly() const noexcept { return m_isReadOnly; }

protected:
    [[nodiscard]] bool canChange() const noexcept { return m_value && !m_isReadOnly; }
    /// A view of a part, which only reads if this one does.
    template <class Inner>
    Inner inside(const ZTMetaType& type, const void* part) const
    {
        return m_isReadOnly ? Inner(type, part) : Inner(type, const_cast<void*>(part));
    }

    const KindOfShape* m_shape = nullptr;
    void* m_value = nullptr;
    bool m_isReadOnly = false;
};

/// A variant that shows one part after the other.
class PartShown
{
public:
    PartShown() : m_variant() {}
    PartShown(const PartShown&) = delete;
    PartShown& operator=(const PartShown&) = delete;
    ~PartShown() {}

    void show(const ZTMetaType& type, const void* part) { Lending::lend(m_variant, type, part); }
    [[nodiscard]] const ZTVariant& variant() const { return m_variant; }

private:
    // In a union, since it is not to be destroyed: the part is somebody else's.
    union {
        ZTVariant m_variant;
    };
};

/// What a host wrote, as a variant.
template <class T>
decltype(auto) asVariant(T&& value)
{
    if constexpr (VariantValue<T>)
        return LentCopy<T>(std::forward<T>(value));
    else
        return static_cast<const ZTVariant&>(value);
}

/// The end of any walk.
struct WalkEnd {};
} // namespace zt::detail

/// A sequence: `std::vector`, `deque`, `list`, `array`, `span`, `set` and what works like them. The
/// elements of a set cannot be changed, but others can be added; an array and a span keep their
/// size.
class ZT_EXPORT ZTSequenceView : public zt::detail::View<zt::detail::SequenceShape>
{
public:
    using View::View;
    class Iterator;

    /// The invalid type in a view of another kind. That of pointers to objects knows their class.
    [[nodiscard]] const ZTMetaType& elementType() const;
    [[nodiscard]] std::size_t size() const { return m_value ? m_shape->size(m_value) : 0; }
    [[nodiscard]] bool isEmpty() const { return size() == 0; }

    /// A copy of the element; an invalid variant past the end. Cost: a walk in a list and in a set.
    [[nodiscard]] ZTVariant at(std::size_t index) const;
    /// A view of the element itself: `points.at<ZTRecordView>(0).set("x", 5)`.
    template <class Inner>
    [[nodiscard]] Inner at(std::size_t index) const
    {
        zt::detail::Scratch scratch;
        return inside<Inner>(elementType(), address(index, scratch));
    }

    // Whether the container can do it, whatever the value; false in a view that only reads.
    [[nodiscard]] bool canSet() const;
    [[nodiscard]] bool canAdd() const;
    /// At a place of the caller's choice, which a set does not allow.
    [[nodiscard]] bool canInsert() const;
    [[nodiscard]] bool canErase() const;

    template <class T>
    bool set(std::size_t index, T&& value) const
    {
        return setTo(index, zt::detail::asVariant(std::forward<T>(value)));
    }
    /// Puts an element in front of the one at the index, or behind the last one.
    template <class T>
    bool insert(std::size_t index, T&& value) const
    {
        return insertAt(index, zt::detail::asVariant(std::forward<T>(value)));
    }
    /// Adds an element at the end, or where the container puts it. One that a set has already is
    /// there afterwards, so the result is true.
    template <class T>
    bool add(T&& value) const
    {
        return addOne(zt::detail::asVariant(std::forward<T>(value)));
    }
    bool erase(std::size_t index) const;
    bool clear() const;

    /// A walk from the first element to the last. Each is shown by a variant that is good until the
    /// next step; a copy of it is an ordinary variant.
    [[nodiscard]] Iterator begin() const;
    [[nodiscard]] zt::detail::WalkEnd end() const { return {}; }

private:
    [[nodiscard]] const void* address(std::size_t index, zt::detail::Scratch& scratch) const;
    [[nodiscard]] bool setTo(std::size_t index, const ZTVariant& value) const;
    [[nodiscard]] bool insertAt(std::size_t index, const ZTVariant& value) const;
    [[nodiscard]] bool addOne(const ZTVariant& value) const;
    [[nodiscard]] bool insertFitted(std::size_t index, const ZTVariant& value) const;
};

class ZTSequenceView::Iterator
{
public:
    [[nodiscard]] const ZTVariant& operator*() const { return m_shown.variant(); }
    [[nodiscard]] const ZTVariant* operator->() const { return &m_shown.variant(); }
    Iterator& operator++()
    {
        if (--m_left > 0)
            show();
        return *this;
    }
    [[nodiscard]] bool operator==(zt::detail::WalkEnd) const { return m_left == 0; }

private:
    friend class ZTSequenceView;
    Iterator(const zt::detail::SequenceShape* shape, const void* value, std::size_t size)
        : m_shape(shape), m_left(size)
    {
        if (size > 0)
            start(value);
    }
    void start(const void* value)
    {
        m_type = &m_shape->elementType();
        if (m_shape->stride != 0)
            m_next = static_cast<const char*>(m_shape->at(value, 0, m_cursor.scratch));
        else
            m_shape->begin(value, m_cursor);
        show();
    }
    void show()
    {
        if (m_next) {
            m_shown.show(*m_type, m_next);
            m_next += m_shape->stride;
        } else {
            m_shown.show(*m_type, m_shape->next(m_cursor));
        }
    }

    const zt::detail::SequenceShape* m_shape;
    std::size_t m_left;
    const ZTMetaType* m_type = nullptr;
    const char* m_next = nullptr; ///< where the elements stand in a row
    zt::detail::Cursor m_cursor;
    zt::detail::PartShown m_shown;
};

inline ZTSequenceView::Iterator ZTSequenceView::begin() const { return {m_shape, m_value, size()}; }

/// An association of keys with values: `std::map`, `unordered_map` and what works like them. In one
/// where a key may have several values, a call that names a key means the first one.
class ZT_EXPORT ZTAssociationView : public zt::detail::View<zt::detail::AssociationShape>
{
public:
    using View::View;
    class Iterator;
    struct Entry {
        const ZTVariant& key;
        const ZTVariant& value;
    };

    // The invalid type in a view of another kind.
    [[nodiscard]] const ZTMetaType& keyType() const;
    [[nodiscard]] const ZTMetaType& valueType() const;
    [[nodiscard]] std::size_t size() const { return m_value ? m_shape->size(m_value) : 0; }
    [[nodiscard]] bool isEmpty() const { return size() == 0; }

    template <class Key>
    [[nodiscard]] bool contains(Key&& key) const
    {
        return has(zt::detail::asVariant(std::forward<Key>(key)));
    }
    /// A copy of the value; an invalid variant where there is no such key.
    template <class Key>
    [[nodiscard]] ZTVariant at(Key&& key) const
    {
        return valueAt(zt::detail::asVariant(std::forward<Key>(key)));
    }
    /// A view of the value itself.
    template <class Inner, class Key>
    [[nodiscard]] Inner at(Key&& key) const
    {
        zt::detail::Scratch scratch;
        return inside<Inner>(valueType(),
                             address(zt::detail::asVariant(std::forward<Key>(key)), scratch));
    }

    /// Whether the container can be changed; false in a view that only reads.
    [[nodiscard]] bool canSet() const;
    /// Gives the key that value, and adds it where it is not there.
    template <class Key, class T>
    bool set(Key&& key, T&& value) const
    {
        return setTo(zt::detail::asVariant(std::forward<Key>(key)),
                     zt::detail::asVariant(std::forward<T>(value)));
    }
    /// False where there is no such key, too.
    template <class Key>
    bool erase(Key&& key) const
    {
        return eraseOne(zt::detail::asVariant(std::forward<Key>(key)));
    }
    bool clear() const;

    /// A walk over the entries, in the order of the container:
    /// `for (const auto& [key, value] : view)`. Each is good until the next step.
    [[nodiscard]] Iterator begin() const;
    [[nodiscard]] zt::detail::WalkEnd end() const { return {}; }

private:
    [[nodiscard]] const void* address(const ZTVariant& key, zt::detail::Scratch& scratch) const;
    [[nodiscard]] bool has(const ZTVariant& key) const;
    [[nodiscard]] ZTVariant valueAt(const ZTVariant& key) const;
    [[nodiscard]] bool setTo(const ZTVariant& key, const ZTVariant& value) const;
    [[nodiscard]] bool eraseOne(const ZTVariant& key) const;
};

class ZTAssociationView::Iterator
{
public:
    [[nodiscard]] Entry operator*() const { return {m_key.variant(), m_value.variant()}; }
    Iterator& operator++()
    {
        if (--m_left > 0)
            show();
        return *this;
    }
    [[nodiscard]] bool operator==(zt::detail::WalkEnd) const { return m_left == 0; }

private:
    friend class ZTAssociationView;
    Iterator(const zt::detail::AssociationShape* shape, const void* value, std::size_t size)
        : m_shape(shape), m_left(size)
    {
        if (size == 0)
            return;
        m_keyType = &shape->keyType();
        m_valueType = &shape->valueType();
        shape->begin(value, m_cursor);
        show();
    }
    void show()
    {
        const zt::detail::Entry entry = m_shape->next(m_cursor);
        m_key.show(*m_keyType, entry.key);
        m_value.show(*m_valueType, entry.value);
    }

    const zt::detail::AssociationShape* m_shape;
    std::size_t m_left;
    const ZTMetaType* m_keyType = nullptr;
    const ZTMetaType* m_valueType = nullptr;
    zt::detail::Cursor m_cursor;
    zt::detail::PartShown m_key;
    zt::detail::PartShown m_value;
};

inline ZTAssociationView::Iterator ZTAssociationView::begin() const
{
    return {m_shape, m_value, size()};
}

/// A `std::optional`, and what works like it.
class ZT_EXPORT ZTOptionalView : public zt::detail::View<zt::detail::OptionalShape>
{
public:
    using View::View;

    /// The invalid type in a view of another kind.
    [[nodiscard]] const ZTMetaType& valueType() const;
    [[nodiscard]] bool hasValue() const;
    /// A copy of the value; an invalid variant where there is none.
    [[nodiscard]] ZTVariant value() const;
    /// A view of the value itself.
    template <class Inner>
    [[nodiscard]] Inner value() const
    {
        zt::detail::Scratch scratch;
        return inside<Inner>(valueType(), address(scratch));
    }
    template <class T>
    bool set(T&& value) const
    {
        return setTo(zt::detail::asVariant(std::forward<T>(value)));
    }
    /// Takes the value out.
    bool reset() const;

private:
    [[nodiscard]] const void* address(zt::detail::Scratch& scratch) const;
    [[nodiscard]] bool setTo(const ZTVariant& value) const;
};

/// A record: a struct that `ZT_RECORD` names, or a `std::pair`, with the fields "first" and
/// "second". The fields stand in the order of their list.
class ZT_EXPORT ZTRecordView : public zt::detail::View<zt::detail::RecordShape>
{
public:
    using View::View;

    /// The number of fields; it is that of the type, so a view without a value has it, too.
    [[nodiscard]] std::size_t count() const { return m_shape ? m_shape->count : 0; }
    /// -1 for a name that no field has.
    [[nodiscard]] int indexOf(std::string_view name) const;
    // Empty, or the invalid type, for an index out of range. Names live as long as the type.
    [[nodiscard]] std::string_view name(std::size_t index) const;
    [[nodiscard]] const ZTMetaType& type(std::size_t index) const;
    /// False for a constant field, and in a view that only reads.
    [[nodiscard]] bool canSet(std::size_t index) const;

    /// A copy of the field; an invalid variant where there is none.
    [[nodiscard]] ZTVariant at(std::size_t index) const;
    [[nodiscard]] ZTVariant at(std::string_view name) const { return at(place(name)); }
    /// A view of the field itself: `scene.at<ZTSequenceView>("points").add(point)`.
    template <class Inner>
    [[nodiscard]] Inner at(std::size_t index) const
    {
        zt::detail::Scratch scratch;
        return inside<Inner>(type(index), address(index, scratch));
    }
    template <class Inner>
    [[nodiscard]] Inner at(std::string_view name) const
    {
        return at<Inner>(place(name));
    }
    template <class T>
    bool set(std::size_t index, T&& value) const
    {
        return setTo(index, zt::detail::asVariant(std::forward<T>(value)));
    }
    template <class T>
    bool set(std::string_view name, T&& value) const
    {
        return setTo(place(name), zt::detail::asVariant(std::forward<T>(value)));
    }

private:
    /// Past the end for a name that no field has.
    [[nodiscard]] std::size_t place(std::string_view name) const;
    [[nodiscard]] const void* address(std::size_t index, zt::detail::Scratch& scratch) const;
    [[nodiscard]] bool setTo(std::size_t index, const ZTVariant& value) const;
};
