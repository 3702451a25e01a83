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
/// It stands in place of the buffers of `std::cout` and `std::cerr`, so it keeps what anybody
/// writes there, on all threads. Captures may be nested if they end in the opposite order: the
/// innermost has the lines. Beside other threads that write, the order of lines is not defined.
class ZT_EXPORT ZTLogCapture
{
public:
    ZTLogCapture();
    ZTLogCapture(const ZTLogCapture&) = delete;
    ZTLogCapture& operator=(const ZTLogCapture&) = delete;
    /// What was kept is gone; nothing of it is written.
    ~ZTLogCapture();

    /// Everything so far, in the order of writing, each line with its end.
    [[nodiscard]] std::string text() const;
    /// What went to standard output: messages of the type `Info`.
    [[nodiscard]] std::string out() const;
    /// What went to standard error: warnings and errors.
    [[nodiscard]] std::string err() const;

private:
    std::unique_ptr<ZTLogCapturePrivate> priv;
};
