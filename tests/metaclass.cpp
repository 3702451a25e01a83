#include "support/classes.h"
#include "support/logs.h"

#include <type_traits>

namespace
{
using namespace zt::detail;

template <class Descriptor>
constexpr bool isAbstractInterface =
    !std::is_default_constructible_v<Descriptor> && std::is_copy_constructible_v<Descriptor> &&
    sizeof(Descriptor) == sizeof(void*);
static_assert(isAbstractInterface<ZTMetaClass> && isAbstractInterface<ZTMetaClassInfo> &&
              isAbstractInterface<ZTMetaEnum> && isAbstractInterface<ZTMetaProperty> &&
              isAbstractInterface<ZTMetaInvokable>);

bool isEmptyView(std::string_view text) { return text.empty() && text.data(); }
ZTVariant first(const ZTVariant&, const ZTArgumentArray& arguments) { return arguments[0]; }

TEST(SlicedDescriptor, AnswersNeutrally)
{
    const ZTStaticMetaClassInfoData infoData("key", "value");
    const ZTStaticMetaEnumData enumData;
    const ZTStaticMetaInvokableData invokableData;
    const ZTStaticMetaPropertyData propertyData;
    const ZTMetaClassInfo info = ZTStaticMetaClassInfo(&infoData);
    const ZTMetaEnum enumeration = ZTStaticMetaEnum(&enumData);
    const ZTMetaInvokable invokable = ZTStaticMetaInvokable(&invokableData);
    const ZTMetaProperty property = ZTStaticMetaProperty(&propertyData);
    EXPECT_TRUE(info && isEmptyView(info.key()) && isEmptyView(info.value()));
    EXPECT_TRUE(enumeration && isEmptyView(enumeration.enumerator(0)));
    EXPECT_TRUE(enumeration.count() == 0 && enumeration.value(0) == 0);
    EXPECT_TRUE(invokable && isEmptyView(invokable.name()));
    EXPECT_FALSE(invokable.isConst() || invokable.isEvent() || invokable.isDynamic());
    EXPECT_FALSE(invokable.returnMetaType() || invokable.parameterMetaType(0));
    EXPECT_TRUE(invokable.parameterCount() == 0 && invokable.index() == 0);
    EXPECT_EQ(invokable.accessSpecifier(), ZTAccessSpecifier::Public);
    EXPECT_LOGS_NOTHING([&] { EXPECT_FALSE(invokable.invoke(ZTVariant())); });
    EXPECT_TRUE(property && isEmptyView(property.name()) && isEmptyView(property.propInfoKey(0)));
    EXPECT_FALSE(property.propInfoCount() || property.changeEvent() || property.metaType());
    EXPECT_EQ(property.changeEventIndex(), -1);
    EXPECT_FALSE(property.canGet() || property.canSet() || property.isDynamic());
    EXPECT_FALSE(property.get(ZTVariant()) || property.set(ZTVariant(), ZTVariant()));

    const auto table = support::emptyTable("Sliced");
    int word = 0;
    ZTMetaClass sliced = ZTStaticMetaClass(&table);
    sliced.setUserData(&word);
    EXPECT_TRUE(sliced && isEmptyView(sliced.typeName()));
    EXPECT_FALSE(sliced.metaType() || sliced.isDynamic() || sliced.userData());
    EXPECT_TRUE(!sliced.superClass() && !sliced.invokable(0U) && !sliced.invokableCount());
    EXPECT_EQ(sliced.indexOfInvokable<void()>("name"), -1);
    EXPECT_EQ(sliced.indexOfInvokable(&word), -1);
}

TEST(Descriptor, IsTrueWhenItsTextsWereSet)
{
    const ZTStaticMetaClassInfoData infos[] = {{"", ""}, {"k", {}}, {{}, "v"}, {}};
    for (const ZTStaticMetaClassInfoData& info : infos)
        EXPECT_EQ(static_cast<bool>(ZTStaticMetaClassInfo(&info)), &info == &infos[0]);
    const ZTStaticMetaEnumData enumeration;
    const ZTStaticMetaPropertyData property;
    const ZTStaticMetaInvokableData invokable;
    const ZTStaticMetaClassData table;
    const auto named = support::emptyTable("");
    EXPECT_FALSE(ZTStaticMetaEnum(&enumeration) || ZTStaticMetaProperty(&property));
    EXPECT_FALSE(ZTStaticMetaInvokable(&invokable) || ZTStaticMetaClass(&table));
    EXPECT_TRUE(ZTStaticMetaClass(&named));
}

TEST(Invoke, WarnsOfTooFewArgumentsAndCallsAllTheSame)
{
    const ZTStaticMetaInvokableData noneData("none", false, 0, &first, ZTAccessSpecifier::Public);
    const ZTStaticMetaInvokableData twoData("two", false, 2, &first, ZTAccessSpecifier::Public);
    const ZTStaticMetaInvokable none(&noneData);
    const ZTStaticMetaInvokable two(&twoData);
    const int object = 0;
    const std::string warning = "Zintar: Insufficient parameters supplied for ZTmetaInvokable "
                                "invoke for invokable \"two\".\n";
    support::CapturedLog log;
    EXPECT_FALSE(none.invoke(ZTVariant(5)));
    EXPECT_EQ(two.invoke(&object, "abc", 2), ZTVariant("abc"));
    EXPECT_EQ(two.invoke(&object, ZTVariant(0.5), 2), ZTVariant(0.5));
    EXPECT_EQ(log.all(), "");
    EXPECT_FALSE(two.invoke(ZTVariant(5)));
    EXPECT_EQ(two.invoke(&object, 1), ZTVariant(1));
    EXPECT_EQ(log.err(), warning + warning);
    EXPECT_EQ(log.out(), "");
}

TEST(IsDerivedFrom, ComparesDescriptorsAndWarnsOfDynamicOnes)
{
    const auto rootTable = support::emptyTable("Root");
    const ZTStaticMetaClass root(&rootTable);
    const auto leafTable = support::emptyTable("Leaf", &root);
    const support::DynamicClass leaf(&leafTable);
    const ZTStaticMetaClass twin(&leafTable);
    const std::string on = "Zintar: ZTMetaClass::isDerivedFrom called on dynamic meta class ";
    const std::string with = "Zintar: ZTMetaClass::isDerivedFrom called with dynamic meta class ";
    support::CapturedLog log;
    EXPECT_TRUE(root.isDerivedFrom(&root) && twin.isDerivedFrom(&root));
    EXPECT_FALSE(root.isDerivedFrom(&twin) || root.isDerivedFrom(nullptr));
    EXPECT_EQ(log.all(), "");
    EXPECT_TRUE(leaf.isDerivedFrom(&leaf));
    EXPECT_EQ(log.err(), on + "\"Leaf\".\n" + with + "\"Leaf\".\n");
    EXPECT_FALSE(twin.isDerivedFrom(&leaf) || leaf.isDerivedFrom(nullptr));
    EXPECT_EQ(log.all(), on + "\"Leaf\".\n" + with + "\"Leaf\".\n" + with + "\"Leaf\".\n" + on +
                             "\"Leaf\".\n");
}
} // namespace
