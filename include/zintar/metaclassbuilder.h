#pragma once

#include <zintar/detail/wideindex.h>
#include <zintar/export.h>
#include <zintar/fwd.h>
#include <zintar/memberbuilders.h>
#include <zintar/metaclass.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <vector>

struct ZTMetaClassBuilderPrivate;

/// @file
/// Classes made at run time. A `ZTMetaClassBuilder` holds a class under construction; its members
/// are added and edited through the four member builders, and `toMetaClass()` hands out a finished
/// copy that never changes:
///
///     ZTMetaClassBuilder builder;
///     builder.setTypeName("Account");
///     builder.setSuperClass(&ZTDynamicBase::typeMetaClass());
///     auto changed = builder.addInvokable();
///     changed.setName("balanceChanged");
///     changed.setEvent<double>();
///     auto deposit = builder.addInvokable();
///     deposit.setName("deposit");
///     deposit.setFunction([](Account& self, double amount) { self.add(amount); });
///     std::unique_ptr<ZTMetaClass> account(builder.toMetaClass());
///
/// The handles of members are in `memberbuilders.h`.
///
/// Threads: a builder and its handles belong to one thread at a time; a finished class is
/// immutable and may go to another.

/// What a class that was read from a stream lacks. See `ZTMetaClassBuilder::read`.
struct ZTMissingInClass {
    std::string superClass;             ///< its name, where it was not found; otherwise empty
    std::vector<std::string> typeNames; ///< of types that are not registered, each once
    bool isCut = false;                 ///< the stream ended or failed before the end of the class

    /// Whether anything is missing.
    [[nodiscard]] explicit operator bool() const
    {
        return isCut || !superClass.empty() || !typeNames.empty();
    }
};

/// A class under construction; see the top of this file. Indices and counts are those of the
/// class's own members, from 0.
class ZT_EXPORT ZTMetaClassBuilder
{
public:
    /// @param prototype  a class of either family whose own members are copied; null for an empty
    ///                   class. Properties keep their functions; a declared class's methods come
    ///                   without theirs.
    explicit ZTMetaClassBuilder(const ZTMetaClass* prototype = nullptr);
    ZTMetaClassBuilder(const ZTMetaClassBuilder&) = delete;
    ZTMetaClassBuilder& operator=(const ZTMetaClassBuilder&) = delete;
    ~ZTMetaClassBuilder();

    /// @param super  not owned; must outlive the builder and every class it hands out
    void setSuperClass(const ZTMetaClass* super);
    [[nodiscard]] const ZTMetaClass* superClass() const;
    /// Any text: two classes of one name do not clash, as long as no store is to hold both.
    void setTypeName(std::string_view name);
    /// Good until the name changes or the builder dies.
    [[nodiscard]] std::string_view typeName() const;

    /// A finished copy, which the caller owns and deletes. It has nothing in common with the
    /// builder and with other copies. The builder stays usable.
    [[nodiscard]] ZTMetaClass* toMetaClass();

    /// Reads one class from the stream and adds it to what the builder holds: its members go behind
    /// those that are there, its name and its super class take their place.
    ///
    /// The functions of properties and methods are not on the stream: give them back through the
    /// member builders. Reading stops at the first failed read; what was read by then stays. Test
    /// the stream to know whether the class is complete.
    /// @param metaClasses  the super classes that the stream may name, by their type names; the
    ///                     root class needs no entry. A name that is not found is told in the log,
    ///                     and the class has no super class then.
    void deserialize(ZTDataStream& stream,
                     const std::unordered_map<std::string, const ZTMetaClass*>& metaClasses);
    /// The same for a host that does without what is missing, or supplies it: logs nothing, and
    /// answers what it is. What is not found is the same as with `deserialize`: no super class, and
    /// the invalid type.
    [[nodiscard]] ZTMissingInClass
    read(ZTDataStream& stream,
         const std::unordered_map<std::string, const ZTMetaClass*>& metaClasses);

    // Each `add` appends a member, a copy of the prototype if there is one, and gives a handle on
    // it; the other form gives one on the member at an index. What is removed lives on in its
    // handles alone, and those behind it move up. An index out of range removes nothing.
    ZTMetaClassInfoBuilder addClassInfo(const ZTMetaClassInfo* prototype = nullptr);
    [[nodiscard]] ZTMetaClassInfoBuilder classInfo(unsigned int index);
    template <zt::detail::WideIndex Index>
    [[nodiscard]] ZTMetaClassInfoBuilder classInfo(Index index)
    {
        return classInfo(zt::detail::narrowIndex(index));
    }
    void removeClassInfo(unsigned int index);
    template <zt::detail::WideIndex Index>
    void removeClassInfo(Index index)
    {
        removeClassInfo(zt::detail::narrowIndex(index));
    }
    [[nodiscard]] int classInfoCount() const;

