// What stands between objects, and whatever of it allocates: queues, bindings, changes that are
// held back. See `support/allornothing.h`.

#include "support/allornothing.h"

#include <zintar/declare.h>
#include <zintar/zintar.h>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace
{
using FailingQueues = support::FailingMemoryTest;

// Too long to be held without an allocation.
const std::string longText = "a text that is too long for any string to hold in place";
const std::string otherText = "the other text that is too long for any string";

/// How many handlers have run.
int heard = 0;

class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
public:
    std::string label = longText;

    void spent(const std::string& reason) { sendEvent<&Self::spent>(reason); }
    void hear(const std::string&) { ++heard; }

private:
    static constexpr auto members()
    {
        return zt::members(zt::event<&Self::spent>(), zt::method<&Self::hear>(),
                           zt::property<&Self::label>());
    }
};
ZT_CLASS(Lamp)

/// What stands between a sender and a receiver.
struct State {
    std::unique_ptr<Lamp> sender{new Lamp}, other{new Lamp};
    Lamp receiver;
    std::unique_ptr<ZTEventQueue> queue{new ZTEventQueue};
    ZTSubscription handle =
        ZTBase::subscribe(sender.get(), &Lamp::spent, *queue, &receiver, &Lamp::hear);
    ZTSubscription freshHandle;
    std::optional<ZTChangeHold> hold, freshHold;
    ZTBinding binding;
    int ran = 0;

    State()
    {
        heard = 0;
        sender->spent(longText);
        sender->setProperty("size", longText, true);
        other->setProperty("size", longText, true);
        ZTBase::subscribe(other.get(), &ZTBase::dynamicPropertyChanged, &receiver, [] { ++heard; });
        hold.emplace(other.get());
    }
    std::string describe() const
    {
        std::string all = std::to_string(queue ? queue->waitingCount() : 0) + " wait ";
        if (sender)
            all += std::to_string(sender->listenerCount(&Lamp::spent)) + " listen, " +
                   std::to_string(sender->listenerCount(&ZTBase::dynamicPropertyChanged)) +
                   " follow ";
        for (bool is : {bool(handle), bool(freshHandle), hold.has_value(), freshHold.has_value(),
                        bool(binding)})
            all += is ? "+" : "-";
        return all + " " + receiver.label + " " + std::to_string(ran) + " " + std::to_string(heard);
    }
};

// clang-format off
TEST_F(FailingQueues, DoItAllOrNothing)
{
    tryAll<State>({
        DO(s.freshHandle = ZTBase::subscribe(s.sender.get(), &Lamp::spent, *s.queue, &s.receiver, &Lamp::hear)),
        DO(s.freshHandle = ZTBase::subscribe(s.other.get(), &Lamp::spent, *s.queue, &s.receiver, [t = longText] { heard += int(t.size()); })),
        DO(s.freshHandle = ZTBase::subscribe(s.sender.get(), &Lamp::spent, *s.queue, &s.receiver, &Lamp::hear, zt::latestOnly, zt::once)),
        DO(s.freshHandle = ZTBase::subscribe(s.sender.get(), &Lamp::spent, &s.receiver, &Lamp::hear, zt::unique, zt::when([t = longText] { return t.size() > 5; }))),
        DO(s.sender->spent(otherText)),
        DO(s.queue->post([t = longText] { heard += int(t.size()); })),
        DO(s.queue->post(&s.receiver, [] { ++heard; })),
        DO(s.queue->postAfter(std::chrono::hours(1), [t = longText] { heard += int(t.size()); })),
        DO(s.ran = int(s.queue->deliver())),
        ENDS(ZTBase::unsubscribe(s.handle)),
        ENDS(s.sender.reset()),
        ENDS(s.queue.reset()),
        DO(s.binding = *ztBind(s.sender.get(), "size", &s.receiver, "label")),
        DO(s.ran = ztBind(s.sender.get(), "sizes", &s.receiver, "label") ? 1 : 2),
        DO(s.ran = int(ztSubscribeToChanges(s.sender.get(), &s.receiver, [t = longText](std::string_view, const ZTVariant&) { heard += int(t.size()); }).size())),
        DO(s.freshHold.emplace(s.sender.get())),
        DO(s.other->setProperty("size", otherText, true)),
        ENDS(s.other.reset()),
        ENDS(s.hold.reset()),
    });
}
// clang-format on
} // namespace
