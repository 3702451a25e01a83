#pragma once

#include <zintar/base.h>
#include <zintar/detail/wideindex.h>
#include <zintar/export.h>
#include <zintar/fwd.h>
#include <zintar/typedvalue.h>
#include <zintar/variant.h>

#include <cstddef>
#include <vector>

struct ZTEventListenerPrivate;

/// Records every delivery of one event of one sender, or of all its events, with copies of the
/// arguments: what a test asks after the fact, with no handler to write.
///
///     ZTEventListener changes(&thermostat, &Thermostat::targetChanged);
///     thermostat.setTarget(21.5);
///     changes.count();                  // 1
///     changes.argument<double>(0, 0);   // 21.5
///
/// Of all events of an object it tells which one each record is of:
///
///     ZTEventListener all(&thermostat);
///     thermostat.setTarget(19);
///     all.eventAt(0)->name();            // "targetChanged"
///
/// A copy that throws, and memory that fails, pass to the sender as from any handler. The records
/// outlive the sender. Recording ends with the listener. Not copyable: a record is one
/// listener's; copy what `at` gives.
/// Threads: belongs to the thread of the sender.
class ZT_EXPORT ZTEventListener
{
public:
    /// @param event  a descriptor of the sender's class. Null, or one that is no event, makes a
    ///               listener that is not valid and records nothing; nothing is logged then.
    ZTEventListener(ZTBase* sender, const ZTMetaInvokable* event);
    /// The event as a member function: `ZTEventListener(&thermostat, &Thermostat::targetChanged)`.
    template <class Sender, zt::detail::MemberFunction Event>
    ZTEventListener(Sender* sender, Event event)
        : ZTEventListener(sender, zt::detail::eventOf(sender, event))
    {}
    /// All events that the class of the sender has now, those of `ZTBase` included. A null sender
    /// makes a listener that is not valid.
    explicit ZTEventListener(ZTBase* sender);
    ZTEventListener(const ZTEventListener&) = delete;
    ZTEventListener& operator=(const ZTEventListener&) = delete;
    ~ZTEventListener();

    /// A copy of the arguments of one delivery, as many as the event has parameters; empty for
    /// an index out of range.
    [[nodiscard]] std::vector<ZTVariant> at(unsigned int index) const;
    template <zt::detail::WideIndex Index>
    [[nodiscard]] std::vector<ZTVariant> at(Index index) const
    {
        return at(zt::detail::narrowIndex(index));
    }
    /// The event that was delivered, by the class of the sender, and good as long as that class;
    /// null for an index out of range.
    [[nodiscard]] const ZTMetaInvokable* eventAt(unsigned int index) const;
    template <zt::detail::WideIndex Index>
    [[nodiscard]] const ZTMetaInvokable* eventAt(Index index) const
    {
        return eventAt(zt::detail::narrowIndex(index));
    }
    [[nodiscard]] int count() const;
    void clear();
    /// @return false, changing nothing, for an index out of range
    bool remove(unsigned int index);
    template <zt::detail::WideIndex Index>
    bool remove(Index index)
    {
        return remove(zt::detail::narrowIndex(index));
    }
    /// Whether the subscription was accepted; stays true when the sender has died.
    [[nodiscard]] bool valid() const;

    /// The records in the order of arrival, for iteration. Good until the next delivery.
    [[nodiscard]] const std::vector<std::vector<ZTVariant>>& records() const;
    [[nodiscard]] auto begin() const { return records().begin(); }
    [[nodiscard]] auto end() const { return records().end(); }
    /// A copy of the last record; empty when there is none.
    [[nodiscard]] std::vector<ZTVariant> last() const;
    /// One argument of one record as a `T`; a default value, with a warning, where there is
    /// none.
    template <class T>
    [[nodiscard]] T argument(std::size_t index, std::size_t position) const
    {
        using zt::detail::narrowIndex;
        return ztVariantValue<T>(argumentAt(narrowIndex(index), narrowIndex(position)));
    }

private:
    [[nodiscard]] const ZTVariant& argumentAt(unsigned int index, unsigned int position) const;

    ZTEventListenerPrivate* priv;
};
