#include "classreading.h"

#include "../stream/datastreamprivate.h"
#include "classrecord.h"
#include "metaclassbuilderprivate.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace
{
constexpr std::string_view noSuperClass = "ZTNone";

/// A medium that never ends is not to take all memory.
constexpr std::size_t mostBytes = 64 << 20;

/// All that comes; nothing when that is too much. A stream with a medium of its own tells its end
/// only by failing at it.
std::optional<std::string> rest(ZTDataStream& stream)
{
    std::string bytes;
    for (char next = 0; stream.read(&next, 1).good(); bytes += next)
        if (bytes.size() == mostBytes)
            return std::nullopt;
    return bytes;
}

std::string quoted(std::string_view name) { return "\"" + std::string(name) + "\""; }
} // namespace

void ZTClassReading::read(ZTDataStream& stream, std::optional<std::size_t> count)
{
    if (count) {
        for (std::size_t i = 0; i < *count; ++i)
            if (!readOne(stream))
                return;
    } else if (const auto* plain = ZTDataStreamPrivate::ofPlain(stream)) {
        while (plain->left() > 0)
            if (!readOne(stream))
                return;
    } else {
        const std::optional<std::string> bytes = rest(stream);
        if (!bytes) {
            fault = "it does not end within 64 MiB.";
            return;
        }
        ZTDataStream whole(*bytes);
        read(whole, std::nullopt);
    }
}

bool ZTClassReading::readOne(ZTDataStream& stream)
{
    Record record{std::make_unique<ZTMetaClassBuilder>(), {}};
    zt::detail::readClassRecord(stream, *record.builder->priv->metaClass, record.superName);
    if (!stream.good())
        fault = "it ends within a class.";
    else
        m_records.push_back(std::move(record));
    return isGood();
}

void ZTClassReading::order(const ZTKnownClasses& known)
{
    indexNames();
    for (std::size_t i = 0; i < m_records.size() && isGood(); ++i)
        place(i, known);
}

void ZTClassReading::indexNames()
{
    const auto nameAt = [this](std::size_t number) {
        return m_records[number].builder->typeName();
    };
    m_byName.resize(m_records.size());
    std::iota(m_byName.begin(), m_byName.end(), std::size_t{0});
    std::sort(m_byName.begin(), m_byName.end(),
              [&](std::size_t a, std::size_t b) { return nameAt(a) < nameAt(b); });
    const auto twice =
        std::adjacent_find(m_byName.begin(), m_byName.end(),
                           [&](std::size_t a, std::size_t b) { return nameAt(a) == nameAt(b); });
    if (twice != m_byName.end())
        fault = quoted(nameAt(*twice)) + " is there twice.";
}

std::optional<std::size_t> ZTClassReading::numberOf(std::string_view name) const
{
    const auto found = std::lower_bound(m_byName.begin(), m_byName.end(), name,
                                        [this](std::size_t number, std::string_view wanted) {
                                            return m_records[number].builder->typeName() < wanted;
                                        });
    if (found == m_byName.end() || m_records[*found].builder->typeName() != name)
        return std::nullopt;
    return *found;
}

void ZTClassReading::place(std::size_t number, const ZTKnownClasses& known)
{
    std::vector<std::size_t> waiting;
    std::optional<std::size_t> next = number;
    while (next && m_records[*next].state == Record::New) {
        Record& record = m_records[*next];
        record.state = Record::Waiting;
        waiting.push_back(*next);
        next = numberOf(record.superName);
        if (!next && record.superName != noSuperClass && !known(record.superName)) {
            fault = quoted(record.builder->typeName()) + " has the super class " +
                    quoted(record.superName) + ", which nobody knows.";
            return;
        }
    }
    if (next && m_records[*next].state == Record::Waiting) {
        fault = quoted(m_records[*next].builder->typeName()) + " builds on itself.";
        return;
    }
    for (; !waiting.empty(); waiting.pop_back()) {
        m_records[waiting.back()].state = Record::Placed;
        m_order.push_back(waiting.back());
    }
}

std::vector<std::unique_ptr<ZTMetaClass>>
ZTClassReading::finish(const ZTKnownClasses& known, const ZTClassStore::Prepare& prepare)
{
    std::vector<const ZTMetaClass*> finished(m_records.size());
    std::vector<std::unique_ptr<ZTMetaClass>> classes;
    for (const std::size_t number : m_order) {
        Record& record = m_records[number];
        if (const auto super = numberOf(record.superName))
            record.builder->setSuperClass(finished[*super]);
        else if (record.superName != noSuperClass)
            record.builder->setSuperClass(known(record.superName));
        if (prepare)
            prepare(*record.builder);
        std::unique_ptr<ZTMetaClass> made(record.builder->toMetaClass());
        classes.push_back(std::move(made));
        finished[number] = classes.back().get();
    }
    return classes;
}
