#include "support/hostclasses.h"

#include <optional>

namespace
{
using namespace host;

class EventBlocker : public SpeechTest
{
protected:
    std::unique_ptr<Hearer> a = listening("a"), b = listening("b");
};

TEST_F(EventBlocker, BlockedReceiverDoesNotHear)
{
    ZTBase::subscribe(speaker.get(), &Speaker::said, b.get(), [&](int) { diary.add("lambda"); });
    auto free = ZTBase::subscribe(speaker.get(), &Speaker::said, [&] { diary.add("free"); });
    std::optional<ZTEventBlocker> blocker;
    // It is asked when its turn comes.
    a->then = [&] { blocker ? blocker.reset() : (void)blocker.emplace(b.get(), false); };
    EXPECT_EQ(say(1), "a:1 free");
    EXPECT_TRUE(b->isBlockingReceivedEvents());
    EXPECT_FALSE(b->isBlockingSentEvents());
    EXPECT_EQ(say(2), "a:2 b:2 lambda free");
}

TEST_F(EventBlocker, BlockersNestInAnyOrder)
{
    std::optional<ZTEventBlocker> first, second;
    for (bool firstGoesFirst : {true, false}) {
        first.emplace(speaker.get(), true);
        second.emplace(speaker.get(), true);
        (firstGoesFirst ? first : second).reset();
        EXPECT_EQ(say(1), "");
        (firstGoesFirst ? second : first).reset();
        EXPECT_EQ(say(2), "a:2 b:2");
    }
}

TEST_F(EventBlocker, BlockerOutlivesItsObject)
{
    bool heard = false;
    ZTBase::subscribe(speaker.get(), &ZTBase::destroyed, a.get(), [&] { heard = true; });
    ZTEventBlocker sent(speaker.get(), true), received(speaker.get(), false);
    ZTEventBlocker nothing(nullptr, true);
    speaker.reset();
    EXPECT_FALSE(heard);
    speaker = std::make_unique<Speaker>();
    Speaker heir(std::move(*speaker));
    ZTEventBlocker ofMovedFrom(speaker.get(), true);
    speaker.reset();
    EXPECT_FALSE(heir.isBlockingSentEvents());
}

TEST_F(EventBlocker, AssignmentMovesTheRegistration)
{
    Speaker other("other");
    ZTEventBlocker blocker(speaker.get(), true);
    {
        ZTEventBlocker source(&other, true);
        blocker = source;
        auto& same = blocker;
        blocker = same;
        EXPECT_EQ(say(1), "a:1 b:1");
    }
    EXPECT_TRUE(other.isBlockingSentEvents());
    blocker = ZTEventBlocker(&other, false);
    EXPECT_TRUE(other.isBlockingReceivedEvents() && !other.isBlockingSentEvents());
    blocker = ZTEventBlocker(nullptr, true);
    EXPECT_FALSE(other.isBlockingReceivedEvents() || other.isBlockingSentEvents());
}
} // namespace
