#include <zintar/logcapture.h>

#include <iostream>
#include <streambuf>

namespace
{
/// Takes the place of a stream's buffer and appends what is written to two texts.
class KeptStream : private std::streambuf
{
public:
    KeptStream(std::ostream& stream, std::string& everything)
        : m_stream(stream), m_everything(everything), m_before(stream.rdbuf(this))
    {}
    KeptStream(const KeptStream&) = delete;
    KeptStream& operator=(const KeptStream&) = delete;
    ~KeptStream() override { m_stream.rdbuf(m_before); }

    [[nodiscard]] const std::string& text() const { return m_text; }

private:
    std::streamsize xsputn(const char* characters, std::streamsize count) override
    {
        m_text.append(characters, static_cast<std::size_t>(count));
        m_everything.append(characters, static_cast<std::size_t>(count));
        return count;
    }
    int_type overflow(int_type character) override
    {
        if (!traits_type::eq_int_type(character, traits_type::eof())) {
            const char one = traits_type::to_char_type(character);
            xsputn(&one, 1);
        }
        return traits_type::not_eof(character);
    }

    std::ostream& m_stream;
    std::string& m_everything;
    std::string m_text;
    std::streambuf* m_before;
};
} // namespace

struct ZTLogCapturePrivate {
    std::string everything;
    KeptStream out{std::cout, everything};
    KeptStream err{std::cerr, everything};
};

ZTLogCapture::ZTLogCapture() : priv(std::make_unique<ZTLogCapturePrivate>()) {}

ZTLogCapture::~ZTLogCapture() = default;

std::string ZTLogCapture::text() const { return priv->everything; }

std::string ZTLogCapture::out() const { return priv->out.text(); }

std::string ZTLogCapture::err() const { return priv->err.text(); }
