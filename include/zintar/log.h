#pragma once

#include <zintar/export.h>

#include <string>

/// The stream that a message goes to. There is no threshold and no filter.
enum class ZTLogType : int {
    Info = 0,    ///< standard output
    Warning = 1, ///< standard error
    Error = 2,   ///< standard error
};

/// Writes `message` and a line end to the stream that `type` selects.
///
/// This is the one channel through which the library speaks to a person. A host that wants the
/// lines elsewhere redirects `std::cout` and `std::cerr`.
/// @param message  the whole line with its own head ("Zintar: ", ...); nothing is put in front
/// @param type     any other value than the three drops the message and reports the value itself
///                 on standard error
/// Threads: takes no lock; lines from several threads interleave as the streams let them.
ZT_EXPORT void ztLog(const std::string& message, ZTLogType type);
