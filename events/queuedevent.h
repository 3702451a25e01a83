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

/// Memory for an event, as nearly all of them are. It goes from the thread that delivers back to
/// those that raise: what one thread takes and another gives back is dear.
struct ZTEventBlock {
    static constexpr unsigned int room = 2;             ///< for so many values
    static void giveBack(ZTEventBlock* block) noexcept; ///< null gives nothing

    ZTEventBlock* next = nullptr;
};

/// An event that waits in a queue for the handler of one subscription, with copies of the values
/// that the handler takes. They stand behind it in the same block of memory.
struct ZTQueuedEvent : zt::detail::RingLink<ZTReadyRing> {
    struct Drop {
        void operator()(ZTQueuedEvent* dropped) const noexcept;
    };
    using Owner = std::unique_ptr<ZTQueuedEvent, Drop>;
    using Timed = std::multimap<ZTQueuedSubscription::Time, ZTQueuedEvent*>;

    static constexpr std::size_t valueSize = 16;

    static Owner make(ZTQueuedSubscription& subscription, const ZTMetaInvokable& event,
                      ZTEventValues& values);
    static Owner makePost(ZTQueuedSubscription& subscription);

    /// Calls the handler.
    void call();
    /// Destroys the event; its memory is left over where it is that of a block.
    static ZTEventBlock* destroy(ZTQueuedEvent* event) noexcept;

    ZTQueuedSubscription& subscription;
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

        ~Value() {}
    };

    explicit ZTQueuedEvent(ZTQueuedSubscription& of) noexcept : subscription(of) { of.addEvent(); }
    ~ZTQueuedEvent();
    static Owner makeWithRoom(ZTQueuedSubscription& subscription, unsigned int room);

    [[nodiscard]] Value* values() { return std::launder(reinterpret_cast<Value*>(this + 1)); }
    [[nodiscard]] bool isPlain(unsigned int position) const { return m_plain >> position & 1; }
    void addPlain(const ZTMetaType& type, unsigned char size, const void* value);
    void addTyped(const ZTMetaType& type, const void* value);
    void addVariant(const ZTVariant& value);
    void addArray(unsigned int count, const ZTArgumentArray& array);
    [[nodiscard]] const ZTMetaInvokable* livingEvent() const;
    void* addressFor(unsigned int position, zt::detail::TypeGetter typeTaken);

    unsigned char m_count = 0;
    unsigned char m_room = 0;
    std::uint16_t m_plain = 0;
};
