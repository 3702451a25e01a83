#include "support/describe.h"
#include "support/logs.h"
#include "support/sampleclasses.h"

#include <zintar/metaclassbuilder.h>

#include <memory>
#include <string>
#include <string_view>

// What both families of descriptors promise alike. The same two classes come from a declaration,
// from the builders with the declared class as the prototype, once and again, and from a stream;
// every test runs on each of them.

namespace
{
using namespace sample;

/// The two classes from one source. The first is the super class of the second.
struct Classes {
    std::shared_ptr<const ZTMetaClass> device, heater;
};

Classes declared()
{
    auto lent = [](const ZTMetaClass& type) {
        return std::shared_ptr<const ZTMetaClass>(std::shared_ptr<void>(), &type);
    };
    return {lent(Device::typeMetaClass()), lent(Heater::typeMetaClass())};
}

/// The functions of declared methods are not copied, and given anew.
Classes copiesOf(const Classes& prototypes)
{
    ZTMetaClassBuilder device(prototypes.device.get());
    ZTMetaClassBuilder heater(prototypes.heater.get());
    if (!prototypes.heater->isDynamic()) {
        heater.invokable(0).setFunction(
            [](Heater& self, int minutes, double factor) { return self.boost(minutes, factor); });
        heater.invokable(2).setFunction([](const Heater& self) { return self.describe(); });
    }
    std::shared_ptr<const ZTMetaClass> copy(device.toMetaClass());
    heater.setSuperClass(copy.get());
    return {copy, std::shared_ptr<const ZTMetaClass>(heater.toMetaClass())};
}
Classes copied() { return copiesOf(declared()); }
Classes copiedTwice() { return copiesOf(copied()); }

Classes streamed()
{
    ZTDataStream stream;
    stream << Device::typeMetaClass() << Heater::typeMetaClass();
    ZTMetaClassBuilder device;
    device.deserialize(stream, {});
    std::shared_ptr<const ZTMetaClass> read(device.toMetaClass());
    ZTMetaClassBuilder heater;
    heater.deserialize(stream, {{std::string(read->typeName()), read.get()}});
    return {read, std::shared_ptr<const ZTMetaClass>(heater.toMetaClass())};
}

struct Source {
    const char* name;
    Classes (*make)();
};

void PrintTo(const Source& source, std::ostream* out) { *out << source.name; }

class DescriptorContract : public testing::TestWithParam<Source>
{
protected:
    const Classes classes = GetParam().make();
    const ZTMetaClass& device = *classes.device;
    const ZTMetaClass& heater = *classes.heater;
};

INSTANTIATE_TEST_SUITE_P(Each, DescriptorContract,
                         testing::Values(Source{"Declared", &declared}, Source{"Copied", &copied},
                                         Source{"Streamed", &streamed}),
                         testing::PrintToStringParamName());

std::string without(std::string text, std::string_view word)
{
    for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at))
        text.erase(at, word.size());
    return text;
}

TEST_P(DescriptorContract, ListsEveryMember)
{
    std::string expected = "struct sample::Device: struct ZTBase\n"
                           "info 0 vendor=acme\n"
                           "enum 0 State Idle=0 Busy=1\n"
                           "property 0 std::string label get set, -1\n"
                           "property 1 std::string level get set, -1\n"
                           "event 4 void renamed(std::string), 2\n"
                           "struct sample::Heater: struct sample::Device\n"
                           "info 1 vendor=thermo\n"
                           "info 2 =\n"
                           "enum 1 Mode Off=-1 Heat=5\n"
                           "property 2 int serial get, -1\n"
                           "property 3 int level get set unit=watt unit=W, 6 levelChanged\n"
                           "method 5 double boost(int, double), 2\n"
                           "event 6 void levelChanged(int), 2\n"
                           "method 7 std::string describe() const, 1\n";
    if (GetParam().make == &streamed) { // which has no functions
        expected = without(without(expected, " get"), " set");
    }
    EXPECT_EQ(support::describe(device) + support::describe(heater), expected);
    EXPECT_EQ(heater.property("level")->changeEvent(), heater.invokable(6U));
}

