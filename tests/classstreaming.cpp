#include "support/bytes.h"
#include "support/describe.h"
#include "support/logs.h"

#include <zintar/dynamicbase.h>
#include <zintar/metaclassbuilder.h>

#include <atomic>
#include <cstdlib>
#include <limits>
#include <memory>
#include <new>

namespace
{
std::atomic<std::size_t> bytesTaken{0};
}

// Counts what the reader takes, all in all. Inlined, the pair would look mismatched to GCC.
[[gnu::noinline]] void* operator new(std::size_t size)
{
    bytesTaken += size;
    if (void* memory = std::malloc(size ? size : 1))
        return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace
{
using Owned = std::unique_ptr<ZTMetaClass>;
using Classes = std::unordered_map<std::string, const ZTMetaClass*>;

const Classes withDynamicBase{{"struct ZTDynamicBase", &ZTDynamicBase::typeMetaClass()}};

std::string missing(const std::string& name)
{
    return "Zintar: ZTMetaClassBuilder failed to set super class. No meta class with name \"" +
           name + "\" provided.\n";
}

std::string bytesOf(const ZTMetaClass& metaClass)
{
    ZTDataStream stream;
    stream << metaClass;
    return stream.data();
}
std::string bytesOf(ZTMetaClassBuilder& builder) { return bytesOf(*Owned(builder.toMetaClass())); }

/// The class that the bytes stand for, finished without its functions.
Owned readClass(const std::string& bytes, const Classes& classes = withDynamicBase)
{
    ZTDataStream stream = support::streamOf(bytes);
    ZTMetaClassBuilder builder;
    builder.deserialize(stream, classes);
    return Owned(builder.toMetaClass());
}

/// A class with everything in it once, each number one that stands nowhere else.
Owned makeRichClass()
{
    ZTMetaClassBuilder builder;
    builder.setTypeName("Rich");
    builder.setSuperClass(&ZTDynamicBase::typeMetaClass());
    auto info = builder.addClassInfo();
    info.setKey("ik");
    info.setValue("iv");
    auto kind = builder.addEnum();
    kind.setName("Kind");
    kind.add("One", 0x11121314);
    kind.add("Neg", -2);
    auto method = builder.addInvokable();
    method.setName("call");
    method.setIsConst(true);
    method.setReturnMetaType(ztMetaType<bool>());
    method.setAccessSpecifier(ZTAccessSpecifier::Protected);
    method.setParameterMetaTypes({&ztMetaType<int>(), &ztMetaType<double>()});
    auto event = builder.addInvokable();
    event.setName("rung");
    event.setEvent<>();
    event.setIsConst(true);
    event.setAccessSpecifier(ZTAccessSpecifier::Public);
    auto property = builder.addProperty();
    property.setName("level");
    property.setMetaType(ztMetaType<float>());
    property.setGetter([](const ZTVariant&) { return ZTVariant(); });
    property.setChangeEvent(event);
    property.addPropInfo("pk", "pv");
    return Owned(builder.toMetaClass());
}

/// Its bytes, field by field, each in its width.
std::string richBytes()
{
    ZTDataStream stream;
    stream << "Rich"
           << "struct ZTDynamicBase";
    stream << 1 << "ik"
           << "iv";
    stream << 1 << "Kind" << 2ULL << "One" << 0x11121314 << "Neg" << -2;
    stream << 2 << "call"
           << "bool" << short(1) << 1 << 2 << "int"
           << "double";
    stream << "rung"
           << "void" << short(3) << 2 << 0;
    stream << 1 << "level"
           << "float" << 1 << true << 1 << "pk"
           << "pv";
    return stream.data();
}

TEST(ClassWriter, WritesEachFieldInItsPlaceAndWidth)
{
    EXPECT_EQ(support::hex(bytesOf(*makeRichClass())), support::hex(richBytes()));
}

TEST(ClassReader, BringsEverythingBackButTheFunctions)
{
    const std::string bytes = richBytes();
    ZTDataStream stream = support::streamOf(bytes + "tail");
    ZTMetaClassBuilder builder;
    EXPECT_LOGS_NOTHING([&] { builder.deserialize(stream, withDynamicBase); });
    EXPECT_FALSE(builder.property(0).getter() || builder.invokable(1).function());
    EXPECT_TRUE(builder.property(0).canGet() && !builder.property(0).canSet());
    const std::string without = bytesOf(builder);
    builder.property(0).setGetter([](const ZTVariant& object) { return object; });
    EXPECT_EQ(support::hex(bytesOf(builder)), support::hex(bytes));
    builder.property(0).setGetter(nullptr); // takes the stored flag back as well
    EXPECT_FALSE(builder.property(0).canGet());
    char rest[4];
    EXPECT_TRUE(stream.read(rest, 4).good()); // nothing behind the class was touched
    EXPECT_EQ(std::string(rest, 4), "tail");
    // A getter that is not given back is forgotten.
    std::string expected = bytes;
    expected[bytes.size() - 25] = 0;
    EXPECT_EQ(support::hex(without), support::hex(expected));
    EXPECT_EQ(bytesOf(*readClass(without)), without);
}

/// A class without members whose super class has that name.
std::string classBelow(const std::string& super)
{
    ZTDataStream stream;
    stream << "A" << super << 0 << 0 << 0 << 0;
    return stream.data();
}

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
                 {"ZTBase", {{"ZTBase", nullptr}}, nullptr, true},
                 {"ZTNone", {{"ZTNone", nullptr}}, nullptr, true},
                 {"ZTNone", {}, nullptr, false},
                 {"struct ZTDynamicBase", {}, nullptr, false},
                 {"", {}, nullptr, false}};
    for (const auto& one : cases)
        EXPECT_LOGS(one.found ? "" : missing(one.name), [&] {
            const Owned read = readClass(classBelow(one.name), one.given);
            EXPECT_EQ(read->typeName(), "A");
            EXPECT_EQ(read->superClass(), one.super);
            EXPECT_EQ(read->invokableOffset(), one.super ? one.super->invokableCount() : 0);
        });
    EXPECT_LOGS(missing(""), [] { EXPECT_EQ(readClass("")->typeName(), ""); });
    // A declared class comes back as it is.
    EXPECT_LOGS(missing("ZTNone"), [&] {
        EXPECT_EQ(bytesOf(*readClass(bytesOf(*root))), bytesOf(*root));
        EXPECT_EQ(bytesOf(*readClass(bytesOf(*other))), bytesOf(*other));
    });
}

