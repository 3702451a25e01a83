#include <zintar/datastream.h>
#include <zintar/dynamicbase.h>
#include <zintar/metaclassbuilder.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

// Writes the seeds of the corpora, one small stream in each file:
//
//     makecorpus fuzz/corpus

namespace
{
void save(const std::filesystem::path& path, const ZTDataStream& stream)
{
    const std::string bytes = stream.data();
    std::ofstream(path, std::ios::binary)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

ZTDataStream& writeRichClass(ZTDataStream& stream)
{
    ZTMetaClassBuilder builder;
    builder.setTypeName("Rich");
    builder.setSuperClass(&ZTDynamicBase::typeMetaClass());
    builder.addClassInfo().setKey("key");
    auto kind = builder.addEnum();
    kind.setName("Kind");
    kind.add("One", 1);
    kind.add("Two", 2);
    auto event = builder.addInvokable();
    event.setName("changed");
    event.setEvent<int, const std::string&>();
    auto property = builder.addProperty();
    property.setName("level");
    property.setMetaType(ztMetaType<double>());
    property.setChangeEvent(event);
    property.addPropInfo("unit", "m");
    const std::unique_ptr<ZTMetaClass> made(builder.toMetaClass());
    return stream << *made;
}

void makeClassRecords(const std::filesystem::path& folder)
{
    ZTDataStream declared;
    save(folder / "root", declared << ZTBase::typeMetaClass());
    save(folder / "row", writeRichClass(declared << ZTDynamicBase::typeMetaClass()));
    ZTDataStream rich;
    save(folder / "rich", writeRichClass(rich));
    ZTDataStream repeated; // an enumeration in which names and values repeat
    repeated << "A"
             << "ZTBase" << 0 << 1 << "Kind" << 3ULL << "One" << 1 << "Uno" << 1 << "One";
    save(folder / "repeated", repeated << 2 << 0 << 0);
    ZTDataStream hostile; // a count that the bytes cannot hold
    save(folder / "count", hostile << "A"
                                   << "ZTBase" << 0 << 1 << "Kind" << ~0ULL << "One");
    save(folder / "empty", ZTDataStream());
}

void makeVariants(const std::filesystem::path& folder)
{
    ZTDataStream plain;
    for (const ZTVariant& value :
         {ZTVariant(), ZTVariant(-1), ZTVariant(2.5), ZTVariant("text"), ZTVariant(true),
          ZTVariant('c'), ZTVariant(short(3)), ZTVariant(1.5F), ZTVariant(~0ULL)})
        plain << value;
    save(folder / "plain", plain);
    ZTDataStream alias;
    save(folder / "alias", alias << "std::string"
                                 << "text");
    ZTDataStream unknown;
    save(folder / "unknown", unknown << "Nowhere" << 5);
    ZTDataStream length; // a text longer than what is left
    save(folder / "length", length << "std::string" << ~0ULL << 5);
    ZTDataStream deep;
    for (int i = 0; i < 600; ++i)
        deep << "struct ZTVariant";
    save(folder / "deep", deep << ZTVariant(5));
}
} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "usage: " << argv[0] << " FOLDER\n";
        return 2;
    }
    makeClassRecords(std::filesystem::path(argv[1]) / "classrecord");
    makeVariants(std::filesystem::path(argv[1]) / "variant");
}
