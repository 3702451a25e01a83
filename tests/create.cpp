#include "support/hostclasses.h"

#include <zintar/zintar.h>

#include <stdexcept>

namespace
{
/// How an object was made, as text.
class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
public:
    Lamp() = default;
    explicit Lamp(ZTBase* parent) : ZTBase(parent) { made = "parent"; }
    Lamp(double level, const std::string& name) : made(name + std::to_string(int(level))) {}
    explicit Lamp(int watts) : made("watts" + std::to_string(watts)) {}
    explicit Lamp(const ZTVariant& any) : made(any.isValid() ? "any" : "none") {}
    explicit Lamp(Lamp* twin) : made(twin ? "twin" : "no twin") {}

    std::string made = "plain";

private:
    static constexpr auto members()
    {
        return zt::members(zt::constructor<double, std::string>(), zt::property<&Self::made>(),
                           zt::constructor<int>(), zt::constructor<const ZTVariant&>(),
                           zt::constructor<Lamp*>());
    }
};
ZT_CLASS(Lamp)

/// Only from a parent.
class Bulb : public Lamp
{
    ZT_OBJECT(Bulb, Lamp)
public:
    explicit Bulb(ZTBase* parent) : Lamp(parent) {}

private:
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Bulb)

class Device : public ZTBase
{
    ZT_OBJECT(Device, ZTBase)
public:
    virtual void run() = 0;

private:
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Device)

/// A pointer converts to a `bool`, but that is no parent.
class Switch : public ZTBase
{
    ZT_OBJECT(Switch, ZTBase)
public:
    explicit Switch(bool on) : m_on(on) {}

private:
    static constexpr auto members() { return zt::members(zt::property<&Self::m_on>()); }
    bool m_on;
};
ZT_CLASS(Switch)

class Fuse : public ZTBase
{
    ZT_OBJECT(Fuse, ZTBase)
public:
    Fuse() { throw std::runtime_error("blown"); }

private:
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Fuse)

/// An object that can be of a class made at run time; one constructor takes a class by itself.
class Record : public ZTDynamicBase
{
    ZT_OBJECT(Record, ZTDynamicBase)
public:
    explicit Record(ZTBase* parent = nullptr) : ZTDynamicBase(parent) {}
    explicit Record(const ZTMetaClass* own) { initializeMetaClass(own); }

private:
    static constexpr auto members() { return zt::members(zt::constructor<const ZTMetaClass*>()); }
};
ZT_CLASS(Record)

std::unique_ptr<ZTMetaClass> runtimeClass(const ZTMetaClass& super, std::string_view name)
{
    ZTMetaClassBuilder builder;
    builder.setTypeName(name);
    builder.setSuperClass(&super);
    return std::unique_ptr<ZTMetaClass>(builder.toMetaClass());
}

/// Ends in the middle of the making of a child.
std::unique_ptr<ZTBase> doomed;

std::string madeAs(const ZTBase* object)
{
    const auto* lamp = dynamic_cast<const Lamp*>(object);
    return lamp ? lamp->made : "null";
}
template <class... Arguments>
std::string made(const Arguments&... arguments)
{
    ZTBase room;
    return madeAs(ztCreate(Lamp::typeMetaClass(), &room, arguments...));
}

TEST(Create, TakesThePlainConstructorOrTheOneWithAParent)
{
    const std::unique_ptr<ZTBase> lamp = ztCreate(Lamp::typeMetaClass());
    EXPECT_EQ(madeAs(lamp.get()), "plain");
    ZTBase room;
    ZTBase* bulb = ztCreate(Bulb::typeMetaClass(), &room);
    EXPECT_EQ(madeAs(bulb), "parent");
    EXPECT_EQ(room.children(), std::vector<ZTBase*>{bulb});
    const std::unique_ptr<ZTBase> root(ztCreate(Lamp::typeMetaClass(), nullptr, 5));
    EXPECT_EQ(madeAs(root.get()), "watts5");
}

TEST(Create, TakesTheListedConstructorThatNeedsLeast)
{
    ztRegisterConverter([](const std::string& text) -> std::optional<int> {
        return text == "five" ? std::optional(5) : std::nullopt;
    });
    ztRegisterConverter([](int whole) { return double(whole); });
    EXPECT_EQ(made(2.5, "desk"), "desk2");
    EXPECT_EQ(made(2, "desk"), "desk2"); // converted
    EXPECT_EQ(made(7), "watts7");
    EXPECT_EQ(made("five"), "watts5"); // a converter goes before a variant
    EXPECT_EQ(made("six"), "any");     // which is what is left when it refuses
    EXPECT_EQ(made(ZTVariant()), "none");

    Bulb bulb(nullptr);
    ZTBase other;
    EXPECT_EQ(made(&bulb), "twin");
    EXPECT_EQ(made(static_cast<ZTBase*>(&bulb)), "twin");
    EXPECT_EQ(made(&other), "any"); // an object that is no lamp is not taken for one
    const std::vector<ZTVariant> arguments{ZTVariant(1.0), ZTVariant("a")};
    EXPECT_EQ(made(arguments), "a1");
}

