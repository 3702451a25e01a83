#include "support/logs.h"

#include <zintar/declare.h>
#include <zintar/eventblocker.h>
#include <zintar/eventlistener.h>
#include <zintar/metaclassbuilder.h>

#include <memory>
#include <optional>
#include <type_traits>

namespace sample
{
class Bell : public ZTBase
{
    ZT_OBJECT(Bell, ZTBase)
public:
    using ZTBase::sendEvent;
    void rung(int times, const std::string& by) { sendEvent<&Self::rung>(times, by); }
    void cracked() { sendEvent<&Self::cracked>(); }
    void repair() {}

private:
    static constexpr auto members()
    {
        return zt::members(zt::event<&Self::rung>(), zt::event<&Self::cracked>(),
                           zt::method<&Self::repair>());
    }
};
ZT_CLASS(Bell)
} // namespace sample

namespace
{
using sample::Bell;
using Values = std::vector<ZTVariant>;
static_assert(!std::is_copy_constructible_v<ZTEventListener> &&
              !std::is_copy_assignable_v<ZTEventListener>);

struct ListenerTest : testing::Test {
    /// What was recorded of `rung`: "1 by ann, 2 by bob".
    std::string story() const
    {
        std::string text;
        for (const Values& record : rings)
            text += (text.empty() ? "" : ", ") + std::to_string(ztVariantValue<int>(record[0])) +
                    " by " + ztVariantValue<std::string>(record[1]);
        return text;
    }

