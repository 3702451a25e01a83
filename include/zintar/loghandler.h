#pragma once

#include <zintar/export.h>
#include <zintar/log.h>

#include <functional>
#include <memory>
#include <string>

/// @file
/// Where the lines of `ztLog` go: a host sends them to a file of its own, a window, or nowhere.
///
///     ZTScopedLogHandler toFile = ztSetLogHandler([&](const std::string& line, ZTLogType type) {
///         file << (type == ZTLogType::Info ? "" : "! ") << line << "\n";
///     });
///
/// A test or a reader that wants the lines as a text takes `ZTLogCapture`, which is such a handler.

struct ZTLogHandlerEntry;

/// Gets each line, without a line end. It is called on the thread that logs, one call at a time for
/// all threads, so it needs no lock of its own; it must not throw, nor wait for a thread that may
/// log. What it logs itself goes to the handler that was set before it.
using ZTLogHandler = std::function<void(const std::string& message, ZTLogType type)>;

class ZTScopedLogHandler;

/// Lets the handler have the lines of all threads until the end of what is returned. An empty
/// handler drops them.
/// Threads: any.
[[nodiscard]] ZT_EXPORT ZTScopedLogHandler ztSetLogHandler(ZTLogHandler handler);

/// A handler's time: it gets the lines as long as this lives. Ends may come in any order; the
/// handler that was set last, of those that live, has the lines.
class ZT_EXPORT ZTScopedLogHandler
{
public:
    ZTScopedLogHandler() noexcept = default;
    ZTScopedLogHandler(ZTScopedLogHandler&& other) noexcept;
    /// Ends the handler that was held before.
    ZTScopedLogHandler& operator=(ZTScopedLogHandler&& other) noexcept;
    /// Once it has returned the handler runs on no thread any more, but for a call that this is
    /// within.
    ~ZTScopedLogHandler();

private:
    friend ZTScopedLogHandler ztSetLogHandler(ZTLogHandler handler);
    explicit ZTScopedLogHandler(std::shared_ptr<ZTLogHandlerEntry> entry) noexcept;

    std::shared_ptr<ZTLogHandlerEntry> m_entry;
};
