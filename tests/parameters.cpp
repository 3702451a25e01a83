#include "support/logs.h"

#include <zintar/declare.h>
#include <zintar/metaclassbuilder.h>

#include <memory>

namespace
{
enum class Mode { Off, Heat };
struct Colour {
    int red = 0;
    bool operator==(const Colour&) const = default;
};

class Boiler : public ZTBase
{
    ZT_OBJECT(Boiler, ZTBase)
public:
    std::string boost(int minutes, double level, const std::string& why)
    {
        return std::to_string(minutes) + " " + std::to_string(level).substr(0, 3) + " " + why;
    }
    int all(Mode mode, bool now, unsigned char small, float part, const Boiler* peer, Colour colour,
            const ZTVariant& any)
    {
        return mode == Mode::Heat && now && small == 200 && part == 1 && !peer &&
                       colour == Colour{7} && ztVariantValue<long long>(any) == 5
                   ? 1
                   : 0;
    }
    void heated(int degrees, const std::string& where) { sendEvent<&Self::heated>(degrees, where); }
    void plain(int) {}

private:
    static constexpr auto members()
    {
        return zt::members(
            zt::method<&Self::boost>()
                .parameters("minutes", zt::parameter("level").info("unit", "1").info("max", "2"))
                .defaults(0.5, "cold")
                .info("category", "heat")
                .info("cost", "3"),
            zt::method<&Self::all>().defaults(
                Mode::Heat, true, 200, 1, nullptr, [] { return Colour{7}; }, 5LL),
            zt::event<&Self::heated>().parameters("degrees").defaults("hall").info("sent",
                                                                                   "always"),
            zt::method<&Self::plain>());
    }
};
ZT_CLASS(Boiler)

const ZTMetaInvokable& invokable(std::string_view name)
{
    const ZTMetaClass& type = Boiler::typeMetaClass();
    for (unsigned int i = type.invokableOffset(); i < type.invokableCount(); ++i)
        if (type.invokable(i)->name() == name)
            return *type.invokable(i);
    ADD_FAILURE() << name;
    return *type.invokable(0U);
}

TEST(Parameters, AreNamedAndAnnotated)
{
    const ZTMetaInvokable& boost = invokable("boost");
    EXPECT_EQ(boost.parameterName(0), "minutes");
    EXPECT_EQ(boost.parameterName(1), "level");
    EXPECT_EQ(boost.parameterName(2), "") << "has none";
    EXPECT_EQ(boost.parameterName(3), "") << "is out of range";
    ASSERT_EQ(boost.parameterInfoCount(1), 2U);
    EXPECT_EQ(boost.parameterInfoKey(1, 1), "max");
    EXPECT_EQ(boost.parameterInfoValue(1, 0), "1");
    EXPECT_EQ(boost.parameterInfoCount(0), 0U);
    ASSERT_EQ(boost.infoCount(), 2U);
    EXPECT_EQ(boost.infoKey(1), "cost");
    EXPECT_EQ(boost.infoValue(0), "heat");
    EXPECT_EQ(invokable("heated").parameterName(0), "degrees");
    EXPECT_EQ(invokable("heated").infoValue(0), "always");
    const ZTMetaInvokable& plain = invokable("plain");
    EXPECT_EQ(plain.parameterName(0), "");
    EXPECT_EQ(plain.infoCount(), 0U);
    EXPECT_EQ(plain.requiredArgumentCount(), 1U);
    const ZTMetaInvokable cutDown(boost);
    EXPECT_EQ(cutDown.parameterName(0), "");
    EXPECT_EQ(cutDown.requiredArgumentCount(), 0U);
}

TEST(Parameters, HaveDefaultArgumentsOfTheirTypes)
{
    const ZTMetaInvokable& boost = invokable("boost");
    EXPECT_EQ(boost.requiredArgumentCount(), 1U);
    EXPECT_EQ(boost.defaultArgument(0), nullptr);
    EXPECT_EQ(*boost.defaultArgument(1), ZTVariant(0.5));
    EXPECT_EQ(*boost.defaultArgument(2), ZTVariant("cold"));
    EXPECT_EQ(boost.defaultArgument(3), nullptr);
    const ZTMetaInvokable& all = invokable("all");
    EXPECT_EQ(all.requiredArgumentCount(), 0U);
    for (unsigned int i = 0; i < 6; ++i)
        EXPECT_EQ(all.defaultArgument(i)->type(), all.parameterMetaType(i)) << i;
    EXPECT_EQ(all.defaultArgument(6)->type(), ztMetaType<long long>());
}

TEST(Parameters, TakeTheirDefaultsInCallsWithFewerArguments)
{
    Boiler boiler;
    const ZTMetaInvokable& boost = invokable("boost");
    EXPECT_LOGS_NOTHING([&] {
        EXPECT_EQ(boost.invoke(&boiler, 3), ZTVariant("3 0.5 cold"));
        EXPECT_EQ(boost.invoke(&boiler, 3, 1.5), ZTVariant("3 1.5 cold"));
        EXPECT_EQ(boost.invoke(&boiler, 3, 1.5, "late"), ZTVariant("3 1.5 late"));
        EXPECT_EQ(invokable("all").invoke(&boiler), ZTVariant(1));
        EXPECT_EQ(invokable("all").invoke(ZTVariant(&boiler)), ZTVariant(1));
    });
    std::string heard;
    ZTBase::subscribe(
        &boiler, &Boiler::heated, &boiler,
        [&](int degrees, const std::string& where) { heard = std::to_string(degrees) + where; });
    invokable("heated").invoke(&boiler, 60);
    EXPECT_EQ(heard, "60hall");

    // A parameter without one is told as ever, and those with one have theirs all the same.
    EXPECT_LOGS("Zintar: Insufficient parameters supplied for ZTmetaInvokable invoke for invokable "
                "\"boost\".\n"
                "Zintar Warning: Retrieved default-constructed value of type \"int\" converting "
                "from invalid ZTVariant.\n",
                [&] { EXPECT_EQ(boost.invoke(&boiler), ZTVariant("0 0.5 cold")); });
}

TEST(Parameters, AreDescribedByBuilders)
{
    ZTMetaClassBuilder builder(&Boiler::typeMetaClass());
    auto made = builder.addInvokable();
    made.setName("sum");
    made.setParameterNames({"a", "b"});
    made.setDefaultArguments({ZTVariant(1), ZTVariant(20), ZTVariant(300)});
    made.addInfo("category", "numbers");
    made.addParameterInfo(1, "unit", "one");
    EXPECT_EQ(made.defaultArgument(0), nullptr) << "there are no parameters yet";
    made.setFunction([](Boiler&, int a, int b, int c) { return a + b + c; });
    const std::unique_ptr<ZTMetaClass> type(builder.toMetaClass());

    const ZTMetaInvokable& sum = *type->invokable(type->invokableCount() - 1);
    EXPECT_EQ(sum.parameterName(1), "b");
    EXPECT_EQ(sum.parameterName(2), "");
    EXPECT_EQ(sum.requiredArgumentCount(), 0U);
    EXPECT_EQ(sum.infoValue(0), "numbers");
    EXPECT_EQ(sum.parameterInfoValue(1, 0), "one");
    Boiler boiler;
    EXPECT_LOGS_NOTHING([&] { EXPECT_EQ(sum.invoke(&boiler, 5), ZTVariant(325)); });

    // A prototype's are copied.
    const ZTMetaInvokable& boost = *type->invokable(type->invokableOffset());
    EXPECT_EQ(boost.parameterName(1), "level");
    EXPECT_EQ(boost.requiredArgumentCount(), 1U);
    EXPECT_EQ(*boost.defaultArgument(2), ZTVariant("cold"));
    EXPECT_EQ(boost.infoCount(), 2U);
    EXPECT_EQ(boost.parameterInfoKey(1, 1), "max");

    // More default arguments than parameters: the last ones count.
    made.setParameterMetaTypes({&ztMetaType<int>()});
    EXPECT_EQ(*made.defaultArgument(0), ZTVariant(300));
    EXPECT_EQ(made.defaultArgument(1), nullptr);
    made.clearInfos();
    EXPECT_EQ(sum.infoCount(), 1U) << "a finished class is apart from its builder";
}
} // namespace
