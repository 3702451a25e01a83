#pragma once

#include "../types/nameindex.h"

#include <zintar/base.h>
#include <zintar/detail/blocks.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

class ZTDelivery;
struct ZTEventSlot;
class ZTLifeWatch;

/// How far the beginning or the end of an object has come.
enum class ZTLifeStage : unsigned char {
    Beginning, ///< the constructor or an assignment of `ZTBase` goes on; see `Beginning`
    Alive,
    Dying,    ///< the destruction has reached `ZTBase`: of what the object was, only that is left
    TornDown, ///< the record is being destroyed and cannot be handed over
    Ending    ///< the last step of that: nothing new is taken on
};

namespace zt::detail
{
struct DynamicProperty : InBlocks {
    DynamicProperty(std::string_view newName, const ZTVariant& first) : name(newName), value(first)
    {}

    const std::string name;
    ZTVariant value;
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
/// 2. An object stands at most once in one `children` vector, that of its `parent`.
/// 3. Every subscription that names this record stands in a slot of its sender, and is linked
///    from its subscriber if it has one.
/// 4. What runs on this thread and must know whether the record is still there is on one of its
///    stacks: `activeEvents`, `watches`, or the deliveries of a slot. The destruction tells them.
struct ZTBasePrivate : zt::detail::InBlocks {
    explicit ZTBasePrivate(ZTBase* owner);
    ZTBasePrivate(const ZTBasePrivate&) = delete;
    ZTBasePrivate& operator=(const ZTBasePrivate&) = delete;
    ~ZTBasePrivate();

    /// The record of an object; null for null and for a moved-from object.
    static ZTBasePrivate* of(const ZTBase* object) { return object ? object->priv : nullptr; }

    // The tree: tree.cpp.
    void setParent(ZTBase* newParent);
    /// Takes the object out of its parent's children, without a word to anybody.
    bool leaveChildren();
    void deleteChildren();
    bool descendsFrom(const ZTBasePrivate* ancestor) const;

    // Lifetime: lifetime.cpp.
    class Beginning;
    void moveTo(ZTBase* newObject);
    /// Whether nothing refers to the object and it has nothing that has to be ended.
    bool isAlone() const;
    /// Ends the record of an object that became another one by assignment.
    static void replace(ZTBase* object, ZTBasePrivate* newRecord);
    /// Takes the record from an object that becomes another one; null if there is none to take.
    static ZTBasePrivate* takeFrom(ZTBase& object);

    // References: references.cpp.
    /// From here on weak references read null.
    void clearWeakReferences();
    void clearStrongReferences();
    void pointReferencesTo(ZTBase* newObject);

    // Properties: properties.cpp.
    [[gnu::always_inline]] inline zt::detail::DynamicProperty*
    findDynamicProperty(std::string_view name) const
    {
        const auto* found = dynamicProperties ? dynamicProperties->byName.find(name) : nullptr;
        return found ? *found : nullptr;
    }
    void setDynamicProperty(std::string_view name, const ZTVariant& value);
    zt::detail::DynamicProperty& addDynamicProperty(std::string_view name, const ZTVariant& value);
    std::vector<std::string_view> dynamicPropertyNames() const;

    // Events, in the folder of that name.
    ZTEventSlot& eventSlot(int index);
    ZTEventSlot* findSlot(int index) const;
    void dispatch(ZTEventSlot& slot, int index, struct ZTEventValues& values);
    ZTSubscription addSubscription(std::shared_ptr<ZTSubscriptionPrivate> record);
    bool removeSubscriptions(const ZTSubscriptionPrivate& pattern);
    void endReceived();
    void endSent();
    void clearBlockers();

    // What a delivery to the object looks at stands together.
    ZTBase* object;
    /// The top of the deliveries in progress to this object.
    ZTDelivery* activeEvents = nullptr;
    /// The heads of two lists.
    ZTEventBlocker* receivedEventBlockers = nullptr;
    ZTEventBlocker* sentEventBlockers = nullptr;
    /// The object may be of another class than when it was subscribed: it is dying, or was moved,
    /// and a move may leave a part of what the object was behind.
    bool mayHaveChangedClass = false;
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
    /// The control blocks of the references to the object; null while there are none. Not owned:
    /// a block lives for its references.
    zt::detail::ZTRefImpl* refImpl = nullptr;
    zt::detail::ZTStrongRefImpl* strongRefImpl = nullptr;
    /// Null until the first one is set.
    std::unique_ptr<zt::detail::DynamicProperties> dynamicProperties;
    ZTLifeWatch* watches = nullptr;
};

/// Tells on the stack whether a record is still there after a call into the host.
class ZTLifeWatch
{
public:
    explicit ZTLifeWatch(ZTBasePrivate* record) noexcept : m_record(record)
    {
        if (record) {
            m_below = record->watches;
            record->watches = this;
        }
    }
    ZTLifeWatch(const ZTLifeWatch&) = delete;
    ZTLifeWatch& operator=(const ZTLifeWatch&) = delete;
    ~ZTLifeWatch()
    {
        if (m_record)
            m_record->watches = m_below;
    }

    [[nodiscard]] ZTBasePrivate* record() const noexcept { return m_record; }
    [[nodiscard]] ZTLifeWatch* below() const noexcept { return m_below; }
    void recordDied() noexcept { m_record = nullptr; }

private:
    ZTBasePrivate* m_record;
    ZTLifeWatch* m_below = nullptr;
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
