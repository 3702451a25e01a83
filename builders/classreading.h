#pragma once

#include <zintar/classstore.h>
#include <zintar/metaclassbuilder.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What a super class may be named by, apart from the classes that are being read.
using ZTKnownClasses = std::function<const ZTMetaClass*(std::string_view name)>;

/// Many class records on their way from a stream to finished classes. Each step leaves one sentence
/// on what is wrong, if anything is.
///
/// 1. The records are read without their super classes, which may stand behind them.
/// 2. Each is put behind its super class.
/// 3. They are finished in that order.
struct ZTClassReading {
    /// @param count  nothing for as many as there are
    void read(ZTDataStream& stream, std::optional<std::size_t> count);
    void order(const ZTKnownClasses& known);
    /// The classes, each behind its super class.
    std::vector<std::unique_ptr<ZTMetaClass>> finish(const ZTKnownClasses& known,
                                                     const ZTClassStore::Prepare& prepare);

    [[nodiscard]] bool isGood() const { return fault.empty(); }
    /// Empty as long as nothing is wrong.
    std::string fault;

private:
    bool readOne(ZTDataStream& stream);
    void indexNames();
    /// Puts the record into the order, behind those that it builds on.
    void place(std::size_t number, const ZTKnownClasses& known);
    /// The number of the record with that name; none when there is no such record.
    [[nodiscard]] std::optional<std::size_t> numberOf(std::string_view name) const;

    struct Record {
        std::unique_ptr<ZTMetaClassBuilder> builder;
        std::string superName;
        enum { New, Waiting, Placed } state = New;
    };
    std::vector<Record> m_records;
    std::vector<std::size_t> m_byName; ///< the numbers of the records, sorted by their names
    std::vector<std::size_t> m_order;
};
