#pragma once

#include "../reflection/parameters.h"
#include "handlers.h"

#include <zintar/detail/lent.h>
#include <zintar/metaclass.h>

#include <optional>

/// Whether a value may be handed over as one of that type. A pointer to an object of a derived
/// class is a value of a pointer to the base.
bool ztFits(const ZTVariant& value, const ZTMetaType& declared);

/// The values of an event on their way: as variants, or as the addresses of typed values.
///
/// Typed values are copies, which nobody changes. An array is the sender's: a handler may change
/// it, so its addresses are taken for each call.
struct ZTEventValues {
    explicit ZTEventValues(const ZTArgumentArray& array) : m_array(&array) {}
    /// The values are those of the event `declared`.
    ZTEventValues(const ZTMetaInvokable* declared, void** addresses)
        : m_declared(declared), m_addresses(addresses)
    {}

    /// Keeps typed values from being taken for those of `event`, another one at the same index:
    /// the object has got another class since it was declared.
    void fitTo(const ZTMetaInvokable& event)
    {
        if (m_declared && m_declared != &event) [[unlikely]]
            fitToOther(event);
    }
    /// Whether they are what a handler with these parameters takes.
    template <class Handler>
    [[nodiscard]] bool areTakenBy(const Handler& handler) const
    {
        return zt::detail::firstMisfit(handler, [this](unsigned int i, const ZTMetaType& taken) {
                   return isValueOf(i, taken);
               }) == handler.parameterCount();
    }

    const ZTArgumentArray& array();
    /// Ten addresses, of which those of the parameters of a handler or a condition are set. Good
    /// until those for another one are asked for.
    template <class Taker>
    void* const* addresses(const Taker& taker)
    {
        if (m_addresses)
            return m_addresses;
        for (unsigned int i = 0; i < taker.parameterCount(); ++i)
            m_collected[i] = addressFor(i, taker.parameterMetaType(i));
        return m_collected;
    }
    /// The addresses of typed values; null when the values are an array.
    [[nodiscard]] void* const* typedAddresses() const { return m_addresses; }

private:
    [[nodiscard]] bool isValueOf(unsigned int position, const ZTMetaType& type) const;
    void fitToOther(const ZTMetaInvokable& event);
    [[nodiscard]] void* addressFor(unsigned int position, const ZTMetaType& taken) const;

    const ZTArgumentArray* m_array = nullptr;
    const ZTMetaInvokable* m_declared = nullptr;
    void** m_addresses = nullptr;
    std::optional<zt::detail::LentArguments> m_lent;
    void* m_collected[zt::detail::maxParamCount];
};