    ZTMetaEnumBuilder addEnum(const ZTMetaEnum* prototype = nullptr);
    [[nodiscard]] ZTMetaEnumBuilder metaEnum(unsigned int index);
    template <zt::detail::WideIndex Index>
    [[nodiscard]] ZTMetaEnumBuilder metaEnum(Index index)
    {
        return metaEnum(zt::detail::narrowIndex(index));
    }
    void removeEnum(unsigned int index);
    template <zt::detail::WideIndex Index>
    void removeEnum(Index index)
    {
        removeEnum(zt::detail::narrowIndex(index));
    }
    [[nodiscard]] int enumCount() const;

    ZTMetaInvokableBuilder addInvokable(const ZTMetaInvokable* prototype = nullptr);
    [[nodiscard]] ZTMetaInvokableBuilder invokable(unsigned int index);
    template <zt::detail::WideIndex Index>
    [[nodiscard]] ZTMetaInvokableBuilder invokable(Index index)
    {
        return invokable(zt::detail::narrowIndex(index));
    }
    /// A property whose change event it was has none then.
    void removeInvokable(unsigned int index);
    template <zt::detail::WideIndex Index>
    void removeInvokable(Index index)
    {
        removeInvokable(zt::detail::narrowIndex(index));
    }
    [[nodiscard]] int invokableCount() const;

    /// The change event of a prototype is found by its position: right for a prototype of the
    /// class whose invokables were copied before.
    ZTMetaPropertyBuilder addProperty(const ZTMetaProperty* prototype = nullptr);
    [[nodiscard]] ZTMetaPropertyBuilder property(unsigned int index);
    template <zt::detail::WideIndex Index>
    [[nodiscard]] ZTMetaPropertyBuilder property(Index index)
    {
        return property(zt::detail::narrowIndex(index));
    }
    void removeProperty(unsigned int index);
    template <zt::detail::WideIndex Index>
    void removeProperty(Index index)
    {
        removeProperty(zt::detail::narrowIndex(index));
    }
    [[nodiscard]] int propertyCount() const;

    /// Adds a property whose value is kept by each object of the class, and the event that tells of
    /// its changes: for "level" that is "levelChanged", with the value as its parameter.
    ///
    /// An object has the value `start` until another one is set, and takes memory for it only then.
    /// Setting converts the value like a typed setter does; what does not fit is told in the log
    /// and changes nothing. The event is sent when the value has changed. The values follow an
    /// object that is moved, and are not among its `dynamicProperties()`. Values are not on the
    /// stream of a class: whoever reads one gives the property its start by `setStored`.
    /// @param start  tells the type; an invalid variant gives a property that can neither be read
    ///               nor written
    ZTMetaPropertyBuilder addStoredProperty(std::string_view name, const ZTVariant& start);
    template <zt::detail::VariantValue T>
    ZTMetaPropertyBuilder addStoredProperty(std::string_view name, T&& start)
    {
        return addStoredProperty(name, ZTVariant(std::forward<T>(start)));
    }

    /// The method that a method of this class with that name and those parameters overrides: that
    /// of the nearest super class, const or not; null when there is none. It stays good as long as
    /// its class, so that the overriding function can keep it and call it on its object:
    ///
    ///     auto deposit = builder.addInvokable();
    ///     deposit.setName("deposit");
    ///     deposit.setFunction([above = builder.superMethod<double>("deposit")](
    ///                             Account& self, double amount) {
    ///         above->invoke(&self, amount * 1.01);
    ///     });
    template <class... P>
    [[nodiscard]] const ZTMetaInvokable* superMethod(std::string_view name) const
    {
        return superMethod(name, zt::detail::typesOf(zt::detail::Parameters<P...>{}));
    }
    [[nodiscard]] const ZTMetaInvokable*
    superMethod(std::string_view name, const std::vector<const ZTMetaType*>& parameterTypes) const;

    // The first of the class's own members with that name or key: its index, -1 when there is none,
    // and a handle on it, on a member that belongs to nothing when there is none.
    [[nodiscard]] int indexOfClassInfo(std::string_view key) const;
    [[nodiscard]] int indexOfEnum(std::string_view name) const;
    [[nodiscard]] int indexOfInvokable(std::string_view name) const;
    [[nodiscard]] int indexOfProperty(std::string_view name) const;
    [[nodiscard]] ZTMetaClassInfoBuilder classInfo(std::string_view key);
    [[nodiscard]] ZTMetaEnumBuilder metaEnum(std::string_view name);
    [[nodiscard]] ZTMetaInvokableBuilder invokable(std::string_view name);
    [[nodiscard]] ZTMetaPropertyBuilder property(std::string_view name);

private:
    friend class ZTMetaInvokableBuilder;
    friend class ZTMetaPropertyBuilder;
    friend struct ZTClassReading;
    void copyMembers(const ZTMetaClass& prototype);

    std::unique_ptr<ZTMetaClassBuilderPrivate> priv;
};

/// Writes the class with its own members; inherited ones come from the super class, which is
/// written by name. Functions, offsets and user data are not written.
ZT_EXPORT ZTDataStream& operator<<(ZTDataStream& stream, const ZTMetaClass& metaClass);
