#include "support/hostclasses.h"

#include <optional>
#include <type_traits>

namespace
{
using namespace host;
using Values = std::vector<ZTVariant>;
static_assert(!std::is_copy_constructible_v<ZTEventListener> &&
              !std::is_copy_assignable_v<ZTEventListener>);

struct Listener : testing::Test {
    /// What was recorded of `told`: "ann1, bob2".
    std::string story() const
    {
        std::string text;
        for (const Values& record : tellings.records())
            text += (text.empty() ? "" : ", ") + ztVariantValue<std::string>(record[0]) +
                    std::to_string(ztVariantValue<int>(record[1]));
        return text;
    }

    std::optional<Speaker> speaker{std::in_place};
    ZTEventListener tellings{&*speaker, &Speaker::told};
};

// The page on events shows that the records outlive the sender.
TEST_F(Listener, RecordsEveryDelivery)
{
    speaker->told("ann", 1);
    speaker->said(7);
    {
        const ZTEventBlocker blocker(&*speaker, true);
        speaker->told("nobody", 0);
    }
    speaker->told("bob", 2);
    EXPECT_EQ(story(), "ann1, bob2");
    EXPECT_EQ(tellings.at(1), (Values{ZTVariant("bob"), ZTVariant(2)}));
    EXPECT_EQ(tellings.argument<int>(0, 1), 1);
    const std::string line = "Zintar Warning: Retrieved default-constructed value of type \"int\" "
                             "converting from invalid ZTVariant.\n";
    EXPECT_LOGS(line, [&] { EXPECT_EQ(tellings.argument<int>(2, 0), 0); });
    EXPECT_LOGS(line, [&] { EXPECT_EQ(tellings.argument<int>(0, 2), 0); });
    // What was sent is recorded as it is.
    speaker->sendEvent(5, {ZTVariant(2.5), ZTVariant(), ZTVariant("beyond")});
    EXPECT_EQ(tellings.last(), (Values{ZTVariant(2.5), ZTVariant()}));
}

TEST_F(Listener, RemovesAndClearsRecordsAndGivesCopies)
{
    for (int times = 1; times <= 3; ++times)
        speaker->told("ann", times);
    EXPECT_FALSE(tellings.remove(3));
    EXPECT_TRUE(tellings.remove(0));
    Values record = tellings.at(0);
    *ztVariantPointer<int>(record[1]) = 99;
    EXPECT_EQ(story(), "ann2, ann3");
    EXPECT_TRUE(tellings.at(2).empty());
    tellings.clear();
    EXPECT_EQ(tellings.count(), 0);
    EXPECT_TRUE(tellings.last().empty());
    EXPECT_FALSE(tellings.remove(0));
    speaker->told("bob", 4);
    EXPECT_EQ(story(), "bob4");
}

TEST_F(Listener, OfNothingRecordsNothing)
{
    const ZTMetaClass& type = *speaker->metaClass();
    EXPECT_LOGS_NOTHING([&] {
        const ZTEventListener ofNoSender(nullptr, type.invokable(4U));
        const ZTEventListener ofNoEvent(&*speaker, static_cast<const ZTMetaInvokable*>(nullptr));
        const ZTEventListener ofAMethod(&*speaker, type.invokable(7U));
        EXPECT_FALSE(ofNoSender.valid());
        EXPECT_FALSE(ofNoEvent.valid());
        EXPECT_FALSE(ofAMethod.valid());
    });
}

TEST_F(Listener, OfAnObjectTellsTheEventOfEachRecord)
{
    std::optional<ZTEventListener> all(std::in_place, &*speaker);
    EXPECT_TRUE(all->valid());
    const ZTMetaClass& type = *speaker->metaClass();
    const auto names = [&] {
        std::string text;
        for (std::size_t i = 0; i < all->records().size(); ++i)
            text += std::string(all->eventAt(i)->name()) + std::to_string(all->at(i).size()) + " ";
        return text;
    };
    speaker->said(7);
    speaker->setProperty("name", "new", true);
    speaker->told("ann", 1);
    EXPECT_EQ(names(), "said1 dynamicPropertyChanged2 told2 ");
    EXPECT_EQ(all->eventAt(0U), type.invokable(4U));
    EXPECT_EQ(all->argument<int>(2, 1), 1);
    EXPECT_EQ(all->eventAt(3), nullptr);
    EXPECT_EQ(all->eventAt(~0U), nullptr);
    all->remove(1);
    EXPECT_EQ(names(), "said1 told2 ");
    all->clear();
    EXPECT_EQ(all->eventAt(0), nullptr);
    speaker->carried({}, 1);
    EXPECT_EQ(names(), "carried2 ");
    EXPECT_EQ(tellings.eventAt(0), type.invokable(5U)); // as one of a single event does
    speaker.reset();
    EXPECT_EQ(names(), "carried2 destroyed1 ");
    all.emplace(nullptr);
    EXPECT_FALSE(all->valid());
}
} // namespace
