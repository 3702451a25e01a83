#include <zintar/bind.h>
#include <zintar/declare.h>
#include <zintar/dynamicbase.h>
#include <zintar/logcapture.h>
#include <zintar/metaclassbuilder.h>
#include <zintar/propertyname.h>
#include <zintar/reference.h>
#include <zintar/standardconverters.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace
{
class Part : public ZTBase
{
    ZT_OBJECT(Part, ZTBase)
public:
    explicit Part(ZTBase* parent = nullptr) : ZTBase(parent) {}

    void levelChanged(double now, double before) { sendEvent<&Self::levelChanged>(now, before); }
    void textChanged() { sendEvent<&Self::textChanged>(); }
    void nextChanged() { sendEvent<&Self::nextChanged>(); }
    void oddChanged(int a) { sendEvent<&Self::oddChanged>(a); }
    [[nodiscard]] int serial() const { return 7; }

    double level = 0;
    std::string text;
    ZTRef<Part> next;
    double quiet = 0;
    std::string odd;

private:
    static constexpr auto members()
    {
        return zt::members(zt::event<&Self::levelChanged>(), zt::event<&Self::textChanged>(),
                           zt::event<&Self::nextChanged>(), zt::event<&Self::oddChanged>(),
                           zt::property<&Self::level>().notify<&Self::levelChanged>(),
                           zt::property<&Self::text>().notify<&Self::textChanged>(),
                           zt::property<&Self::next>().notify<&Self::nextChanged>(),
                           zt::property<&Self::quiet>(),
                           zt::property<&Self::odd>().notify<&Self::oddChanged>(),
                           zt::method<&Self::serial>(), zt::property<&Self::serial>().as("number"));
    }
};

/// An object with a class made at run time.
struct Machine : ZTDynamicBase {
    using ZTDynamicBase::initializeMetaClass;
};
} // namespace
ZT_CLASS(Part)
namespace
{
class Bind : public testing::Test
{
protected:
    /// Why it is refused.
    template <class... Options>
    std::string refusal(std::string_view from, std::string_view to, const Options&... options)
    {
        const ZTLogCapture log;
        const auto made = ztBind(&a, from, &b, to, options...);
        EXPECT_EQ(log.out() + log.err(), "");
        EXPECT_FALSE(made);
        return made.error();
    }

