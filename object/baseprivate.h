#pragma once

#include "../common/nameindex.h"
#include "hostcode.h"

#include <zintar/base.h>
#include <zintar/detail/blocks.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class ZTDelivery;
struct ZTEventSlot;

/// How far the beginning or the end of an object has come.
enum class ZTLifeStage : unsigned char {
    Beginning, ///< the constructor or an assignment of `ZTBase` goes on; see `Beginning`
    Alive,
    Dying,   ///< the destruction has reached `ZTBase`: of what the object was, only that is left
    TornDown ///< the record is being destroyed and cannot be handed over
};

class ZTValueReading;

namespace zt::detail
{
struct DynamicProperty : InBlocks {
    DynamicProperty(std::string_view newName, ZTVariant&& first)
        : name(newName), value(std::move(first))
    {}
    DynamicProperty(const DynamicProperty&) = delete;
    DynamicProperty& operator=(const DynamicProperty&) = delete;
    ~DynamicProperty() { leaveToReaders(); }

    /// Gives the value that it has to whoever is reading it, if anybody is.
    void leaveToReaders() noexcept;

    const std::string name;
    ZTVariant value;
    /// The innermost of those that are reading the value.
    ZTValueReading* readings = nullptr;
};

/// They do not move and none leaves, so views of the names stay good.
struct DynamicProperties {
    std::vector<std::unique_ptr<DynamicProperty>> list;
    NameIndex<DynamicProperty*> byName;
};
} // namespace zt::detail

/// The record that holds all of an object's state. A move of the object hands the record over, so
/// whatever names the record and not the object needs no care then.
///
/// 1. `object` is the object that has the record now.
/// 2. An object stands at most once in one `children` vector, that of its `parent`. The entries are
///    in ascending order of `rank`; those that are null, while the parent is dying, stand in front.
/// 3. Every subscription that names this record stands in a slot of its sender, and is linked
///    from its subscriber if it has one.
/// 4. What runs on this thread and must know whether the record is still there is on one of its
///    stacks: `activeEvents`, `watches`, or the deliveries of a slot. The destruction tells them.
struct ZTBasePrivate : zt::detail::InBlocks {
    explicit ZTBasePrivate(ZTBase* owner);
    ZTBasePrivate(const ZTBasePrivate&) = delete;
    ZTBasePrivate& operator=(const ZTBasePrivate&) = delete;

    /// The record of an object; null for null and for a moved-from object.
    static ZTBasePrivate* of(const ZTBase* object) { return object ? object->priv : nullptr; }

    // The tree: tree.cpp.
    void setParent(ZTBase* newParent);
    /// Takes the object out of its parent's children, without a word to anybody.
    bool leaveChildren();
    /// Where the object stands among its parent's children; their number if it does not.
    [[nodiscard]] std::size_t placeAmongChildren() const;
    /// Room for what is about to join, or has yet to come; may throw and changes nothing then.
    void reserveChild();
    /// The room is there.
    void addChild(ZTBasePrivate& child);
    void deleteChildren();
    bool descendsFrom(const ZTBasePrivate* ancestor) const;

    // Lifetime: lifetime.cpp.
    class Beginning;
    class Farewell;
    /// From the object that has the record now.
    void moveTo(ZTBase* newObject);
    /// Ends a record, which may be null, with all that the object was; see `~ZTBase`.
    static void end(ZTBasePrivate* record) noexcept;
    /// Whether nothing refers to the object and it has nothing that has to be ended.
    bool isAlone() const;
    /// The object becomes what the other one was.
    static void replace(ZTBase* object, ZTBase& other);
    /// Whether the object's record can still be handed over.
    static bool hasRecordToGive(const ZTBase& object);

    // References: references.cpp.
    /// From here on weak references read null.
    void clearWeakReferences();
    /// Whether there are any, which is then to be told.
    bool clearStrongReferences();
    static void warnOfHeldObject();
    void pointReferencesTo(ZTBase* newObject);

    // Properties: properties.cpp.
    [[gnu::always_inline]] inline zt::detail::DynamicProperty*
    findDynamicProperty(std::string_view name) const
    {
        const auto* found = dynamicProperties ? dynamicProperties->byName.find(name) : nullptr;
        return found ? *found : nullptr;
    }
    void setDynamicProperty(std::string_view name, const ZTVariant& value);
    /// @param property  the one with that name, or null
    void changeDynamicProperty(zt::detail::DynamicProperty* property, std::string_view name,
                               const ZTVariant& value);
    zt::detail::DynamicProperty& addDynamicProperty(std::string_view name, ZTVariant&& value);
    std::vector<std::string_view> dynamicPropertyNames() const;