/// A class whose only members are an event and a property with a change event at that position.
std::string classWithPosition(int position)
{
    const unsigned short eventFlag = 2;
    ZTDataStream stream;
    stream << "A"
           << "ZTBase" << 0 << 0;
    stream << 1 << "rung" << ztMetaType<void>() << eventFlag << 0 << 0;
    stream << 1 << "level" << ztMetaType<int>() << position;
    stream << static_cast<unsigned char>(0) << 0;
    return stream.data();
}

TEST(ClassReader, LinksTheChangeEventByItsPositionInTheOwnList)
{
    for (int position : {1, 0x7FFFFFFF, -1, -4, std::numeric_limits<int>::min()})
        EXPECT_EQ(readClass(classWithPosition(position))->property(0U)->changeEvent(), nullptr);
    EXPECT_EQ(readClass(classWithPosition(0))->property(0U)->changeEventIndex(), 4);
    const Classes narrower{{"struct ZTDynamicBase", &ZTBase::typeMetaClass()}};
    const Owned read = readClass(richBytes(), narrower);
    EXPECT_EQ(read->property("level")->changeEventIndex(), 5);
    EXPECT_EQ(read->property("level")->changeEvent()->name(), "rung");

    // A reader adds to what the builder holds, and counts from the front of all of it.
    ZTMetaClassBuilder builder;
    builder.setTypeName("Old");
    builder.addInvokable().setName("older");
    auto stream = support::streamOf(classWithPosition(0) + classWithPosition(-1));
    builder.deserialize(stream, {});
    EXPECT_EQ(builder.typeName(), "A");
    const Owned made(builder.toMetaClass());
    EXPECT_EQ(made->property(0U)->changeEvent()->name(), "older");
    builder.deserialize(stream, {});
    EXPECT_TRUE(stream.good() && builder.propertyCount() == 2 && builder.invokableCount() == 3);
}

TEST(ClassReader, LeavesRepeatedEnumeratorsOutAndTellsOfUnknownTypes)
{
    ZTDataStream stream;
    stream << "A"
           << "ZTBase" << 0 << 1 << "Kind" << 4ULL;
    stream << "One" << 1 << "Uno" << 1 << "One" << 2 << "Two" << 2 << 0 << 2;
    for (const char* type : {"Nowhere", "ZTBadMetaType"})
        stream << "level" << type << -1 << static_cast<unsigned char>(0) << 0;
    EXPECT_LOGS("Zintar: ZTMetaType deserialization failed. Did not find meta type with name "
                "\"Nowhere\".\n",
                [&] {
                    EXPECT_EQ(support::describe(*readClass(stream.data())),
                              "A: struct ZTBase\n"
                              "enum 0 Kind One=1 Two=2\n"
                              "property 0 ZTBadMetaType level, -1\n"
                              "property 1 ZTBadMetaType level, -1\n");
                });
}

// The fuzz target runs every single-bit change of its kept inputs.
TEST(ClassReader, StopsAtTheFirstFailedReadAndKeepsWhatWasRead)
{
    const std::string bytes = richBytes();
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        support::CapturedLog log;
        ZTDataStream stream = support::streamOf(bytes.substr(0, size));
        ZTMetaClassBuilder builder;
        builder.deserialize(stream, withDynamicBase);
        EXPECT_FALSE(stream.good()) << size;
        EXPECT_EQ(builder.typeName(), size < 12 ? "" : "Rich");
        EXPECT_LE(builder.classInfoCount() + builder.enumCount() + builder.invokableCount() +
                      builder.propertyCount(),
                  5);
        EXPECT_EQ(builder.propertyCount(), size < bytes.size() - 55 ? 0 : 1) << size;
        const Owned finished(builder.toMetaClass());
        EXPECT_EQ(bytesOf(*readClass(bytesOf(*finished))), bytesOf(*finished)) << size;
    }
}

TEST(ClassReader, TakesMemoryInProportionToTheBytes)
{
    // Each list in turn claims more than four thousand million entries, in 64 KiB of zeros.
    for (int list = 0; list < 4; ++list) {
        ZTDataStream stream;
        stream << "A"
               << "ZTBase";
        for (int before = 0; before < list; ++before)
            stream << 0;
        stream << ~0U;
        const std::string bytes = stream.data() + std::string(0x10000, '\0');
        support::CapturedLog log;
        ZTDataStream hostile = support::streamOf(bytes);
        ZTMetaClassBuilder builder;
        const std::size_t before = bytesTaken;
        builder.deserialize(hostile, {});
        EXPECT_FALSE(hostile.good());
        EXPECT_LT(bytesTaken - before, 64 * bytes.size()) << list;
    }
}
} // namespace
