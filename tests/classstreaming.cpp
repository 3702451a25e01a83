#include "support/bytes.h"
#include "support/describe.h"
#include "support/logs.h"
#include "support/sampleclasses.h"

#include <zintar/dynamicbase.h>
#include <zintar/metaclassbuilder.h>

#include <limits>
#include <memory>

namespace
{
using sample::Heater;
using support::streamed;
using Owned = std::unique_ptr<ZTMetaClass>;
using Classes = std::unordered_map<std::string, const ZTMetaClass*>;

const Classes withDevice{{"struct sample::Device", &sample::Device::typeMetaClass()}};

std::string missing(const std::string& name)
{
    return "Zintar: ZTMetaClassBuilder failed to set super class. No meta class with name \"" +
           name + "\" provided.\n";
}

std::string bytesOf(ZTMetaClassBuilder& builder) { return streamed(*Owned(builder.toMetaClass())); }

/// The class that the bytes stand for, finished without its functions.
Owned readClass(const std::string& bytes, const Classes& classes = withDevice)
{
    ZTDataStream stream = support::streamOf(bytes);
    ZTMetaClassBuilder builder;
    builder.deserialize(stream, classes);
    return Owned(builder.toMetaClass());
}

/// The class `Heater`, field by field, each in its width.
std::string heaterBytes(bool withFunctions = true)
{
    const auto flags = [&](int bits) {
        return static_cast<unsigned char>(withFunctions ? bits : 0);
    };
    return streamed("struct sample::Heater", "struct sample::Device",                     //
                    2, "vendor", "thermo", "", "", 1, "Mode", 2ULL, "Off", -1, "Heat", 5, //
                    3, "boost", "double", short(0), 2, 2, "int", "double",                //
                    "levelChanged", "void", short(2), 2, 1, "int",                        //
                    "describe", ztMetaType<std::string>(), short(1), 1, 0,                //
                    2, "serial", "int", -1, flags(1), 0,                                  //
                    "level", "int", 1, flags(3), 2, "unit", "watt", "unit", "W");
}

TEST(ClassWriter, WritesEachFieldInItsPlaceAndWidth)
{
    EXPECT_EQ(support::hex(streamed(Heater::typeMetaClass())), support::hex(heaterBytes()));
}

TEST(ClassReader, BringsEverythingBackButTheFunctions)
{
    ZTDataStream stream = support::streamOf(heaterBytes() + "tail");
    ZTMetaClassBuilder builder;
    EXPECT_LOGS_NOTHING([&] { builder.deserialize(stream, withDevice); });
    auto serial = builder.property(0), level = builder.property(1);
    EXPECT_TRUE(serial.canGet());
    EXPECT_FALSE(serial.canSet());
    EXPECT_TRUE(level.canGet());
    EXPECT_TRUE(level.canSet());
    const std::string without = bytesOf(builder); // what is not given back is forgotten
    EXPECT_EQ(support::hex(without), support::hex(heaterBytes(false)));
    EXPECT_EQ(streamed(*readClass(without)), without);
    serial.setGetter([](const ZTVariant& object) { return object; });
    level.setGetter([](const ZTVariant& object) { return object; });
    level.setSetter([](const ZTVariant& object, const ZTVariant&) { return object; });
    EXPECT_EQ(support::hex(bytesOf(builder)), support::hex(heaterBytes()));
    serial.setGetter(nullptr); // takes the stored flag back as well
    EXPECT_FALSE(serial.canGet());
    char rest[4];
    EXPECT_TRUE(stream.read(rest, 4).good()); // nothing behind the class was touched
    EXPECT_EQ(std::string(rest, 4), "tail");
}

/// A class without members whose super class has that name.
std::string classBelow(const std::string& super) { return streamed("A", super, 0, 0, 0, 0); }

TEST(ClassReader, FindsTheSuperClassByName)
{
    const ZTMetaClass *root = &ZTBase::typeMetaClass(), *other = &ZTDynamicBase::typeMetaClass();
    const struct {
        std::string name;
        Classes given;
        const ZTMetaClass* super;
        bool found;
    } cases[] = {{"ZTBase", {}, root, true},
                 {"struct ZTBase", {}, root, true},
                 {"ZTBase", {{"ZTBase", other}}, other, true},
                 {"ZTNone", {{"ZTNone", nullptr}}, nullptr, true},
                 {"ZTNone", {}, nullptr, false},
                 {"struct ZTDynamicBase", {}, nullptr, false}};
    for (const auto& one : cases)
        EXPECT_LOGS(one.found ? "" : missing(one.name), [&] {
            const Owned read = readClass(classBelow(one.name), one.given);
            EXPECT_EQ(read->typeName(), "A");
            EXPECT_EQ(read->superClass(), one.super);
            EXPECT_EQ(read->invokableOffset(), one.super ? one.super->invokableCount() : 0);
        });
    // A class that nothing stands above comes back as it is.
    EXPECT_LOGS(missing("ZTNone"),
                [&] { EXPECT_EQ(streamed(*readClass(streamed(*root))), streamed(*root)); });
}

/// A class whose only members are an event and a property with a change event at that position.
std::string classWithPosition(int position)
{
    return streamed("A", "ZTBase", 0, 0, 1, "rung", "void", short(2), 0, 0, //
                    1, "level", "int", position, false, 0);
}

TEST(ClassReader, LinksTheChangeEventByItsPositionInTheOwnList)
{
    for (int position : {1, 0x7FFFFFFF, -1, -4, std::numeric_limits<int>::min()})
        EXPECT_EQ(readClass(classWithPosition(position))->property(0U)->changeEvent(), nullptr);
    EXPECT_EQ(readClass(classWithPosition(0))->property(0U)->changeEventIndex(), 4);
    // A reader adds to what the builder holds, and counts from the front of all of it.
    ZTMetaClassBuilder builder;
    builder.setTypeName("Old");
    builder.addInvokable().setName("older");
    auto stream = support::streamOf(classWithPosition(0));
    builder.deserialize(stream, {});
    EXPECT_EQ(builder.typeName(), "A");
    EXPECT_EQ(builder.invokableCount(), 2);
    const Owned made(builder.toMetaClass());
    EXPECT_EQ(made->property(0U)->changeEvent()->name(), "older");
}

TEST(ClassReader, LeavesRepeatedEnumeratorsOutAndTellsOfUnknownTypes)
{
    const std::string bytes =
        streamed("A", "ZTBase", 0, 1, "Kind", 4ULL, "One", 1, "Uno", 1, "One", 2, "Two", 2, 0, 2,
                 "level", "Nowhere", -1, false, 0, "level", "ZTBadMetaType", -1, false, 0);
    EXPECT_LOGS("Zintar: ZTMetaType deserialization failed. Did not find meta type with name "
                "\"Nowhere\".\n",
                [&] {
                    EXPECT_EQ(support::describe(*readClass(bytes)),
                              "A: struct ZTBase\n"
                              "enum 0 Kind One=1 Two=2\n"
                              "property 0 ZTBadMetaType level, -1\n"
                              "property 1 ZTBadMetaType level, -1\n");
                });
}

TEST(ClassReader, AnswersWhatIsMissing)
{
    const auto missingIn = [](const std::string& bytes, const Classes& classes) {
        ZTDataStream stream = support::streamOf(bytes);
        ZTMetaClassBuilder builder;
        return builder.read(stream, classes);
    };
    EXPECT_LOGS_NOTHING([&] {
        EXPECT_FALSE(missingIn(heaterBytes(), withDevice));
        EXPECT_FALSE(missingIn(streamed("Lamp", "ZTNone", 0, 0, 0, 0), {}));
        EXPECT_EQ(missingIn(heaterBytes(), {}).superClass, "struct sample::Device");
        const std::string bytes =
            streamed("Lamp", "ZTBase", 0, 0, 1, "dim", "Percent", short(0), 2, 2, "int", "Beam", 1,
                     "beam", "Beam", -1, static_cast<unsigned char>(0), 0);
        const ZTMissingInClass missing = missingIn(bytes, {});
        EXPECT_EQ(missing.typeNames, (std::vector<std::string>{"Beam", "Percent"}));
        EXPECT_EQ(missing.superClass, "");
        EXPECT_FALSE(missing.isCut);
        for (std::size_t size = 0; size < bytes.size(); ++size)
            EXPECT_TRUE(missingIn(bytes.substr(0, size), {}).isCut) << size;
    });
}

// The fuzz target runs every single-bit change of its kept inputs, and counts the memory it takes.
TEST(ClassReader, StopsAtTheFirstFailedReadAndKeepsWhatWasRead)
{
    const std::string bytes = heaterBytes();
    const std::size_t firstProperty = bytes.find("serial") - 8;
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        ZTLogCapture log;
        ZTDataStream stream = support::streamOf(bytes.substr(0, size));
        ZTMetaClassBuilder builder;
        builder.deserialize(stream, withDevice);
        EXPECT_FALSE(stream.good()) << size;
        EXPECT_EQ(builder.typeName(), size < 8 + 21 ? "" : "struct sample::Heater");
        EXPECT_EQ(builder.classInfoCount() + builder.enumCount() + builder.invokableCount() == 6,
                  size >= bytes.find("describe") - 8);
        EXPECT_EQ(builder.propertyCount() > 0, size >= firstProperty) << size;
        const Owned finished(builder.toMetaClass());
        EXPECT_EQ(streamed(*readClass(streamed(*finished))), streamed(*finished)) << size;
    }
}
} // namespace
