#pragma once

#include <zintar/fwd.h>

#include <iosfwd>

namespace zt::detail
{
// What a type can do, seen through untyped pointers. Any of them may be null.
using CreateFunction = void* (*)(const void* source);
using DestroyFunction = void (*)(void* block);
using CreateDefaultFunction = void* (*)();
using CompareFunction = ZTPartialOrdering (*)(const void* a, const void* b);
using SerializeFunction = void (*)(ZTDataStream& stream, const void* value);
using DeserializeFunction = void (*)(ZTDataStream& stream, void* value);
using PrintFunction = void (*)(std::ostream& stream, const void* value);
using AssignFunction = void (*)(void* target, const void* source);
using ConverterFunction = bool (*)(const void* source, void* target);
/// Gives the class that a pointer type points to, complete.
using ClassFunction = const ZTMetaClass& (*)();
/// Gives a type, which may be registered only then.
using TypeGetter = const ZTMetaType& (*)();
struct Shape;
} // namespace zt::detail
