#include "contents.h"

#include <utility>

namespace dump
{
namespace
{
/// What no class is, a host may write to say that the classes end here.
bool isEndMark(const ClassRecord& record)
{
    return record.isComplete && record.name.empty() && record.super == noSuper &&
           record.annotations.empty() && record.enums.empty() && record.invokables.empty() &&
           record.properties.empty();
}

/// @return whether variants may follow
bool readClasses(ByteStream& stream, std::size_t count, Contents& contents)
{
    while (stream.left() > 0 && contents.classes.size() < count) {
        ClassRecord record = readClass(stream, contents.damages);
        if (isEndMark(record))
            return true;
        contents.classes.push_back(std::move(record));
        if (!contents.classes.back().isComplete)
            return false;
    }
    return true;
}

void readVariants(ByteStream& stream, Contents& contents)
{
    while (stream.left() > 0) {
        std::optional<VariantRecord> variant = readVariant(stream, contents.damages);
        if (!variant)
            return;
        contents.variants.push_back(std::move(*variant));
    }
}
} // namespace

Contents readContents(std::string file, std::string bytes, std::size_t classCount, std::size_t from)
{
    ByteStream stream(std::move(bytes));
    Contents contents;
    contents.file = std::move(file);
    contents.size = stream.size();
    if (from > stream.size()) {
        contents.damages.push_back({stream.size(), "the bytes end before reading was to begin"});
        return contents;
    }
    stream.seek(from);
    if (readClasses(stream, classCount, contents))
        readVariants(stream, contents);
    return contents;
}
} // namespace dump
