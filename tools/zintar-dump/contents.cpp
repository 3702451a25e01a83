#include "contents.h"

#include <algorithm>
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
        bool isComplete = record.isComplete;
        if (record.end > record.offset)
            contents.classes.push_back(std::move(record));
        if (!isComplete)
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
void read(ByteStream& stream, std::size_t classCount, Contents& contents)
{
    if (readClasses(stream, classCount, contents))
        readVariants(stream, contents);
}

bool isAnyComplete(const Contents& contents)
{
    return !contents.variants.empty() ||
           (!contents.classes.empty() && contents.classes.front().isComplete);
}

/// Where nothing makes sense, the user may have forgotten the option, or given it in error.
/// @param stream  stands where reading began
void hintAtOtherKind(ByteStream stream, std::size_t classCount, Contents& contents)
{
    Contents other;
    read(stream, classCount == 0 ? all : 0, other);
    if (other.damages.empty())
        contents.damages.front().what += classCount == 0
                                             ? "; these are classes, try without --variants"
                                             : "; these are variants, try --variants";
}

template <class Record>
std::span<const Record> part(const std::vector<Record>& records, std::size_t skip,
                             std::size_t count)
{
    std::span<const Record> rest = std::span(records).subspan(std::min(skip, records.size()));
    return rest.first(std::min(count, rest.size()));
}
} // namespace

std::span<const ClassRecord> Contents::shownClasses() const { return part(classes, skip, count); }

std::span<const VariantRecord> Contents::shownVariants() const
{
    std::size_t before = std::min(skip, classes.size());
    return part(variants, skip - before, count - shownClasses().size());
}

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
    read(stream, classCount, contents);
    if (!contents.damages.empty() && !isAnyComplete(contents)) {
        ByteStream again(stream.data());
        again.seek(from);
        hintAtOtherKind(std::move(again), classCount, contents);
    }
    return contents;
}
} // namespace dump
