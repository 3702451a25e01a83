#include <zintar/logcapture.h>

#include <zintar/loghandler.h>

#include <mutex>

struct ZTLogCapturePrivate {
    void keep(const std::string& message, ZTLogType type)
    {
        const std::scoped_lock lock(mutex);
        everything.append(message) += '\n';
        (type == ZTLogType::Info ? out : err).append(message) += '\n';
    }

    /// Beside a thread that logs, another one may read.
    std::mutex mutex;
    std::string everything, out, err;
    ZTScopedLogHandler handler = ztSetLogHandler(
        [this](const std::string& message, ZTLogType type) { keep(message, type); });
};

namespace
{
std::string copyOf(const std::string& text, std::mutex& mutex)
{
    const std::scoped_lock lock(mutex);
    return text;
}
} // namespace

ZTLogCapture::ZTLogCapture() : priv(std::make_unique<ZTLogCapturePrivate>()) {}

ZTLogCapture::~ZTLogCapture() = default;

std::string ZTLogCapture::text() const { return copyOf(priv->everything, priv->mutex); }

std::string ZTLogCapture::out() const { return copyOf(priv->out, priv->mutex); }

std::string ZTLogCapture::err() const { return copyOf(priv->err, priv->mutex); }