    // Events, in the folder of that name.
    ZTEventSlot& eventSlot(int index);
    ZTEventSlot* findSlot(int index) const;
    /// The slot of an event that somebody hears; null when a send would reach nobody.
    ZTEventSlot* heardSlot(int index) const;
    void dispatch(ZTEventSlot& slot, int index, struct ZTEventValues& values);
    ZTSubscription addSubscription(std::shared_ptr<ZTSubscriptionPrivate> record);
    bool removeSubscriptions(const ZTSubscriptionPrivate& pattern, ZTLetGo& ended);
    void endReceived(ZTLetGo& ended);
    void endSent(ZTLetGo& ended);
    void clearBlockers();

    // What a delivery to the object looks at stands together.
    ZTBase* object;
    /// The top of the deliveries in progress to this object.
    ZTDelivery* activeEvents = nullptr;
    /// The heads of two lists.
    ZTEventBlocker* receivedEventBlockers = nullptr;
    ZTEventBlocker* sentEventBlockers = nullptr;
    ZTLifeStage stage = ZTLifeStage::Alive;
    /// The object is between two parents; see `setParent`.
    bool isMoving = false;
    /// The object is out of its parent's list already, and the parent is still to be told.
    bool hasLeftParent = false;

    /// The subscriptions in which this object is the subscriber, through which it finds its
    /// senders: the length of a list that runs through the records, and its head.
    unsigned int senderCount = 0;
    ZTSubscriptionPrivate* senders = nullptr;
    /// By class-wide index; null where nobody ever subscribed, as a whole and one by one.
    std::unique_ptr<std::vector<std::unique_ptr<ZTEventSlot>>> eventSlots;
    ZTBasePrivate* parent = nullptr;
    std::vector<ZTBase*> children;
    std::uint32_t rank = 0;
    /// How many objects are about to become children, for which there is room already.
    std::uint32_t expectedChildren = 0;
    /// The control blocks of the references to the object; null while there are none. Not owned:
    /// a block lives for its references.
    zt::detail::ZTRefImpl* refImpl = nullptr;
    zt::detail::ZTStrongRefImpl* strongRefImpl = nullptr;
    /// Null until the first one is set.
    std::unique_ptr<zt::detail::DynamicProperties> dynamicProperties;
    ZTLifeWatch* watches = nullptr;
};

/// Keeps the value of a dynamic property while code of the host copies it or compares it with
/// another: the property may get another value meanwhile, and the object may die.
class ZTValueReading
{
public:
    explicit ZTValueReading(zt::detail::DynamicProperty& property) noexcept
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
    friend struct zt::detail::DynamicProperty;

    zt::detail::DynamicProperty* m_property;
    const ZTVariant* m_value;
    ZTValueReading* m_below;
    /// What the property had, in the outermost of those that were reading it then.
    ZTVariant m_kept;
};

/// Keeps an object that somebody is making, or assigns to, from being deleted meanwhile: a parent
/// that dies lets it go.
class ZTBasePrivate::Beginning
{
public:
    explicit Beginning(ZTBasePrivate* record) noexcept : m_watch(record)
    {
        if (record)
            record->stage = ZTLifeStage::Beginning;
    }
    Beginning(const Beginning&) = delete;
    Beginning& operator=(const Beginning&) = delete;
    ~Beginning()
    {
        if (m_watch.record() && m_watch.record()->stage == ZTLifeStage::Beginning)
            m_watch.record()->stage = ZTLifeStage::Alive;
    }

private:
    ZTLifeWatch m_watch;
};

/// Marks an object as one whose destruction has reached `ZTBase`, to the end of that. Its record
/// tells the same, but may be moved away meanwhile, and is gone when its properties and handlers
/// go.
class ZTBasePrivate::Farewell
{
public:
    explicit Farewell(const ZTBase* object) noexcept;
    Farewell(const Farewell&) = delete;
    Farewell& operator=(const Farewell&) = delete;
    ~Farewell();

    static bool isDying(const ZTBase* object) noexcept;

private:
    const ZTBase* m_object;
    Farewell* m_outer;
};
