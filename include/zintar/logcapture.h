#pragma once

#include <zintar/export.h>

#include <memory>
#include <string>

struct ZTLogCapturePrivate;

/// Keeps to itself what the library says while it lives, for a test that compares the lines, or a
/// host that tells its user a reason in words of its own:
///
///     ZTLogCapture log;
///     ZTVariant value = read(stream);
///     if (!value)
///         showMessage(log.text());
///
/// It is a log handler (`loghandler.h`), so it has the lines of all threads, of nested captures the
/// innermost one. What others write on standard output is none of its business.
class ZT_EXPORT ZTLogCapture
{
public:
    ZTLogCapture();
    ZTLogCapture(const ZTLogCapture&) = delete;
    ZTLogCapture& operator=(const ZTLogCapture&) = delete;
    /// What was kept is gone; nothing of it is written.
    ~ZTLogCapture();

    /// Everything so far, in the order of logging, each line with a line end.
    [[nodiscard]] std::string text() const;
    /// The messages of the type `Info`, which would have gone to standard output.
    [[nodiscard]] std::string out() const;
    /// Warnings and errors, which would have gone to standard error.
    [[nodiscard]] std::string err() const;

private:
    std::unique_ptr<ZTLogCapturePrivate> priv;
};
