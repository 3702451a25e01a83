#pragma once

#include "bytestream.h"

#include <zintar/fwd.h>

#include <cstddef>
#include <string>
#include <vector>

/// @file
/// Class records as they stand on a stream. The library's own reader makes descriptors out of
/// them, in which a type that this process does not know has lost its name; a tool knows hardly
/// any type of the host that wrote the stream.

namespace dump
{
/// What does not make sense, and the byte from which on it does not.
struct Damage {
    std::size_t offset;
    std::string what;
};

/// An annotation of a class or of a property.
struct Annotation {
    std::string key;
    std::string value;
};

struct Enumerator {
    std::string name;
    int value = 0;
};

struct EnumRecord {
    std::string name;
    std::vector<Enumerator> enumerators;
};

/// A method or an event.
struct InvokableRecord {
    std::string name;
    std::string returnType;
    std::vector<std::string> parameterTypes;
    int access = 0;
    bool isConst = false;
    bool isEvent = false;
};

struct PropertyRecord {
    std::string name;
    std::string type;
    std::vector<Annotation> annotations;
    /// Counted from the class's own first invokable: below 0 stand inherited ones. -1 is none.
    int changeEvent = -1;
    bool canGet = false;
    bool canSet = false;
};

struct ClassRecord {
    std::size_t offset = 0;
    std::size_t end = 0; ///< one past its last byte that makes sense
    bool isComplete = false;
    std::string name;
    std::string super; ///< `noSuper` when there is none
    std::vector<Annotation> annotations;
    std::vector<EnumRecord> enums;
    std::vector<InvokableRecord> invokables;
    std::vector<PropertyRecord> properties;
};

/// What stands on a stream in place of the name of a missing super class.
inline constexpr const char* noSuper = "ZTNone";

/// Reads one record. Where it stops making sense, reading ends and what was read by then stays.
/// Values that no writer writes, but which leave the stream in step, are told and read past.
/// Cost: time and memory in proportion to the bytes, whatever the record claims to hold.
/// @param damages  gets what does not make sense appended
ClassRecord readClass(ByteStream& stream, std::vector<Damage>& damages);

/// The record that a class of this process would have on a stream.
[[nodiscard]] ClassRecord recordOf(const ZTMetaClass& metaClass);
} // namespace dump
