#include "metatypeprivate.h"

#include <zintar/metatypeof.h>

#include <cstddef>
#include <memory>
#include <utility>

namespace zt::detail
{
namespace
{
/// Adds types to a registry that is being made, and that nobody else can reach yet.
class BuiltInTypes
{
public:
    explicit BuiltInTypes(ZTMetaTypeRegistry& registry) : m_registry(registry) {}

    /// What the library does with `T` like with any other type.
    template <class T>
    void add(const std::string& alias)
    {
        using Functions = TypeFunctions<T>;
        addWith<T>(alias, Functions::serialize(), Functions::deserialize());
    }
    /// With another form on the stream, or none.
    template <class T>
    void addWith(const std::string& alias, SerializeFunction serialize,
                 DeserializeFunction deserialize)
    {
        using Functions = TypeFunctions<T>;
        auto record = std::make_unique<ZTMetaTypePrivate>(
            ztTypeName<T>(), typeid(T), Functions::create(), Functions::destroy(),
            Functions::createDefault(), Functions::compare(), serialize, deserialize,
            Functions::print(), nullptr);
        record->isBuiltIn = true;
        record->setStorage(sizeof(BlockOf<T>), Functions::assign());
        record->shape = shapeOf<T>();
        m_registry.add(std::move(record), alias);
    }
    /// A type without any function: no variant of it holds a block.
    template <class T>
    void addNameOnly()
    {
        auto record = std::make_unique<ZTMetaTypePrivate>(ztTypeName<T>(), typeid(T), nullptr,
                                                          nullptr, nullptr, nullptr, nullptr,
                                                          nullptr, nullptr, nullptr);
        record->shape = shapeOf<T>();
        m_registry.add(std::move(record), {});
    }

private:
    ZTMetaTypeRegistry& m_registry;
};

/// The null pointer has no content to write, but it is a value that a stream takes.
void writeNothing(ZTDataStream&, const void*) {}
} // namespace

void registerBuiltInTypes(ZTMetaTypeRegistry& registry)
{
    BuiltInTypes types(registry);
    types.addNameOnly<void>();
    types.addNameOnly<void*>();
    types.addWith<std::nullptr_t>("std::nullptr_t", &writeNothing, nullptr);
    types.add<char>("char"); // written as an int, so it cannot be read back
    types.add<unsigned char>("unsigned char");
    types.add<short>("short");
    types.add<unsigned short>("unsigned short");
    types.add<int>("int");
    types.add<unsigned int>("unsigned int");
    types.add<ZTLong>("long"); // the same
    // Without a form on the stream, where the type would otherwise pass as the integer it holds.
    types.addWith<ZTULong>("unsigned long", nullptr, nullptr);
    types.add<long long>("long long");
    types.add<unsigned long long>("unsigned long long");
    types.add<bool>("bool");
    types.add<float>("float");
    types.add<double>("double");
    types.add<std::string>("std::string");
}
} // namespace zt::detail
