#include "support/logs.h"

#include <zintar/zintar.h>

#include <algorithm>

namespace house
{
class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Lamp)

class Dimmer : public Lamp
{
    ZT_OBJECT(Dimmer, Lamp)
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Dimmer)

struct Room {
    class Door : public ZTBase
    {
        ZT_OBJECT(Door, ZTBase)
        static constexpr auto members() { return zt::members(); }
    };
};
ZT_CLASS(Room::Door)
} // namespace house

namespace garden
{
class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Lamp)

/// Has the last part of its name as a whole.
class Door : public ZTBase
{
    ZT_OBJECT(Door, ZTBase)
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Door)
} // namespace garden

class Door : public ZTBase
{
    ZT_OBJECT(Door, ZTBase)
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Door)

namespace
{
namespace hidden
{
class Safe : public ZTBase
{
    ZT_OBJECT(Safe, ZTBase)
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Safe)
} // namespace hidden

TEST(Classes, AreFoundByEachOfTheirNames)
{
    const ZTMetaClass* dimmer = &house::Dimmer::typeMetaClass();
    for (const char* name : {"Dimmer", "house::Dimmer", "struct house::Dimmer"})
        EXPECT_EQ(ztClass(name), dimmer) << name;
    EXPECT_EQ(ztClass("Room::Door"), nullptr);
    EXPECT_EQ(ztClass("house::Room::Door"), &house::Room::Door::typeMetaClass());
    EXPECT_EQ(ztClass("hidden::Safe"), &hidden::Safe::typeMetaClass());
    EXPECT_EQ(ztClass("Safe"), &hidden::Safe::typeMetaClass());
    EXPECT_EQ(ztClass("ZTBase"), &ZTBase::typeMetaClass());
    for (const char* name : {"", "dimmer", "house", "house::", "Dimmer*", "class Dimmer"})
        EXPECT_EQ(ztClass(name), nullptr) << name;
}

TEST(Classes, AreNotFoundByAPartThatSeveralShare)
{
    EXPECT_EQ(ztClass("Lamp"), nullptr);
    EXPECT_EQ(ztClass("garden::Lamp"), &garden::Lamp::typeMetaClass());
    EXPECT_EQ(ztClass("Door"), &Door::typeMetaClass()); // which is a full name
}

TEST(Classes, AreListedWithSuperClassesFirst)
{
    const auto all = ztClasses();
    const auto placeOf = [&](const ZTMetaClass& one) {
        EXPECT_EQ(std::count(all.begin(), all.end(), &one), 1);
        return std::find(all.begin(), all.end(), &one);
    };
    EXPECT_EQ(placeOf(ZTBase::typeMetaClass()), all.begin());
    EXPECT_LT(placeOf(house::Lamp::typeMetaClass()), placeOf(house::Dimmer::typeMetaClass()));
    placeOf(hidden::Safe::typeMetaClass());
}

TEST(Classes, ASecondOneOfAFullNameIsTold)
{
    using namespace zt::detail;
    // What the `ZT_CLASS` of a second plugin comes to.
    static constinit DeclaredClass declared{declaration<house::Dimmer>};
    const std::size_t before = ztClasses().size();
    EXPECT_LOGS("Zintar Warning: A second class is declared with the name \"house::Dimmer\". "
                "By its name the first one is found.\n",
                [] { (void)classIn(declared); });
    EXPECT_EQ(ztClass("Dimmer"), nullptr); // the part that they share
    EXPECT_EQ(ztClass("house::Dimmer"), &house::Dimmer::typeMetaClass());
    EXPECT_EQ(ztClasses().size(), before + 1);
}
} // namespace
