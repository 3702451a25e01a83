#include "metatypeprivate.h"

#include <zintar/metatypeof.h>

#include <cstddef>

namespace zt::detail
{
namespace
{
/// What the library does with `T` like with any other type.
template <class T>
void registerPlain(const std::string& alias)
{
    registerType<T>(nullptr, alias);
}

/// The null pointer has no content to write, but it is a value that a stream takes.
void writeNothing(ZTDataStream&, const void*) {}

void registerNull()
{
    using Null = TypeFunctions<std::nullptr_t>;
    ztRegisterMetaType(typeid(std::nullptr_t), ztTypeName<std::nullptr_t>(), "std::nullptr_t",
                       Null::create(), Null::destroy(), Null::createDefault(), Null::compare(),
                       &writeNothing, nullptr, Null::print(), nullptr, true);
}

/// Without a form on the stream, where the type would otherwise pass as the integer it holds.
void registerUnsignedLong()
{
    using Functions = TypeFunctions<ZTULong>;
    ztRegisterMetaType(typeid(ZTULong), ztTypeName<ZTULong>(), "unsigned long", Functions::create(),
                       Functions::destroy(), Functions::createDefault(), Functions::compare(),
                       nullptr, nullptr, Functions::print(), nullptr, true, Functions::assign());
}

/// A type without any function: no variant of it holds a block.
template <class T>
void registerNameOnly()
{
    ztRegisterMetaType(typeid(T), ztTypeName<T>(), {}, nullptr, nullptr, nullptr, nullptr, nullptr,
                       nullptr, nullptr, nullptr);
}
} // namespace

void registerBuiltInTypes()
{
    registerNameOnly<void>();
    registerNameOnly<void*>();
    registerNull();
    registerPlain<char>("char"); // written as an int, so it cannot be read back
    registerPlain<unsigned char>("unsigned char");
    registerPlain<short>("short");
    registerPlain<unsigned short>("unsigned short");
    registerPlain<int>("int");
    registerPlain<unsigned int>("unsigned int");
    registerPlain<ZTLong>("long"); // the same
    registerUnsignedLong();
    registerPlain<long long>("long long");
    registerPlain<unsigned long long>("unsigned long long");
    registerPlain<bool>("bool");
    registerPlain<float>("float");
    registerPlain<double>("double");
    registerPlain<std::string>("std::string");
}
} // namespace zt::detail
