#include "support/describe.h"
#include "support/hostclasses.h"

namespace
{
using namespace host;

const ZTMetaClass& root = ZTBase::typeMetaClass();
const ZTMetaClass& dynamicRoot = ZTDynamicBase::typeMetaClass();

TEST(RootClasses, AreTheirEvents)
{
    EXPECT_EQ(support::describe(root),
              "struct ZTBase: -\n"
              "event 0 void destroyed(struct ZTBase*), 2\n"
              "event 1 void dynamicPropertyChanged(std::string, struct ZTVariant), 2\n"
              "event 2 void childAdded(struct ZTBase*), 2\n"
              "event 3 void childRemoved(struct ZTBase*), 2\n");
    EXPECT_EQ(support::describe(dynamicRoot),
              "struct ZTDynamicBase: struct ZTBase\n"
              "event 4 void metaClassInitialized(const struct ZTMetaClass*), 2\n");
    for (const ZTMetaClass* one : {&root, &dynamicRoot}) {
        const std::string name(one->typeName());
        EXPECT_EQ(ztMetaType(name + "*").metaClass(), one);
        EXPECT_EQ(ztMetaType("const " + name + "*").metaClass(), one);
    }
    EXPECT_EQ(ztMetaType("const struct ZTMetaClass*").metaClass(), nullptr);
}

TEST(RootClasses, FindTheirEventsBySignatureAndFunction)
{
    using Changed = void(const std::string&, const ZTVariant&);
    EXPECT_EQ(root.indexOfInvokable<Changed>("dynamicPropertyChanged"), 1);
    EXPECT_EQ(root.indexOfInvokable<Changed>("childAdded"), -1);
    EXPECT_EQ(root.indexOfInvokable<void(std::string, ZTVariant)>("dynamicPropertyChanged"), -1);
    auto removed = &ZTBase::childRemoved;
    auto initialized = &ZTDynamicBase::metaClassInitialized;
    EXPECT_EQ(dynamicRoot.indexOfInvokable(&removed), 3);
    EXPECT_EQ(dynamicRoot.indexOfInvokable(&initialized), 4);
    EXPECT_EQ(root.indexOfInvokable(&initialized), -1);
}

class RootEvents : public TreeTest
{
protected:
    ZTDynamicBase object;
};

TEST_F(RootEvents, AreRaisedThroughTheirDescriptors)
{
    Named child("c");
    on(&object, &ZTBase::childAdded, [&](ZTBase* added) { diary.add("+" + nameOf(added)); });
    on(&object, &ZTBase::dynamicPropertyChanged, [&](const std::string& name, const ZTVariant& v) {
        diary.add(name + "=" + v.type().name());
    });
    on(&object, &ZTDynamicBase::metaClassInitialized,
       [&](const ZTMetaClass* metaClass) { diary.add(std::string(metaClass->typeName())); });
    ZTBase* none = nullptr;
    EXPECT_FALSE(root.invokable(2U)->invoke(&object, static_cast<ZTBase*>(&child)).isValid());
    root.invokable(2U)->invoke(&object, none);
    root.invokable(1U)->invoke(&object, "n", 1);
    root.invokable(1U)->invoke(&object, "n", ZTVariant());
    dynamicRoot.invokable(4U)->invoke(&object, &root);
    EXPECT_EQ(diary.take(), "+c +null n=int n=ZTBadMetaType struct ZTBase");
}

TEST_F(RootEvents, AreNotRaisedOnWhatIsNoObject)
{
    const ZTMetaInvokable* added = root.invokable(2U);
    on(&object, &ZTBase::childAdded, [&](ZTBase* child) { diary.add(nameOf(child)); });
    const std::string head =
        "Zintar Warning: Retrieved default-constructed value of type \"struct ZTBase*\" ";
    EXPECT_LOGS(head +
                    "while converting from ZTVariant. Conversion failed from type type "
                    "\"int\".\n" +
                    head + "converting from invalid ZTVariant.\n",
                [&] {
                    EXPECT_FALSE(added->invoke(ZTVariant(3), {}));
                    added->invoke(ZTVariant(static_cast<ZTBase*>(nullptr)), {});
                    added->invoke(ZTVariant(&object), {}); // which has no child to give
                });
    EXPECT_EQ(diary.take(), "null");
}
} // namespace
