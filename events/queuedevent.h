#pragma once

#include "queuedsubscription.h"

#include <zintar/variant.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

/// An event on its way to the handler of one subscription, with copies of the values that the
/// handler takes. It is as large as what a processor fetches at once: events go from the memory of
/// one to that of another.
class ZTQueuedEvent
{
public:
    /// The values of a raised event. Copies of values may run code of the host.
    ZTQueuedEvent(ZTQueuedSubscription& subscription, const ZTMetaInvokable& event,
                  ZTEventValues& values);
    /// A call of what was posted.
    explicit ZTQueuedEvent(ZTQueuedSubscription& subscription) noexcept;
    ZTQueuedEvent(ZTQueuedEvent&& other) noexcept;
    ZTQueuedEvent& operator=(ZTQueuedEvent&& other) noexcept;
    ~ZTQueuedEvent() { clear(); }

    /// Calls the handler, as an active event of the thread.
    void call();
    void callHandler();
    /// Null once the event was moved from or replaced, which leaves a gap in its place.
    [[nodiscard]] ZTQueuedSubscription* subscription() const { return m_subscription; }

    /// Under the lock of the queue.
    std::uint64_t sequence = 0;

private:
    /// A small plain value stands in place of the variant that would hold it.
    union Value {
        ZTVariant variant;
        struct {
            const ZTMetaType* type;
            unsigned char bytes[sizeof(void*)];
        } plain;

        Value() {}
        ~Value() {}
    };
    static constexpr unsigned int room = 2; ///< for so many values; more are in an array

    void clear() noexcept;
    void take(ZTQueuedEvent& other) noexcept;
    [[nodiscard]] Value* values() { return m_room > room ? m_array : m_values; }
    [[nodiscard]] bool isPlain(unsigned int position) const { return m_plain >> position & 1; }
    void addPlain(const ZTMetaType& type, unsigned char size, const void* value);
    void addTyped(const ZTMetaType& type, const void* value);
    void addVariant(const ZTVariant& value);
    void addValues(const ZTMetaInvokable& event, ZTEventValues& values);
    [[nodiscard]] const ZTMetaInvokable* livingEvent() const;
    void* addressFor(unsigned int position, zt::detail::TypeGetter typeTaken);

    ZTQueuedSubscription* m_subscription;
    const ZTMetaInvokable* m_event = nullptr;
    unsigned int m_descriptorsEnded = 0;
    unsigned char m_count = 0;
    unsigned char m_room = 0;
    std::uint16_t m_plain = 0;
    union {
        Value m_values[room];
        Value* m_array; ///< owned
    };
};
