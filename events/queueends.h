#pragma once

#include "../common/ring.h"

#include <zintar/detail/blocks.h>
#include <zintar/fwd.h>

#include <atomic>

struct ZTQueuedSubscription;

// The rings that a subscription through a queue stands in.
struct ZTSentRing;     ///< of its sender
struct ZTReceivedRing; ///< of its receiver
struct ZTQueueRing;    ///< of its queue
struct ZTNewsRing;     ///< of its sender: what that has to see to in its slots

/// The ends that an object has of subscriptions through queues. Any thread may change them, under
/// the lock of `queuedsubscription.h`.
///
/// The slots of a sender are for its thread alone. So what another thread begins or ends is left
/// here as news, which the sender takes in before it next looks at its slots.
struct ZTQueueEnds : zt::detail::InBlocks {
    zt::detail::Ring<ZTQueuedSubscription, ZTSentRing> sent;
    zt::detail::Ring<ZTQueuedSubscription, ZTReceivedRing> received;
    zt::detail::Ring<ZTQueuedSubscription, ZTNewsRing> news;
    std::atomic<bool> hasNews = false;
};
