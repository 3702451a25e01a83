#include <zintar/bind.h>
#include <zintar/changehold.h>
#include <zintar/declare.h>
#include <zintar/eventblocker.h>
#include <zintar/eventlistener.h>
#include <zintar/logcapture.h>
#include <zintar/typedvalue.h>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

namespace
{
class Heater : public ZTBase
{
    ZT_OBJECT(Heater, ZTBase)
public:
    void levelChanged(int now, int before) { sendEvent<&Self::levelChanged>(now, before); }
    void labelChanged(const std::string& now) { sendEvent<&Self::labelChanged>(now); }
    void onChanged() { sendEvent<&Self::onChanged>(); }
    void burnt(int degrees) { sendEvent<&Self::burnt>(degrees); }

    int level = 0;
    std::string label;
    bool on = false;

private:
    static constexpr auto members()
    {
        return zt::members(zt::event<&Self::levelChanged>(), zt::event<&Self::labelChanged>(),
                           zt::event<&Self::onChanged>(), zt::event<&Self::burnt>(),
                           zt::property<&Self::level>().notify<&Self::levelChanged>(),
                           zt::property<&Self::label>().notify<&Self::labelChanged>(),
                           zt::property<&Self::on>().notify<&Self::onChanged>());
    }
};
} // namespace
ZT_CLASS(Heater)
namespace
{
class ChangeHold : public testing::Test
{
protected:
    ChangeHold()
    {
        ZTBase::subscribe(&heater, &Heater::levelChanged, &listener, [this](int now, int before) {
            told += "level " + std::to_string(before) + ">" + std::to_string(now) + " ";
        });
        ZTBase::subscribe(&heater, &Heater::labelChanged, &listener,
                          [this](const std::string& now) { told += "label " + now + " "; });
        ZTBase::subscribe(&heater, &Heater::onChanged, &listener, [this] { told += "on "; });
        ZTBase::subscribe(&heater, &Heater::burnt, &listener, [this] { told += "burnt "; });
        ZTBase::subscribe(&heater, &ZTBase::dynamicPropertyChanged, &listener,
                          [this](const std::string& name, const ZTVariant& value) {
                              told += name + std::to_string(ztVariantValue<int>(value)) + " ";
                          });
    }
    void set(int level) { heater.setProperty("level", level); }

    Heater heater;
    ZTBase listener;
    std::string told;
};

TEST_F(ChangeHold, SendsTheLastChangeOfEachProperty)
{
    set(1);
    told.clear();
    {
        const ZTChangeHold hold(&heater);
        heater.setProperty("label", std::string("a"));
        heater.setProperty("x", 1, true);
        set(2);
        heater.setProperty("y", 5, true);
        heater.setProperty("label", std::string("b"));
        heater.metaClass()->property("on")->changeEvent()->invoke(ZTVariant(&heater), {});
        set(3);
        heater.setProperty("x", 2, true);
        EXPECT_EQ(told, "");
        EXPECT_EQ(heater.level, 3);
        heater.burnt(100);
        EXPECT_EQ(std::exchange(told, ""), "burnt ");
    }
    EXPECT_EQ(std::exchange(told, ""), "label b x2 level 1>3 y5 on ");
    set(4);
    EXPECT_EQ(told, "level 3>4 ");
}

TEST_F(ChangeHold, NestsAndEndsOnce)
{
    ZTChangeHold outer(&heater);
    {
        const ZTChangeHold inner(&heater);
        set(1);
    }
    EXPECT_EQ(told, "");
    outer.end();
    EXPECT_EQ(std::exchange(told, ""), "level 0>1 ");
    outer.end();
    set(2);
    EXPECT_EQ(told, "level 1>2 ");
    const ZTChangeHold ofNothing(nullptr);
}

TEST_F(ChangeHold, BlockersActWhenItIsRaisedAndWhenItIsSent)
{
    {
        const ZTChangeHold hold(&heater);
        const ZTEventBlocker quiet(&heater, true);
        set(1);
    }
    EXPECT_EQ(told, "");
    {
        ZTChangeHold hold(&heater);
        set(2);
        const ZTEventBlocker quiet(&heater, &Heater::levelChanged);
        hold.end();
    }
    EXPECT_EQ(told, "");
}

TEST_F(ChangeHold, BindingsFollowAtItsEnd)
{
    Heater follower;
    ASSERT_TRUE(ztBind(&heater, "level", &follower, "level"));
    {
        const ZTChangeHold hold(&heater);
        set(1);
        set(2);
        EXPECT_EQ(follower.level, 0);
    }
    EXPECT_EQ(follower.level, 2);
}

TEST_F(ChangeHold, FollowsMovesAndSurvivesTheObject)
{
    {
        const ZTChangeHold hold(&heater);
        set(1);
        const Heater moved(std::move(heater));
        EXPECT_EQ(told, "");
    } // the object that it was moved to has died
    EXPECT_EQ(told, "");

    auto mortal = std::make_unique<Heater>();
    ZTChangeHold hold(mortal.get());
    ZTBase::subscribe(mortal.get(), &Heater::levelChanged, &listener, [&](int, int) {
        told += "last ";
        mortal.reset();
    });
    ZTBase::subscribe(mortal.get(), &Heater::labelChanged, &listener,
                      [&](const std::string&) { told += "never "; });
    mortal->setProperty("level", 1);
    mortal->setProperty("label", std::string("a"));
    hold.end();
    EXPECT_EQ(told, "last ");
}

TEST_F(ChangeHold, HeldInAHandlerOfItsEnd)
{
    std::unique_ptr<ZTChangeHold> next;
    ZTBase::subscribe(&heater, &Heater::labelChanged, &listener, [&](const std::string&) {
        next = std::make_unique<ZTChangeHold>(&heater);
        set(7);
    });
    {
        const ZTChangeHold hold(&heater);
        heater.setProperty("label", std::string("a"));
    }
    EXPECT_EQ(std::exchange(told, ""), "label a ");
    next.reset();
    EXPECT_EQ(told, "level 0>7 ");
}

TEST_F(ChangeHold, SendsTheRestWhenAHandlerThrows)
{
    ZTBase::subscribe(&heater, &Heater::labelChanged, &listener,
                      [](const std::string&) { throw std::runtime_error("too hot"); });
    const auto change = [&](const char* label) {
        heater.setProperty("label", std::string(label));
        set(heater.level + 1);
    };
    ZTChangeHold hold(&heater);
    change("a");
    EXPECT_THROW(hold.end(), std::runtime_error);
    EXPECT_EQ(std::exchange(told, ""), "label a level 0>1 ");
    const ZTLogCapture log;
    {
        const ZTChangeHold silent(&heater);
        change("b");
    }
    EXPECT_EQ(told, "label b level 1>2 ");
    EXPECT_EQ(log.err(), "Zintar Warning: A handler of a change that was held back has thrown: "
                         "too hot\n");
}
} // namespace
