#include "support/classes.h"
#include "support/logs.h"

#include <type_traits>

namespace
{
template <class Descriptor>
constexpr bool isAbstractInterface =
    !std::is_default_constructible_v<Descriptor> && std::is_copy_constructible_v<Descriptor> &&
    std::is_copy_assignable_v<Descriptor> && std::has_virtual_destructor_v<Descriptor> &&
    sizeof(Descriptor) == sizeof(void*);
static_assert(isAbstractInterface<ZTMetaClass> && isAbstractInterface<ZTMetaClassInfo> &&
              isAbstractInterface<ZTMetaEnum> && isAbstractInterface<ZTMetaProperty> &&
              isAbstractInterface<ZTMetaInvokable>);
static_assert(sizeof(ZTAccessSpecifier) == 4);
static_assert(static_cast<int>(ZTAccessSpecifier::Private) == 0);
static_assert(static_cast<int>(ZTAccessSpecifier::Protected) == 1);
static_assert(static_cast<int>(ZTAccessSpecifier::Public) == 2);

using namespace zt::detail;

constexpr bool isEmptyView(std::string_view text) { return text.empty() && text.data(); }

/// Records of which every field differs from what a descriptor without a family answers.
struct Records {
    std::string_view text = "text";
    int number = 5;
    ZTStaticMetaClassInfoData info{"key", "value"};
    ZTStaticMetaEnumData enumeration{"Kind", 1, &text, &number};
    ZTPropertyInfo propInfo{"unit", "celsius"};
    ZTStaticMetaPropertyData property{
        "target", [](const ZTVariant&) { return ZTVariant(5); },
        [](const ZTVariant&, const ZTVariant&) { return ZTVariant(5); }, 1, &propInfo};
    ZTStaticMetaInvokableData invokable{
        "boost", true, 1, [](const ZTVariant&, const ZTArgumentArray&) { return ZTVariant(5); },
        ZTAccessSpecifier::Private};
};

TEST(SlicedDescriptor, OfAMemberAnswersNeutrally)
{
    Records records;
    records.invokable.isEvent = true;
    records.invokable.index = 7;
    const ZTMetaClassInfo info = ZTStaticMetaClassInfo(&records.info);
    const ZTMetaEnum enumeration = ZTStaticMetaEnum(&records.enumeration);
    const ZTMetaInvokable invokable = ZTStaticMetaInvokable(&records.invokable);

    EXPECT_TRUE(isEmptyView(info.key()) && isEmptyView(info.value()) && info);
    EXPECT_TRUE(isEmptyView(enumeration.name()) && isEmptyView(enumeration.enumerator(0)));
    EXPECT_TRUE(enumeration);
    EXPECT_EQ(enumeration.count(), 0U);
    EXPECT_EQ(enumeration.value(0), 0);
    EXPECT_TRUE(isEmptyView(invokable.name()) && invokable);
    EXPECT_FALSE(invokable.isConst() || invokable.isEvent() || invokable.isDynamic());
    EXPECT_FALSE(invokable.returnMetaType());
    EXPECT_FALSE(invokable.parameterMetaType(0));
    EXPECT_EQ(invokable.parameterCount(), 0U);
    EXPECT_EQ(invokable.accessSpecifier(), ZTAccessSpecifier::Public);
    EXPECT_EQ(invokable.index(), 0);
    EXPECT_LOGS_NOTHING([&] { EXPECT_FALSE(invokable.invoke(ZTVariant())); });
}

TEST(SlicedDescriptor, OfAPropertyAnswersNeutrally)
{
    Records records;
    const ZTMetaProperty property = ZTStaticMetaProperty(&records.property);
    EXPECT_TRUE(isEmptyView(property.name()) && property);
    EXPECT_TRUE(isEmptyView(property.propInfoKey(0)) && isEmptyView(property.propInfoValue(0)));
    EXPECT_EQ(property.propInfoCount(), 0U);
    EXPECT_FALSE(property.metaType());
    EXPECT_EQ(property.changeEventIndex(), -1);
    EXPECT_EQ(property.changeEvent(), nullptr);
    EXPECT_FALSE(property.canGet() || property.canSet() || property.isDynamic());
    EXPECT_FALSE(property.get(ZTVariant()));
    EXPECT_FALSE(property.set(ZTVariant(), ZTVariant()));
}

TEST(SlicedDescriptor, OfAClassAnswersNeutrally)
{
    const auto table = support::emptyTable("Sliced");
    int word = 0;
    ZTMetaClass sliced = ZTStaticMetaClass(&table);
    sliced.setUserData(&word);
    EXPECT_TRUE(isEmptyView(sliced.typeName()) && sliced);
    EXPECT_EQ(sliced.superClass(), nullptr);
    EXPECT_FALSE(sliced.metaType());
    EXPECT_FALSE(sliced.isDynamic());
    EXPECT_EQ(sliced.classInfoOffset() + sliced.enumOffset() + sliced.propertyOffset() +
                  sliced.invokableOffset(),
              0U);
    EXPECT_EQ(sliced.classInfoCount() + sliced.enumCount() + sliced.propertyCount() +
                  sliced.invokableCount(),
              0U);
    EXPECT_EQ(sliced.classInfo("key"), nullptr);
    EXPECT_EQ(sliced.property("name"), nullptr);
    EXPECT_EQ(sliced.invokable(0U), nullptr);
    EXPECT_EQ(sliced.indexOfInvokable<void()>("name"), -1);
    EXPECT_EQ(sliced.indexOfInvokable(&word), -1);
    EXPECT_EQ(sliced.userData(), nullptr);
}

TEST(Descriptor, AssignmentChangesNothing)
{
    Records records;
    ZTStaticMetaEnumData other("Other", 0, nullptr, nullptr);
    ZTStaticMetaEnum left(&records.enumeration);
    ZTStaticMetaEnum right(&other);
    ZTMetaEnum& abstract = left;
    EXPECT_EQ(&(abstract = right), &left);
    EXPECT_EQ(left.name(), "Kind");
}

TEST(Descriptor, IsTrueWhenItsTextsWereSet)
{
    const ZTStaticMetaClassInfoData infos[] = {{"", ""}, {"k", {}}, {{}, "v"}, {}};
    EXPECT_TRUE(ZTStaticMetaClassInfo(&infos[0]));
    for (int i : {1, 2, 3})
        EXPECT_FALSE(ZTStaticMetaClassInfo(&infos[i])) << i;
    const ZTStaticMetaEnumData enumeration;
    const ZTStaticMetaPropertyData property;
    const ZTStaticMetaInvokableData invokable;
    const ZTStaticMetaClassData table;
    const auto named = support::emptyTable("");
    EXPECT_FALSE(ZTStaticMetaEnum(&enumeration));
    EXPECT_FALSE(ZTStaticMetaProperty(&property));
    EXPECT_FALSE(ZTStaticMetaInvokable(&invokable));
    EXPECT_FALSE(ZTStaticMetaClass(&table));
    EXPECT_TRUE(ZTStaticMetaClass(&named));
}

TEST(Invoke, WithoutArgumentsWarnsAndCallsAllTheSame)
{
    auto firstIsInvalid = [](const ZTVariant& object, const ZTArgumentArray& arguments) {
        for (const ZTVariant& argument : arguments)
            EXPECT_FALSE(argument);
        return object;
    };
    const ZTStaticMetaInvokableData none("none", false, 0, firstIsInvalid,
                                         ZTAccessSpecifier::Public);
    const ZTStaticMetaInvokableData two("two", false, 2, firstIsInvalid, ZTAccessSpecifier::Public);
    EXPECT_LOGS_NOTHING(
        [&] { EXPECT_EQ(ZTStaticMetaInvokable(&none).invoke(ZTVariant(5)), ZTVariant(5)); });
    support::CapturedLog log;
    EXPECT_EQ(ZTStaticMetaInvokable(&two).invoke(ZTVariant(5)), ZTVariant(5));
    EXPECT_EQ(log.err(), "Zintar: Insufficient parameters supplied for ZTmetaInvokable invoke for "
                         "invokable \"two\".\n");
    EXPECT_EQ(log.out(), "");
}

TEST(Invoke, PacksWrittenArguments)
{
    auto echo = [](const ZTVariant&, const ZTArgumentArray& arguments) {
        EXPECT_FALSE(arguments[2]);
        return arguments[1];
    };
    const ZTStaticMetaInvokableData record("echo", false, 2, echo, ZTAccessSpecifier::Public);
    const ZTStaticMetaInvokable invokable(&record);
    const int object = 0;
    EXPECT_LOGS_NOTHING([&] {
        EXPECT_EQ(invokable.invoke(&object, 1, "two"), ZTVariant("two"));
        EXPECT_EQ(invokable.invoke(&object, 1, ZTVariant(2.5)), ZTVariant(2.5));
    });
    EXPECT_LOGS("Zintar: Insufficient parameters supplied for ZTmetaInvokable invoke for "
                "invokable \"echo\".\n",
                [&] { EXPECT_FALSE(invokable.invoke(&object, 1)); });
}

TEST(IsDerivedFrom, ComparesDescriptorsUpTheTree)
{
    const auto rootTable = support::emptyTable("Root");
    const ZTStaticMetaClass root(&rootTable);
    const auto leafTable = support::emptyTable("Leaf", &root);
    const ZTStaticMetaClass leaf(&leafTable);
    const ZTStaticMetaClass twin(&leafTable);
    EXPECT_LOGS_NOTHING([&] {
        EXPECT_TRUE(root.isDerivedFrom(&root));
        EXPECT_TRUE(leaf.isDerivedFrom(&root));
        EXPECT_FALSE(root.isDerivedFrom(&leaf));
        EXPECT_FALSE(leaf.isDerivedFrom(&twin));
        EXPECT_FALSE(leaf.isDerivedFrom(nullptr));
    });
}

TEST(IsDerivedFrom, WarnsOfDynamicClassesAndAnswersAllTheSame)
{
    const auto table = support::emptyTable("Root");
    const support::DynamicClass root(&table);
    const auto leafTable = support::emptyTable("Leaf", &root);
    const support::DynamicClass leaf(&leafTable);
    const std::string on = "Zintar: ZTMetaClass::isDerivedFrom called on dynamic meta class ";
    const std::string with = "Zintar: ZTMetaClass::isDerivedFrom called with dynamic meta class ";
    EXPECT_LOGS(on + "\"Leaf\".\n" + with + "\"Root\".\n",
                [&] { EXPECT_TRUE(leaf.isDerivedFrom(&root)); });
    EXPECT_LOGS(on + "\"Root\".\n" + with + "\"Leaf\".\n",
                [&] { EXPECT_FALSE(root.isDerivedFrom(&leaf)); });
    support::CapturedLog log;
    EXPECT_FALSE(root.isDerivedFrom(nullptr));
    EXPECT_EQ(log.err(), on + "\"Root\".\n");
}
} // namespace
