#include "support/logs.h"

#include <zintar/converter.h>
#include <zintar/declare.h>
#include <zintar/dynamicbase.h>
#include <zintar/reference.h>

#include <memory>
#include <sstream>

namespace
{
/// A lamp that knows another one, which may go.
class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
public:
    ZTRef<Lamp> peer() const { return m_peer; }
    void setPeer(const ZTRef<Lamp>& peer) { m_peer = peer; }
    Lamp* plain() const { return m_plain; }
    void setPlain(Lamp* plain) { m_plain = plain; }
    bool isWith(ZTRef<const Lamp> other) const { return other == m_peer && other; }

private:
    ZTRef<Lamp> m_peer;
    Lamp* m_plain = nullptr;
    static constexpr auto members()
    {
        return zt::members(zt::property<&Self::peer, &Self::setPeer>(),
                           zt::property<&Self::plain, &Self::setPlain>(),
                           zt::method<&Self::isWith>());
    }
};
ZT_CLASS(Lamp)

class Spot : public Lamp
{
    ZT_OBJECT(Spot, Lamp)
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Spot)

struct ReferenceProperty : testing::Test {
    Lamp lamp;
    std::unique_ptr<Spot> spot = std::make_unique<Spot>();
    const ZTMetaProperty* peer = lamp.metaClass()->property("peer");
};

TEST_F(ReferenceProperty, TellsItsClass)
{
    EXPECT_EQ(peer->metaType().metaClass(), &Lamp::typeMetaClass());
    EXPECT_EQ(peer->metaType().name(), ztTypeName<ZTRef<Lamp>>());
    std::ostringstream printed, expected;
    lamp.setPeer(spot.get());
    peer->metaType().print(printed, peer->get(&lamp).data());
    expected << spot.get();
    EXPECT_EQ(printed.str(), expected.str());
}

TEST_F(ReferenceProperty, TakesAndGivesPointersThatMayBeGone)
{
    EXPECT_LOGS_NOTHING([&] {
        EXPECT_TRUE(lamp.setProperty("peer", spot.get()));
        EXPECT_EQ(lamp.peer(), spot.get());
        EXPECT_EQ(lamp.property<Lamp*>("peer"), spot.get());
        EXPECT_EQ(lamp.property<const ZTBase*>("peer"), spot.get());
        EXPECT_EQ(lamp.property<ZTRef<Spot>>("peer"), spot.get());
        EXPECT_EQ(lamp.property<ZTDynamicBase*>("peer"), nullptr); // unrelated, as with pointers
        // A base that is one of the class, and a reference for a pointer.
        lamp.setPeer(nullptr);
        EXPECT_TRUE(lamp.setProperty("peer", static_cast<ZTBase*>(spot.get())));
        EXPECT_EQ(lamp.peer(), spot.get());
        EXPECT_TRUE(lamp.setProperty("plain", ZTRef<Spot>(spot.get())));
        EXPECT_EQ(lamp.plain(), spot.get());
        const ZTVariant kept = lamp.property("peer");
        spot.reset();
        EXPECT_EQ(ztVariantValue<Lamp*>(kept), nullptr);
        EXPECT_EQ(lamp.property<Lamp*>("peer"), nullptr);
        EXPECT_TRUE(lamp.setProperty("plain", kept)); // a reference that is gone is a null pointer
        EXPECT_EQ(lamp.plain(), nullptr);
        lamp.setPeer(&lamp);
        EXPECT_TRUE(lamp.setProperty("peer", static_cast<Lamp*>(nullptr)));
        EXPECT_EQ(lamp.peer(), nullptr);
    });
}

TEST_F(ReferenceProperty, KeepsWhatItHasWhenTheObjectDoesNotFit)
{
    ZTBase plain;
    ZTDynamicBase other;
    lamp.setPeer(spot.get());
    lamp.setPlain(spot.get());
    auto refused = [](std::string_view asked, std::string_view held) {
        return "Zintar Warning: Retrieved default-constructed value of type \"" +
               std::string(asked) +
               "\" while converting from ZTVariant. Conversion failed from type type \"" +
               std::string(held) + "\".\n";
    };
    const std::string_view asked = ztTypeName<ZTRef<Lamp>>();
    EXPECT_LOGS(refused(ztTypeName<const ZTRef<Lamp>>(), "struct ZTBase*"),
                [&] { lamp.setProperty("peer", &plain); });
    EXPECT_LOGS(refused(ztTypeName<const ZTRef<Lamp>>(), ztTypeName<ZTRef<ZTDynamicBase>>()),
                [&] { lamp.setProperty("peer", ZTRef<ZTDynamicBase>(&other)); });
    EXPECT_LOGS(refused(ztTypeName<Lamp*>(), ztTypeName<ZTRef<ZTDynamicBase>>()),
                [&] { lamp.setProperty("plain", ZTRef<ZTDynamicBase>(&other)); });
    EXPECT_LOGS(refused(asked, "int"),
                [&] { EXPECT_EQ(ztVariantValue<ZTRef<Lamp>>(ZTVariant(5)), nullptr); });
    EXPECT_EQ(lamp.peer(), spot.get());
    EXPECT_EQ(lamp.plain(), spot.get());
}

TEST_F(ReferenceProperty, ServesAsParameterAndAsTheObjectOfACall)
{
    lamp.setPeer(spot.get());
    const ZTMetaInvokable* isWith =
        lamp.metaClass()->invokable<void(ZTRef<const Lamp>)>("isWith", true);
    ASSERT_TRUE(isWith);
    EXPECT_EQ(isWith->parameterMetaType(0).metaClass(), &Lamp::typeMetaClass());
    EXPECT_LOGS_NOTHING([&] {
        EXPECT_EQ(isWith->invoke(&lamp, spot.get()), true);
        EXPECT_EQ(isWith->invoke(&lamp, ZTRef<Spot>(spot.get())), true);
        EXPECT_EQ(isWith->invoke(&lamp, &lamp), false);
        // Twice, since what an object was taken out of is remembered.
        for (int i = 0; i < 2; ++i)
            EXPECT_EQ(ztVariantValue<Lamp*>(peer->get(ZTVariant(ZTRef<Lamp>(&lamp)))), spot.get());
    });
}

TEST_F(ReferenceProperty, LeavesTheLastWordToAConverterOfTheHost)
{
    static Lamp replacement;
    ztRegisterConverter([](Spot*) { return ZTRef<Lamp>(&replacement); });
    ztRegisterConverter([](const ZTRef<Spot>&) { return static_cast<Lamp*>(&replacement); });
    EXPECT_EQ(ztVariantValue<ZTRef<Lamp>>(ZTVariant(spot.get())), &replacement);
    EXPECT_EQ(ztVariantValue<Lamp*>(ZTVariant(ZTRef<Spot>(spot.get()))), &replacement);
}
} // namespace
