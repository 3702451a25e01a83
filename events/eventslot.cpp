#include "eventslot.h"

#include <utility>

void ZTEventSlot::add(std::shared_ptr<ZTSubscriptionPrivate> record)
{
    record->position = subscriptions.size();
    subscriptions.push_back(std::move(record));
    ++listed;
}

std::shared_ptr<ZTSubscriptionPrivate> ZTEventSlot::take(const ZTSubscriptionPrivate& record)
{
    std::shared_ptr<ZTSubscriptionPrivate> taken = std::move(subscriptions[record.position]);
    taken->active = false;
    --listed;
    compactIfIdle();
    return taken;
}

void ZTEventSlot::compactIfIdle()
{
    if (dispatching)
        return;
    while (!subscriptions.empty() && !subscriptions.back())
        subscriptions.pop_back();
    if (subscriptions.size() - listed <= listed)
        return;
    std::size_t kept = 0;
    for (auto& entry : subscriptions) {
        if (!entry)
            continue;
        entry->position = kept;
        if (&subscriptions[kept] != &entry)
            subscriptions[kept] = std::move(entry);
        ++kept;
    }
    subscriptions.resize(kept);
}