TEST_P(DescriptorContract, AnIndexMeansTheSameMemberFurtherDown)
{
    for (unsigned int i = 0; i < device.invokableCount(); ++i)
        EXPECT_EQ(heater.invokable(i), device.invokable(i));
    EXPECT_EQ(heater.classInfo(0U), device.classInfo(0U));
    EXPECT_EQ(heater.metaEnum(0), device.metaEnum(0));
    EXPECT_EQ(heater.property(0U), device.property("label"));
}

TEST_P(DescriptorContract, TakesAnIndexOfAnyWidth)
{
    const std::size_t second = 1, beyond = std::size_t(1) << 32 | 1;
    const ZTMetaEnum& mode = *heater.metaEnum(second);
    const ZTMetaProperty& level = *heater.property(3U);
    EXPECT_EQ(heater.classInfo(second), heater.classInfo(1U));
    EXPECT_EQ(heater.property(second), heater.property(1U));
    EXPECT_EQ(heater.invokable(second), heater.invokable(1U));
    EXPECT_EQ(heater.invokable(1L), heater.invokable(1U));
    EXPECT_EQ(mode.enumerator(second), mode.enumerator(1U));
    EXPECT_EQ(mode.value(second), mode.value(1U));
    EXPECT_EQ(level.propInfoKey(second), level.propInfoKey(1U));
    EXPECT_EQ(level.propInfoValue(second), level.propInfoValue(1U));
    EXPECT_EQ(heater.invokable(5U)->parameterMetaType(second), ztMetaType<double>());
    // Nothing is cut off.
    EXPECT_EQ(heater.property(beyond), nullptr);
    EXPECT_EQ(heater.invokable(-1L), nullptr);
}

bool isEmptyView(std::string_view text) { return text.empty() && text.data(); }

TEST_P(DescriptorContract, IndicesOutOfRangeGiveNeutralAnswers)
{
    const ZTMetaEnum& mode = *heater.metaEnum(1);
    const ZTMetaProperty& level = *heater.property("level");
    for (unsigned int beyond : {0U, 1U, 1000U, ~0U - 100U}) {
        EXPECT_EQ(heater.classInfo(heater.classInfoCount() + beyond), nullptr);
        EXPECT_EQ(heater.metaEnum(heater.enumCount() + beyond), nullptr);
        EXPECT_EQ(heater.property(heater.propertyCount() + beyond), nullptr);
        EXPECT_EQ(heater.invokable(heater.invokableCount() + beyond), nullptr);
        EXPECT_TRUE(isEmptyView(mode.enumerator(2 + beyond)));
        EXPECT_EQ(mode.value(2 + beyond), -1);
        EXPECT_TRUE(isEmptyView(level.propInfoKey(2 + beyond)));
        EXPECT_TRUE(isEmptyView(level.propInfoValue(2 + beyond)));
        EXPECT_FALSE(heater.invokable(5U)->parameterMetaType(2 + beyond));
    }
}

TEST_P(DescriptorContract, NamesFindTheOwnMemberFirst)
{
    EXPECT_TRUE(device);
    EXPECT_TRUE(heater);
    EXPECT_EQ(device.classInfo("vendor")->value(), "acme");
    EXPECT_EQ(heater.classInfo("vendor")->value(), "thermo");
    EXPECT_EQ(heater.classInfo(""), heater.classInfo(2U));
    EXPECT_TRUE(*heater.classInfo(""));
    EXPECT_EQ(heater.property("label"), device.property("label"));
    EXPECT_EQ(heater.property("level"), heater.property(3U));
    EXPECT_EQ(device.property("level"), device.property(1U));
    EXPECT_FALSE(heater.property("leve"));
    EXPECT_FALSE(heater.property(""));
    EXPECT_FALSE(device.property("serial"));
    EXPECT_FALSE(device.classInfo(""));
    EXPECT_FALSE(device.classInfo("vendors"));
}

