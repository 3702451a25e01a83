#include "support/logs.h"

#include <zintar/zintar.h>

namespace
{
ZTBase* named(ZTBase* parent, const char* name)
{
    auto* object = new ZTBase(parent);
    object->setProperty("name", name, true);
    return object;
}

TEST(Find, FollowsNamesFromChildToChild)
{
    ZTBase root;
    new ZTBase(&root); // has no name
    ZTBase* room = named(&root, "room");
    ZTBase* lamp = named(room, "lamp");
    named(&root, "room"); // the first one counts
    EXPECT_EQ(ztFind(&root, "room"), room);
    EXPECT_EQ(ztFind(&root, "room/lamp"), lamp);
    EXPECT_EQ(ztFind<ZTDynamicBase>(&root, "room/lamp"), nullptr);
    EXPECT_EQ(ztFind(&root, ""), &root);
    for (const char* path : {"lamp", "/room", "room/lamp/bulb", "Room"})
        EXPECT_EQ(ztFind(&root, path), nullptr) << path;
    EXPECT_EQ(ztFind(nullptr, "room"), nullptr);
    EXPECT_EQ(ztObjectName(lamp), "lamp");
    EXPECT_EQ(ztObjectName(&root), "");
    EXPECT_EQ(lamp->parent(), room);
    EXPECT_EQ(root.parent(), nullptr);
}

TEST(Find, ARemovedDynamicPropertyIsGoneAndIsTold)
{
    ZTBase object;
    std::string told;
    const auto hearing = ZTBase::subscribe(&object, &ZTBase::dynamicPropertyChanged,
                                           [&](const std::string& name, const ZTVariant& value) {
                                               told += name + (value.isValid() ? "+" : "-");
                                           });
    for (int i = 0; i < 12; ++i) // enough for an index
        object.setProperty("p" + std::to_string(i), i, true);
    told.clear();
    EXPECT_TRUE(object.removeDynamicProperty("p3"));
    EXPECT_FALSE(object.removeDynamicProperty("p3"));
    EXPECT_EQ(told, "p3-");
    EXPECT_FALSE(object.property("p3").isValid());
    EXPECT_EQ(object.property<int>("p11"), 11);
    EXPECT_EQ(object.dynamicProperties().size(), 11u);
    for (int i = 0; i < 12; ++i)
        object.removeDynamicProperty("p" + std::to_string(i));
    EXPECT_TRUE(object.dynamicProperties().empty());
    EXPECT_TRUE(object.setProperty("p3", 4, true));
    EXPECT_EQ(object.property<int>("p3"), 4);
}

TEST(Find, APropertyMayBeRemovedByTheValueThatIsComparedOrEnds)
{
    struct Remover {
        ZTBase* object = nullptr;
        bool operator==(const Remover& other) const
        {
            for (const Remover* one : {this, &other})
                if (one->object)
                    one->object->removeDynamicProperty("value");
            return false;
        }
    };
    ZTBase object;
    object.setProperty("value", Remover{&object}, true);
    object.setProperty("value", Remover{}, true);
    EXPECT_TRUE(object.property("value").isValid());
    auto last = ZTStrongRef<ZTBase>(new ZTBase);
    ZTBase* held = last.get();
    held->setProperty("self", last, true);
    last.reset();
    EXPECT_TRUE(held->removeDynamicProperty("self")); // the last reference ends with it
}
} // namespace
