#pragma once

#include "../common/ring.h"
#include "queuedsubscription.h"

#include <zintar/variant.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <new>

struct ZTReadyRing;

/// An event that waits in a queue for the handler of one subscription, with copies of the values
/// that the handler takes. They stand behind it in the same block of memory.
struct ZTQueuedEvent : zt::detail::RingLink<ZTReadyRing> {
    struct Drop {
        void operator()(ZTQueuedEvent* dropped) const noexcept;
    };
    using Owner = std::unique_ptr<ZTQueuedEvent, Drop>;
    using Timed = std::multimap<ZTQueuedSubscription::Time, ZTQueuedEvent*>;

    static Owner make(ZTQueuedSubscription::Shared subscription, const ZTMetaInvokable& event,
                      ZTEventValues& values);
    static Owner makePost(ZTQueuedSubscription::Shared subscription);

    /// Calls the handler.
    void call();

    const ZTQueuedSubscription::Shared subscription;
    const ZTMetaInvokable* event = nullptr;
    int index = -1;
    unsigned int descriptorsEnded = 0;

    // Under the lock of the queue.
    std::uint64_t sequence = 0;
    /// Its place among those whose time has not come.
    Timed::iterator timed;
    bool isTimed = false;

private:
    /// A small plain value stands in place of the variant that would hold it.
    union Value {
        ZTVariant variant;
        struct {
            const ZTMetaType* type;
            unsigned char bytes[sizeof(void*)];
        } plain;

        Value() : variant() {}
        ~Value() {}
    };

    explicit ZTQueuedEvent(ZTQueuedSubscription::Shared of) : subscription(std::move(of)) {}
    ~ZTQueuedEvent();
    static Owner makeWithRoom(ZTQueuedSubscription::Shared subscription, unsigned int room);

    [[nodiscard]] Value* values() { return std::launder(reinterpret_cast<Value*>(this + 1)); }
    [[nodiscard]] bool isPlain(unsigned int position) const { return m_plain >> position & 1; }
    void addTyped(const ZTMetaType& type, const void* value);
    void addVariant(const ZTVariant& value);
    [[nodiscard]] const ZTMetaInvokable* livingEvent() const;
    void* addressFor(unsigned int position, const ZTMetaType& taken);

    unsigned char m_count = 0;
    unsigned char m_room = 0;
    std::uint16_t m_plain = 0;
};
