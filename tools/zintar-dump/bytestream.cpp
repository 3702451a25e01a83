#include "bytestream.h"

#include <algorithm>
#include <cstring>

namespace dump
{
void ByteStream::seek(std::size_t position) { m_position = std::min(position, m_bytes.size()); }

std::string ByteStream::take(std::size_t count)
{
    std::string taken = m_bytes.substr(m_position, count);
    m_position += taken.size();
    return taken;
}

void ByteStream::setData(const std::string& bytes)
{
    m_bytes = bytes;
    m_position = 0;
}

ZTDataStream& ByteStream::read(char* bytes, unsigned int count)
{
    if (m_failed || count == 0)
        return *this;
    std::size_t taken = std::min<std::size_t>(count, left());
    std::memcpy(bytes, m_bytes.data() + m_position, taken);
    m_position += taken;
    m_failed = taken < count;
    return *this;
}
} // namespace dump