TEST(Create, ConstructorsAreNoMembers)
{
    const ZTMetaClass& lamp = Lamp::typeMetaClass();
    EXPECT_EQ(lamp.propertyCount() - lamp.propertyOffset(), 1U);
    EXPECT_EQ(lamp.invokableCount(), lamp.invokableOffset());
    EXPECT_EQ(lamp.classInfoCount(), 0U);
}

TEST(Create, TellsWhatThereIs)
{
    const std::string head = "Zintar Warning: ztCreate makes no ";
    const auto create = [](const ZTMetaClass& metaClass, auto... arguments) {
        ZTBase room;
        EXPECT_EQ(ztCreate(metaClass, &room, arguments...), nullptr);
        EXPECT_TRUE(room.children().empty());
    };
    EXPECT_LOGS(head + "\"Lamp\": no constructor of \"Lamp\" takes (double, int); there is (), "
                       "(double, std::string), (int), (ZTVariant), (Lamp*).\n",
                [&] { create(Lamp::typeMetaClass(), 1.0, 2); });
    EXPECT_LOGS(head + "\"Device\": \"Device\" is abstract.\n",
                [&] { create(Device::typeMetaClass()); });
    EXPECT_LOGS(head + "\"Switch\": \"Switch\" has no public constructor without parameters or "
                       "with a ZTBase* alone, and lists no other one by zt::constructor.\n",
                [&] { create(Switch::typeMetaClass()); });
    const auto dimmer = runtimeClass(Lamp::typeMetaClass(), "Dimmer");
    EXPECT_LOGS(head + "\"Dimmer\": \"Lamp\" does not derive from ZTDynamicBase.\n",
                [&] { create(*dimmer); });
    ZTMetaClassBuilder builder;
    builder.setTypeName("Nothing");
    const std::unique_ptr<ZTMetaClass> nothing(builder.toMetaClass());
    EXPECT_LOGS(head + "\"Nothing\": no class above it is declared.\n", [&] { create(*nothing); });
}

TEST(Create, GivesTheClassThatWasMadeAtRunTime)
{
    const auto account = runtimeClass(Record::typeMetaClass(), "Account");
    const auto savings = runtimeClass(*account, "Savings");
    ZTBase bank;
    const ZTMetaClass* heard = nullptr;
    ZTBase::subscribe(&bank, &ZTBase::childAdded, &bank,
                      [&](ZTBase* child) { heard = child->metaClass(); });
    ZTBase* object = ztCreate(*savings, &bank);
    EXPECT_EQ(heard, savings.get());
    EXPECT_NE(dynamic_cast<Record*>(object), nullptr);

    const ZTMetaClass* own = savings.get();
    EXPECT_EQ(ztCreate(*savings, &bank, own)->metaClass(), own);
    EXPECT_LOGS("Zintar Warning: ztCreate makes no \"Account\": the object has got the class "
                "\"Savings\" in its constructor.\n",
                [&] { EXPECT_EQ(ztCreate(*account, &bank, own), nullptr); });
}

TEST(Create, ChildAddedShowsTheCompleteObject)
{
    ZTBase room;
    std::string heard;
    ZTBase::subscribe(&room, &ZTBase::childAdded, &room,
                      [&](ZTBase* child) { heard = madeAs(child); });
    new Lamp(&room);
    EXPECT_EQ(heard, "null"); // not yet a lamp
    ztCreate(Lamp::typeMetaClass(), &room);
    EXPECT_EQ(heard, "plain");
    Lamp* lamp = ztMake<Lamp>(&room, 3);
    EXPECT_EQ(heard, "watts3");
    EXPECT_EQ(lamp->made, heard);
    ztMake<Bulb>(&room);
    EXPECT_EQ(heard, "parent");
    delete ztMake<Bulb>(nullptr);
}

TEST(Create, AnObjectThatIsGoneIsNull)
{
    auto room = std::make_unique<ZTBase>();
    ZTBase::subscribe(room.get(), &ZTBase::childAdded, room.get(),
                      [](ZTBase* child) { delete child; });
    EXPECT_EQ(ztMake<Lamp>(room.get()), nullptr);
    EXPECT_EQ(ztCreate(Lamp::typeMetaClass(), room.get()), nullptr);

    ztRegisterConverter([](bool) -> std::optional<int> {
        doomed.reset();
        return 1;
    });
    doomed = std::make_unique<ZTBase>();
    EXPECT_EQ(ztCreate(Lamp::typeMetaClass(), doomed.get(), true), nullptr);
}

TEST(Create, WhatIsThrownPassesThrough)
{
    ZTBase room;
    EXPECT_THROW((void)ztCreate(Fuse::typeMetaClass(), &room), std::runtime_error);
    EXPECT_TRUE(room.children().empty());
    bool deletes = false;
    ZTBase::subscribe(&room, &ZTBase::childAdded, &room, [&](ZTBase* child) {
        if (deletes)
            delete child;
        throw std::runtime_error("heard");
    });
    EXPECT_THROW((void)ztMake<Lamp>(&room), std::runtime_error);
    EXPECT_EQ(room.children().size(), 1U); // it had joined
    deletes = true;
    EXPECT_THROW((void)ztMake<Lamp>(&room), std::runtime_error);
    EXPECT_EQ(room.children().size(), 1U);
}
} // namespace
