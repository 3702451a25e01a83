#include "variants.h"

#include "text.h"

#include <zintar/logcapture.h>
#include <zintar/metatype.h>
#include <zintar/typedvalue.h>
#include <zintar/typename.h>

#include <sstream>
#include <string_view>

namespace dump
{
namespace
{
/// How the values of a type travel.
struct TypeForm {
    bool isRead;
    std::size_t bytesWritten; ///< for a default value
};

TypeForm formOf(const ZTMetaType& type)
{
    ZTVariant value(type, nullptr);
    ZTDataStream written;
    type.serialize(written, value.data());
    ZTDataStream empty;
    return {type.deserialize(empty, value.data()), written.data().size()};
}

class VariantReader
{
public:
    VariantReader(ByteStream& stream, std::vector<Damage>& damages)
        : m_stream(stream), m_damages(damages)
    {}

    std::optional<VariantRecord> read()
    {
        m_record.offset = m_stream.position();
        if (!findInnermostType())
            return std::nullopt;
        bool isRead = m_innermost == ZTMetaType::ZTBadMetaType.name() || isNested() ||
                      formOf(ztMetaType(m_innermost)).isRead;
        if (!(isRead ? readByLibrary() : stepOver()))
            return std::nullopt;
        m_record.end = m_stream.position();
        return std::move(m_record);
    }

private:
    [[nodiscard]] bool isNested() const { return m_innermost != m_record.type; }

    /// Variants within variants are a row of names, of which only the last may be unknown.
    bool findInnermostType()
    {
        const std::string nesting(ztTypeName<ZTVariant>());
        do {
            m_typeOffset = m_stream.position();
            if (!readTypeName())
                return false;
            if (m_typeOffset == m_record.offset)
                m_record.type = m_innermost;
        } while (m_innermost == nesting);
        bool isKnown = ztMetaType(m_innermost) || m_innermost == ZTMetaType::ZTBadMetaType.name();
        return isKnown || fail(m_typeOffset,
                               "the type " + shownReference(m_innermost) +
                                   " is not known here, so the end of its value cannot be found");
    }

    bool readTypeName()
    {
        unsigned long long length = 0;
        if (m_stream.left() < sizeof(length))
            return fail(m_typeOffset, "the name of a type: the bytes end after " +
                                          std::to_string(m_stream.left()) + " of 8");
        m_stream >> length;
        if (length > m_stream.left())
            return fail(m_typeOffset, "the name of a type: a length of " + std::to_string(length) +
                                          ", where " + std::to_string(m_stream.left()) +
                                          " bytes are left");
        m_innermost = m_stream.take(static_cast<std::size_t>(length));
        return true;
    }

    bool readByLibrary()
    {
        std::size_t valueOffset = m_stream.position();
        m_stream.seek(m_record.offset);
        ZTLogCapture log;
        m_stream >> m_record.value;
        if (!m_stream.good())
            return fail(valueOffset,
                        "the bytes end in the value of type " + shownType(m_innermost));
        if (!log.text().empty())
            return fail(m_record.offset,
                        isTooDeep(valueOffset)
                            ? "variants are nested too deep to be read"
                            : "a value of type " + shownType(m_innermost) + " cannot be read back");
        return true;
    }

    /// Reading ended before the innermost value, though a value of its type can be read.
    [[nodiscard]] bool isTooDeep(std::size_t valueOffset) const
    {
        return m_stream.position() <= m_typeOffset ||
               (m_stream.position() == valueOffset && formOf(ztMetaType(m_innermost)).isRead);
    }

    /// Such types are written with a fixed width, or with nothing.
    bool stepOver()
    {
        const ZTMetaType& type = ztMetaType(m_innermost);
        std::size_t width = formOf(type).bytesWritten;
        std::size_t valueOffset = m_stream.position();
        if (m_stream.left() < width)
            return fail(valueOffset,
                        "the bytes end in the value of type " + shownType(m_innermost));
        m_record.unreadBytes = m_stream.take(width);
        return true;
    }

    bool fail(std::size_t offset, const std::string& what)
    {
        m_damages.push_back({offset, what});
        return false;
    }

    ByteStream& m_stream;
    std::vector<Damage>& m_damages;
    VariantRecord m_record;
    std::string m_innermost;
    std::size_t m_typeOffset = 0;
};
} // namespace

std::optional<VariantRecord> readVariant(ByteStream& stream, std::vector<Damage>& damages)
{
    return VariantReader(stream, damages).read();
}

namespace
{
std::string shown(std::string_view type, const ZTVariant& value, std::string_view unreadBytes)
{
    std::string text = "ZTVariant(" + shownType(type);
    if (value.isValid())
        text += ", " + printedValue(value);
    else if (!unreadBytes.empty())
        text += ", bytes" + hex(unreadBytes);
    return text + ")";
}
} // namespace

std::string printedValue(const ZTVariant& variant)
{
    if (const auto* inner = ztVariantPointer<ZTVariant>(variant))
        return shown(inner->type().name(), *inner, {});
    ZTLogCapture log;
    std::ostringstream text;
    variant.type().print(text, variant.data());
    return escaped(text.view());
}

std::string printed(const VariantRecord& variant)
{
    return shown(variant.type, variant.value, variant.unreadBytes);
}
} // namespace dump