    Part a, b, c;
};

// By the name that the list gives, also where a method has the same function.
static_assert(zt::propertyName<&Part::level> == "level");
static_assert(zt::propertyName<&Part::serial> == "number");

TEST_F(Bind, FollowsTheSource)
{
    a.level = 1;
    const auto made = ztBind(&a, zt::propertyName<&Part::level>, &b, "level");
    ASSERT_TRUE(made);
    ZTBinding binding = *made;
    EXPECT_EQ(b.level, 1);
    a.setProperty("level", 2.0);
    EXPECT_EQ(b.level, 2);
    b.setProperty("level", 5.0);
    EXPECT_EQ(a.level, 2);
    // A value that is there already is not set again.
    int sets = 0;
    ZTBase::subscribe(&b, &Part::levelChanged, &c, [&](double) { ++sets; });
    b.level = 3;
    a.setProperty("level", 3.0);
    EXPECT_EQ(sets, 0);
    EXPECT_TRUE(binding);
    binding.end();
    binding.end();
    EXPECT_FALSE(binding);
    a.setProperty("level", 4.0);
    EXPECT_EQ(b.level, 3);
}

TEST_F(Bind, IsRefusedWithAReason)
{
    EXPECT_EQ(refusal("levl", "level").substr(0, 51),
              "Part has no property \"levl\" (did you mean \"level\"?)");
    EXPECT_EQ(refusal("quiet", "level"), "Part.quiet has no change event");
    EXPECT_EQ(refusal("level", "number"), "Part.number can only be read");
    EXPECT_EQ(refusal("level", "quiet", zt::bothWays), "Part.quiet has no change event");
    EXPECT_EQ(refusal("odd", "text"),
              "the change event oddChanged(int) of Part.odd brings something "
              "else than the value and the one before");
    EXPECT_EQ(refusal("level", "next"), "no converter makes a ZTRef<Part> of a double");
    EXPECT_EQ(refusal("level.level", "level"), "Part.level leads to no object");
    EXPECT_EQ(refusal("next.lost", "level").substr(0, 27), "Part has no property \"lost\"");
    EXPECT_EQ(refusal("level", "text", zt::through([](double) { return 1.5F; })),
              "no converter makes a std::string of a float");
    EXPECT_EQ(refusal("level", "level", zt::bothWays, zt::through([](double v) { return v; })),
              "a transformation both ways needs one back");
    EXPECT_EQ(ztBind(nullptr, "level", &b, "level").error(), "there is no object");
    EXPECT_EQ(ztBind(&a, "level", nullptr, "level").error(), "there is no object");
}

TEST_F(Bind, TransformsOneWayAndBothWays)
{
    const auto toText = [](double level) { return std::to_string(static_cast<int>(level)); };
    ASSERT_TRUE(ztBind(&a, "level", &b, "text", zt::through(toText)));
    a.setProperty("level", 21.5);
    EXPECT_EQ(b.text, "21");
    const auto toLevel = [](const std::string& text) { return std::stod("0" + text); };
    ASSERT_TRUE(ztBind(&a, "level", &c, "text", zt::through(toText, toLevel)));
    c.setProperty("text", "30");
    EXPECT_EQ(a.level, 30);
    EXPECT_EQ(b.text, "30");
    // Any value at all.
    ASSERT_TRUE(ztBind(&a, "level", &c, "quiet", zt::through([](const ZTVariant& value) {
        return value == 7.0 ? ZTVariant(1.0) : value;
    })));
    a.setProperty("level", 7.0);
    EXPECT_EQ(c.quiet, 1);
}

TEST_F(Bind, CirclesComeToRest)
{
    ASSERT_TRUE(ztBind(&a, "level", &b, "level", zt::bothWays));
    ASSERT_TRUE(ztBind(&b, "level", &c, "level"));
    ASSERT_TRUE(ztBind(&c, "level", &a, "level"));
    c.setProperty("level", 3.0);
    EXPECT_EQ(a.level, 3);
    EXPECT_EQ(b.level, 3);
    // One that does not is stopped.
    const ZTLogCapture log;
    ASSERT_TRUE(ztBind(&c, "level", &b, "level", zt::through([](double v) { return v + 1; })));
    EXPECT_NE(log.err().find("Part.level does not come to rest, and is stopped.\n"),
              std::string::npos);
    EXPECT_EQ(log.err().find('\n'), log.err().size() - 1);
}

TEST_F(Bind, PathsFollowTheObjectsOnTheWay)
{
    auto first = std::make_unique<Part>();
    auto second = std::make_unique<Part>();
    first->level = 1;
    second->level = 2;
    const auto made = ztBind(&a, "next.level", &b, "next.level");
    ASSERT_TRUE(made);
    b.setProperty("next", &c);
    a.setProperty("next", first.get());
    EXPECT_EQ(c.level, 1);
    a.setProperty("next", second.get());
    EXPECT_EQ(c.level, 2);
    first->setProperty("level", 7.0); // not on the way any more
    EXPECT_EQ(c.level, 2);
    second->setProperty("level", 8.0);
    EXPECT_EQ(c.level, 8);
    second.reset(); // rests
    EXPECT_TRUE(*made);
    a.setProperty("next", first.get());
    EXPECT_EQ(c.level, 7);
    a.setProperty("next", static_cast<Part*>(nullptr));
    first->setProperty("level", 9.0);
    EXPECT_EQ(c.level, 7);
    // The target takes the value that there is.
    a.setProperty("next", first.get());
    Part other;
    b.setProperty("next", &other);
    EXPECT_EQ(other.level, 9);
}

TEST_F(Bind, EndsWithEitherObjectAndFollowsMoves)
{
    auto source = std::make_unique<Part>();
    const auto made = ztBind(source.get(), "level", &b, "level");
    ASSERT_TRUE(made);
    auto moved = std::make_unique<Part>(std::move(*source));
    source.reset();
    moved->setProperty("level", 4.0);
    EXPECT_EQ(b.level, 4);
    moved.reset();
    EXPECT_FALSE(*made);
    // Within its own update, the target dies, or the binding is ended.
    auto target = std::make_unique<Part>();
    const auto second = ztBind(&a, "level", target.get(), "level");
    ZTBinding third = *ztBind(&a, "level", &c, "level");
    ZTBase::subscribe(target.get(), &Part::levelChanged, &b, [&] {
        target.reset();
        third.end();
    });
    a.setProperty("level", 5.0);
    EXPECT_FALSE(*second);
    EXPECT_FALSE(third);
    EXPECT_EQ(c.level, 0);
    a.setProperty("level", 6.0);
}

TEST_F(Bind, TakesDynamicPropertiesAndClassesMadeAtRunTime)
{
    a.setProperty("hint", "one", true);
    ASSERT_TRUE(ztBind(&a, "hint", &b, "text"));
    EXPECT_EQ(b.text, "one");
    a.setProperty("hint", "two", true);
    EXPECT_EQ(b.text, "two");
    const ZTLogCapture log;
    a.setProperty("hint", 2.5, true); // no text any more
    EXPECT_EQ(b.text, "two");
    EXPECT_NE(log.err(), "");

    ZTMetaClassBuilder builder;
    builder.setSuperClass(&ZTDynamicBase::typeMetaClass());
    builder.setTypeName("Fan");
    builder.addStoredProperty("speed", 1.0);
    const std::unique_ptr<ZTMetaClass> metaClass(builder.toMetaClass());
    Machine fan;
    fan.initializeMetaClass(metaClass.get());
    ASSERT_TRUE(ztBind(&fan, "speed", &c, "level", zt::bothWays));
    EXPECT_EQ(c.level, 1);
    c.setProperty("level", 2.0);
    EXPECT_EQ(fan.property<double>("speed"), 2);
}

TEST_F(Bind, TellsOfEveryChangeInOnePlace)
{
    std::string told;
    {
        Part listener;
        const auto handles =
            ztSubscribeToChanges(&a, &listener, [&](std::string_view name, const ZTVariant& value) {
                told += std::string(name) + (value == 2.0 ? "2 " : value ? " " : "gone ");
            });
        EXPECT_EQ(handles.size(), 5U);
        a.setProperty("level", 2.0);
        a.setProperty("text", "x");
        a.setProperty("hint", 2.0, true);
        a.removeDynamicProperty("hint");
    }
    a.setProperty("level", 3.0);
    EXPECT_EQ(told, "level2 text hint2 hintgone ");
}
} // namespace
