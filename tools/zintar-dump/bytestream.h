#pragma once

#include <zintar/datastream.h>

#include <cstddef>
#include <string>

namespace dump
{
/// A stream over bytes that tells where reading stands, and can go back. It is for reading alone:
/// what is written to it is dropped.
class ByteStream : public ZTDataStream
{
public:
    explicit ByteStream(std::string bytes) : m_bytes(std::move(bytes)) {}

    [[nodiscard]] std::size_t size() const { return m_bytes.size(); }
    [[nodiscard]] std::size_t position() const { return m_position; }
    [[nodiscard]] std::size_t left() const { return m_bytes.size() - m_position; }
    /// A position behind the end counts as the end. A failed stream stays failed.
    void seek(std::size_t position);
    /// The next bytes, or what there is of them.
    [[nodiscard]] std::string take(std::size_t count);

    [[nodiscard]] std::string data() const override { return m_bytes; }
    void setData(const std::string& bytes) override;
    [[nodiscard]] bool atEnd() const override { return m_failed; }
    [[nodiscard]] bool good() const override { return !m_failed; }
    ZTDataStream& read(char* bytes, unsigned int count) override;
    ZTDataStream& write(const char*, unsigned int) override { return *this; }

private:
    std::string m_bytes;
    std::size_t m_position = 0;
    bool m_failed = false;
};
} // namespace dump