TEST_P(DescriptorContract, InvokablesAreFoundByNameConstnessAndTypes)
{
    const std::vector<const ZTMetaType*> types{&ztMetaType<int>(), &ztMetaType<double>()};
    EXPECT_EQ(heater.indexOfInvokable("boost", false, types), 5);
    EXPECT_EQ(heater.indexOfInvokable("boost", true, types), -1);
    EXPECT_EQ(heater.indexOfInvokable("boost", false, {types[0], nullptr}), -1);
    EXPECT_EQ(heater.indexOfInvokable("boost", false, {types[0]}), -1);
    EXPECT_EQ(heater.invokable("boos", false, types), nullptr);
    EXPECT_EQ(heater.indexOfInvokable<void(int, double)>("boost", true), -1);
    EXPECT_EQ(heater.indexOfInvokable<void(const std::string&)>("renamed"), 4);
    EXPECT_EQ(heater.indexOfInvokable<void(ZTBase*)>("destroyed"), 0);
    EXPECT_EQ(heater.indexOfInvokable<void(int)>("destroyed"), -1); // the root is a declared class
    void (ZTBase::*unknown)() = nullptr;
    EXPECT_EQ(heater.indexOfInvokable(&unknown), -1);
    EXPECT_EQ(heater.invokable(&unknown), nullptr);
}

TEST_P(DescriptorContract, IsOneFamilyThroughout)
{
    const bool dynamic = GetParam().make != &declared;
    EXPECT_EQ(heater.isDynamic(), dynamic);
    EXPECT_EQ(heater.invokable(5U)->isDynamic(), dynamic);
    EXPECT_EQ(heater.property("level")->isDynamic(), dynamic);
    EXPECT_EQ(&heater.metaType(), dynamic ? &ZTMetaType::ZTBadMetaType : &ztMetaType<Heater*>());
    EXPECT_FALSE(heater.invokable(0U)->isDynamic());
}

TEST_P(DescriptorContract, IsDerivedFromComparesDescriptorsAndWarnsOfDynamicOnes)
{
    EXPECT_FALSE(device.isDerivedFrom(&heater));
    EXPECT_FALSE(Device::typeMetaClass().isDerivedFrom(nullptr));
    const std::string head = "Zintar: ZTMetaClass::isDerivedFrom called ";
    const std::string on = head + "on dynamic meta class \"struct sample::Heater\".\n";
    const std::string with = head + "with dynamic meta class \"struct sample::Device\".\n";
    ZTLogCapture log;
    EXPECT_TRUE(heater.isDerivedFrom(&device));
    EXPECT_TRUE(heater.isDerivedFrom(&ZTBase::typeMetaClass()));
    EXPECT_EQ(log.err(), GetParam().make == &declared ? "" : on + with + on);
    EXPECT_EQ(log.out(), "");
}

/// Where the methods have functions too.
class CallContract : public DescriptorContract
{};
INSTANTIATE_TEST_SUITE_P(Each, CallContract,
                         testing::Values(Source{"Declared", &declared}, Source{"Copied", &copied},
                                         Source{"CopiedTwice", &copiedTwice}),
                         testing::PrintToStringParamName());

TEST_P(CallContract, FunctionsReachTheObject)
{
    Heater object;
    const ZTVariant pointer(&object);
    const ZTMetaProperty& level = *heater.property("level");
    level.set(pointer, ZTVariant(4));
    EXPECT_EQ(level.get(pointer), ZTVariant(4));
    EXPECT_EQ(heater.property("label")->get<std::string>(&object), "none");
    const ZTVariant five(5);
    level.set(&object, five);
    EXPECT_EQ(level.get<int>(&std::as_const(object)), 5);
    level.set(&object, 6);
    EXPECT_EQ(level.get<int>(&object), 6);
    level.set(&object, 4);
    EXPECT_FALSE(heater.property("serial")->set(pointer, ZTVariant(1)));
    EXPECT_EQ(heater.invokable<void(int, double)>("boost")->invoke(&object, 2, 0.5),
              ZTVariant(3.0));
    EXPECT_EQ(heater.invokable<void()>("describe", true)->invoke(&object), ZTVariant("heater"));
}

TEST_P(CallContract, WrongObjectsAndValuesChangeNothing)
{
    Heater object;
    ZTLogCapture log;
    heater.property("level")->set(ZTVariant(&object), ZTVariant(2.5));
    EXPECT_EQ(log.text(),
              "Zintar Warning: Retrieved default-constructed value of type \"int\" while "
              "converting from ZTVariant. Conversion failed from type type \"double\".\n");
    EXPECT_EQ(object.level(), 1);
    EXPECT_FALSE(heater.property("level")->get(ZTVariant()));
    EXPECT_FALSE(heater.property("level")->set(ZTVariant(7), ZTVariant(1)));
    EXPECT_FALSE(heater.invokable<void()>("describe", true)->invoke(ZTVariant("x")));
}
} // namespace
