#pragma once

#include "bytestream.h"
#include "records.h"

#include <zintar/variant.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace dump
{
/// A variant as it stands on a stream.
struct VariantRecord {
    std::size_t offset = 0;
    std::size_t end = 0; ///< one past its last byte
    std::string type;
    ZTVariant value;
    /// The bytes of a value that the library writes and cannot read back, a `char` for example;
    /// `value` is invalid then.
    std::string unreadBytes;
};

/// Reads one variant whose type this process knows.
/// @return nothing when it does not make sense or its type is unknown, with the reason in
///         `damage`. Nothing can be read behind it then: a value has no length on the stream.
std::optional<VariantRecord> readVariant(ByteStream& stream, std::vector<Damage>& damages);

/// The value alone as the library prints it, on one line. A variant within one is shown by the
/// type's shown name as well.
[[nodiscard]] std::string printedValue(const ZTVariant& variant);

/// The variant nearly as the library prints it: on one line, and by the type's shown name.
[[nodiscard]] std::string printed(const VariantRecord& variant);
} // namespace dump