    std::optional<Bell> bell{std::in_place};
    ZTEventListener rings{&*bell, &Bell::rung};
};

TEST_F(ListenerTest, RecordsEveryDelivery)
{
    EXPECT_TRUE(rings.valid());
    EXPECT_EQ(story(), "");
    bell->rung(1, "ann");
    bell->cracked();
    bell->rung(2, "bob");
    EXPECT_EQ(rings.count(), 2);
    EXPECT_EQ(story(), "1 by ann, 2 by bob");
    EXPECT_EQ(rings.at(1), (Values{ZTVariant(2), ZTVariant("bob")}));
    EXPECT_EQ(rings.last(), rings.at(1));
    EXPECT_EQ(rings.records().size(), 2U);
}

TEST_F(ListenerTest, GivesOneArgumentAsItsType)
{
    bell->rung(3, "ann");
    EXPECT_EQ(rings.argument<int>(0, 0), 3);
    EXPECT_EQ(rings.argument<std::string>(0, 1), "ann");
    const std::string line = "Zintar Warning: Retrieved default-constructed value of type \"int\" "
                             "converting from invalid ZTVariant.\n";
    EXPECT_LOGS(line, [&] { EXPECT_EQ(rings.argument<int>(1, 0), 0); });
    EXPECT_LOGS(line, [&] { EXPECT_EQ(rings.argument<int>(0, 2), 0); });
}

TEST_F(ListenerTest, RemovesAndClearsRecords)
{
    for (int times = 1; times <= 3; ++times)
        bell->rung(times, "ann");
    EXPECT_FALSE(rings.remove(3));
    EXPECT_TRUE(rings.remove(0));
    EXPECT_EQ(story(), "2 by ann, 3 by ann");
    EXPECT_TRUE(rings.at(2).empty());
    rings.clear();
    EXPECT_TRUE(rings.count() == 0 && rings.last().empty() && !rings.remove(0));
    bell->rung(4, "bob");
    EXPECT_EQ(story(), "4 by bob");
}

TEST_F(ListenerTest, GivesCopies)
{
    bell->rung(1, "ann");
    Values record = rings.at(0);
    *ztVariantPointer<int>(record[0]) = 99;
    record.clear();
    EXPECT_EQ(story(), "1 by ann");
}

TEST_F(ListenerTest, CountsDeliveriesWithoutArguments)
{
    const ZTEventListener cracks(&*bell, &Bell::cracked);
    bell->cracked();
    EXPECT_EQ(cracks.count(), 1);
    EXPECT_TRUE(cracks.at(0).empty() && cracks.last().empty());
}

TEST_F(ListenerTest, TakesWhatWasSentAsItIs)
{
    const int index = bell->metaClass()->indexOfInvokable<void(int, const std::string&)>("rung");
    ZTArgumentArray arguments{ZTVariant(2.5), ZTVariant(), ZTVariant("beyond")};
    EXPECT_LOGS_NOTHING([&] { bell->sendEvent(index, arguments); });
    EXPECT_EQ(rings.at(0), (Values{ZTVariant(2.5), ZTVariant()}));
}

TEST_F(ListenerTest, KeepsItsRecordsWhenTheSenderDies)
{
    const ZTEventListener deaths(&*bell, &ZTBase::destroyed);
    const Bell* address = &*bell;
    bell->rung(1, "ann");
    bell.reset();
    EXPECT_EQ(deaths.count(), 1);
    EXPECT_EQ(deaths.argument<ZTBase*>(0, 0), address);
    EXPECT_TRUE(rings.valid() && deaths.valid());
    EXPECT_EQ(story(), "1 by ann");
    EXPECT_TRUE(rings.remove(0));
    rings.clear();
}

TEST_F(ListenerTest, MayDieWhileTheSenderDelivers)
{
    std::optional<ZTEventListener> before(std::in_place, &*bell, &Bell::cracked);
    std::optional<ZTEventListener> after;
    auto scoped = ZTBase::subscribe(&*bell, &Bell::cracked, [&] {
        EXPECT_EQ(before->count(), 1);
        before.reset();
        after.reset();
    });
    after.emplace(&*bell, &Bell::cracked);
    bell->cracked();
    EXPECT_FALSE(before || after);
    scoped.reset();
    bell->cracked();
}

TEST_F(ListenerTest, IsKeptFromRecordingByABlockerOfTheSender)
{
    {
        const ZTEventBlocker blocker(&*bell, true);
        bell->rung(1, "ann");
    }
    bell->rung(2, "bob");
    EXPECT_EQ(story(), "2 by bob");
}

TEST_F(ListenerTest, OfNothingRecordsNothing)
{
    EXPECT_LOGS_NOTHING([&] {
        const ZTMetaInvokable* rung = bell->metaClass()->invokable(4U);
        const ZTMetaInvokable* method = bell->metaClass()->invokable<void()>("repair");
        const ZTEventListener ofNoSender(nullptr, rung);
        const ZTEventListener ofNoEvent(&*bell, static_cast<const ZTMetaInvokable*>(nullptr));
        const ZTEventListener ofAMethod(&*bell, method);
        EXPECT_FALSE(ofNoSender.valid() || ofNoEvent.valid() || ofAMethod.valid());
        method->invoke(&*bell);
        EXPECT_EQ(ofAMethod.count(), 0);
    });
}

TEST_F(ListenerTest, RecordsEventsOfARunTimeClass)
{
    struct Host : ZTDynamicBase {
        using ZTDynamicBase::initializeMetaClass;
    };
    ZTMetaClassBuilder builder;
    builder.setSuperClass(&ZTDynamicBase::typeMetaClass());
    builder.addInvokable().setEvent(std::vector<const ZTMetaType*>(11, &ztMetaType<int>()));
    const std::unique_ptr<ZTMetaClass> wide(builder.toMetaClass());
    Host host;
    host.initializeMetaClass(wide.get());
    const ZTEventListener listener(&host, wide->invokable(5U));
    ZTArgumentArray arguments;
    arguments.back() = ZTVariant(10);
    wide->invokable(5U)->invoke(ZTVariant(&host), arguments);
    ASSERT_EQ(listener.count(), 1);
    EXPECT_EQ(listener.at(0).size(), std::size_t(ZTMetaInvokable::MaxParamCount));
    EXPECT_EQ(listener.last().back(), ZTVariant(10));
    EXPECT_TRUE(ztMetaType("struct ZTEventListenerPrivate*"));
}
} // namespace
